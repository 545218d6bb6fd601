#include <TalIec61850Analysis/traffic/AttributeTable.hpp>
#include <TalIec61850Analysis/traffic/JoinFiles.hpp>
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <optional>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

void addCounts(std::map<std::uint16_t, std::uint64_t>& first,
               std::map<std::uint16_t, std::uint64_t> const& second) {
    for (auto const& [number, count] : second) {
        first[number] += count;
    }
}

template <typename Value>
void appendAll(std::vector<Value>& first, std::vector<Value>&& second) {
    first.insert(first.end(), std::make_move_iterator(second.begin()),
                 std::make_move_iterator(second.end()));
}

}  // namespace

void joinSummaries(CaptureSummary& first, CaptureSummary second) {
    constexpr std::size_t kMostDamages = 100;
    first.fileSize = second.fileSize;
    first.interfaces = std::move(second.interfaces);
    first.records += second.records;
    first.capturedOctets += second.capturedOctets;
    first.originalOctets += second.originalOctets;
    if (second.first) {
        first.first = std::min(first.first.value_or(*second.first), *second.first);
    }
    first.last = std::max(first.last, second.last);
    first.snappedFrames += second.snappedFrames;
    if (second.dropped) {
        first.dropped = first.dropped.value_or(0) + *second.dropped;
    }
    first.gooseFrames += second.gooseFrames;
    first.svFrames += second.svFrames;
    first.unknownTrailers += second.unknownTrailers;
    addCounts(first.otherFrames, second.otherFrames);
    first.routableGooseFrames += second.routableGooseFrames;
    first.routableSvFrames += second.routableSvFrames;
    first.mmsFrames += second.mmsFrames;
    first.recognisedIpv6Frames += second.recognisedIpv6Frames;
    addCounts(first.linkTypes, second.linkTypes);
    appendAll(first.unread, std::move(second.unread));
    first.damage = second.damage;
    appendAll(first.damages, std::move(second.damages));
    first.damages.resize(std::min(first.damages.size(), kMostDamages));
    first.damageCount += second.damageCount;
    first.error = second.error;
    first.stopped = second.stopped;
}

std::vector<std::uint32_t> joinAttributes(std::vector<StreamAttributes>& first,
                                          std::vector<StreamAttributes> const& second) {
    AttributeTable table;
    for (StreamAttributes const& each : first) {
        static_cast<void>(table.numberOf(each));
    }
    std::vector<std::uint32_t> numbers;
    numbers.reserve(second.size());
    for (StreamAttributes const& each : second) {
        numbers.push_back(table.numberOf(each));
    }
    first = table.take();
    return numbers;
}

}  // namespace TalIec61850Analysis::detail
