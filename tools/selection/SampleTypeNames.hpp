#pragma once

#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Tools {

/// The name of a type as layouts are shown: INT32, FLOAT32, quality.
[[nodiscard]] std::string_view typeText(TalIec61850Analysis::SampleType type);

/// The words for types in options: int32, float32, quality.
[[nodiscard]] std::vector<std::string> typeWords();

/// The type that a word of an option means; letter case does not count.
/// @return none where it means none
[[nodiscard]] std::optional<TalIec61850Analysis::SampleType> typeOfWord(std::string_view word);

}  // namespace TalIec61850Tools
