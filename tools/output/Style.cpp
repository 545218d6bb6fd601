#include "tools/output/Style.hpp"

#include <fmt/color.h>

#include <cstdlib>

namespace TalIec61850Tools {

namespace {

std::string_view environment(char const* name) {
    char const* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

}  // namespace

std::string emphasise(std::string_view text, bool inColour) {
    return inColour ? fmt::format(fmt::emphasis::bold, "{}", text) : std::string(text);
}

std::string paintSeverity(std::string_view severity) {
    if (severity == "error") {
        return fmt::format(fmt::emphasis::bold | fmt::fg(fmt::terminal_color::red), "{}", severity);
    }
    if (severity == "warning") {
        return fmt::format(fmt::fg(fmt::terminal_color::yellow), "{}", severity);
    }
    return std::string(severity);
}

bool wantsColour(std::string_view wish, bool isTerminal) {
    if (wish != "auto") {
        return wish == "always";
    }
    return isTerminal && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
}

}  // namespace TalIec61850Tools
