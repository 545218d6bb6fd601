#pragma once

#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <optional>

#include "tools/options/CommandDefinition.hpp"
#include "tools/options/TimeBound.hpp"
#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

/// The heading of the options on time in a help.
inline constexpr char const* kWindowGroup = "Which time";

/// Adds an option for each member of a stream's identity.
/// @param criteria  written while the command line is parsed
void addCriteriaOptions(CommandDefinition& command, StreamCriteria& criteria);

/// A window of time as the user gives it.
struct WindowOptions {
    std::optional<TimeBound> from;
    std::optional<TimeBound> to;

    /// @throws UsageError  the window ends before it starts, as far as that is known without the
    ///                     captures
    void check() const;

    /// @param begin  start of the captures
    [[nodiscard]] TalIec61850Analysis::TimeWindow resolve(CaptureTime begin) const;
};

/// Adds --from and --to.
/// @param window  written while the command line is parsed
void addWindowOptions(CommandDefinition& command, WindowOptions& window);

}  // namespace TalIec61850Tools
