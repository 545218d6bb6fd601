#include <TalIec61850Analysis/packet/Integer.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>
#include <algorithm>
#include <cstddef>

namespace TalIec61850Analysis {

namespace {

constexpr std::size_t kMaxOctets = sizeof(std::uint64_t);

bool hasSign(std::uint8_t octet) { return (octet & 0x80U) != 0; }

/// The octets without those in front that merely repeat the sign.
Octets skipSign(Octets octets) {
    std::uint8_t const filling = hasSign(octets.front()) ? 0xFF : 0x00;
    while (octets.size() > 1 && octets[0] == filling && hasSign(octets[1]) == hasSign(filling)) {
        octets = octets.subspan(1);
    }
    return octets;
}

std::uint64_t join(Octets octets) {
    return TalIec61850Parser::wire::readBigEndian<std::uint64_t>(octets);
}

/// The same for at most eight octets that have a sign.
std::int64_t joinSigned(Octets octets) {
    std::uint64_t number = hasSign(octets.front()) ? ~std::uint64_t{0} : 0;
    for (std::uint8_t const octet : octets) {
        number = number << 8U | octet;
    }
    return static_cast<std::int64_t>(number);
}

}  // namespace

IntegerView readInteger(Octets octets) noexcept {
    if (octets.empty()) {
        return octets;
    }
    Octets const number = skipSign(octets);
    if (number.size() <= kMaxOctets) {
        return joinSigned(number);
    }
    if (number.size() == kMaxOctets + 1 && number.front() == 0) {
        return join(number.subspan(1));
    }
    return octets;
}

bool isNegative(IntegerView const& integer) noexcept {
    auto const* const number = std::get_if<std::int64_t>(&integer);
    return number != nullptr && *number < 0;
}

ReadableView<std::uint64_t> readUnsigned(Octets octets) noexcept {
    auto const start = std::find_if(octets.begin(), octets.end(), [](auto o) { return o != 0; });
    auto const size = static_cast<std::size_t>(octets.end() - start);
    if (octets.empty() || size > kMaxOctets) {
        return octets;
    }
    return join(octets.last(size));
}

Integer toOwned(IntegerView const& integer) {
    if (auto const* const octets = std::get_if<Octets>(&integer)) {
        return toOwned(*octets);
    }
    if (auto const* const number = std::get_if<std::uint64_t>(&integer)) {
        return *number;
    }
    return std::get<std::int64_t>(integer);
}

}  // namespace TalIec61850Analysis
