#include <TalIec61850Analysis/packet/DataKind.hpp>
#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Scl/match/MessageMake.hpp>
#include <algorithm>
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

/// Whether the first octet and the size say what a value is, not what it holds: that of a bit
/// string counts bits, that of a floating-point number tells its format.
bool hasWidth(ElementView const& element) {
    DataKind const kind = element.tag ? kindOf(*element.tag) : DataKind::unreadable;
    return kind == DataKind::bitString || kind == DataKind::floatingPoint;
}

bool isSameWidth(Octets one, Octets other) {
    return one.size() == other.size() && (one.empty() || one.front() == other.front());
}

bool isSameType(ElementView const& one, ElementView const& other) {
    return one.tag == other.tag && one.fault == other.fault &&
           (!hasWidth(one) || isSameWidth(one.octets, other.octets));
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
