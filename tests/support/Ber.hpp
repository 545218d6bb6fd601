#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>

#include "support/Bytes.hpp"

namespace TalTest {

/// How the length of an element is written (ITU-T X.690, 8.1.3).
enum class LengthForm {
    shortest,     ///< one octet up to 127, then as few as the length needs
    oneOctet,     ///< 81 and one octet
    twoOctets,    ///< 82 and two octets
    threeOctets,  ///< 83 and three octets
    fourOctets,   ///< 84 and four octets
    indefinite,   ///< 80; the value follows as it is, its end-of-contents octets are the caller's
};

/// The length octets of an element of `length` octets.
/// @throws std::length_error when `form` has too few octets for it
[[nodiscard]] Bytes berLength(std::size_t length, LengthForm form = LengthForm::shortest);

/// One element: identifier octet, length octets, value.
/// @throws std::length_error when `form` has too few octets for the value's size
[[nodiscard]] Bytes ber(std::uint8_t tag, Bytes const& value,
                        LengthForm form = LengthForm::shortest);

/// One element whose value is a text.
[[nodiscard]] Bytes ber(std::uint8_t tag, std::string_view value,
                        LengthForm form = LengthForm::shortest);

/// One element whose value is written out in place: `ber(0x88, {0x01})`, `ber(0x83, {})`.
[[nodiscard]] Bytes ber(std::uint8_t tag, std::initializer_list<std::uint8_t> value,
                        LengthForm form = LengthForm::shortest);

/// An element whose length octets are what the caller says, true or not.
[[nodiscard]] Bytes berClaiming(std::uint8_t tag, Bytes const& lengthOctets, Bytes const& value);

/// `levels` elements of one tag, each the only content of the one before it, around `innermost`.
/// Takes time linear in the octets built, so that a million levels are no trouble.
[[nodiscard]] Bytes nested(std::uint8_t tag, std::size_t levels, Bytes const& innermost = {});

/// The same around nothing, with `behind` on every level after the element inside, so that each
/// level is come back to.
[[nodiscard]] Bytes nestedAmong(std::uint8_t tag, std::size_t levels, Bytes const& behind);

/// A number and the count of octets it is written in; 0 octets stand for the fewest a BER INTEGER
/// that is not negative takes, which sets a zero before a leading bit that is set.
template <std::size_t DefaultOctets>
struct Unsigned {
    std::uint64_t value;
    std::size_t octets;

    // Not explicit: fields are set to plain numbers, and to {number, octets} where the width
    // counts.
    Unsigned(std::uint64_t number, std::size_t width = DefaultOctets)
        : value(number), octets(width) {}
};
using MinimalUnsigned = Unsigned<0>;

/// The value octets of a number that is not negative, in the fewest octets of a BER INTEGER.
[[nodiscard]] Bytes minimalUnsigned(std::uint64_t value);

/// The value octets of a number, in the fewest octets of a BER INTEGER (two's complement).
[[nodiscard]] Bytes minimalInteger(std::int64_t value);

/// The element of a number, nothing when it is left out.
template <std::size_t DefaultOctets>
[[nodiscard]] Bytes berUnsigned(std::uint8_t tag,
                                std::optional<Unsigned<DefaultOctets>> const& number) {
    if (!number) {
        return {};
    }
    return ber(tag, number->octets == 0 ? minimalUnsigned(number->value)
                                        : bigEndian(number->value, number->octets));
}

/// The element of a text or of octets, nothing when it is left out.
template <typename Value>
[[nodiscard]] Bytes berOptional(std::uint8_t tag, std::optional<Value> const& value) {
    return value ? ber(tag, *value) : Bytes{};
}

/// The element of a BOOLEAN (true is FF), nothing when it is left out.
[[nodiscard]] Bytes berBoolean(std::uint8_t tag, std::optional<bool> value);

}  // namespace TalTest
