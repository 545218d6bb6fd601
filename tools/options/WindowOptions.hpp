#pragma once

#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tools/options/CommandDefinition.hpp"
#include "tools/options/TimeBound.hpp"

namespace TalIec61850Tools {

/// The heading of the options on time in a help.
inline constexpr char const* kWindowGroup = "Which time";

/// What a help says about TIME.
inline constexpr char const* kTimeNotes =
    R"(TIME for --from, --to (both inside the window) and --around is one of:
  2024-03-20T10:00:00.28   UTC; without decimals, seconds or the time of
                           day if you like
  2024-03-20T11:00+01:00   of a clock that is ahead of UTC
  10:00:00.28, 11:00+01:00 on the day on which the captures begin
  1710928800.28            seconds since 1970, up to nine decimals
  +1.5s                    from the earliest record of all captures; ns,
                           us, ms, s (if none), min, h
  -5s                      before the latest record of all captures
)";

/// A window of time as the user gives it.
struct WindowOptions {
    std::optional<TimeBound> from;
    std::optional<TimeBound> to;
    /// The middle of the window, in place of its ends.
    std::optional<TimeBound> around;
    /// How long a window is that is given by its middle.
    std::optional<std::chrono::nanoseconds> span;

    /// Whether nothing is asked for.
    [[nodiscard]] bool isEmpty() const { return !from && !to && !around && !span; }

    /// @throws UsageError  the window ends before it starts, as far as that is known without the
    ///                     captures; or it is given by its ends and by its middle
    void check() const;

    [[nodiscard]] TalIec61850Analysis::TimeWindow resolve(CaptureSpan const& captures) const;
};

/// Adds --from, --to, --around and --span.
/// @param window       written while the command line is parsed
/// @param moreArounds  if not null, --around may be given several times: takes those after the
/// first
void addWindowOptions(CommandDefinition& command, WindowOptions& window,
                      std::vector<TimeBound>* moreArounds = nullptr);

/// Adds an option that is one TIME.
/// @param bound  written while the command line is parsed
void addTimeOption(CommandDefinition& command, std::string const& name,
                   std::optional<TimeBound>& bound, std::string const& help);

/// Adds an option that is a length of time, such as 500ms.
/// @param length  written while the command line is parsed
/// @param group   the heading in a help
void addLengthOption(CommandDefinition& command, std::string const& name,
                     std::optional<std::chrono::nanoseconds>& length, std::string const& help,
                     std::string const& group = kWindowGroup);

}  // namespace TalIec61850Tools
