#pragma once

// Internal: octets of a frame or of a file, and the numbers in them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace TalIec61850Parser::wire {

/// A view of octets. It owns nothing: the buffer that it points into must outlive it.
using Octets = std::span<std::uint8_t const>;

/// Two octets, most significant first.
/// @pre both octets are in `octets`
[[nodiscard]] constexpr std::uint16_t readUint16(Octets octets, std::size_t index) noexcept {
    return static_cast<std::uint16_t>(octets[index] << 8U | octets[index + 1]);
}

/// The first octets of `value`, as many as there are and the integer holds, most significant first.
template <typename Integer>
[[nodiscard]] constexpr Integer readBigEndian(Octets value) noexcept {
    Integer result = 0;
    for (std::uint8_t const octet : value.first(std::min(value.size(), sizeof(Integer)))) {
        result = static_cast<Integer>((result << 8U) | octet);
    }
    return result;
}

}  // namespace TalIec61850Parser::wire
