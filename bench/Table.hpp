#pragma once

#include <optional>
#include <string_view>

#include "bench/Race.hpp"

// The table of what was measured, in Markdown, on standard output. A row is written when it is
// known.

namespace TalBench {

void printTableHead();

/// How one contender did against another: the median of the ratios of their rounds, and the least
/// and the greatest of them.
/// @param measured  what was measured; Targets.cpp knows it by this text
void printRatio(std::string_view measured, Rounds const& numerator, Rounds const& denominator);

/// A number that is no ratio of times and is the same in every round.
void printNumber(std::string_view measured, double number);

/// The same two, where exceeding the limit is a defect.
/// @param text  says the number in another way
/// @return whether it is within the limit
[[nodiscard]] bool printBound(std::string_view measured, Rounds const& numerator,
                              Rounds const& denominator, std::optional<double> limit);
[[nodiscard]] bool printBound(std::string_view measured, double number, std::string_view text,
                              std::optional<double> limit);

}  // namespace TalBench
