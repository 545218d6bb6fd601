#include "tools/options/ChosenColumns.hpp"

#include <fmt/format.h>

#include "tools/options/UsageError.hpp"
#include "tools/output/NearestWords.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

std::size_t findField(std::vector<std::string_view> const& names, std::string const& wanted) {
    auto const found = std::find_if(names.begin(), names.end(), [&](std::string_view name) {
        return isSameWord(name, wanted);
    });
    if (found == names.end()) {
        auto const guess = didYouMean(wanted, {names.begin(), names.end()});
        throw UsageError(fmt::format("--columns: there is no field {}{}", escapeText(wanted),
                                     guess.empty() ? "; --help lists them" : guess));
    }
    return static_cast<std::size_t>(found - names.begin());
}

std::string headingOf(std::string_view field) {
    std::string text(field);
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return text;
}

}  // namespace TalIec61850Tools
