#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <variant>
#include <vector>

namespace TalIec61850Analysis {

/// A view of octets. It owns nothing: what it points into must outlive it.
using Octets = std::span<std::uint8_t const>;

/// Octets of its own.
using OctetString = std::vector<std::uint8_t>;

/// A value that was read as what it should be, or else its octets.
template <typename Value>
using Readable = std::variant<Value, OctetString>;

/// The same without a copy of the octets.
template <typename Value>
using ReadableView = std::variant<Value, Octets>;

/// What a field holds, where it is there and was read as what it should be; null otherwise.
/// @param field  a Readable or a ReadableView; what is returned points into it
template <typename Value, typename Raw>
[[nodiscard]] constexpr Value const* valueIn(
    std::optional<std::variant<Value, Raw>> const& field) noexcept {
    return field ? std::get_if<0>(&*field) : nullptr;
}

/// The octets, copied.
[[nodiscard]] inline OctetString toOwned(Octets octets) { return {octets.begin(), octets.end()}; }

/// The value, or a copy of its octets.
template <typename Value>
[[nodiscard]] Readable<Value> toOwned(ReadableView<Value> const& readable) {
    if (auto const* const octets = std::get_if<Octets>(&readable)) {
        return toOwned(*octets);
    }
    return std::get<Value>(readable);
}

}  // namespace TalIec61850Analysis
