#include "support/Ber.hpp"

#include <algorithm>
#include <stdexcept>

namespace TalTest {
namespace {

std::size_t octetsNeeded(std::uint64_t value) {
    std::size_t octets = 1;
    while (value >>= 8) {
        ++octets;
    }
    return octets;
}

Bytes longForm(std::size_t length, std::size_t octets) {
    if (octetsNeeded(length) > octets) {
        throw std::length_error("length form too short for value");
    }
    return concat({{static_cast<std::uint8_t>(0x80 | octets)}, bigEndian(length, octets)});
}

Bytes element(std::uint8_t tag, Part value, LengthForm form) {
    if (form == LengthForm::shortest && value.size() < 0x80) {
        Bytes made;
        made.reserve(2 + value.size());
        made.push_back(tag);
        made.push_back(static_cast<std::uint8_t>(value.size()));
        append(made, value);
        return made;
    }
    return concat({{tag}, berLength(value.size(), form), value});
}

}  // namespace

Bytes berLength(std::size_t length, LengthForm form) {
    switch (form) {
        case LengthForm::oneOctet:
            return longForm(length, 1);
        case LengthForm::twoOctets:
            return longForm(length, 2);
        case LengthForm::threeOctets:
            return longForm(length, 3);
        case LengthForm::fourOctets:
            return longForm(length, 4);
        case LengthForm::indefinite:
            return {0x80};
        case LengthForm::shortest:
            break;
    }
    if (length < 0x80) {
        return {static_cast<std::uint8_t>(length)};
    }
    return longForm(length, octetsNeeded(length));
}

Bytes ber(std::uint8_t tag, Bytes const& value, LengthForm form) {
    return element(tag, value, form);
}

Bytes ber(std::uint8_t tag, std::string_view value, LengthForm form) {
    return element(tag, value, form);
}

Bytes ber(std::uint8_t tag, std::initializer_list<std::uint8_t> value, LengthForm form) {
    return element(tag, value, form);
}

Bytes berClaiming(std::uint8_t tag, Bytes const& lengthOctets, Bytes const& value) {
    return concat({{tag}, lengthOctets, value});
}

Bytes nested(std::uint8_t tag, std::size_t levels, Bytes const& innermost) {
    // Each length depends on what is inside, so the octets are laid down from the back.
    Bytes backwards(innermost.rbegin(), innermost.rend());
    for (; levels > 0; --levels) {
        Bytes const length = berLength(backwards.size());
        std::copy(length.rbegin(), length.rend(), std::back_inserter(backwards));
        backwards.push_back(tag);
    }
    std::reverse(backwards.begin(), backwards.end());
    return backwards;
}

Bytes nestedAmong(std::uint8_t tag, std::size_t levels, Bytes const& behind) {
    Bytes backwards;
    Bytes allBehind;
    for (std::size_t level = 0; level < levels; ++level) {
        Bytes const length = berLength(backwards.size() + allBehind.size());
        std::copy(length.rbegin(), length.rend(), std::back_inserter(backwards));
        backwards.push_back(tag);
        append(allBehind, behind);
    }
    std::reverse(backwards.begin(), backwards.end());
    append(backwards, allBehind);
    return backwards;
}

Bytes minimalUnsigned(std::uint64_t value) {
    std::size_t const octets = octetsNeeded(value);
    bool const looksNegative = (value >> (8 * octets - 1)) != 0;
    return bigEndian(value, looksNegative ? octets + 1 : octets);
}

Bytes minimalInteger(std::int64_t value) {
    auto const magnitude = static_cast<std::uint64_t>(value < 0 ? ~value : value);
    return bigEndian(static_cast<std::uint64_t>(value), minimalUnsigned(magnitude).size());
}

Bytes berBoolean(std::uint8_t tag, std::optional<bool> value) {
    if (!value) {
        return {};
    }
    return ber(tag, Bytes{static_cast<std::uint8_t>(*value ? 0xFF : 0x00)});
}

}  // namespace TalTest
