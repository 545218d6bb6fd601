#pragma once

// Internal: functional constraints as numbers.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace TalIec61850Scl::detail {

/// A functional constraint by its number among those that there are.
using FunctionalConstraint = std::uint8_t;

/// Of the parts of a DAType, which have the one of the attribute that they are part of.
inline constexpr FunctionalConstraint kAnyConstraint = 0xFF;

/// By its text: ST, MX ...; not set where there is none of that name.
[[nodiscard]] inline std::optional<FunctionalConstraint> constraintOf(
    std::string_view text) noexcept {
    constexpr std::array<std::string_view, 20> kConstraints{
        "ST", "MX", "SP", "SV", "CF", "DC", "SG", "SE", "SR", "OR",
        "BL", "EX", "CO", "US", "MS", "RP", "BR", "LG", "GO", "GS"};
    for (std::size_t i = 0; i < kConstraints.size(); ++i) {
        if (kConstraints[i] == text) {
            return static_cast<FunctionalConstraint>(i);
        }
    }
    return std::nullopt;
}

}  // namespace TalIec61850Scl::detail
