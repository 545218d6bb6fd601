#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/options/SampleOptions.hpp"

namespace TalIec61850Tools {

/// What `plot` is asked for.
struct PlotOptions {
    /// Its output is the picture.
    SampleChoice choice;
    /// The first line of the picture; empty for the names of the streams.
    std::string title;
    /// In pixels.
    std::uint64_t width = 800;
    /// In pixels; not set for what the parts of the picture usually take.
    std::optional<std::uint64_t> height;
    bool isDark = false;
};

/// Adds the options.
/// @param options  written while the command line is parsed
void addPlotOptions(CommandDefinition& command, PlotOptions& options);

}  // namespace TalIec61850Tools
