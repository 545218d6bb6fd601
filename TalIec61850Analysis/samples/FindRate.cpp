#include <TalIec61850Analysis/samples/FindRate.hpp>
#include <TalIec61850Analysis/samples/PartAttributes.hpp>
#include <TalIec61850Analysis/samples/SampleSteps.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <variant>
#include <vector>

namespace TalIec61850Analysis::detail {

namespace {

constexpr double kNsPerSecond = 1e9;
/// Two rates within this are the same: 1 %.
constexpr double kSameRate = 0.01;
/// By arrival alone, a rate is another beyond this: standard ones are further apart.
constexpr double kOtherRate = 0.04;
/// The rates that IEC 61850-9-2LE and IEC 61869-9 name, and such as are met.
constexpr std::array<std::uint32_t, 7> kStandardRates = {4000,  4800,  5760, 12800,
                                                         14400, 15360, 96000};

bool isNear(double a, double b, double tolerance) { return std::abs(a - b) <= tolerance * b; }

/// The standard rate near a measured one, or 0.
std::uint32_t standardNear(double measured) {
    auto const* const found =
        std::find_if(kStandardRates.begin(), kStandardRates.end(),
                     [&](std::uint32_t rate) { return isNear(rate, measured, kSameRate); });
    return found == kStandardRates.end() ? 0 : *found;
}

/// What is declared of a rate.
struct Declared {
    // smpMod: the unit of smpRate.
    static constexpr std::uint64_t kPerPeriod = 0;
    static constexpr std::uint64_t kPerSecond = 1;
    static constexpr std::uint64_t kSecondsPerSample = 2;

    /// 0 for none.
    std::uint64_t rate = 0;
    std::uint64_t unit = kPerPeriod;

    explicit Declared(StreamAttributes const& attributes) {
        auto const* const smpRate = valueIn(attributes.smpRate);
        auto const* const smpMod = valueIn(attributes.smpMod);
        rate = smpRate != nullptr ? *smpRate : 0;
        unit = smpMod != nullptr ? *smpMod : kPerPeriod;
    }
    bool operator==(Declared const&) const = default;
};

FoundRate withRate(FoundRate found, std::uint32_t samples, std::uint32_t seconds,
                   RateSource source) {
    found.rate = {.samples = samples, .seconds = seconds};
    found.source = source;
    return found;
}

/// The largest smpCnt before 0 that were met, as many as there is room for.
class WrapsMet {
public:
    void add(std::uint32_t wrap, std::int64_t since) {
        auto const end = met_.begin() + size_;
        auto const known =
            std::find_if(met_.begin(), end, [&](Met const& met) { return met.wrap == wrap; });
        if (known != end) {
            known->since = std::min(known->since, since);
            ++known->times;
        } else if (size_ < static_cast<std::ptrdiff_t>(met_.size())) {
            *end = {.wrap = wrap, .since = since, .times = 1};
            ++size_;
        }
    }

    /// The largest near a rate that nothing was lost before; 0 where there is none.
    /// @param likely  a rate that is as good, or 0: it goes before a smaller one that was met once
    [[nodiscard]] std::uint32_t largestNear(double rate, double asdus, std::uint32_t likely) const {
        std::uint32_t largest = 0;
        std::uint32_t times = 0;
        for (auto met = met_.begin(); met != met_.begin() + size_; ++met) {
            bool const isWhole =
                static_cast<double>(met->since) * rate <= 1.5 * asdus * kNsPerSecond;
            if (isNear(met->wrap, rate, kSameRate) && isWhole && met->wrap > largest) {
                largest = met->wrap;
                times = met->times;
            }
        }
        return times == 1 && largest < likely && isNear(likely, rate, kSameRate) ? likely : largest;
    }

private:
    struct Met {
        std::uint32_t wrap = 0;
        std::int64_t since = 0;
        std::uint32_t times = 0;
    };

    std::array<Met, 32> met_{};
    std::ptrdiff_t size_ = 0;
};

/// Walks over packets while their rate is the same.
class RateWalk {
public:
    /// @param limit  how many packets are looked at; they are of one rate then
    RateWalk(TrafficIndex const& index, TrafficStream const& stream, PacketCourse const& course,
             std::optional<std::uint64_t> limit = std::nullopt)
        : limit_(limit),
          stream_(stream),
          attributes_(index, stream),
          course_(course),
          blockStart_{course, 0},
          agreeingStart_{course, 0} {
        first_.reserve(kFirstSteps);
    }

    void run();
    /// Whether arrival showed that another rate follows: what was counted is of both rates then.
    [[nodiscard]] bool isMixed() const { return isMixed_; }
    /// How many packets are of the rate.
    [[nodiscard]] std::uint64_t packets() const { return packets_; }
    [[nodiscard]] FoundRate result(SampleRate given) const;

private:
    /// A quarter of a second of packets, and some dozens at least: so another rate is seen within a
    /// second. What is left at the end may be half of that.
    static constexpr double kBlockTime = 0.25 * kNsPerSecond;
    static constexpr double kLastBlockTime = kBlockTime / 2;
    static constexpr std::uint32_t kBlockSteps = 32;
    /// Packets that are taken from the course at once: not more than a part of a block.
    static constexpr std::uint64_t kStrip = 512;
    /// Steps by which it is seen what is usual.
    static constexpr std::size_t kFirstSteps = 31;

    /// A place in the course, and how many packets are before it.
    struct Place {
        PacketCourse course;
        std::uint64_t packets = 0;
    };

    [[nodiscard]] bool declaresOther(PacketRef ref);
    void addStrip(PacketCourse::Strip const& strip);
    void addPacket(PacketRef ref);
    void closeFrame();
    void addStep(SampleSteps const& step, std::uint32_t count);
    void measure(SampleSteps const& step, std::uint32_t count);
    void settleFirst();
    [[nodiscard]] bool isBlock(double time) const {
        return blockSteps_ >= kBlockSteps && block_.time >= time;
    }
    /// @return whether the rate is another since some packet, which is the end then
    bool endBlock();
    [[nodiscard]] std::uint64_t findChange(double before, double after) const;
    [[nodiscard]] FoundRate find() const;
    [[nodiscard]] FoundRate byDeclared(FoundRate found, std::uint32_t shown) const;
    [[nodiscard]] static FoundRate byPeriods(FoundRate found, std::uint32_t rate,
                                             std::uint32_t shown);
    [[nodiscard]] static FoundRate byArrival(FoundRate found);
    [[nodiscard]] bool isFreeRunning(double rate) const { return largest_ + 1.0 > rate * 1.01; }

    std::optional<std::uint64_t> limit_;
    bool isMixed_ = false;
    TrafficStream const& stream_;
    PartAttributes attributes_;
    PacketCourse course_;
    std::optional<Declared> declared_;
    std::uint64_t packets_ = 0;
    std::uint32_t largest_ = 0;
    std::uint32_t asdus_ = 1;
    WrapsMet wraps_;
    /// The packet before, and the frame that it is of, as far as it is known.
    std::optional<CountedFrame> lastPacket_;
    PacketRef lastRef_;
    FrameSteps frames_;
    /// Nanoseconds from sample to sample, by the middle one of the first steps; 0 before that is
    /// known, while these are kept.
    double usual_ = 0;
    std::vector<SampleSteps> first_;
    /// Of all packets, and of the blocks that agree.
    SampleSteps all_;
    SampleSteps agreeing_;
    /// The block that is being filled.
    SampleSteps block_;
    std::uint32_t blockSteps_ = 0;
    Place blockStart_;
    /// Where the last block starts that agrees.
    Place agreeingStart_;
    /// The rate of the block before, where it does not agree.
    double odd_ = 0;
};

bool RateWalk::declaresOther(PacketRef ref) {
    if (!attributes_.isChangedAt(ref)) {
        return false;
    }
    StreamAttributes const& attributes = attributes_.at(ref);
    Declared const declared(attributes);
    if (declared_ && *declared_ != declared && !attributes.isCut) {
        return true;
    }
    if (!declared_ || !attributes.isCut) {
        declared_ = declared;
    }
    asdus_ = std::max(asdus_, attributes.asdus);
    return false;
}

void RateWalk::run() {
    while (limit_ != packets_) {
        std::uint64_t const most = limit_ ? std::min(kStrip, *limit_ - packets_) : kStrip;
        PacketCourse::Strip const strip = course_.nextStrip(most);
        // Attributes are those of the first packet throughout.
        if (strip.count == 0 || declaresOther(strip.first)) {
            break;
        }
        packets_ += strip.count;
        addStrip(strip);
        if (isBlock(kBlockTime) && endBlock()) {
            isMixed_ = true;
            return;
        }
    }
    closeFrame();
    settleFirst();
    if (isBlock(kLastBlockTime)) {
        isMixed_ = endBlock();
    }
}

/// In a strip smpCnt goes on by one from packet to packet: only where frames begin and end is
/// looked for.
void RateWalk::addStrip(PacketCourse::Strip const& strip) {
    PacketColumns const& packets = stream_.parts[strip.first.part].packets;
    std::uint64_t const* const frames = packets.frameOffsets().data() + strip.first.packet;
    auto const refOf = [&](std::uint32_t number) {
        return PacketRef{.part = strip.first.part, .packet = strip.first.packet + number};
    };
    addPacket(strip.first);
    std::uint32_t second = 1;
    while (second < strip.count && frames[second] == frames[0]) {
        addPacket(refOf(second++));
    }
    std::uint32_t last = strip.count - 1;
    while (last > second && frames[last] == frames[strip.count - 1]) {
        --last;
    }
    if (last > second && usual_ > 0) {
        // From the end of the first whole frame to the end of the last one.
        std::uint32_t firstEnd = second;
        while (firstEnd < last && frames[firstEnd + 1] == frames[second]) {
            ++firstEnd;
        }
        addPacket(refOf(firstEnd));
        closeFrame();
        std::int64_t const* const times = packets.times().data() + strip.first.packet;
        addStep({.samples = static_cast<double>(last - firstEnd),
                 .time = static_cast<double>(times[last] - times[firstEnd])},
                last - firstEnd);
        addPacket(refOf(last));
        frames_ = FrameSteps();
        closeFrame();
        second = last + 1;
    }
    for (; second < strip.count; ++second) {
        addPacket(refOf(second));
    }
}

void RateWalk::addPacket(PacketRef ref) {
    PacketColumns const& packets = stream_.parts[ref.part].packets;
    if (packets.flags()[ref.packet].firstCounter() != CounterState::held) {
        return;
    }
    CountedFrame const packet{.smpCnt = packets.smpCnts()[ref.packet],
                              .time = packets.times()[ref.packet]};
    largest_ = std::max(largest_, packets.smpCnts()[ref.packet]);
    if (lastPacket_) {
        bool const isTimed = packet.time != kNoTime && lastPacket_->time != kNoTime;
        if (packet.smpCnt == 0 && lastPacket_->smpCnt > 0 && isTimed &&
            packet.time >= lastPacket_->time) {
            wraps_.add(static_cast<std::uint32_t>(lastPacket_->smpCnt) + 1,
                       packet.time - lastPacket_->time);
        }
        bool const isSameFrame =
            ref.part == lastRef_.part &&
            packets.frameOffsets()[ref.packet] == packets.frameOffsets()[lastRef_.packet];
        if (!isSameFrame) {
            closeFrame();
        }
    }
    lastPacket_ = packet;
    lastRef_ = ref;
}

/// Of a frame, its newest packet counts.
void RateWalk::closeFrame() {
    if (lastPacket_) {
        if (auto const step = frames_.add(*lastPacket_)) {
            addStep(*step, 1);
        }
    }
}

void RateWalk::addStep(SampleSteps const& step, std::uint32_t count) {
    if (usual_ == 0) {
        first_.push_back(step);
        if (first_.size() == kFirstSteps) {
            settleFirst();
        }
    } else {
        measure(step, count);
    }
}

void RateWalk::measure(SampleSteps const& step, std::uint32_t count) {
    if (step.isMeasure(usual_)) {
        all_.add(step);
        block_.add(step);
        blockSteps_ += count;
    }
}

/// Finds out what is usual, and takes the steps that were kept for that.
void RateWalk::settleFirst() {
    if (usual_ != 0 || first_.empty()) {
        return;
    }
    std::vector<double> intervals;
    for (SampleSteps const& step : first_) {
        intervals.push_back(step.time / step.samples);
    }
    auto const middle = intervals.begin() + static_cast<std::ptrdiff_t>(intervals.size() / 2);
    std::nth_element(intervals.begin(), middle, intervals.end());
    usual_ = std::max(*middle, 1.0);
    for (SampleSteps const& step : first_) {
        measure(step, 1);
    }
    first_.clear();
}

bool RateWalk::endBlock() {
    double const rate = block_.rate();
    double const known = agreeing_.rate();
    bool const agrees = known == 0 || isNear(rate, known, kOtherRate);
    bool const isOther = !agrees && odd_ != 0 && isNear(rate, odd_, kOtherRate);
    if (isOther && !limit_) {
        packets_ = findChange(known, rate);
        return true;
    }
    if (agrees) {
        agreeing_.add(block_);
        agreeingStart_ = blockStart_;
    }
    odd_ = agrees ? 0 : rate;
    blockStart_ = {course_, packets_};
    block_ = {};
    blockSteps_ = 0;
    return false;
}

/// The number of the packet since which a rate holds, after the start of the last block that
/// agrees: where two lines fit best; where smpCnt jumps close to that, there.
std::uint64_t RateWalk::findChange(double before, double after) const {
    constexpr std::uint64_t kClose = 64;
    PacketCourse course = agreeingStart_.course;
    FrameSteps frames;
    double cost = 0;
    double least = 0;
    std::uint64_t best = agreeingStart_.packets;
    std::vector<std::uint64_t> jumps;
    for (std::uint64_t number = best; number < packets_; ++number) {
        auto const ref = course.next();
        if (!ref) {
            break;
        }
        PacketColumns const& packets = stream_.parts[ref->part].packets;
        auto const step = frames.add(
            {.smpCnt = packets.smpCnts()[ref->packet], .time = packets.times()[ref->packet]});
        if (frames.isJump()) {
            jumps.push_back(number);
        }
        if (step && step->isMeasure(usual_)) {
            double const awayBefore = step->time - step->samples * kNsPerSecond / before;
            double const awayAfter = step->time - step->samples * kNsPerSecond / after;
            cost += awayBefore * awayBefore - awayAfter * awayAfter;
            if (cost <= least) {
                least = cost;
                best = number;
            }
        }
    }
    auto const away = [&](std::uint64_t jump) { return jump > best ? jump - best : best - jump; };
    auto const nearest =
        std::min_element(jumps.begin(), jumps.end(),
                         [&](std::uint64_t a, std::uint64_t b) { return away(a) < away(b); });
    bool const isClose = nearest != jumps.end() && away(*nearest) <= kClose && *nearest > 0;
    return std::max<std::uint64_t>(isClose ? *nearest : best + 1, 1);
}

FoundRate RateWalk::result(SampleRate given) const {
    FoundRate found = find();
    if (given.isKnown()) {
        found.rate = given;
        found.source = RateSource::given;
    }
    if (found.rate.isKnown()) {
        double const rate = found.rate.perSecond();
        bool const isCounter = found.rate.seconds == 1 && found.rate.samples <= 65536;
        found.countsSeconds = isCounter && !isFreeRunning(rate);
        found.wrap = found.countsSeconds ? found.rate.samples : 65536;
        bool const isSaid =
            found.source == RateSource::given || found.source == RateSource::declared;
        found.isContradicted = found.isContradicted || (isSaid && isCounter && isFreeRunning(rate));
    }
    found.packets = packets_;
    found.asdus = asdus_;
    return found;
}

FoundRate RateWalk::find() const {
    FoundRate found;
    found.measured = agreeing_.time > 0 ? agreeing_.rate() : all_.rate();
    std::uint32_t const shown =
        wraps_.largestNear(found.measured, asdus_, standardNear(found.measured));
    found.counted = shown;
    found = byDeclared(found, shown);
    if (found.rate.isKnown()) {
        return found;
    }
    return shown != 0 ? withRate(found, shown, 1, RateSource::counter) : byArrival(found);
}

/// What is declared, where smpCnt and arrival leave that.
/// @param shown  by smpCnt, or 0
FoundRate RateWalk::byDeclared(FoundRate found, std::uint32_t shown) const {
    // A rate that no publisher has is none.
    constexpr std::uint64_t kFastest = 1'000'000;
    if (!declared_ || declared_->rate == 0 || declared_->rate > kFastest) {
        return found;
    }
    auto const rate = static_cast<std::uint32_t>(declared_->rate);
    double const measured = found.measured;
    auto const isFar = [&](double perSecond) {
        return measured > 0 && (perSecond > 2 * measured || perSecond < measured / 2);
    };
    switch (declared_->unit) {
        case Declared::kPerSecond: {
            found.isContradicted = (shown != 0 && shown != rate) || isFreeRunning(rate) ||
                                   (measured > 0 && !isNear(rate, measured, kSameRate));
            bool const isTaken = shown == 0 && !isFreeRunning(rate) && !isFar(rate);
            return isTaken ? withRate(found, rate, 1, RateSource::declared) : found;
        }
        case Declared::kSecondsPerSample:
            found.isContradicted = isFar(1.0 / rate);
            return found.isContradicted ? found : withRate(found, 1, rate, RateSource::declared);
        case Declared::kPerPeriod:
            return measured > 0 ? byPeriods(found, rate, shown) : found;
        default:
            return found;
    }
}

/// Samples of a period: the frequency is the one by which they come to what is measured.
FoundRate RateWalk::byPeriods(FoundRate found, std::uint32_t rate, std::uint32_t shown) {
    for (std::uint32_t const periods : {1U, 50U, 60U}) {
        std::uint32_t const product = rate * periods;
        if (isNear(product, found.measured, kSameRate)) {
            return shown != 0 ? found : withRate(found, product, 1, RateSource::declared);
        }
    }
    found.isContradicted = true;
    return found;
}

FoundRate RateWalk::byArrival(FoundRate found) {
    constexpr double kMost = 4e9;
    double const measured = found.measured;
    if (std::uint32_t const standard = standardNear(measured); standard != 0) {
        return withRate(found, standard, 1, RateSource::standard);
    }
    if (measured >= 1 && measured < kMost) {
        return withRate(found, static_cast<std::uint32_t>(std::lround(measured)), 1,
                        RateSource::arrival);
    }
    if (measured > 0 && measured < 1 && 1 / measured < kMost) {
        return withRate(found, 1, static_cast<std::uint32_t>(std::lround(1 / measured)),
                        RateSource::arrival);
    }
    return found;
}

}  // namespace

FoundRate findRate(TrafficIndex const& index, TrafficStream const& stream, PacketCourse course,
                   SampleRate given) {
    RateWalk walk(index, stream, course);
    walk.run();
    if (!walk.isMixed()) {
        return walk.result(given);
    }
    RateWalk again(index, stream, course, walk.packets());
    again.run();
    return again.result(given);
}

}  // namespace TalIec61850Analysis::detail
