#include <TalIec61850Analysis/samples/FindRate.hpp>
#include <TalIec61850Analysis/samples/PacketCourse.hpp>
#include <TalIec61850Analysis/samples/SampleCounter.hpp>
#include <TalIec61850Analysis/supervision/ClockSteps.hpp>
#include <TalIec61850Analysis/traffic/MessageOrder.hpp>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace TalIec61850Analysis::detail {

namespace {

/// A jump ahead may be a pause, a jump back a frame out of order.
constexpr std::int64_t kLeastAhead = 10'000'000;
constexpr std::int64_t kLeastBack = 1'000'000;
constexpr double kPauseIntervals = 10;
/// Intervals that are longer are taken for this: nanoseconds.
constexpr double kLongestInterval = 1e18;

/// Packets of one stream in one file.
struct WitnessPart {
    std::size_t stream = 0;
    std::uint32_t number = 0;
    StreamPart const* part = nullptr;
};

/// How a stream counts in one file. Its rate is looked for when it is asked for: few files need it.
class PartCount {
public:
    PartCount(TrafficIndex const& index, WitnessPart const& part) : index_(&index), of_(part) {}

    /// Whether smpCnt begins again after this one: by the rate, where that is known; otherwise
    /// after the largest one there is.
    [[nodiscard]] bool isLast(std::uint32_t smpCnt) {
        FoundRate const& found = rate();
        std::uint64_t const count = std::uint64_t{smpCnt} + 1;
        if (count == found.wrap) {
            return true;
        }
        // A rate that is measured is right to 1 %; one that is exceeded has changed.
        bool const mayBeOther = !found.rate.isKnown() || count > found.wrap ||
                                (found.source == RateSource::arrival && !isFarBelow(count));
        return mayBeOther && smpCnt == largest();
    }

    /// Whether arrival says that whole wraps of the counter were lost between two packets.
    [[nodiscard]] bool areWrapsLost(std::size_t before, std::size_t after) {
        PacketColumns const& packets = of_.part->packets;
        SampleCounter counter(rate().countRule());
        static_cast<void>(counter.add(packets.smpCnts()[before], packets.times()[before]));
        std::int64_t const newest = counter.newest();
        return counter.add(packets.smpCnts()[after], packets.times()[after]) == CountStep::next &&
               counter.newest() > newest + 1;
    }

private:
    [[nodiscard]] FoundRate const& rate() {
        if (!rate_) {
            TrafficStream const& stream = index_->streams()[of_.stream];
            std::vector<bool> areWanted(stream.parts.size(), false);
            areWanted[of_.number] = true;
            rate_ = findRate(*index_, stream, PacketCourse(stream, areWanted), {});
        }
        return *rate_;
    }
    [[nodiscard]] std::uint32_t largest() {
        if (!largest_) {
            auto const smpCnts = of_.part->packets.smpCnts();
            largest_ = *std::max_element(smpCnts.begin(), smpCnts.end());
        }
        return *largest_;
    }
    [[nodiscard]] bool isFarBelow(std::uint64_t count) {
        return count * 100 < std::uint64_t{rate().wrap} * 99;
    }

    TrafficIndex const* index_;
    WitnessPart of_;
    std::optional<FoundRate> rate_;
    std::optional<std::uint32_t> largest_;
};

/// A place where the time of one stream jumps, and its counter does not.
struct Jump {
    WitnessPart of;
    /// By which part it is told, in their order.
    std::size_t witness = 0;
    std::uint32_t before = 0;
    std::uint32_t after = 0;
    std::uint64_t offsetBefore = 0;
    std::uint64_t offsetAfter = 0;
    std::int64_t step = 0;
    /// Between frames of the stream; what steps are right to.
    std::int64_t interval = 0;
};

bool isNoCopy(PacketFlags flags) { return !flags.isCopy() && !flags.isDuplicate(); }

/// The time from one frame to the next, about: over some packets on one side of a place; not set
/// where none tell.
/// @param step  1 to look at the packets from `start` on, -1 at those up to it
std::optional<double> frameInterval(PacketColumns const& packets, std::size_t start, int step) {
    constexpr int kFrames = 16;
    auto place = static_cast<std::ptrdiff_t>(start);
    auto const size = static_cast<std::ptrdiff_t>(packets.size());
    std::uint64_t offset = packets.frameOffsets()[start];
    std::int64_t time = packets.times()[start];
    int frames = 0;
    for (; place >= 0 && place < size && frames < kFrames; place += step) {
        auto const at = static_cast<std::size_t>(place);
        if (isNoCopy(packets.flags()[at]) && packets.frameOffsets()[at] != offset) {
            offset = packets.frameOffsets()[at];
            time = packets.times()[at];
            ++frames;
        }
    }
    if (frames == 0 || time == kNoTime || packets.times()[start] == kNoTime) {
        return std::nullopt;
    }
    return static_cast<double>(std::abs(time - packets.times()[start])) / frames;
}

/// Whether smpCnt goes on by one, by a clock that went on or was set back.
/// @param away  in nanoseconds: below 0, the clock was set, wherever smpCnt begins again
bool isNextCount(std::uint32_t before, std::uint32_t after, std::int64_t away, PartCount& count) {
    return after == before + 1 || (after == 0 && before > 0 && (away < 0 || count.isLast(before)));
}

void addSvJump(WitnessPart const& part, std::size_t witness, std::size_t before, std::size_t after,
               std::vector<Jump>& jumps) {
    PacketColumns const& packets = part.part->packets;
    std::int64_t const away = packets.times()[after] - packets.times()[before];
    auto const intervalAfter = frameInterval(packets, after, 1);
    double const interval = frameInterval(packets, before, -1).value_or(intervalAfter.value_or(0));
    if (away > 0) {
        // Frames that were held up come close together after it.
        bool const isHeldUp = intervalAfter && *intervalAfter < interval / 2;
        if (interval <= 0 || isHeldUp || static_cast<double>(away) < kPauseIntervals * interval) {
            return;
        }
    }
    // Differences of two steps are numbers still.
    constexpr std::int64_t kMost = 4'000'000'000'000'000'000;
    auto const whole = static_cast<std::int64_t>(std::min(interval, kLongestInterval));
    jumps.push_back({.of = part,
                     .witness = witness,
                     .before = static_cast<std::uint32_t>(before),
                     .after = static_cast<std::uint32_t>(after),
                     .offsetBefore = packets.frameOffsets()[before],
                     .offsetAfter = packets.frameOffsets()[after],
                     .step = std::clamp(away, -kMost + whole, kMost) - whole,
                     .interval = whole});
}

/// @param count  of the part, where it is one of SV
void findJumps(WitnessPart const& part, std::size_t witness, PartCount* count,
               std::vector<Jump>& jumps) {
    bool const isSv = count != nullptr;
    PacketColumns const& packets = part.part->packets;
    auto const times = packets.times();
    auto const flags = packets.flags();
    std::size_t const size = packets.size();
    std::size_t before = size;
    // Times all over the place are no steps of a clock.
    constexpr std::size_t kMostJumps = 1000;
    for (std::size_t i = 0; i < size && jumps.size() < kMostJumps; ++i) {
        if (!isNoCopy(flags[i]) || times[i] == kNoTime) {
            continue;
        }
        if (before != size) {
            std::int64_t const away = times[i] - times[before];
            if (away < -kLeastBack || (isSv && away > kLeastAhead)) [[unlikely]] {
                if (!isSv) {
                    jumps.push_back({.of = part,
                                     .witness = witness,
                                     .before = static_cast<std::uint32_t>(before),
                                     .after = static_cast<std::uint32_t>(i),
                                     .offsetBefore = packets.frameOffsets()[before],
                                     .offsetAfter = packets.frameOffsets()[i],
                                     .step = away,
                                     .interval = 0});
                } else if (isNextCount(packets.smpCnts()[before], packets.smpCnts()[i], away,
                                       *count)) {
                    addSvJump(part, witness, before, i, jumps);
                }
            }
        }
        before = i;
    }
}

/// Whether a stream that nobody else speaks for may as well have lost whole wraps of its counter.
bool mayBeLoss(Jump const& jump, PartCount& count) {
    // In seconds where the counter never began again.
    constexpr double kSecond = 1e9;
    constexpr double kTolerance = 50e6;
    if (jump.step < 0) {
        return false;
    }
    double const seconds = std::round(static_cast<double>(jump.step) / kSecond);
    bool const isWhole =
        seconds >= 1 && std::abs(static_cast<double>(jump.step) - seconds * kSecond) < kTolerance;
    return isWhole || count.areWrapsLost(jump.before, jump.after);
}

/// The parts of one file that tell of its clock, and the jumps of each.
struct Witnesses {
    std::vector<WitnessPart> parts;
    std::vector<std::vector<Jump>> jumps;
    /// Of SV alone.
    std::vector<PartCount> counts;
};

/// Takes a jump for a step where all other streams that were there have it too; where none was, one
/// of SV may be a loss.
std::optional<ClockStep> stepAt(Jump const& jump, Witnesses& witnesses) {
    constexpr std::int64_t kTolerance = 2'000'000;
    std::uint64_t last = jump.offsetBefore;
    Jump const* first = &jump;
    bool isAlone = true;
    for (std::size_t i = 0; i < witnesses.parts.size(); ++i) {
        WitnessPart const& part = witnesses.parts[i];
        auto const offsets = part.part->packets.frameOffsets();
        bool const wasThere = offsets.front() < jump.offsetAfter;
        bool const isThere = offsets.back() > jump.offsetBefore;
        if (part.part == jump.of.part || !wasThere || !isThere) {
            continue;
        }
        isAlone = false;
        auto const& own = witnesses.jumps[i];
        auto const same = std::partition_point(own.begin(), own.end(), [&](Jump const& other) {
            return other.offsetAfter <= jump.offsetBefore;
        });
        bool const isSame = same != own.end() && same->offsetBefore < jump.offsetAfter &&
                            std::abs(same->step - jump.step) <=
                                kTolerance + std::max(same->interval, jump.interval);
        if (!isSame) {
            return std::nullopt;
        }
        last = std::max(last, same->offsetBefore);
        if (same->offsetAfter < first->offsetAfter) {
            first = &*same;
        }
    }
    if (isAlone && !witnesses.counts.empty() && mayBeLoss(jump, witnesses.counts[jump.witness])) {
        return std::nullopt;
    }
    return ClockStep{.fileOffset = last,
                     .step = jump.step,
                     .stream = first->of.stream,
                     .after = {first->of.number, first->after},
                     .before = {first->of.number, first->before}};
}

/// Whether messages of a GOOSE stream are missing there: then time has passed.
bool lacksMessages(StreamPart const& part, Jump const& jump) {
    PacketColumns const& packets = part.packets;
    auto const offsets = packets.frameOffsets();
    auto const place = std::upper_bound(offsets.begin(), offsets.end(), jump.offsetBefore);
    if (jump.step < 0 || place == offsets.begin() || place == offsets.end()) {
        return false;
    }
    auto const after = static_cast<std::size_t>(place - offsets.begin());
    bool const isSameState = packets.stNums()[after - 1] == packets.stNums()[after];
    auto const counts = isSameState ? packets.sqNums() : packets.stNums();
    return isLater(counts[after], counts[after - 1]) &&
           stepsBetween(counts[after - 1], counts[after]) > 1;
}

std::vector<ClockStep> stepsOf(TrafficIndex const& index, std::vector<WitnessPart> const& svParts,
                               std::vector<WitnessPart> const& gooseParts) {
    bool const isSv = !svParts.empty();
    Witnesses witnesses{.parts = isSv ? svParts : gooseParts, .jumps = {}, .counts = {}};
    for (WitnessPart const& part : svParts) {
        witnesses.counts.emplace_back(index, part);
    }
    std::vector<Jump> jumps;
    for (std::size_t i = 0; i < witnesses.parts.size(); ++i) {
        auto& own = witnesses.jumps.emplace_back();
        findJumps(witnesses.parts[i], i, isSv ? &witnesses.counts[i] : nullptr, own);
        jumps.insert(jumps.end(), own.begin(), own.end());
    }
    if (jumps.empty()) {
        return {};
    }
    if (!isSv) {
        // Slow streams need not have a jump each.
        witnesses = {};
    }
    std::stable_sort(jumps.begin(), jumps.end(),
                     [](Jump const& a, Jump const& b) { return a.offsetAfter < b.offsetAfter; });
    std::vector<ClockStep> steps;
    for (Jump const& jump : jumps) {
        bool const isKnown = !steps.empty() && steps.back().fileOffset >= jump.offsetBefore;
        if (isKnown) {
            continue;
        }
        bool const isLoss =
            isSv && std::any_of(gooseParts.begin(), gooseParts.end(), [&](WitnessPart const& part) {
                return lacksMessages(*part.part, jump);
            });
        if (isLoss) {
            continue;
        }
        if (auto const step = stepAt(jump, witnesses)) {
            steps.push_back(*step);
        }
    }
    return steps;
}

}  // namespace

std::vector<std::vector<ClockStep>> findClockSteps(TrafficIndex const& index) {
    std::size_t const files = index.files().size();
    std::vector<std::vector<WitnessPart>> svParts(files);
    std::vector<std::vector<WitnessPart>> gooseParts(files);
    for (std::size_t stream = 0; stream < index.streams().size(); ++stream) {
        TrafficStream const& of = index.streams()[stream];
        bool const isSv = of.key.protocol == StreamProtocol::sv;
        for (std::uint32_t number = 0; number < of.parts.size(); ++number) {
            StreamPart const& part = of.parts[number];
            (isSv ? svParts : gooseParts)[part.file].push_back({stream, number, &part});
        }
    }
    std::vector<std::vector<ClockStep>> steps;
    for (std::size_t file = 0; file < files; ++file) {
        steps.push_back(stepsOf(index, svParts[file], gooseParts[file]));
    }
    return steps;
}

}  // namespace TalIec61850Analysis::detail
