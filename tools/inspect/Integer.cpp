#include "tools/inspect/Integer.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace TalIec61850Tools {

namespace {

constexpr std::size_t kMaxOctets = sizeof(std::uint64_t);

using Iterator = OctetString::const_iterator;

bool hasSign(std::uint8_t octet) { return (octet & 0x80U) != 0; }

/// Where the octets begin that are not mere repetitions of the sign in front of them.
Iterator skipSign(OctetString const& octets) {
    std::uint8_t const filling = hasSign(octets.front()) ? 0xFF : 0x00;
    auto begin = octets.begin();
    while (octets.end() - begin > 1 && *begin == filling &&
           hasSign(*(begin + 1)) == hasSign(filling)) {
        ++begin;
    }
    return begin;
}

std::uint64_t join(Iterator begin, Iterator end, std::uint64_t first) {
    for (; begin != end; ++begin) {
        first = first << 8U | *begin;
    }
    return first;
}

}  // namespace

Integer readInteger(OctetString const& octets) {
    if (octets.empty()) {
        return octets;
    }
    auto const begin = skipSign(octets);
    auto const size = static_cast<std::size_t>(octets.end() - begin);
    if (size <= kMaxOctets) {
        std::uint64_t const sign = hasSign(*begin) ? ~std::uint64_t{0} : 0;
        return static_cast<std::int64_t>(join(begin, octets.end(), sign));
    }
    if (size == kMaxOctets + 1 && *begin == 0) {
        return join(begin, octets.end(), 0);
    }
    return octets;
}

bool isNegative(Integer const& integer) {
    auto const* const number = std::get_if<std::int64_t>(&integer);
    return number != nullptr && *number < 0;
}

Readable<std::uint64_t> readUnsigned(OctetString const& octets) {
    auto const begin = std::find_if(octets.begin(), octets.end(), [](auto o) { return o != 0; });
    if (octets.empty() || static_cast<std::size_t>(octets.end() - begin) > kMaxOctets) {
        return octets;
    }
    return join(begin, octets.end(), 0);
}

}  // namespace TalIec61850Tools
