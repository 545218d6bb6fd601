#pragma once

// Internal: the one place that reads BER elements, in place and without a copy.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Parser::wire {

/// One BER element seen in place; `value` points into the octets it was read from.
struct BerElement {
    std::uint8_t tag = 0;
    std::uint8_t headerSize = 0;
    Octets value;
};

namespace ber {

inline constexpr std::uint8_t kSequence = 0x30;
inline constexpr std::uint8_t kClassMask = 0xC0;
inline constexpr std::uint8_t kClassAndConstructedMask = 0xE0;
inline constexpr std::uint8_t kContextPrimitive = 0x80;
inline constexpr std::uint8_t kContextConstructed = 0xA0;
inline constexpr std::uint8_t kTagNumberMask = 0x1F;
/// The tag number that announces further identifier octets.
inline constexpr std::uint8_t kLongTagNumber = 0x1F;
/// The length octet of the indefinite form; in every greater one, the number of length octets that
/// follow is added to it.
inline constexpr std::uint8_t kLongForm = 0x80;
inline constexpr std::uint8_t kMaxLengthOctets = 4;
/// The identifier octet and the first length octet.
inline constexpr std::uint8_t kShortHeaderSize = 2;

constexpr bool isContextPrimitive(std::uint8_t tag) {
    return (tag & kClassAndConstructedMask) == kContextPrimitive;
}

constexpr bool isContextConstructed(std::uint8_t tag) {
    return (tag & kClassAndConstructedMask) == kContextConstructed;
}

/// Whether the tag is of the context-specific class, in either form.
constexpr bool isContext(std::uint8_t tag) { return (tag & kClassMask) == kContextPrimitive; }

constexpr std::uint8_t tagNumber(std::uint8_t tag) { return tag & kTagNumberMask; }

/// The identifier octet of a field in primitive form.
/// @param number  below kLongTagNumber
constexpr std::uint8_t primitive(std::uint8_t number) { return kContextPrimitive | number; }

/// The identifier octet of a field in constructed form.
/// @param number  below kLongTagNumber
constexpr std::uint8_t constructed(std::uint8_t number) { return kContextConstructed | number; }

/// Whether frame walks descend into elements of this tag.
/// @param pduTag  the application tag of the protocol's own PDU
constexpr bool isStructure(std::uint8_t tag, std::uint8_t pduTag) {
    return tag == kSequence || tag == pduTag || isContextConstructed(tag);
}

}  // namespace ber

/// Reads the element at `index` and steps past it (X.690, one identifier octet, definite length of
/// at most four length octets; the indefinite form reads as an empty element).
///
/// @return false when no whole element is there. `index` is then where reading stopped, and
///         `element.tag` holds the identifier if there was one; the rest of `element` is untouched.
[[nodiscard]] inline bool readElement(Octets data, std::size_t& index,
                                      BerElement& element) noexcept {
    if (index >= data.size()) {
        return false;
    }
    element.tag = data[index++];
    if (index >= data.size()) {
        return false;
    }
    std::uint32_t length = data[index++];
    std::uint8_t headerSize = ber::kShortHeaderSize;
    if (length >= ber::kLongForm) {
        auto const lengthOctets =
            static_cast<std::uint8_t>(length & ~std::uint32_t{ber::kLongForm});
        if (lengthOctets > ber::kMaxLengthOctets || data.size() - index < lengthOctets) {
            return false;
        }
        length = readBigEndian<std::uint32_t>(data.subspan(index, lengthOctets));
        index += lengthOctets;
        headerSize = static_cast<std::uint8_t>(headerSize + lengthOctets);
    }
    if (data.size() - index < length) {
        return false;
    }
    element.headerSize = headerSize;
    element.value = data.subspan(index, length);
    index += length;
    return true;
}

/// True if the first length octet alone proves that `readElement` fails at the start of `data`;
/// false is inconclusive. Branch-free, because these octets are effectively random.
[[nodiscard]] constexpr bool isPlainlyUnreadable(Octets data) noexcept {
    if (data.size() < ber::kShortHeaderSize) {
        return true;
    }
    std::uint32_t const length = data[1];
    bool const isLongForm = length - ber::kLongForm <= ber::kMaxLengthOctets;
    return !isLongForm & (length > data.size() - ber::kShortHeaderSize);
}

/// What `readBerHeader` found.
enum class BerForm : std::uint8_t {
    readable,          ///< identifier and definite length; the value may still be cut short
    cut,               ///< the octets end inside identifier or length
    longIdentifier,    ///< the tag number takes further identifier octets
    indefiniteLength,  ///< the end is marked by octets after the value, not by a length
    longLength,        ///< more than four length octets
};

/// Identifier and length of an element, and why they cannot be read where they cannot.
struct BerHeader {
    BerForm form = BerForm::cut;
    /// 0 where there is no octet at all.
    std::uint8_t tag = 0;
    /// Octets of identifier and length; 0 unless readable.
    std::uint8_t size = 0;
    /// Octets of the value as claimed; nothing says that they are there. 0 unless readable.
    std::uint32_t length = 0;
};

/// Reads identifier and length at the start of `data` for a reader that tells damage apart. It
/// differs from `readElement` in that long identifiers and the indefinite form are damage, and in
/// that the value need not be there.
[[nodiscard]] constexpr BerHeader readBerHeader(Octets data) noexcept {
    BerHeader header;
    if (data.empty()) {
        return header;
    }
    header.tag = data[0];
    if (ber::tagNumber(header.tag) == ber::kLongTagNumber) {
        header.form = BerForm::longIdentifier;
        return header;
    }
    if (data.size() < ber::kShortHeaderSize) {
        return header;
    }
    std::uint8_t const first = data[1];
    auto const lengthOctets =
        static_cast<std::uint8_t>(first < ber::kLongForm ? 0 : first - ber::kLongForm);
    if (first == ber::kLongForm) {
        header.form = BerForm::indefiniteLength;
    } else if (lengthOctets > ber::kMaxLengthOctets) {
        header.form = BerForm::longLength;
    } else if (data.size() - ber::kShortHeaderSize >= lengthOctets) {
        header.form = BerForm::readable;
        header.size = static_cast<std::uint8_t>(ber::kShortHeaderSize + lengthOctets);
        header.length =
            lengthOctets == 0
                ? first
                : readBigEndian<std::uint32_t>(data.subspan(ber::kShortHeaderSize, lengthOctets));
    }
    return header;
}

}  // namespace TalIec61850Parser::wire
