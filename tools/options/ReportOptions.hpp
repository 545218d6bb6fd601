#pragma once

#include <cstdint>
#include <optional>

#include "tools/options/SampleOptions.hpp"

namespace TalIec61850Tools {

/// What `report` is asked for.
struct ReportOptions {
    /// Its output file is the page.
    SampleChoice choice;
    /// Octets that the page has at most.
    std::uint64_t maxSize = 20'000'000;
};

/// Adds the options.
/// @param options  written while the command line is parsed
void addReportOptions(CommandDefinition& command, ReportOptions& options);

}  // namespace TalIec61850Tools
