#pragma once

#include <TalIec61850Analysis/file/FileIdentity.hpp>
#include <TalIec61850Scl/model/StationDescription.hpp>
#include <set>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// What the descriptions say that a command line names.
struct Descriptions {
    TalIec61850Scl::StationDescription station;
    /// Whether any file is a description, if only in part.
    bool isAny = false;
    /// Every file that was looked into, be it a description or not.
    std::set<TalIec61850Analysis::FileIdentity> files;
    /// One line each, safe for a terminal, on what could not be used.
    std::vector<std::string> faults;
};

/// Reads the descriptions of a station: a file is itself, a folder is the files in it and in the
/// folders below that are called .scd, .cid, .icd, .iid or .ssd. No file is read twice.
[[nodiscard]] Descriptions readDescriptions(std::vector<std::string> const& arguments);

}  // namespace TalIec61850Tools
