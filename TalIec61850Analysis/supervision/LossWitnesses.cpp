#include <TalIec61850Analysis/supervision/LossWitnesses.hpp>
#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <TalIec61850Analysis/traffic/MessageOrder.hpp>
#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace TalIec61850Analysis::detail {

namespace {

/// Packets of a stream in a hole that are looked at.
constexpr std::size_t kMostLookedAt = 4096;
/// Frames of other streams that say that the capture was on.
constexpr std::uint64_t kFewestFrames = 3;
constexpr std::size_t kFewestStreams = 2;
/// Intervals without a packet that are no jitter.
constexpr std::int64_t kPause = 10;

bool isOriginalPacket(PacketFlags flags) { return !flags.isCopy() && !flags.isDuplicate(); }

/// The place in the order of time of the original packet next to one; the size where there is none.
std::size_t nextOriginal(PacketColumns const& packets, std::size_t place) {
    std::size_t const size = packets.timedSize();
    while (place < size && !isOriginalPacket(packets.flags()[packets.inTimeOrder(place)])) {
        ++place;
    }
    return place;
}
std::optional<std::size_t> originalBefore(PacketColumns const& packets, std::size_t place) {
    while (place > 0) {
        --place;
        if (isOriginalPacket(packets.flags()[packets.inTimeOrder(place)])) {
            return place;
        }
    }
    return std::nullopt;
}

/// How the counters of a packet follow those of another.
enum class Follows : std::uint8_t { next, past, other };

Follows followsOf(PacketColumns const& before, std::size_t first, PacketColumns const& after,
                  std::size_t second) {
    if (before.protocol() == StreamProtocol::sv) {
        constexpr std::uint32_t kMostBehind = 16;
        std::uint32_t const was = before.smpCnts()[first];
        std::uint32_t const is = after.smpCnts()[second];
        if (is == was + 1 || (is == 0 && was > 0)) {
            return Follows::next;
        }
        // It may have begun again.
        return is > was || was - is > kMostBehind ? Follows::past : Follows::other;
    }
    MessageNumber const was{before.stNums()[first], before.sqNums()[first]};
    MessageNumber const is{after.stNums()[second], after.sqNums()[second]};
    if (!isLater(is, was)) {
        return Follows::other;
    }
    bool const isNext = was.stNum == is.stNum
                            ? stepsBetween(was.sqNum, is.sqNum) == 1
                            : stepsBetween(was.stNum, is.stNum) == 1 && is.sqNum <= 1;
    return isNext ? Follows::next : Follows::past;
}

/// The time from one frame to the next before a place, in nanoseconds; 0 where none tells.
std::int64_t intervalBefore(PacketColumns const& packets, std::size_t place) {
    constexpr int kFrames = 8;
    std::size_t const last = packets.inTimeOrder(place);
    // The intervals of GOOSE grow up to twice the one before.
    int const wanted = packets.protocol() == StreamProtocol::sv ? kFrames : 1;
    std::uint64_t offset = packets.frameOffsets()[last];
    std::int64_t time = packets.times()[last];
    int frames = 0;
    std::size_t looked = 0;
    for (auto before = originalBefore(packets, place);
         before && frames < wanted && looked < kMostLookedAt;
         before = originalBefore(packets, *before), ++looked) {
        std::size_t const packet = packets.inTimeOrder(*before);
        if (packets.frameOffsets()[packet] != offset) {
            offset = packets.frameOffsets()[packet];
            time = packets.times()[packet];
            ++frames;
        }
    }
    std::int64_t const interval = frames == 0 ? 0 : (packets.times()[last] - time) / frames;
    return packets.protocol() == StreamProtocol::sv ? interval : shiftedTime(interval, interval);
}

/// Whether the time since the packet before is many intervals: whole wraps of smpCnt are not seen
/// in it.
bool isPauseOf(PacketColumns const& packets, std::int64_t interval, std::int64_t since) {
    return packets.protocol() == StreamProtocol::sv && interval > 0 && since / kPause > interval;
}

/// Whether a finding is of packets that are missing between two others.
bool isHole(Finding const& finding) {
    return finding.cause != LossCause::none && finding.place && finding.before &&
           finding.before->time != kNoTime && finding.until != kNoTime;
}

/// Times in which the interface of a file dropped packets, and what is missing then.
class DropSpans {
public:
    /// @param drop  in the order of time; others are passed over
    void add(CaptureDrop const& drop) {
        bool const isAfter = spans_.empty() || spans_.back().drop.until <= drop.from;
        if (drop.from != kNoTime && drop.from <= drop.until && isAfter) {
            spans_.push_back({.drop = drop});
        }
    }

    /// Counts what is missing in each of the times, and keeps what may be due to one of them.
    void take(Finding& finding) {
        std::int64_t const from = finding.before->time;
        auto const first =
            std::partition_point(spans_.begin(), spans_.end(),
                                 [&](Span const& span) { return span.drop.until <= from; });
        auto const end = std::partition_point(
            first, spans_.end(), [&](Span const& span) { return span.drop.from < finding.until; });
        bool const mayBeDropped =
            finding.cause == LossCause::unknown || finding.witness == LossWitness::otherStreamsLost;
        if (first == end || !mayBeDropped) {
            return;
        }
        first->begins += finding.lost;
        (end - 1)->ends += finding.lost;
        bool const isInside = first->drop.from <= from && finding.until <= first->drop.until;
        if (isInside && finding.cause == LossCause::unknown && finding.count == 1) {
            holes_.push_back(
                {.span = static_cast<std::size_t>(first - spans_.begin()), .finding = &finding});
        }
    }

    void judge() {
        std::vector<std::uint64_t> missing;
        std::uint64_t now = 0;
        for (Span const& span : spans_) {
            now += span.begins;
            missing.push_back(now);
            now -= span.ends;
        }
        for (Hole const& hole : holes_) {
            std::uint64_t const dropped = spans_[hole.span].drop.count;
            if (missing[hole.span] <= dropped) {
                hole.finding->cause = LossCause::capture;
                hole.finding->witness = LossWitness::dropCounts;
                hole.finding->witnessFrames = dropped;
            }
        }
    }

private:
    struct Span {
        CaptureDrop drop;
        /// What is missing since this one, and up to it.
        std::uint64_t begins = 0;
        std::uint64_t ends = 0;
    };
    struct Hole {
        std::size_t span = 0;
        Finding* finding = nullptr;
    };

    /// One after the other.
    std::vector<Span> spans_;
    std::vector<Hole> holes_;
};

}  // namespace

bool LossWitnesses::Hole::isIn(std::uint32_t file) const {
    return std::find(files.begin(), files.end(), file) != files.end();
}

std::optional<std::vector<std::uint32_t>> LossWitnesses::filesOf(FindingPlace const& before,
                                                                 FindingPlace const& after) const {
    if (before.file == after.file) {
        return std::vector{before.file};
    }
    std::vector<std::uint32_t> files{before.file};
    for (std::uint32_t file = 0; file < index_.files().size(); ++file) {
        CaptureSummary const& summary = index_.files()[file].summary;
        bool const isOther = file != before.file && file != after.file;
        if (isOther && summary.first && summary.last &&
            summary.first->time_since_epoch().count() > before.time &&
            summary.last->time_since_epoch().count() < after.time) {
            files.push_back(file);
        }
    }
    if (files.size() == 1) {
        files.push_back(after.file);
        return files;
    }
    std::sort(files.begin() + 1, files.end(), [&](std::uint32_t a, std::uint32_t b) {
        return *index_.files()[a].summary.first < *index_.files()[b].summary.first;
    });
    files.push_back(after.file);
    // Files that overlap may be of another tap.
    for (std::size_t i = 1; i < files.size(); ++i) {
        auto const& last = index_.files()[files[i - 1]].summary.last;
        auto const& first = index_.files()[files[i]].summary.first;
        if (!last || !first || *first < *last) {
            return std::nullopt;
        }
    }
    return files;
}

/// Goes over what a stream did in a hole, file by file.
class LossWitnesses::Look {
public:
    explicit Look(Hole const& hole) : hole_(hole) {}

    /// The next file.
    void goOver(PacketColumns const& packets) {
        std::size_t place = nextOriginal(packets, packets.placesIn(window_).first);
        if (auto const last = originalBefore(packets, place)) {
            before_ = Before{&packets, packets.inTimeOrder(*last)};
            interval_ = intervalBefore(packets, *last);
        }
        for (; place < packets.timedSize() && !isOver_ && looked_ < kMostLookedAt; ++looked_) {
            std::size_t const packet = packets.inTimeOrder(place);
            isOver_ = packets.times()[packet] >= hole_.until;
            if (before_) {
                compare(*before_, packets, packet);
            }
            before_ = Before{&packets, packet};
            place = nextOriginal(packets, place + 1);
        }
    }

    /// What it did in all of them.
    [[nodiscard]] Meanwhile result() const {
        Meanwhile meanwhile = meanwhile_;
        bool const isThere = isOver_ || looked_ == kMostLookedAt;
        meanwhile.isDue = isThere && interval_ > 0 && interval_ < (hole_.until - hole_.from) / 2;
        return meanwhile;
    }

private:
    /// The original packet before.
    struct Before {
        PacketColumns const* packets = nullptr;
        std::size_t packet = 0;
    };

    void compare(Before const& before, PacketColumns const& packets, std::size_t packet) {
        std::int64_t const time = packets.times()[packet];
        std::int64_t const since = time - before.packets->times()[before.packet];
        bool const isPause =
            isPauseOf(packets, interval_, since) && since > (hole_.until - hole_.from) / 2;
        Follows const follows =
            isPause ? Follows::past : followsOf(*before.packets, before.packet, packets, packet);
        bool const isOtherFrame =
            before.packets != &packets ||
            packets.frameOffsets()[packet] != packets.frameOffsets()[before.packet];
        bool const isNext = !isOver_ && follows == Follows::next && isOtherFrame;
        bool const isInLoss = time >= hole_.firstLost && time <= hole_.lastLost;
        meanwhile_.inSequence += isNext ? 1U : 0U;
        meanwhile_.inLoss += isNext && isInLoss ? 1U : 0U;
        meanwhile_.hasLost = meanwhile_.hasLost || follows == Follows::past;
    }

    Hole const& hole_;
    TimeWindow window_ = {.from = captureTimeOf(hole_.from + 1), .to = {}};
    Meanwhile meanwhile_;
    std::optional<Before> before_;
    std::int64_t interval_ = 0;
    bool isOver_ = false;
    std::size_t looked_ = 0;
};

LossWitnesses::Meanwhile LossWitnesses::lookAt(std::size_t stream, Hole const& hole) const {
    Look look(hole);
    for (StreamPart const* const part : partsOf(stream, hole)) {
        look.goOver(part->packets);
    }
    return look.result();
}

/// What the files of a hole have of a stream, in their order of time.
std::vector<StreamPart const*> LossWitnesses::partsOf(std::size_t stream, Hole const& hole) const {
    std::vector<StreamPart const*> parts;
    for (std::uint32_t const file : hole.files) {
        for (StreamPart const& part : index_.streams()[stream].parts) {
            if (part.file == file) {
                parts.push_back(&part);
            }
        }
    }
    return parts;
}

std::uint64_t LossWitnesses::dropsIn(Hole const& hole) const {
    bool const isAnyOfSeveral = std::any_of(
        hole.files.begin(), hole.files.end(),
        [&](std::uint32_t file) { return index_.files()[file].summary.interfaces.size() > 1; });
    if (isAnyOfSeveral) {
        return 0;
    }
    std::uint64_t count = 0;
    for (auto drop = std::lower_bound(
             drops_.begin(), drops_.end(), hole.from + 1,
             [](CaptureDrop const&a, std::int64_t time) { return a.until < time; });
         drop != drops_.end() && drop->until <= hole.until; ++drop) {
        count += hole.isIn(drop->file) && drop->isExact ? drop->count : 0;
    }
    return count;
}

std::optional<std::uint64_t> LossWitnesses::missingNumbers(Finding const& finding, Hole const& hole,
                                                           std::uint64_t& seen) const {
    TrafficStream const& stream = index_.streams()[hole.stream];
    auto const& source = stream.key.source;
    PacketRef const before = finding.before->packet;
    PacketRef const after = finding.place->packet;
    PacketColumns const& first = stream.parts[before.part].packets;
    PacketColumns const& last = stream.parts[after.part].packets;
    auto const kind = first.flags()[before.packet].redundancy();
    if (!source || kind == Redundancy::none || last.flags()[after.packet].redundancy() != kind) {
        return std::nullopt;
    }
    std::uint16_t const start = first.redundancySequences()[before.packet];
    auto const width = static_cast<std::uint16_t>(last.redundancySequences()[after.packet] - start);
    if (width == 0) {
        return std::nullopt;
    }
    // Numbers of all that the source sent meanwhile, as far as it is GOOSE or SV.
    std::set<std::uint16_t> numbers;
    TimeWindow const window{.from = CaptureTime(std::chrono::nanoseconds(hole.from)),
                            .to = CaptureTime(std::chrono::nanoseconds(hole.until))};
    for (TrafficStream const& other : index_.streams()) {
        if (other.key.source != source) {
            continue;
        }
        for (StreamPart const& part : other.parts) {
            if (!hole.isIn(part.file)) {
                continue;
            }
            auto const [begin, end] = part.packets.placesIn(window);
            if (end - begin > kMostLookedAt) {
                return std::nullopt;
            }
            for (std::size_t place = begin; place < end; ++place) {
                std::size_t const packet = part.packets.inTimeOrder(place);
                auto const away =
                    static_cast<std::uint16_t>(part.packets.redundancySequences()[packet] - start);
                PacketFlags const flags = part.packets.flags()[packet];
                bool const isNumbered = flags.redundancy() == kind ||
                                        (kind == Redundancy::prp && flags.isTrailerMisfit());
                if (isNumbered && away > 0 && away < width) {
                    numbers.insert(away);
                }
            }
        }
    }
    seen = numbers.size();
    return std::uint64_t{width} - 1 - numbers.size();
}

LossWitnesses::Others LossWitnesses::lookAtOthers(Hole const& hole) const {
    Others others;
    auto const sourceOf = [&](std::size_t stream) -> auto const& {
        return index_.streams()[stream].key.source;
    };
    for (std::size_t stream = 0; stream < index_.streams().size(); ++stream) {
        if (stream == hole.stream) {
            continue;
        }
        Meanwhile const meanwhile = lookAt(stream, hole);
        others.due += meanwhile.isDue ? 1U : 0U;
        others.lost += meanwhile.isDue && meanwhile.hasLost ? 1U : 0U;
        others.inSequence += meanwhile.inSequence;
        others.ranOn += meanwhile.hasLost ? 0 : meanwhile.inLoss;
        if (sourceOf(stream) != sourceOf(hole.stream)) {
            others.inSequenceOfOtherSources += meanwhile.inSequence;
        }
    }
    return others;
}

/// How many ASDUs of a stream the frame of a packet has.
std::uint64_t LossWitnesses::samplesInFrame(std::size_t stream, PacketRef packet) const {
    PacketColumns const& packets = index_.streams()[stream].parts[packet.part].packets;
    if (packets.protocol() != StreamProtocol::sv) {
        return 1;
    }
    auto const offsets = packets.frameOffsets();
    auto const [first, end] =
        std::equal_range(offsets.begin(), offsets.end(), offsets[packet.packet]);
    return std::max<std::uint64_t>(1, static_cast<std::uint64_t>(end - first));
}

LossWitnesses::Hole LossWitnesses::holeOf(Finding const& finding,
                                          std::vector<std::uint32_t> files) const {
    Hole hole{.stream = *finding.stream,
              .from = finding.before->time,
              .until = finding.place->time,
              .files = std::move(files)};
    std::uint64_t const inFrame = samplesInFrame(*finding.stream, finding.before->packet);
    hole.lost = std::max<std::uint64_t>(1, (finding.lost + inFrame - 1) / inFrame);
    std::int64_t const width = hole.until - hole.from;
    bool const isMore = hole.lost >= static_cast<std::uint64_t>(width);
    std::int64_t const interval = isMore ? 0 : width / (static_cast<std::int64_t>(hole.lost) + 1);
    hole.firstLost = hole.from + interval;
    hole.lastLost = hole.until - interval;
    return hole;
}

void LossWitnesses::judge(Finding& finding) const {
    finding.cause = LossCause::unknown;
    if (!finding.stream || !finding.place || !finding.before || finding.place->time == kNoTime ||
        finding.before->time == kNoTime || finding.before->time >= finding.place->time) {
        return;
    }
    auto files = filesOf(*finding.before, *finding.place);
    if (!files) {
        return;
    }
    Hole const hole = holeOf(finding, std::move(*files));
    auto const settle = [&](LossCause cause, LossWitness witness, std::uint64_t frames) {
        finding.cause = cause;
        finding.witness = witness;
        finding.witnessFrames = frames;
    };
    std::uint64_t seen = 0;
    auto const missing = missingNumbers(finding, hole, seen);
    if (missing && *missing == 0) {
        settle(LossCause::publisher, LossWitness::redundancyRanOn, seen + 2);
        return;
    }
    if (std::uint64_t const drops = dropsIn(hole); drops >= hole.lost) {
        settle(LossCause::capture, LossWitness::dropCounts, drops);
        return;
    }
    Others const others = lookAtOthers(hole);
    if (others.due >= kFewestStreams && others.lost == others.due && others.ranOn < kFewestFrames) {
        settle(LossCause::capture, LossWitness::otherStreamsLost, others.lost);
    } else if (missing && *missing >= hole.lost && others.inSequenceOfOtherSources > 0) {
        settle(LossCause::network, LossWitness::redundancyGap, *missing);
    } else if (others.inSequence >= kFewestFrames) {
        settle(LossCause::network, LossWitness::otherStreamsRanOn, others.inSequence);
    }
}

bool haveStatistics(std::vector<CaptureDrop> const& drops) {
    return std::any_of(drops.begin(), drops.end(),
                       [](CaptureDrop const& drop) { return !drop.isExact; });
}

void judgeByStatistics(TrafficIndex const& index, std::vector<CaptureDrop> const& drops,
                       std::vector<Finding>& findings) {
    std::map<std::uint32_t, DropSpans> spans;
    for (CaptureDrop const& drop : drops) {
        // With several interfaces, nothing says which of them a stream came by.
        if (!drop.isExact && index.files()[drop.file].summary.interfaces.size() == 1) {
            spans[drop.file].add(drop);
        }
    }
    for (Finding& finding : findings) {
        if (isHole(finding) && finding.before->file == finding.place->file) {
            if (auto const ofFile = spans.find(finding.place->file); ofFile != spans.end()) {
                ofFile->second.take(finding);
            }
        }
    }
    for (auto& [file, ofFile] : spans) {
        ofFile.judge();
    }
}

}  // namespace TalIec61850Analysis::detail
