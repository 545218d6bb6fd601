#include "tools/output/Terminal.hpp"

#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

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

}  // namespace

std::size_t terminalColumns(int descriptor) {
    winsize size{};
    bool const isKnown = ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : kUnknownColumns;
}

std::string_view ellipsis() {
    std::string locale = characterLocale();
    std::transform(locale.begin(), locale.end(), locale.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    bool const isUtf8 =
        locale.find("utf-8") != std::string::npos || locale.find("utf8") != std::string::npos;
    return isUtf8 ? "\u2026" : "...";
}

}  // namespace TalIec61850Tools
