#pragma once

// Internal: the one place that reads BER elements, in place and without a copy.

#include <cstddef>
#include <cstdint>
#include <span>

namespace TalIec61850Parser::detail {

/// Octets seen in place.
using Octets = std::span<std::uint8_t const>;

/// One BER element seen in place; `value` points into the octets it was read from.
struct BerElement {
    std::uint8_t tag = 0;
    std::uint8_t headerSize = 0;
    Octets value;
};

namespace ber {

inline constexpr std::uint8_t kSequence = 0x30;
inline constexpr std::uint8_t kClassAndConstructedMask = 0xE0;
inline constexpr std::uint8_t kContextPrimitive = 0x80;
inline constexpr std::uint8_t kContextConstructed = 0xA0;
inline constexpr std::uint8_t kTagNumberMask = 0x1F;
inline constexpr std::uint8_t kLongForm = 0x80;
inline constexpr std::uint8_t kMaxLengthOctets = 4;

constexpr bool isContextPrimitive(std::uint8_t tag) {
    return (tag & kClassAndConstructedMask) == kContextPrimitive;
}

constexpr bool isContextConstructed(std::uint8_t tag) {
    return (tag & kClassAndConstructedMask) == kContextConstructed;
}

constexpr std::uint8_t tagNumber(std::uint8_t tag) { return tag & kTagNumberMask; }

/// Whether frame walks descend into elements of this tag.
/// @param pduTag  the application tag of the protocol's own PDU
constexpr bool isStructure(std::uint8_t tag, std::uint8_t pduTag) {
    return tag == kSequence || tag == pduTag || isContextConstructed(tag);
}

}  // namespace ber

/// Reads the element at `position` and steps past it (X.690, one identifier octet, definite
/// length of at most four length octets; the indefinite form reads as an empty element).
///
/// @return false when no such element stands there whole. `position` is then where reading
///         stopped, and `element.tag` holds the identifier if there was one; the rest of
///         `element` is untouched.
[[nodiscard]] inline bool readElement(Octets data, std::size_t& position,
                                      BerElement& element) noexcept {
    if (position >= data.size()) {
        return false;
    }
    element.tag = data[position++];
    if (position >= data.size()) {
        return false;
    }
    std::uint32_t length = data[position++];
    std::uint8_t headerSize = 2;
    if (length >= ber::kLongForm) {
        auto const lengthOctets =
            static_cast<std::uint8_t>(length & ~std::uint32_t{ber::kLongForm});
        if (lengthOctets > ber::kMaxLengthOctets || data.size() - position < lengthOctets) {
            return false;
        }
        length = 0;
        for (std::uint8_t i = 0; i < lengthOctets; ++i) {
            length = (length << 8U) | data[position++];
        }
        headerSize = static_cast<std::uint8_t>(headerSize + lengthOctets);
    }
    if (data.size() - position < length) {
        return false;
    }
    element.headerSize = headerSize;
    element.value = data.subspan(position, length);
    position += length;
    return true;
}

/// Whether `readElement` is bound to fail at the begin of `data` for what the length octet alone
/// says: true means so, false means nothing. Without a branch, for octets as good as random.
[[nodiscard]] constexpr bool isPlainlyUnreadable(Octets data) noexcept {
    if (data.size() < 2) {
        return true;
    }
    std::uint32_t const length = data[1];
    bool const isLongForm = length - ber::kLongForm <= ber::kMaxLengthOctets;
    return !isLongForm & (length > data.size() - 2);
}

}  // namespace TalIec61850Parser::detail
