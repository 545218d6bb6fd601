#include "support/Data.hpp"

#include <bit>

#include "support/Ber.hpp"

namespace TalTest {

Bytes utcTime(std::uint32_t seconds, std::uint32_t fraction24, std::uint8_t quality) {
    return concat({bigEndian(seconds, 4), bigEndian(fraction24, 3), {quality}});
}

Bytes dataBoolean(bool value) { return berBoolean(0x83, value); }

Bytes dataBitString(Bytes const& bits, std::uint8_t unusedBits) {
    return ber(0x84, concat({{unusedBits}, bits}));
}

Bytes dataQuality(std::uint16_t bits) { return dataBitString(bigEndian(bits, 2), 3); }

Bytes dataInteger(std::int64_t value) { return ber(0x85, minimalInteger(value)); }

Bytes dataUnsigned(std::uint64_t value) { return ber(0x86, minimalUnsigned(value)); }

Bytes dataFloat(float value) {
    constexpr std::uint8_t exponentWidth = 8;
    return ber(0x87, concat({{exponentWidth}, bigEndian(std::bit_cast<std::uint32_t>(value), 4)}));
}

Bytes dataDouble(double value) {
    constexpr std::uint8_t exponentWidth = 11;
    return ber(0x87, concat({{exponentWidth}, bigEndian(std::bit_cast<std::uint64_t>(value), 8)}));
}

Bytes dataOctetString(Bytes const& value) { return ber(0x89, value); }

Bytes dataVisibleString(std::string_view value) { return ber(0x8A, value); }

Bytes dataBinaryTime(std::uint32_t milliseconds, std::optional<std::uint16_t> days) {
    return ber(0x8C, concat({bigEndian(milliseconds, 4), days ? bigEndian(*days, 2) : Bytes{}}));
}

Bytes dataBcd(std::uint8_t value) { return ber(0x8D, {value}); }

Bytes dataBooleanArray(Bytes const& bits, std::uint8_t unusedBits) {
    return ber(0x8E, concat({{unusedBits}, bits}));
}

Bytes dataObjectId(Bytes const& content) { return ber(0x8F, content); }

Bytes dataMmsString(std::string_view value) { return ber(0x90, value); }

Bytes dataUtcTime(std::uint32_t seconds, std::uint32_t fraction24, std::uint8_t quality) {
    return ber(0x91, utcTime(seconds, fraction24, quality));
}

Bytes dataStructure(std::initializer_list<Part> members) { return ber(0xA2, concat(members)); }

Bytes dataArray(std::initializer_list<Part> elements) { return ber(0xA1, concat(elements)); }

}  // namespace TalTest
