#pragma once

#include <cstddef>
#include <string_view>

#include "tools/output/Terminal.hpp"

namespace TalIec61850Tools {

/// What a picture of text is made for.
struct TextForm {
    /// Fewer are not enough for a picture: it is that wide then, all the same.
    static constexpr std::size_t kLeastColumns = 20;

    /// No line takes more.
    std::size_t columns = 80;
    /// Whether characters beyond ASCII are shown.
    bool isUtf8 = false;
    bool inColour = false;

    /// What is written where characters of a text are left out.
    [[nodiscard]] std::string_view ellipsis() const { return ellipsisOf(isUtf8); }
};

}  // namespace TalIec61850Tools
