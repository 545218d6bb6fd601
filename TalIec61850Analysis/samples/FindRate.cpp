#include <TalIec61850Analysis/samples/FindRate.hpp>
#include <TalIec61850Analysis/samples/PartAttributes.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <variant>

namespace TalIec61850Analysis::detail {

namespace {

constexpr double kSecond = 1e9;
/// Two rates within this are the same: 1 %.
constexpr double kSameRate = 0.01;
/// By arrival alone, a rate is another beyond this: standard ones are further apart.
constexpr double kOtherRate = 0.04;
/// smpCnt may step by so much without being taken for a jump.
constexpr std::int64_t kMostAhead = 64;
/// The rates that IEC 61850-9-2LE and IEC 61869-9 name, and such as are met.
constexpr std::array<std::uint32_t, 7> kStandardRates = {4000,  4800,  5760, 12800,
                                                         14400, 15360, 96000};

bool isNear(double a, double b, double tolerance) { return std::abs(a - b) <= tolerance * b; }

/// The number that an attribute is, or 0.
std::uint64_t numberIn(std::optional<Readable<std::uint64_t>> const& attribute) {
    auto const* const number = attribute ? std::get_if<std::uint64_t>(&*attribute) : nullptr;
    return number != nullptr ? *number : 0;
}

/// What is declared of a rate.
struct Declared {
    std::uint64_t rate = 0;
    std::uint64_t unit = 0;

    explicit Declared(StreamAttributes const& attributes)
        : rate(numberIn(attributes.smpRate)), unit(numberIn(attributes.smpMod)) {}
    bool operator==(Declared const&) const = default;
};

/// Steps of smpCnt, and the time that they took.
struct Steps {
    double samples = 0;
    double time = 0;

    void add(double moreSamples, double moreTime) {
        samples += moreSamples;
        time += moreTime;
    }
    [[nodiscard]] double rate() const { return time > 0 ? samples / time * kSecond : 0; }
};

/// The largest smpCnt before 0 that were met, as many as there is room for.
class WrapsMet {
public:
    void add(std::uint32_t wrap, std::int64_t since) {
        auto const end = met_.begin() + size_;
        auto const known =
            std::find_if(met_.begin(), end, [&](Met const& met) { return met.wrap == wrap; });
        if (known != end) {
            known->since = std::min(known->since, since);
        } else if (size_ < static_cast<std::ptrdiff_t>(met_.size())) {
            *end = {.wrap = wrap, .since = since};
            ++size_;
        }
    }

    /// The largest near a rate that nothing was lost before; 0 where there is none.
    [[nodiscard]] std::uint32_t largestNear(double rate, double asdus) const {
        std::uint32_t largest = 0;
        for (auto met = met_.begin(); met != met_.begin() + size_; ++met) {
            bool const isWhole = static_cast<double>(met->since) * rate <= 1.5 * asdus * kSecond;
            if (isNear(met->wrap, rate, kSameRate) && isWhole) {
                largest = std::max(largest, met->wrap);
            }
        }
        return largest;
    }

private:
    struct Met {
        std::uint32_t wrap = 0;
        std::int64_t since = 0;
    };

    std::array<Met, 32> met_{};
    std::ptrdiff_t size_ = 0;
};

/// A packet that counts.
struct Counted {
    std::uint32_t smpCnt = 0;
    std::int64_t time = kNoTime;
    bool isCounted = false;
};

Counted countOf(TrafficStream const& stream, PacketRef ref) {
    PacketColumns const& packets = stream.parts[ref.part].packets;
    return {.smpCnt = packets.smpCnts()[ref.packet],
            .time = packets.times()[ref.packet],
            .isCounted = packets.flags()[ref.packet].firstCounter() == CounterState::held};
}

/// Whether smpCnt goes on from one packet to the next, in time.
bool isStep(Counted const& before, Counted const& packet) {
    std::int64_t const ahead = std::int64_t{packet.smpCnt} - std::int64_t{before.smpCnt};
    return ahead > 0 && ahead <= kMostAhead && before.time != kNoTime && packet.time != kNoTime &&
           packet.time >= before.time;
}

/// Walks over packets while their rate is the same.
class RateWalk {
public:
    RateWalk(TrafficIndex const& index, TrafficStream const& stream, PacketCourse const& course)
        : stream_(stream), attributes_(index, stream), course_(course), blockStart_(course) {}

    void run();
    [[nodiscard]] FoundRate result(SampleRate given) const;

private:
    /// Half a second of packets, and some dozens at least.
    static constexpr double kBlockTime = 0.5 * kSecond;
    static constexpr std::uint32_t kBlockSteps = 32;

    void add(Counted const& packet);
    /// @return whether the rate is another since some packet, which is the end then
    bool endBlock();
    [[nodiscard]] std::uint64_t findChange(double before, double after) const;
    [[nodiscard]] FoundRate byCounter() const;
    [[nodiscard]] bool isFreeRunning(double rate) const { return largest_ + 1.0 > rate * 1.01; }

    TrafficStream const& stream_;
    PartAttributes attributes_;
    PacketCourse course_;
    std::optional<Declared> declared_;
    std::uint64_t packets_ = 0;
    Counted last_;
    std::uint32_t largest_ = 0;
    std::uint32_t asdus_ = 1;
    WrapsMet wraps_;
    /// Of all packets, and of the blocks that agree.
    Steps all_;
    Steps agreeing_;
    /// The block that is being filled, and the ones before it.
    Steps block_;
    std::uint32_t blockSteps_ = 0;
    PacketCourse blockStart_;
    std::uint64_t blockFirst_ = 0;
    std::optional<PacketCourse> earlierStart_;
    std::uint64_t earlierFirst_ = 0;
    /// The rate of the block before, where it does not agree.
    double odd_ = 0;
};

void RateWalk::run() {
    while (true) {
        auto const ref = course_.next();
        if (!ref) {
            return;
        }
        if (attributes_.isChangedAt(*ref)) {
            StreamAttributes const& attributes = attributes_.at(*ref);
            Declared const declared(attributes);
            if (declared_ && *declared_ != declared && !attributes.isCut) {
                return;
            }
            if (!declared_ || !attributes.isCut) {
                declared_ = declared;
            }
            asdus_ = std::max(asdus_, attributes.asdus);
        }
        ++packets_;
        if (Counted const packet = countOf(stream_, *ref); packet.isCounted) {
            add(packet);
            last_ = packet;
            if (blockSteps_ >= kBlockSteps && block_.time >= kBlockTime && endBlock()) {
                return;
            }
        }
    }
}

void RateWalk::add(Counted const& packet) {
    largest_ = std::max(largest_, packet.smpCnt);
    if (!last_.isCounted) {
        return;
    }
    if (isStep(last_, packet)) {
        auto const samples = static_cast<double>(packet.smpCnt - last_.smpCnt);
        auto const time = static_cast<double>(packet.time - last_.time);
        all_.add(samples, time);
        block_.add(samples, time);
        ++blockSteps_;
    } else if (packet.smpCnt == 0 && last_.smpCnt > 0 && last_.time != kNoTime &&
               packet.time >= last_.time) {
        wraps_.add(last_.smpCnt + 1, packet.time - last_.time);
    }
}

bool RateWalk::endBlock() {
    double const rate = block_.rate();
    double const known = agreeing_.rate();
    bool const agrees = known == 0 || isNear(rate, known, kOtherRate);
    if (!agrees && odd_ != 0 && isNear(rate, odd_, kOtherRate) && earlierStart_) {
        packets_ = findChange(known, rate);
        return true;
    }
    if (agrees) {
        agreeing_.add(block_.samples, block_.time);
    }
    if (odd_ == 0) {
        earlierStart_ = blockStart_;
        earlierFirst_ = blockFirst_;
    }
    odd_ = agrees ? 0 : rate;
    blockStart_ = course_;
    blockFirst_ = packets_;
    block_ = {};
    blockSteps_ = 0;
    return false;
}

/// The number of the packet since which a rate holds, from the block on that is before the first
/// odd one: where two lines fit best; where smpCnt jumps close to that, there.
std::uint64_t RateWalk::findChange(double before, double after) const {
    constexpr std::uint64_t kClose = 64;
    PacketCourse course = *earlierStart_;
    std::uint64_t number = earlierFirst_;
    double cost = 0;
    double least = 0;
    std::uint64_t best = number;
    std::optional<std::uint64_t> jump;
    Counted last;
    for (; number < packets_; ++number) {
        auto const ref = course.next();
        Counted const packet = ref ? countOf(stream_, *ref) : Counted();
        if (!packet.isCounted) {
            continue;
        }
        if (last.isCounted && !isStep(last, packet)) {
            if (!jump || number <= best + kClose) {
                jump = number;
            }
        } else if (last.isCounted) {
            auto const samples = static_cast<double>(packet.smpCnt - last.smpCnt);
            auto const time = static_cast<double>(packet.time - last.time);
            double const awayBefore = time - samples * kSecond / before;
            double const awayAfter = time - samples * kSecond / after;
            cost += awayBefore * awayBefore - awayAfter * awayAfter;
            if (cost < least) {
                least = cost;
                best = number;
            }
        }
        last = packet;
    }
    bool const isCloseJump =
        jump && (*jump > best ? *jump - best : best - *jump) <= kClose && *jump > 0;
    return std::max<std::uint64_t>(isCloseJump ? *jump : best + 1, 1);
}

FoundRate RateWalk::result(SampleRate given) const {
    FoundRate found = byCounter();
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

FoundRate RateWalk::byCounter() const {
    constexpr std::uint64_t kSecondsPerSample = 2;
    FoundRate found;
    found.measured = agreeing_.time > 0 ? agreeing_.rate() : all_.rate();
    double const measured = found.measured;
    std::uint64_t const declared = declared_ ? declared_->rate : 0;
    std::uint64_t const unit = declared_ ? declared_->unit : 0;
    bool const isDeclared = declared > 0 && declared <= 0xFFFFFFFF;
    auto const rate = static_cast<std::uint32_t>(isDeclared ? declared : 0);
    auto const take = [&](std::uint32_t samples, std::uint32_t seconds, RateSource source) {
        found.rate = {.samples = samples, .seconds = seconds};
        found.source = source;
        return found;
    };

    std::uint32_t const shown = wraps_.largestNear(measured, asdus_);
    if (isDeclared && unit == 1) {
        found.isContradicted = (shown != 0 && shown != rate) || isFreeRunning(rate) ||
                               (measured > 0 && !isNear(rate, measured, kSameRate));
        if (shown == 0 && !isFreeRunning(rate)) {
            return take(rate, 1, RateSource::declared);
        }
    } else if (isDeclared && unit == kSecondsPerSample) {
        return take(1, rate, RateSource::declared);
    } else if (isDeclared && unit == 0 && measured > 0) {
        for (std::uint32_t const periods : {1U, 50U, 60U}) {
            std::uint64_t const product = std::uint64_t{rate} * periods;
            if (isNear(static_cast<double>(product), measured, kSameRate)) {
                return shown != 0
                           ? take(shown, 1, RateSource::counter)
                           : take(static_cast<std::uint32_t>(product), 1, RateSource::declared);
            }
        }
        found.isContradicted = true;
    }
    if (shown != 0) {
        return take(shown, 1, RateSource::counter);
    }
    if (measured <= 0) {
        return found;
    }
    for (std::uint32_t const standard : kStandardRates) {
        if (isNear(standard, measured, kSameRate)) {
            return take(standard, 1, RateSource::standard);
        }
    }
    constexpr double kMost = 4e9;
    if (measured >= 1 && measured < kMost) {
        return take(static_cast<std::uint32_t>(std::lround(measured)), 1, RateSource::arrival);
    }
    if (measured < 1 && 1 / measured < kMost) {
        return take(1, static_cast<std::uint32_t>(std::lround(1 / measured)), RateSource::arrival);
    }
    return found;
}

}  // namespace

FoundRate findRate(TrafficIndex const& index, TrafficStream const& stream, PacketCourse course,
                   SampleRate given) {
    RateWalk walk(index, stream, course);
    walk.run();
    return walk.result(given);
}

}  // namespace TalIec61850Analysis::detail
