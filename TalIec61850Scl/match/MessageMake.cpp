#include <TalIec61850Analysis/packet/DataKind.hpp>
#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Scl/match/MessageMake.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

namespace TalIec61850Scl::detail {

namespace {

using TalIec61850Analysis::DataKind;
using TalIec61850Analysis::Elements;
using TalIec61850Analysis::ElementView;
using TalIec61850Analysis::kindOf;
using TalIec61850Analysis::kMaxDataDepth;
using TalIec61850Analysis::Octets;

/// One nesting level of both messages.
struct BothLevels {
    Elements::Iterator one;
    Elements::Iterator other;
};

bool isGroup(ElementView const& element) {
    DataKind const kind = element.tag ? kindOf(*element.tag) : DataKind::unreadable;
    return kind == DataKind::structure || kind == DataKind::array;
}

/// How much of a number only repeats its sign, so that it has room in fewer octets.
struct SignPart {
    std::uint8_t octet = 0;
    std::size_t octets = 0;
    bool isNextBitSet = false;

    friend bool operator==(SignPart const&, SignPart const&) = default;
};

/// @param number  not empty
SignPart signPartOf(Octets number) {
    constexpr std::uint8_t kNegative = 0xFF;
    constexpr std::uint8_t kHighBit = 0x80;
    std::uint8_t const first = number.front();
    SignPart part;
    if (first == 0 || first == kNegative) {
        auto const next = std::ranges::find_if(number, [&](auto octet) { return octet != first; });
        part.octet = first;
        part.octets = static_cast<std::size_t>(next - number.begin());
    }
    part.isNextBitSet = part.octets < number.size() && (number[part.octets] & kHighBit) != 0;
    return part;
}

/// Whether a type has room for both numbers or for none. All have room for one octet.
/// @param other  of the same size
bool isSameRange(Octets one, Octets other) {
    return one.size() < 2 || signPartOf(one) == signPartOf(other);
}

/// Of two values of one kind, that are not structures or arrays. The first octet of a bit string
/// counts bits, that of a floating-point number tells its format.
bool isSameWidth(DataKind kind, Octets one, Octets other) {
    if (one.size() != other.size()) {
        return false;
    }
    switch (kind) {
        case DataKind::bitString:
        case DataKind::floatingPoint:
            return one.empty() || one.front() == other.front();
        case DataKind::integer:
        case DataKind::unsignedNumber:
            return isSameRange(one, other);
        default:
            return true;
    }
}

bool isSameType(ElementView const& one, ElementView const& other) {
    return one.tag == other.tag && one.fault == other.fault &&
           (isGroup(one) || (one.tag && isSameWidth(kindOf(*one.tag), one.octets, other.octets)));
}

}  // namespace

bool isSameMake(Octets allData, Octets other) {
    if (std::ranges::equal(allData, other)) {
        return true;
    }
    std::vector<BothLevels> levels;
    levels.push_back({.one = Elements(allData).begin(), .other = Elements(other).begin()});
    while (!levels.empty()) {
        BothLevels& level = levels.back();
        bool const isOver = level.one == std::default_sentinel;
        if (isOver != (level.other == std::default_sentinel)) {
            return false;
        }
        if (isOver) {
            levels.pop_back();
            continue;
        }
        ElementView const one = *level.one++;
        ElementView const two = *level.other++;
        if (!isSameType(one, two)) {
            return false;
        }
        if (isGroup(one) && levels.size() < kMaxDataDepth) {
            levels.push_back({.one = one.members().begin(), .other = two.members().begin()});
        }
    }
    return true;
}

}  // namespace TalIec61850Scl::detail
