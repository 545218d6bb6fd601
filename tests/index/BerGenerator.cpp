#include "index/BerGenerator.hpp"

#include <array>
#include <cstdint>

#include "index/RandomPicks.hpp"
#include "support/Ber.hpp"

namespace TalTest {
namespace {

std::uint8_t anyTag() {
    switch (below(8)) {
        case 0:
            return std::array<std::uint8_t, 4>{0x30, 0x60, 0x61, 0xA2}[below(4)];
        case 1:
        case 2:
        case 3:
            return static_cast<std::uint8_t>(0x80 + below(12));
        case 4:
            return static_cast<std::uint8_t>(0xA0 + below(12));
        case 5:
            return std::array<std::uint8_t, 4>{0x30, 0x30, 0xA2, 0x91}[below(4)];
        case 6:
            return std::array<std::uint8_t, 3>{0x8B, 0x81, 0x82}[below(3)];
        default:
            return anyOctet();
    }
}

LengthForm anyForm() {
    constexpr std::array<LengthForm, 8> forms = {LengthForm::shortest,    LengthForm::shortest,
                                                 LengthForm::shortest,    LengthForm::twoOctets,
                                                 LengthForm::threeOctets, LengthForm::fourOctets,
                                                 LengthForm::shortest,    LengthForm::indefinite};
    return forms[below(8)];
}

/// Length octets that may say anything, or say the truth in up to six octets.
Bytes anyLengthOctets(std::size_t length) {
    switch (below(3)) {
        case 0:
            return anyOctets(8);
        case 1:
            return berLength(below(300));
        default:
            std::size_t const count = below(7);
            return concat({{static_cast<std::uint8_t>(0x80 + count)}, bigEndian(length, count)});
    }
}

Bytes element(std::uint8_t tag, Bytes const& value) {
    return oneIn(16) ? berClaiming(tag, anyLengthOctets(value.size()), value)
                     : ber(tag, value, anyForm());
}

Bytes anyElement(unsigned depth) {
    std::uint8_t const tag = anyTag();
    bool const leaf = depth == 0 || (tag < 0xA0 && tag >= 0x83 && tag != 0x8B) || oneIn(4);
    return element(tag, leaf ? anyOctets(6) : randomElements(depth - 1));
}

}  // namespace

Bytes randomElements(unsigned depth) {
    Bytes all;
    // Fifty are looked at on a level, so that a few before and after them matter.
    if (oneIn(24))
        for (unsigned i = 47 + below(5); i > 0; --i) append(all, ber(anyTag(), {}));
    for (unsigned i = below(5); i > 0; --i) append(all, anyElement(depth));
    return all;
}

Bytes wrappedAtRandom(Bytes inner) {
    constexpr std::array<std::uint8_t, 6> tags = {0x30, 0x61, 0x60, 0xA2, 0xAB, 0xA0};
    bool const more = oneIn(2);
    for (unsigned levels = oneIn(4) ? below(40) : below(4); levels > 0; --levels) {
        inner = ber(oneOf(tags), inner, oneIn(4) ? LengthForm::twoOctets : LengthForm::shortest);
        if (more) append(inner, element(anyTag(), anyOctets(4)));
    }
    return inner;
}

}  // namespace TalTest
