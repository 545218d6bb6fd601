#include <TalIec61850Parser/wire/BerReader.hpp>
#include <TalIec61850Parser/wire/ShortLength.hpp>

namespace TalIec61850Parser::wire {

namespace {

constexpr std::uint8_t kOneLengthOctet = 0x81;
constexpr std::uint8_t kTwoLengthOctets = 0x82;

}  // namespace

std::optional<std::size_t> furtherLengthOctets(std::uint8_t first) {
    if (first < ber::kLongForm) {
        return 0;
    }
    return first == kOneLengthOctet || first == kTwoLengthOctets
               ? std::optional<std::size_t>(first & ~unsigned{ber::kLongForm})
               : std::nullopt;
}

std::optional<ShortLength> readShortLength(Octets data, std::size_t index) {
    if (index >= data.size()) {
        return std::nullopt;
    }
    std::uint8_t const first = data[index];
    auto const further = furtherLengthOctets(first);
    if (!further || data.size() - index - 1 < *further) {
        return std::nullopt;
    }
    std::size_t length = *further == 0 ? first : 0;
    for (std::uint8_t const octet : data.subspan(index + 1, *further)) {
        length = length << 8U | octet;
    }
    return ShortLength{.length = length, .size = 1 + *further};
}

}  // namespace TalIec61850Parser::wire
