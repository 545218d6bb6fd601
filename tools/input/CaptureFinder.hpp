#pragma once

#include <TalIec61850Analysis/file/CaptureFormat.hpp>
#include <TalIec61850Analysis/file/FileIdentity.hpp>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tools/input/Spool.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::FileIdentity;

/// A capture file that a command reads.
struct CaptureSource {
    /// What the file is opened by.
    std::string path;
    /// What it is called: the path as it was given or found, "-" for standard input.
    std::string name;
    FileIdentity identity;
    /// Octets; 0 where only reading would tell.
    std::uint64_t size = 0;
    /// How it is written.
    TalIec61850Analysis::CaptureFormat format = TalIec61850Analysis::CaptureFormat::classic;
};

/// What the FILE arguments of a command lead to.
struct FoundCaptures {
    /// In the order of the arguments, a folder's by their names; no file twice.
    std::vector<CaptureSource> captures;
    /// Which of them a name leads to, be it a second name of a file.
    std::map<std::string, std::size_t> numbers;
    /// Every file that was looked into, be it a capture or not.
    std::set<FileIdentity> files;
    /// One line each, safe for a terminal, on what could not be used.
    std::vector<std::string> faults;
    /// Copies of what cannot be read as it is, kept as long as they are read.
    std::vector<std::unique_ptr<Spool>> spools;
};

/// Follows the FILE arguments of a command: a capture is itself, a folder is the captures
/// in it and in the folders below, "-" for standard input. What comes through a pipe, and what is
/// compressed, is read as a copy. In a folder a file that is no capture is passed over, and so is
/// a pipe; links to folders are not followed.
[[nodiscard]] FoundCaptures findCaptures(std::vector<std::string> const& arguments);

}  // namespace TalIec61850Tools
