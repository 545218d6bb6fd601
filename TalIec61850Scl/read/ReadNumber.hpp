#pragma once

// Internal: numbers of attributes.

#include <TalIec61850Scl/read/Element.hpp>
#include <charconv>
#include <optional>
#include <string_view>

namespace TalIec61850Scl::detail {

/// A number without anything around it but blanks; not set where the text is none, or out of range.
/// @tparam Number  an integer
template <typename Number>
[[nodiscard]] std::optional<Number> readNumber(std::string_view text, int base = 10) noexcept {
    std::string_view const digits = trimmed(text);
    Number number = 0;
    auto const [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    if (error != std::errc{} || end != digits.data() + digits.size()) {
        return std::nullopt;
    }
    return number;
}

/// Likewise, with decimals and exponent; finite.
[[nodiscard]] std::optional<double> readDecimal(std::string_view text) noexcept;

}  // namespace TalIec61850Scl::detail
