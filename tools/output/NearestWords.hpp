#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Tools {

/// Whether two words are the same. Letter case does not count.
[[nodiscard]] bool isSameWord(std::string_view a, std::string_view b);

/// How many characters differ between two words: those to insert, remove or replace, and pairs to
/// swap. Letter case does not count. Only the first 64 characters are looked at.
[[nodiscard]] std::size_t countDifferences(std::string_view a, std::string_view b);

/// The candidate that a mistyped word is most like, else the only one that the word begins.
/// @return none if more than a third of the characters differ, and the word begins none or several,
///         or has fewer than three characters after dashes
[[nodiscard]] std::optional<std::string> nearestWord(std::string_view word,
                                                     std::vector<std::string> const& candidates);

/// The candidates, those first that are most like the word; of those that are alike, the first.
[[nodiscard]] std::vector<std::string> nearestFirst(std::string_view word,
                                                    std::vector<std::string> candidates);

/// "; did you mean NEAREST?", or nothing.
[[nodiscard]] std::string didYouMean(std::string_view word,
                                     std::vector<std::string> const& candidates);

}  // namespace TalIec61850Tools
