#pragma once

// Internal: lines of an indented tree.

#include <cstddef>
#include <string>
#include <string_view>

namespace TalIec61850Tools {

class TextTree {
public:
    /// Adds "name: value". Both are safe for a terminal.
    void add(std::string_view name, std::string_view value) {
        begin(name);
        text_.append(": ").append(value) += '\n';
    }

    /// Adds a line for what the following ones, up to leave(), belong to.
    void enter(std::string_view name) {
        begin(name);
        text_ += '\n';
        ++depth_;
    }
    void leave() { --depth_; }

    [[nodiscard]] std::string take() { return std::move(text_); }

private:
    void begin(std::string_view name) { text_.append(2 * depth_, ' ').append(name); }

    std::string text_;
    std::size_t depth_ = 0;
};

}  // namespace TalIec61850Tools
