#pragma once

#include <TalIec61850Analysis/comtrade/ComtradeFormat.hpp>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tools/options/SampleOptions.hpp"
#include "tools/options/TimeBound.hpp"

namespace TalIec61850Tools {

/// What `comtrade` is asked for.
struct ComtradeOptions {
    SampleChoice choice;
    /// The files without what tells them apart: BASE.cfg, BASE.dat, BASE.hdr.
    std::string base;
    /// BASE.cff in place of these.
    bool inOneFile = false;
    TalIec61850Analysis::ComtradeEdition edition = TalIec61850Analysis::ComtradeEdition::of2013;
    /// Not set for what the edition usually has.
    std::optional<TalIec61850Analysis::ComtradeData> data;
    /// none, bits or all
    std::string quality = "none";
    /// Of GOOSE streams; empty for none.
    std::vector<std::string> gocbRefs;
    /// Which members of these: patterns of places or names; empty for all.
    std::vector<std::string> members;
    std::optional<TimeBound> trigger;
    bool alignsNearest = false;
    /// How long each record is at most.
    std::optional<std::chrono::nanoseconds> split;
    /// More middles of windows, besides that of the window options: a record for each.
    std::vector<TimeBound> moreArounds;
    std::string station;
    std::optional<double> frequency;
};

/// Adds the options.
/// @param options  written while the command line is parsed
void addComtradeOptions(CommandDefinition& command, ComtradeOptions& options);

}  // namespace TalIec61850Tools
