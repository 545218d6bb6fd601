#include <TalIec61850Analysis/packet/RedundancyFit.hpp>
#include <TalIec61850Analysis/redundancy/CopyPairer.hpp>
#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

/// As long as a receiver remembers what it has.
constexpr std::int64_t kPairTime = 400'000'000;
/// A way over which nothing came for longer is not one of the source.
constexpr std::int64_t kHeardTime = 1'000'000'000;

/// Of two times that are not below 0.
bool isWithin(std::int64_t a, std::int64_t b, std::int64_t most) {
    return a > b ? a - b <= most : b - a <= most;
}

std::int64_t arrivalIn(TrafficIndex const& index, std::size_t stream, PacketRef packet) {
    return index.streams()[stream].parts[packet.part].packets.times()[packet.packet];
}

/// A stream's packet in a copy; null where the copy has none.
FramePacket const* packetIn(FrameCopy const& copy, std::size_t stream) {
    auto const found = std::lower_bound(
        copy.packets.begin(), copy.packets.end(), stream,
        [](FramePacket const& packet, std::size_t wanted) { return packet.stream < wanted; });
    return found == copy.packets.end() || found->stream != stream ? nullptr : &*found;
}

}  // namespace

CopyPairer::CopyPairer(TrafficIndex const& index, RedundantSources const& sources,
                       std::span<TapClock const> clocks, TimeWindow const& window)
    : index_(index),
      sources_(sources),
      clocks_(clocks),
      window_(window),
      watched_(index, sources, clocks),
      frames_(index),
      runs_(index.streams().size()),
      heard_(sources.sources().size(), {kNoTime, kNoTime}),
      last_(index.streams().size()),
      tallyOf_(index.streams().size(), RedundantSources::kNone),
      sourceTallies_(sources.sources().size()) {
    for (std::size_t stream = 0; stream < index.streams().size(); ++stream) {
        if (sources.isRedundant(stream)) {
            tallyOf_[stream] = static_cast<std::uint32_t>(tallies_.size());
            tallies_.emplace_back();
        }
    }
}

void CopyPairer::add(CourseFrame const& frame, RedundancyFaultSink sink) {
    std::int64_t const now = shiftedTime(frame.time, -clocks_[frame.file].offset);
    settleOld(now, sink);
    if (frame.flags.isTrailerMisfit()) {
        takeMisfit(frame, now, sink);
    } else {
        std::size_t const way = wayOf(frame.flags);
        auto const key = copyKeyOf(frame.source, frame.flags.redundancy(), frame.sequence);
        CopyGroup& group = groupOf(frame, key, now, sink);
        if (group.copies.empty()) {
            std::int64_t const heard = heard_[frame.source].at(1 - way);
            group.isOtherHeard = heard != kNoTime && isWithin(heard, now, kHeardTime);
            for (FramePacket const& packet : frame.packets) {
                group.before.push_back(last_[packet.stream]);
            }
        }
        ++group.count;
        if (group.copies.size() < CopyGroup::kMostKept) {
            FrameCopy& copy = group.copies.emplace_back();
            copy.way = way;
            copy.tap = clocks_[frame.file].tap;
            copy.file = frame.file;
            copy.time = frame.time;
            copy.packets = frame.packets;
            if (sources_.sources()[frame.source].isOverBoth()) {
                copy.content = FrameContent(frames_.at(frame.file, frame.frameOffset),
                                            frame.flags.redundancy());
            }
        }
        heard_[frame.source].at(way) = now;
        for (FramePacket const& packet : frame.packets) {
            runs_.end(RedundancyFaultKind::trailerInvalid, letterOfWay(way), packet.stream, sink);
        }
    }
    for (FramePacket const& packet : frame.packets) {
        last_[packet.stream] = packet.packet;
    }
}

/// Groups whose first copy is too far away for any more, be it that the clock was set back.
void CopyPairer::settleOld(std::int64_t now, RedundancyFaultSink sink) {
    while (!opened_.empty() && !isWithin(opened_.front().time, now, kPairTime)) {
        Opened const first = opened_.front();
        opened_.pop_front();
        auto const found = groups_.find(first.key);
        if (found != groups_.end() && found->second.number == first.number) {
            judge(found->second, sink);
            groups_.erase(found);
        }
    }
}

CopyGroup& CopyPairer::groupOf(CourseFrame const& frame, CopyKey key, std::int64_t now,
                               RedundancyFaultSink sink) {
    auto [at, isNew] = groups_.try_emplace(key);
    if (!isNew && !isWithin(at->second.opened, now, kPairTime)) {
        judge(at->second, sink);
        at->second = CopyGroup();
        isNew = true;
    }
    CopyGroup& group = at->second;
    if (isNew) {
        group.key = key;
        group.source = frame.source;
        group.redundancy =
            frame.flags.isTrailerMisfit() ? Redundancy::prp : frame.flags.redundancy();
        group.number = nextNumber_++;
        group.opened = now;
        opened_.push_back({.key = key, .number = group.number, .time = now});
    }
    return group;
}

/// It may be the copy of a frame that came over the other LAN, or not.
void CopyPairer::takeMisfit(CourseFrame const& frame, std::int64_t now, RedundancyFaultSink sink) {
    if (!sources_.sources()[frame.source].hasTrailers()) {
        return;
    }
    auto const key = copyKeyOf(frame.source, Redundancy::prp, frame.sequence);
    groupOf(frame, key, now, sink).hasMisfit.at(wayOf(frame.flags)) = true;
    for (FramePacket const& packet : frame.packets) {
        reportMisfit(frame, packet);
    }
}

void CopyPairer::reportMisfit(CourseFrame const& frame, FramePacket const& packet) {
    char const lane = frame.flags.claimedLane();
    RedundancyFault fault;
    fault.kind = RedundancyFaultKind::trailerInvalid;
    fault.stream = packet.stream;
    fault.packet = packet.packet;
    fault.other = last_[packet.stream];
    fault.from = frame.time;
    fault.until = frame.time;
    fault.lane = lane;
    // Of those one after the other, the first is looked at.
    if (!runs_.isOpen(fault.kind, lane, packet.stream)) {
        RecordView const& view = frames_.at(frame.file, frame.frameOffset);
        FrameHeader const header = readFrameStart(view.frame, view.record.linkType);
        if (auto const trailer = misfitTrailer(view.frame, pduEndOf(view.frame, header))) {
            std::size_t end = view.frame.size();
            while (end > 0 && view.frame[end - 1] == 0) {
                --end;
            }
            std::size_t const start = lsduOffsetOf(header, view.record.linkType);
            fault.fittingSize = static_cast<std::uint32_t>(end - std::min(start, end));
            fault.claimedSize = trailer->lsduSize;
        }
    }
    runs_.add(fault);
}

JudgedFrame CopyPairer::judgedOf(CopyGroup const& group) const {
    RedundantSources::Source const& source = sources_.sources()[group.source];
    std::size_t const a = group.countOver(kWayA);
    std::size_t const b = group.countOver(kWayB);
    bool const isPrp = group.redundancy == Redundancy::prp;
    std::size_t const way = a > 0 ? kWayA : kWayB;
    std::size_t const other = 1 - way;
    bool const isOneWay = a == 0 || b == 0;
    std::size_t const ofWay = std::max(a, b);

    JudgedFrame judged;
    judged.redundancy = group.redundancy;
    std::int64_t const first = group.copies.front().time;
    judged.isCounted = window_.contains(captureTimeOf(first));
    bool const isTwice = isPrp && isOneWay && ofWay == 2 && !group.hasMisfit.at(other) &&
                         source.prpFrames[kWayA] > 1 && source.prpFrames[kWayB] > 1;
    if (isTwice) {
        judged.outcome = CopyOutcome::wrongLan;
    } else if (a == 1 && b == 1 && group.count <= CopyGroup::kMostKept) {
        judged.outcome = CopyOutcome::both;
        setDifference(group, judged);
    } else if (isOneWay && ofWay == 1) {
        judged.outcome = way == kWayA ? CopyOutcome::onlyA : CopyOutcome::onlyB;
    } else {
        judged.outcome = CopyOutcome::more;
    }
    bool const mayBeWrong = isPrp && ofWay > 1;
    if (isOneWay && !mayBeWrong && !group.hasMisfit.at(other) && group.isOtherHeard &&
        watched_.isWatched(group.source, other, group.opened)) {
        judged.missing = other;
    }
    judged.differs =
        std::any_of(group.copies.begin() + 1, group.copies.end(), [&](FrameCopy const& copy) {
            return copy.content.differsFrom(group.copies.front().content);
        });
    return judged;
}

/// @pre one copy over each way, at each tap at most
void CopyPairer::setDifference(CopyGroup const& group, JudgedFrame& judged) const {
    auto const findOver = [&](std::size_t way, std::optional<std::uint32_t> tap) {
        return std::find_if(group.copies.begin(), group.copies.end(), [&](FrameCopy const& copy) {
            return copy.way == way && (!tap || copy.tap == *tap);
        });
    };
    auto a = findOver(kWayA, std::nullopt);
    auto b = findOver(kWayB, std::nullopt);
    for (FrameCopy const& copy : group.copies) {
        auto const ofTapA = findOver(kWayA, copy.tap);
        auto const ofTapB = findOver(kWayB, copy.tap);
        if (ofTapA != group.copies.end() && ofTapB != group.copies.end()) {
            a = ofTapA;
            b = ofTapB;
            break;
        }
    }
    judged.difference = b->time - a->time;
    judged.firstWay =
        judged.difference != 0 ? (judged.difference > 0 ? kWayA : kWayB) : (a < b ? kWayA : kWayB);
    TapClock const& clockA = clocks_[a->file];
    TapClock const& clockB = clocks_[b->file];
    if (clockA.way && clockB.way && clockA.way != clockB.way) {
        judged.clockOffset = clockB.offset - clockA.offset;
    }
}

void CopyPairer::judge(CopyGroup const& group, RedundancyFaultSink sink) {
    if (group.copies.empty()) {
        return;  // of a trailer that does not fit
    }
    JudgedFrame const judged = judgedOf(group);
    sourceTallies_[group.source].add(judged);
    // Copies of other octets may be of other streams.
    std::vector<std::uint32_t> streams;
    for (FrameCopy const& copy : group.copies) {
        for (FramePacket const& packet : copy.packets) {
            streams.push_back(packet.stream);
        }
    }
    std::sort(streams.begin(), streams.end());
    streams.erase(std::unique(streams.begin(), streams.end()), streams.end());
    for (std::uint32_t const stream : streams) {
        if (tallyOf_[stream] != RedundantSources::kNone) {
            tallies_[tallyOf_[stream]].add(judged);
        }
        if (!judged.isFaultless() || runs_.isAnyOpen(stream)) {
            reportFaults(group, judged, stream, sink);
        }
    }
}

void CopyPairer::reportFaults(CopyGroup const& group, JudgedFrame const& judged, std::size_t stream,
                              RedundancyFaultSink sink) {
    using enum RedundancyFaultKind;
    // Its copies; where copies are of several streams, the others are those of another stream.
    std::vector<FrameCopy const*> own;
    for (FrameCopy const& copy : group.copies) {
        if (packetIn(copy, stream) != nullptr) {
            own.push_back(&copy);
        }
    }
    auto const settle = [&](RedundancyFaultKind kind, char lane, FrameCopy const* at,
                            std::optional<PacketRef> other) {
        if (at == nullptr) {
            runs_.end(kind, lane, stream, sink);
            return;
        }
        RedundancyFault fault;
        fault.kind = kind;
        fault.stream = stream;
        fault.packet = packetIn(*at, stream)->packet;
        fault.other = other;
        fault.from = arrivalIn(index_, stream, fault.packet);
        fault.until = fault.from;
        fault.lane = lane;
        runs_.add(fault);
    };
    std::optional<PacketRef> const first = packetIn(*own.front(), stream)->packet;
    for (std::size_t const way : {kWayA, kWayB}) {
        char const lane = letterOfWay(way);
        auto const before =
            static_cast<std::size_t>(packetIn(*own.front(), stream) - own.front()->packets.data());
        bool const hasBefore = own.front() == group.copies.data();
        settle(copyMissing, lane, judged.missing == way ? own.front() : nullptr,
               hasBefore ? group.before[before] : std::nullopt);

        // The second of one way at one tap.
        FrameCopy const* extra = nullptr;
        FrameCopy const* twin = nullptr;
        for (std::size_t i = 0; i < own.size() && extra == nullptr; ++i) {
            for (std::size_t j = 0; j < i && own[i]->way == way && extra == nullptr; ++j) {
                if (own[j]->way == way && own[j]->tap == own[i]->tap) {
                    extra = own[i];
                    twin = own[j];
                }
            }
        }
        bool const isExtra = judged.outcome == CopyOutcome::more && extra != nullptr;
        auto const twinPacket =
            twin != nullptr ? std::optional(packetIn(*twin, stream)->packet) : std::nullopt;
        settle(copyExtra, lane, isExtra ? extra : nullptr, twinPacket);
        bool const isWrong = judged.outcome == CopyOutcome::wrongLan && own.front()->way == way;
        settle(wrongLan, lane, isWrong ? own.back() : nullptr, first);
    }
    FrameCopy const* different = nullptr;
    if (judged.differs) {
        auto const found = std::find_if(own.begin(), own.end(), [&](FrameCopy const* copy) {
            return copy->content.differsFrom(group.copies.front().content);
        });
        // Of another stream than the first copy, or the first copy of another stream.
        different = found != own.end() ? *found : own.front();
    }
    bool const isFirst = different == own.front();
    settle(copyDiffers, different != nullptr ? letterOfWay(different->way) : 'A', different,
           isFirst ? std::nullopt : first);
}

void CopyPairer::finish(RedundancyFaultSink sink) {
    while (!opened_.empty()) {
        Opened const first = opened_.front();
        opened_.pop_front();
        auto const found = groups_.find(first.key);
        if (found != groups_.end() && found->second.number == first.number) {
            judge(found->second, sink);
            groups_.erase(found);
        }
    }
    runs_.endAll(sink);
}

TrafficRedundancy CopyPairer::result() {
    TrafficRedundancy result;
    for (std::size_t stream = 0; stream < tallyOf_.size(); ++stream) {
        if (tallyOf_[stream] != RedundantSources::kNone) {
            result.streams.push_back(
                {.stream = stream, .counts = tallies_[tallyOf_[stream]].result()});
        }
    }
    for (std::size_t source = 0; source < sourceTallies_.size(); ++source) {
        RedundantSources::Source const& of = sources_.sources()[source];
        if (of.isRedundant()) {
            result.sources.push_back(
                {.source = of.address, .counts = sourceTallies_[source].result()});
        }
    }
    return result;
}

}  // namespace TalIec61850Analysis::detail
