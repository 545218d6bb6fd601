#pragma once

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

#include "tools/options/CommonOptions.hpp"
#include "tools/options/FollowOptions.hpp"
#include "tools/options/WindowOptions.hpp"
#include "tools/selection/PacketCriteria.hpp"

namespace TalIec61850Tools {

/// What `check` is asked for.
struct CheckOptions {
    CommonOptions common;
    PacketCriteria criteria;
    WindowOptions window;
    /// Empty for all.
    std::vector<TalIec61850Analysis::FindingKind> kinds;
    /// The least that is told.
    TalIec61850Analysis::Severity severity = TalIec61850Analysis::Severity::note;
    /// The most rows to write.
    std::optional<std::uint64_t> limit;
    /// How far a frame may be from its course.
    std::optional<std::chrono::nanoseconds> jitter;
    /// Whether ASDUs are read too.
    bool withSamples = true;
    /// A row for each stream, in place of findings.
    bool isSummary = false;
    /// The least that the program fails on; not set for nothing.
    std::optional<TalIec61850Analysis::Severity> failOn = TalIec61850Analysis::Severity::error;

    FollowOptions follow;

    /// Whether a finding is wanted, by its kind and severity.
    [[nodiscard]] bool admit(TalIec61850Analysis::Finding const& finding) const;
};

/// Adds the options, those of addCommonOptions too.
/// @param options  written while the command line is parsed
void addCheckOptions(CommandDefinition& command, CheckOptions& options);

}  // namespace TalIec61850Tools
