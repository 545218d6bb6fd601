#pragma once

#include <optional>
#include <string_view>

namespace TalBench {

/// What the number in a row of the table should not exceed.
/// @param measured  the row's text; a row whose text is unknown has no target
[[nodiscard]] std::optional<double> targetOf(std::string_view measured);

}  // namespace TalBench
