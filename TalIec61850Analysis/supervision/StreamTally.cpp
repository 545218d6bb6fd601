#include <TalIec61850Analysis/supervision/SeenMessages.hpp>
#include <TalIec61850Analysis/supervision/StreamTally.hpp>
#include <TalIec61850Analysis/supervision/SynchLevel.hpp>
#include <algorithm>
#include <limits>

namespace TalIec61850Analysis::detail {

namespace {

bool isOriginal(PacketFlags flags) { return !flags.isCopy() && !flags.isDuplicate(); }

/// Sets the earliest and the latest time of what was published.
void setSpan(StreamSummary& summary, StreamPart const& part) {
    PacketColumns const& packets = part.packets;
    std::size_t first = 0;
    std::size_t end = packets.timedSize();
    auto const isOriginalAt = [&](std::size_t place) {
        return isOriginal(packets.flags()[packets.inTimeOrder(place)]);
    };
    while (first < end && !isOriginalAt(first)) {
        ++first;
    }
    while (end > first && !isOriginalAt(end - 1)) {
        --end;
    }
    if (first == end) {
        return;
    }
    std::int64_t const earliest = packets.times()[packets.inTimeOrder(first)];
    std::int64_t const latest = packets.times()[packets.inTimeOrder(end - 1)];
    summary.first = summary.first == kNoTime ? earliest : std::min(summary.first, earliest);
    summary.last = summary.last == kNoTime ? latest : std::max(summary.last, latest);
}

bool saysSimulated(StreamAttributes const& attributes) {
    auto const* const element = valueIn(attributes.simulation);
    return attributes.simulatedBit || (element != nullptr && *element);
}

/// The time between two instants, which may be any, or nothing.
std::optional<std::int64_t> timeBetween(std::int64_t from, std::int64_t until) {
    if (from == kNoTime || until == kNoTime || until < from) {
        return std::nullopt;
    }
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    std::uint64_t const length =
        static_cast<std::uint64_t>(until) - static_cast<std::uint64_t>(from);
    return static_cast<std::int64_t>(std::min(length, kMost));
}

}  // namespace

StreamTally::StreamTally(TrafficIndex const& index, std::size_t stream) {
    TrafficStream const& of = index.streams()[stream];
    summary_.stream = stream;
    summary_.packets = of.packets;
    summary_.nominalRate = index.nominalRate(of);
    for (StreamPart const& part : of.parts) {
        setSpan(summary_, part);
        for (AttributeChange const& change : part.changes) {
            summary_.isSimulated =
                summary_.isSimulated || saysSimulated(index.attributes(part, change));
        }
    }
}

void StreamTally::add(Finding const& finding) {
    switch (finding.kind) {
        case FindingKind::sampleGap:
        case FindingKind::sqNumGap:
        case FindingKind::stateGap:
        case FindingKind::stateStartMissing:
            addLoss(finding);
            break;
        case FindingKind::late:
            summary_.late += finding.count;
            break;
        case FindingKind::repeated:
        case FindingKind::replay:
            summary_.repeated += finding.count;
            break;
        case FindingKind::counterRestart:
            summary_.restarts += finding.count;
            break;
        default:
            break;
    }
}

void StreamTally::addLoss(Finding const& finding) {
    summary_.lost += finding.lost;
    if (!finding.before || !finding.place) {
        return;
    }
    auto const length = timeBetween(finding.before->time, finding.place->time);
    if (!length || *length < longestLoss_) {
        return;
    }
    bool const isSameHole = *length == longestLoss_ && lossEnd_ == finding.place;
    if (*length > longestLoss_) {
        summary_.largestGapLost = 0;
    }
    if (*length > longestLoss_ || isSameHole) {
        summary_.largestGapLost += finding.lost;
        longestLoss_ = *length;
        lossEnd_ = finding.place;
    }
}

void StreamTally::addArrivals(std::span<std::int64_t const> arrivals) {
    for (std::int64_t const arrival : arrivals) {
        if (auto const length = timeBetween(arrival_, arrival)) {
            addPause(*length);
        }
        arrival_ = arrival;
    }
}

void StreamTally::addSynch(std::uint8_t smpSynch) {
    auto& lowest = summary_.lowestSynch;
    if (!lowest || synchLevelOf(smpSynch) < synchLevelOf(*lowest)) {
        lowest = smpSynch;
    }
    summary_.lastSynch = smpSynch;
}

void StreamTally::addJitter(Histogram const& distances) {
    if (distances.count() == 0) {
        return;
    }
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    summary_.jitter = {.median = distances.percentile(50),
                       .percentile99 = distances.percentile(99),
                       .largest = static_cast<std::int64_t>(std::min(distances.largest(), kMost))};
}

void StreamTally::addMessage(GooseObservation const& message,
                             std::optional<std::int64_t> timeAllowedtoLive) {
    if (auto const length = timeBetween(arrival_, message.arrival)) {
        addPause(*length);
        auto const pause = static_cast<double>(*length);
        auto& margin = summary_.timeAllowedtoLiveMargin;
        bool const isLess = pause > 0 && (!margin || life_ < *margin * pause);
        if (isLess && life_ > 0 && message.isCounted && message.stNum == stNum_ &&
            stepsBetween(sqNum_, message.sqNum) == 1) {
            margin = life_ / pause;
        }
    }
    constexpr double kNanoseconds = 1e6;
    arrival_ = message.arrival;
    stNum_ = message.stNum;
    sqNum_ = message.sqNum;
    life_ = message.isCounted && timeAllowedtoLive
                ? static_cast<double>(*timeAllowedtoLive) * kNanoseconds
                : 0;
}

StreamSummary StreamTally::summary() const {
    StreamSummary summary = summary_;
    if (longestPause_ > longestLoss_) {
        summary.largestGap = longestPause_;
        summary.largestGapLost = 0;
    } else if (longestLoss_ >= 0) {
        summary.largestGap = longestLoss_;
    }
    return summary;
}

}  // namespace TalIec61850Analysis::detail
