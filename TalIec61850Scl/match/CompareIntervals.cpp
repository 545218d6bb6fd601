#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Scl/match/CompareIntervals.hpp>
#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace TalIec61850Scl::detail {

namespace {

using TalIec61850Analysis::PacketRef;
using TalIec61850Analysis::StreamPart;

/// Files that are closer go on without a hole, in nanoseconds.
constexpr std::int64_t kSeam = 1'000'000;
/// How far beyond MaxTime is no difference: both.
constexpr std::int64_t kLateness = 1'000'000;
constexpr std::int64_t kPartLate = 10;

/// From the first to the last record, in nanoseconds since 1970.
using CapturedTime = std::pair<std::int64_t, std::int64_t>;

/// When files that have the stream were captured, in the order of time, without overlaps.
std::vector<CapturedTime> capturedTimes(DescribedStream const& described) {
    std::vector<CapturedTime> files;
    for (StreamPart const& part : described.stream.parts) {
        auto const& summary = described.index.files()[part.file].summary;
        if (summary.first && summary.last) {
            files.emplace_back(summary.first->time_since_epoch().count(),
                               summary.last->time_since_epoch().count());
        }
    }
    std::sort(files.begin(), files.end());
    std::vector<CapturedTime> times;
    for (CapturedTime const& file : files) {
        if (times.empty() || file.first - times.back().second > kSeam) {
            times.push_back(file);
        } else {
            times.back().second = std::max(times.back().second, file.second);
        }
    }
    return times;
}

/// Until when files go on that follow each other without a hole, whatever streams they have.
std::int64_t followedUntil(DescribedStream const& described, std::int64_t end) {
    std::vector<CapturedTime> files;
    for (auto const& file : described.index.files()) {
        if (file.summary.first && file.summary.last) {
            files.emplace_back(file.summary.first->time_since_epoch().count(),
                               file.summary.last->time_since_epoch().count());
        }
    }
    std::sort(files.begin(), files.end());
    for (CapturedTime const& file : files) {
        if (file.first >= end && file.first - end <= kSeam) {
            end = file.second;
        }
    }
    return end;
}

bool isTooLong(std::int64_t interval, std::int64_t maxTime) {
    std::int64_t const late = interval - maxTime;
    return late > maxTime / kPartLate && late > kLateness;
}

}  // namespace

void compareIntervals(DescribedStream const& described, DifferenceSet& differences) {
    auto const maxTime = described.block.address.maxTime;
    bool const isCompared = described.isGoose() && maxTime && *maxTime > 0;
    if (!isCompared) {
        return;
    }
    auto const captured = capturedTimes(described);
    auto around = captured.begin();
    std::optional<std::int64_t> last;
    std::int64_t longest = 0;
    PacketRef after;
    PacketRef lastPacket;
    described.stream.visit({}, [&](PacketRef const& packet) {
        auto const& packets = described.stream.parts[packet.part].packets;
        if (packets.flags()[packet.packet].isCopy()) {
            return;
        }
        std::int64_t const time = packets.times()[packet.packet];
        while (around != captured.end() && around->second < time) {
            ++around;
        }
        bool const isCaptured = last && around != captured.end() && around->first <= *last;
        if (isCaptured && time - *last > longest) {
            longest = time - *last;
            after = packet;
        }
        last = time;
        lastPacket = packet;
    });
    // A publisher that fell silent.
    bool const isCaptured = last && around != captured.end() && around->first <= *last;
    if (isCaptured) {
        std::int64_t const silence = followedUntil(described, around->second) - *last;
        if (silence > longest) {
            longest = silence;
            after = lastPacket;
        }
    }
    if (isTooLong(longest, *maxTime)) {
        differences.add({.kind = DifferenceKind::maxTime,
                         .expected = *maxTime,
                         .found = longest,
                         .member = {},
                         .packet = after});
    }
}

}  // namespace TalIec61850Scl::detail
