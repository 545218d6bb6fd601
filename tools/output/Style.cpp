#include "tools/output/Style.hpp"

#include <fmt/color.h>

#include <cstdlib>

namespace TalIec61850Tools {

namespace {

std::string_view environment(char const* name) {
    char const* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string inRed(std::string_view text) {
    return fmt::format(fmt::emphasis::bold | fmt::fg(fmt::terminal_color::red), "{}", text);
}

std::string inYellow(std::string_view text) {
    return fmt::format(fmt::fg(fmt::terminal_color::yellow), "{}", text);
}

}  // namespace

std::string emphasise(std::string_view text, bool inColour) {
    return inColour ? fmt::format(fmt::emphasis::bold, "{}", text) : std::string(text);
}

std::string painted(std::string_view text, Paint paint) {
    if (paint == Paint::faint) {
        return fmt::format(fmt::emphasis::faint, "{}", text);
    }
    return paint == Paint::warning ? inYellow(text) : std::string(text);
}

std::string paintSeverity(std::string_view severity) {
    if (severity == "error") {
        return inRed(severity);
    }
    return severity == "warning" ? inYellow(severity) : std::string(severity);
}

std::string paintResult(std::string_view result) {
    if (result == "missing" || result == "differs") {
        return inRed(result);
    }
    return result == "unexpected" ? inYellow(result) : std::string(result);
}

bool wantsColour(std::string_view wish, bool isTerminal) {
    if (wish != "auto") {
        return wish == "always";
    }
    return isTerminal && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
}

}  // namespace TalIec61850Tools
