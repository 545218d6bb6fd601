#include <TalIec61850Analysis/supervision/CaptureFindings.hpp>
#include <TalIec61850Analysis/supervision/FindingJoiner.hpp>
#include <TalIec61850Analysis/supervision/FindingValues.hpp>
#include <algorithm>
#include <chrono>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

std::int64_t timeOrNone(std::optional<CaptureTime> const& time) {
    return time ? time->time_since_epoch().count() : kNoTime;
}

Finding findingAt(FindingKind kind, std::uint32_t file, std::uint64_t fileOffset,
                  std::int64_t time) {
    Finding finding;
    finding.kind = kind;
    finding.from = time;
    finding.until = time;
    finding.place = {.file = file, .fileOffset = fileOffset, .packet = {}, .time = time};
    return finding;
}

/// The packet of a stream that came first; nothing where none has a time.
std::optional<PacketRef> firstPacketOf(TrafficStream const& stream) {
    std::optional<PacketRef> first;
    std::int64_t earliest = 0;
    for (std::uint32_t part = 0; part < stream.parts.size(); ++part) {
        PacketColumns const& packets = stream.parts[part].packets;
        if (packets.timedSize() == 0) {
            continue;
        }
        std::size_t const packet = packets.inTimeOrder(0);
        if (!first || packets.times()[packet] < earliest) {
            first = PacketRef{.part = part, .packet = static_cast<std::uint32_t>(packet)};
            earliest = packets.times()[packet];
        }
    }
    return first;
}

void moveFindings(FindingJoiner& joiner, std::vector<Finding>& findings) {
    auto joined = joiner.take();
    std::move(joined.begin(), joined.end(), std::back_inserter(findings));
}

/// Frames that cannot be read: those of one reason that go on within a minute are one finding.
void addUnreadable(std::uint32_t file, std::vector<UnreadFrame> const& frames,
                   std::vector<Finding>& findings) {
    constexpr std::int64_t kPause = 60'000'000'000;
    /// Findings by their numbers.
    std::map<std::pair<StreamProtocol, UnreadReason>, std::size_t> lasting;
    for (UnreadFrame const& frame : frames) {
        std::int64_t const time = timeOrNone(frame.time);
        auto const [known, isFirst] =
            lasting.try_emplace({frame.protocol, frame.reason}, findings.size());
        if (!isFirst) {
            Finding& before = findings[known->second];
            bool const goesOn = time == kNoTime || before.until == kNoTime ||
                                time <= before.until || time - before.until <= kPause;
            if (goesOn) {
                ++before.count;
                before.until = std::max(before.until, time);
                continue;
            }
            known->second = findings.size();
        }
        Finding finding = findingAt(FindingKind::unreadable, file, frame.frameOffset, time);
        finding.protocol = frame.protocol;
        finding.reason = frame.reason;
        findings.push_back(std::move(finding));
    }
}

/// The time that the gaps of several streams share.
struct SharedGap {
    explicit SharedGap(Finding const& gap) : finding(gap), from(gap.before->time), until(gap.from) {
        streams.insert(*gap.stream);
        isWitnessed = gap.witness == LossWitness::otherStreamsLost;
        finding.kind = FindingKind::captureGap;
        finding.protocol.reset();
        finding.stream.reset();
        finding.expected = {};
        finding.found = {};
    }

    void join(Finding const& gap) {
        streams.insert(*gap.stream);
        isWitnessed = isWitnessed || gap.witness == LossWitness::otherStreamsLost;
        finding.lost += gap.lost;
        finding.witnessFrames = std::max(finding.witnessFrames, gap.witnessFrames);
        if (gap.before->time >= from) {
            from = gap.before->time;
            finding.before = gap.before;
        }
        if (gap.from < until) {
            until = gap.from;
            finding.from = gap.from;
            finding.until = gap.from;
            finding.place = gap.place;
        }
    }

    /// Whether it is more than some streams of many.
    [[nodiscard]] bool isOfAll() const {
        constexpr std::size_t kFewestStreams = 3;
        return isWitnessed || streams.size() >= kFewestStreams;
    }

    Finding finding;
    std::int64_t from = 0;
    std::int64_t until = 0;
    std::set<std::size_t> streams;
    /// Whether other streams are known to have lost too.
    bool isWitnessed = false;
};

/// Whether any packet came between two times.
bool isAnyBetween(TrafficIndex const& index, std::int64_t from, std::int64_t until) {
    TimeWindow const window{.from = CaptureTime(std::chrono::nanoseconds(from + 1)),
                            .to = CaptureTime(std::chrono::nanoseconds(until - 1))};
    return std::any_of(
        index.streams().begin(), index.streams().end(), [&](TrafficStream const& stream) {
            return std::any_of(stream.parts.begin(), stream.parts.end(),
                               [&](StreamPart const& part) {
                                   auto const [first, end] = part.packets.placesIn(window);
                                   return first < end;
                               });
        });
}

/// A stream, and its first packet.
struct Owner {
    std::size_t stream = 0;
    std::int64_t time = 0;
    PacketRef packet;
};

/// Two streams of one name.
Finding sharedName(TrafficIndex const& index, Owner const& first, Owner const& second) {
    StreamKey const& key = index.streams()[second.stream].key;
    FindingPlace const place = placeOf(index, second.stream, second.packet);
    Finding finding =
        findingAt(FindingKind::twoPublishers, place.file, place.fileOffset, place.time);
    finding.protocol = key.protocol;
    finding.stream = second.stream;
    finding.place = place;
    finding.before = placeOf(index, first.stream, first.packet);
    auto const octetsOf = [&](std::size_t stream) {
        MacAddress const& source = *index.streams()[stream].key.source;
        return OctetString(source.begin(), source.end());
    };
    finding.expected = octetsOf(first.stream);
    finding.found = octetsOf(second.stream);
    return finding;
}

}  // namespace

FindingPlace placeOf(TrafficIndex const& index, std::size_t stream, PacketRef packet) {
    StreamPart const& part = index.streams()[stream].parts[packet.part];
    PacketColumns const& packets = part.packets;
    return {
        .file = part.file,
        .fileOffset = packets.frameOffsets()[packet.packet] + packets.pduOffsets()[packet.packet],
        .packet = packet,
        .time = packets.times()[packet.packet]};
}

void addCaptureGaps(TrafficIndex const& index, std::vector<Finding>& findings) {
    std::vector<Finding const*> gaps;
    for (Finding const& finding : findings) {
        bool const isOfCapture = finding.witness == LossWitness::otherStreamsLost ||
                                 finding.witness == LossWitness::dropCounts;
        if (isOfCapture && finding.count == 1 && finding.stream && finding.place &&
            finding.before) {
            gaps.push_back(&finding);
        }
    }
    std::sort(gaps.begin(), gaps.end(), [](Finding const* a, Finding const* b) {
        return std::tie(a->before->time, a->stream) < std::tie(b->before->time, b->stream);
    });
    std::vector<SharedGap> spans;
    for (Finding const* gap : gaps) {
        if (spans.empty() || gap->before->time >= spans.back().until) {
            spans.emplace_back(*gap);
        } else {
            spans.back().join(*gap);
        }
    }
    for (SharedGap& span : spans) {
        if (span.isOfAll() && !isAnyBetween(index, span.from, span.until)) {
            findings.push_back(std::move(span.finding));
        }
    }
}

void addClockSteps(TrafficIndex const& index, std::vector<std::vector<ClockStep>> const& steps,
                   std::vector<Finding>& findings) {
    FindingJoiner joiner;
    for (auto const& ofFile : steps) {
        for (ClockStep const& step : ofFile) {
            FindingPlace const place = placeOf(index, step.stream, step.after);
            FindingPlace const before = placeOf(index, step.stream, step.before);
            Finding finding =
                findingAt(FindingKind::clockStep, place.file, place.fileOffset, place.time);
            finding.place = place;
            finding.before = before;
            finding.found = numberOf(step.step);
            joiner.add(std::move(finding));
        }
    }
    moveFindings(joiner, findings);
}

void addDrops(std::vector<CaptureDrop> const& drops, std::vector<Finding>& findings) {
    FindingJoiner joiner;
    for (CaptureDrop const& drop : drops) {
        Finding finding =
            findingAt(FindingKind::captureDropped, drop.file, drop.fileOffset, drop.until);
        finding.lost = drop.count;
        finding.cause = LossCause::capture;
        finding.witness = LossWitness::dropCounts;
        finding.witnessFrames = drop.count;
        joiner.add(std::move(finding));
    }
    moveFindings(joiner, findings);
}

void addUnread(TrafficIndex const& index, std::vector<Finding>& findings) {
    for (std::uint32_t file = 0; file < index.files().size(); ++file) {
        CaptureSummary const& summary = index.files()[file].summary;
        if (summary.snappedFrames > 0) {
            Finding finding =
                findingAt(FindingKind::recordsCut, file, 0, timeOrNone(summary.first));
            finding.until = timeOrNone(summary.last);
            finding.count = summary.snappedFrames;
            findings.push_back(std::move(finding));
        }
        if (auto const& damage = summary.damage;
            damage && (damage->kind == CaptureDamageKind::recordCut ||
                       damage->kind == CaptureDamageKind::recordHeaderCut ||
                       damage->kind == CaptureDamageKind::fileShrank)) {
            Finding finding = findingAt(FindingKind::fileEndsInRecord, file, damage->fileOffset,
                                        timeOrNone(summary.last));
            finding.expected = numberOf(static_cast<std::int64_t>(damage->claimedSize));
            finding.found =
                numberOf(static_cast<std::int64_t>(damage->claimedSize - damage->missingSize));
            findings.push_back(std::move(finding));
        }
        addUnreadable(file, summary.unread, findings);
    }
}

void addSharedNames(TrafficIndex const& index, std::vector<Finding>& findings) {
    std::vector<Owner> streams;
    for (std::size_t stream = 0; stream < index.streams().size(); ++stream) {
        TrafficStream const& of = index.streams()[stream];
        if (auto const first = firstPacketOf(of); first && of.key.source) {
            streams.push_back({.stream = stream,
                               .time = of.parts[first->part].packets.times()[first->packet],
                               .packet = *first});
        }
    }
    std::stable_sort(streams.begin(), streams.end(),
                     [](Owner const& a, Owner const& b) { return a.time < b.time; });
    std::map<std::pair<StreamProtocol, std::string_view>, std::vector<Owner>> owners;
    for (Owner const& each : streams) {
        StreamKey const& key = index.streams()[each.stream].key;
        auto& known = owners[{key.protocol, key.name}];
        bool const isKnown = std::any_of(known.begin(), known.end(), [&](Owner const& owner) {
            return index.streams()[owner.stream].key.source == key.source;
        });
        if (isKnown) {
            continue;
        }
        if (!known.empty()) {
            findings.push_back(sharedName(index, known.front(), each));
        }
        known.push_back(each);
    }
}

}  // namespace TalIec61850Analysis::detail
