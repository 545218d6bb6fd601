#include "tools/output/NearestWords.hpp"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace TalIec61850Tools {

namespace {

constexpr std::size_t kMostCompared = 64;

char toLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool isSame(char a, char b) { return toLower(a) == toLower(b); }

/// The only candidate that the word begins.
std::optional<std::string> onlyContinued(std::string_view word,
                                         std::vector<std::string> const& candidates) {
    constexpr std::size_t kLeast = 3;
    if (word.size() - std::min(word.find_first_not_of('-'), word.size()) < kLeast) {
        return std::nullopt;
    }
    std::optional<std::string> found;
    for (std::string const& candidate : candidates) {
        if (!isSameWord(std::string_view(candidate).substr(0, word.size()), word)) {
            continue;
        }
        if (found) {
            return std::nullopt;
        }
        found = candidate;
    }
    return found;
}

}  // namespace

bool isSameWord(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), isSame);
}

std::size_t countDifferences(std::string_view a, std::string_view b) {
    a = a.substr(0, kMostCompared);
    b = b.substr(0, kMostCompared);
    // Row i has the differences between the first i characters of a and the first ones of b.
    using Row = std::array<std::size_t, kMostCompared + 1>;
    Row beforeLast{};
    Row last{};
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        Row row{};
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            std::size_t const replaced = last[j - 1] + (isSame(a[i - 1], b[j - 1]) ? 0 : 1);
            row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
            if (i > 1 && j > 1 && isSame(a[i - 1], b[j - 2]) && isSame(a[i - 2], b[j - 1])) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        beforeLast = std::exchange(last, row);
    }
    return last[b.size()];
}

std::optional<std::string> nearestWord(std::string_view word,
                                       std::vector<std::string> const& candidates) {
    auto const ordered = nearestFirst(word, candidates);
    std::size_t const most = std::max<std::size_t>(1, word.size() / 3);
    bool const isNear = !ordered.empty() && !word.empty() && word.size() <= kMostCompared &&
                        countDifferences(word, ordered.front()) <= most;
    return isNear ? std::optional(ordered.front()) : onlyContinued(word, candidates);
}

std::vector<std::string> nearestFirst(std::string_view word, std::vector<std::string> candidates) {
    std::vector<std::pair<std::size_t, std::string>> counted;
    for (auto& candidate : candidates) {
        std::size_t const differences = countDifferences(word, candidate);
        counted.emplace_back(differences, std::move(candidate));
    }
    std::stable_sort(counted.begin(), counted.end(),
                     [](auto const& a, auto const& b) { return a.first < b.first; });
    std::transform(counted.begin(), counted.end(), candidates.begin(),
                   [](auto& pair) { return std::move(pair.second); });
    return candidates;
}

std::string didYouMean(std::string_view word, std::vector<std::string> const& candidates) {
    auto const nearest = nearestWord(word, candidates);
    return nearest ? "; did you mean " + *nearest + "?" : std::string();
}

}  // namespace TalIec61850Tools
