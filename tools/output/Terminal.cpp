#include "tools/output/Terminal.hpp"

#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <string>
#include <system_error>

namespace TalIec61850Tools {

namespace {

constexpr std::size_t kUnknownColumns = 80;

/// The name of the locale that characters are written in.
std::string characterLocale() {
    constexpr std::array<char const*, 3> names = {"LC_ALL", "LC_CTYPE", "LANG"};
    for (char const* const name : names) {
        char const* const value = std::getenv(name);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

/// What a shell or a script says, within what a terminal may have.
std::optional<std::size_t> columnsOfEnvironment() {
    constexpr std::size_t kMostColumns = 65'535;
    char const* const value = std::getenv("COLUMNS");
    std::string_view const text = value == nullptr ? "" : value;
    std::size_t columns = 0;
    auto const [stop, error] = std::from_chars(text.data(), text.data() + text.size(), columns);
    bool const isNumber = error == std::errc() && stop == text.data() + text.size();
    return isNumber && columns > 0 && columns <= kMostColumns ? std::optional(columns)
                                                              : std::nullopt;
}

}  // namespace

std::size_t terminalColumns(int descriptor) {
    winsize size{};
    bool const isKnown = ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : columnsOfEnvironment().value_or(kUnknownColumns);
}

bool isUtf8Locale() {
    std::string locale = characterLocale();
    std::transform(locale.begin(), locale.end(), locale.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return locale.find("utf-8") != std::string::npos || locale.find("utf8") != std::string::npos;
}

std::string_view ellipsis() { return ellipsisOf(isUtf8Locale()); }

}  // namespace TalIec61850Tools
