#pragma once

#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <TalIec61850Scl/model/DataSet.hpp>
#include <TalIec61850Scl/model/Diagnostic.hpp>
#include <string>
#include <vector>

namespace TalIec61850Scl {

/// What files of a station's description (SCD, CID, ICD, IID, SSD; IEC 61850-6, any edition) say of
/// GOOSE and SV. Plain data, which may be changed, copied and used on any number of threads.
struct StationDescription {
    /// The files, by their paths as they were given. SclPlace has numbers of these.
    std::vector<std::string> files;
    /// The IEDs that the files have, each once, in the order of the files.
    std::vector<std::string> ieds;
    /// GOOSE and SV control blocks, in the order of the files. Each reference occurs once.
    std::vector<ControlBlock> controlBlocks;
    /// The data sets of these control blocks, in the order in which they are first used.
    std::vector<DataSet> dataSets;
    /// What is wrong, in the order of files and lines.
    std::vector<Diagnostic> diagnostics;

    /// Member by member.
    friend bool operator==(StationDescription const&, StationDescription const&) = default;
};

}  // namespace TalIec61850Scl
