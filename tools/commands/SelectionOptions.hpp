#pragma once

#include <optional>

#include "tools/selection/StreamCriteria.hpp"
#include "tools/selection/TimeWindow.hpp"

namespace CLI {
class App;
}

namespace TalIec61850Tools {

/// Adds an option for each member of a stream's identity.
/// @param criteria  written while the command line is parsed
void addCriteriaOptions(CLI::App& command, StreamCriteria& criteria);

/// A window of time as it was asked for.
struct WindowOptions {
    std::optional<TimeBound> from;
    std::optional<TimeBound> to;

    /// @throws UsageError  the window ends before it begins, as far as that can be told already
    void check() const;

    /// @param begin  where the captures begin
    [[nodiscard]] TimeWindow resolve(CaptureTime begin) const;
};

/// Adds --from and --to.
/// @param window  written while the command line is parsed
void addWindowOptions(CLI::App& command, WindowOptions& window);

}  // namespace TalIec61850Tools
