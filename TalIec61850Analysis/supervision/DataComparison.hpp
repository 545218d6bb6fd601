#pragma once

// Internal: what differs between the data of two GOOSE messages.

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/packet/Sink.hpp>
#include <cstdint>
#include <vector>

namespace TalIec61850Analysis::detail {

/// A quality, a BIT STRING of 13, that leaves good or is good again.
struct QualityChange {
    /// By index, outermost first.
    std::vector<std::uint32_t> member;
    /// 13 bits, the first of them the highest; 0 is good.
    std::uint16_t before = 0;
    std::uint16_t now = 0;
};

/// Takes changes without a list of them.
using QualityChangeSink = Sink<QualityChange>;

struct DataComparison {
    /// Whether number, nesting and types of the members are the same.
    bool isSameMake = true;
    /// Whether anything but time stamps differs.
    bool isChanged = false;
};

/// Compares two values of allData, octet by octet but for time stamps.
/// @param sink  called with each quality that leaves good, or is good again, where the make is the
///              same
[[nodiscard]] DataComparison compareData(Octets before, Octets now, QualityChangeSink sink);

/// How many members allData has, those inside others not counted.
[[nodiscard]] std::uint64_t countMembers(Octets data);

}  // namespace TalIec61850Analysis::detail
