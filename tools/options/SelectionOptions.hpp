#pragma once

#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <optional>

#include "tools/options/CommandDefinition.hpp"
#include "tools/options/TimeBound.hpp"
#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

/// The heading of the options on time in a help.
inline constexpr char const* kWindowGroup = "Which time";

/// What a help says about TIME.
inline constexpr char const* kTimeNotes =
    R"(TIME for --from and --to, both inside the window, is one of:
  2024-03-20T10:00:00.28   UTC; without decimals, seconds or the time of
                           day if you like
  2024-03-20T11:00+01:00   of a clock that is ahead of UTC
  10:00:00.28, 11:00+01:00 on the day on which the captures begin
  1710928800.28            seconds since 1970, up to nine decimals
  +1.5s                    from the earliest first record of all
                           captures; ns, us, ms, s (if none), min, h
  -5s                      before the latest record of all captures
)";

/// What a help says about the options on streams: a paragraph, not broken into lines.
inline constexpr char const* kCriteriaNotes =
    "An option on streams may be given several times, save --protocol and --simulation-element: "
    "one of its values must be met. With --hsr and --prp, packets that came over the other lane or "
    "network are left out.";

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

    [[nodiscard]] TalIec61850Analysis::TimeWindow resolve(CaptureSpan const& captures) const;
};

/// Adds --from and --to.
/// @param window  written while the command line is parsed
void addWindowOptions(CommandDefinition& command, WindowOptions& window);

}  // namespace TalIec61850Tools
