#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "tools/options/CommonOptions.hpp"

namespace TalIec61850Tools {

/// Whether captures are read on while they are written.
struct FollowOptions {
    bool isOn = false;
    /// How long nothing may be added before the command ends; not set where it goes on until it is
    /// interrupted.
    std::optional<std::chrono::nanoseconds> idle;

    /// @throws UsageError  what is followed, or where its rows go, cannot be: standard input, a
    /// file
    ///                     that appears when it is whole
    void check(CommonOptions const& common) const;
};

/// What a help says about --follow: a paragraph, not broken into lines.
inline constexpr char const* kFollowNotes =
    "With -F, captures are read on while they are written, until the command is interrupted or "
    "nothing was added for --idle. A folder's files are those in it at any time, so that a ring of "
    "files can be followed; files need not be there yet, and may be replaced. A record that is "
    "written in part waits for the rest.";

/// Adds -F, --follow and --idle.
/// @param options  written while the command line is parsed
void addFollowOptions(CommandDefinition& command, FollowOptions& options);

}  // namespace TalIec61850Tools
