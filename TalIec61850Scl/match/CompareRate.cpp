#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/samples/SampleRun.hpp>
#include <TalIec61850Analysis/traffic/StreamAttributes.hpp>
#include <TalIec61850Scl/match/CompareRate.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>

namespace TalIec61850Scl::detail {

namespace {

using TalIec61850Analysis::PacketRef;
using TalIec61850Analysis::RateSource;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleReader;
using TalIec61850Analysis::SampleRun;
using TalIec61850Analysis::StreamAttributes;
using TalIec61850Analysis::valueIn;

/// Of power systems, in hertz.
constexpr std::array<double, 2> kFrequencies = {50, 60};
/// Two rates within this are the same: 1 %.
constexpr double kSameRate = 0.01;
/// Samples that show a rate by their arrival; and where smpCnt begins again among them.
constexpr std::uint64_t kEnoughSamples = 256;
constexpr std::uint64_t kFewSamples = 64;

bool isSame(double rate, double other) { return std::abs(rate - other) <= kSameRate * other; }

/// A rate as it is declared: so many, in a unit.
struct DeclaredRate {
    std::uint64_t count = 0;
    SampleRateUnit unit = SampleRateUnit::samplesPerPeriod;

    /// Samples a second, in a system of that frequency.
    [[nodiscard]] double at(double frequency) const {
        auto const number = static_cast<double>(count);
        switch (unit) {
            case SampleRateUnit::samplesPerPeriod:
                return number * frequency;
            case SampleRateUnit::secondsPerSample:
                return 1 / number;
            default:
                return number;
        }
    }
    /// The frequency at which it comes closest to a rate.
    [[nodiscard]] double frequencyNear(double rate) const {
        return std::abs(at(kFrequencies[0]) - rate) <= std::abs(at(kFrequencies[1]) - rate)
                   ? kFrequencies[0]
                   : kFrequencies[1];
    }
    [[nodiscard]] bool canBe(double rate) const { return isSame(rate, at(frequencyNear(rate))); }
};

/// Whether two are one rate, in whatever system.
bool agree(DeclaredRate const& a, DeclaredRate const& b) {
    constexpr double kRounding = 1e-9;
    if (a.unit == b.unit) {
        return a.count == b.count;
    }
    return std::any_of(kFrequencies.begin(), kFrequencies.end(), [&](double frequency) {
        return std::abs(a.at(frequency) - b.at(frequency)) <= kRounding * a.at(frequency);
    });
}

/// smpMod (IEC 61850-9-2); nothing for a number that has no meaning.
std::optional<SampleRateUnit> unitOf(std::uint64_t smpMod) {
    constexpr std::uint64_t kPerPeriod = 0;
    constexpr std::uint64_t kPerSecond = 1;
    constexpr std::uint64_t kSecondsPerSample = 2;
    switch (smpMod) {
        case kPerPeriod:
            return SampleRateUnit::samplesPerPeriod;
        case kPerSecond:
            return SampleRateUnit::samplesPerSecond;
        case kSecondsPerSample:
            return SampleRateUnit::secondsPerSample;
        default:
            return std::nullopt;
    }
}

/// What packets say of the rate; not set where they say nothing that can be read.
std::optional<DeclaredRate> rateIn(StreamAttributes const& attributes, SampleRateUnit unit) {
    std::uint64_t const* const count = valueIn(attributes.smpRate);
    std::uint64_t const* const smpMod = valueIn(attributes.smpMod);
    if (count == nullptr || *count == 0) {
        return std::nullopt;
    }
    return DeclaredRate{.count = *count,
                        .unit = smpMod != nullptr ? unitOf(*smpMod).value_or(unit) : unit};
}

/// Whether packets say the rate that is described. A number without a unit may be in the unit of
/// the description, or of a period, as smpMod says where it is not sent.
bool saysRate(StreamAttributes const& attributes, DeclaredRate const& rate) {
    auto const inUnit = [&](SampleRateUnit unit) {
        auto const found = rateIn(attributes, unit);
        return found && agree(rate, *found);
    };
    return inUnit(rate.unit) || inUnit(SampleRateUnit::samplesPerPeriod);
}

Difference differenceOf(double expected, DifferenceValue const& found, PacketRef packet) {
    return {.kind = DifferenceKind::smpRate,
            .expected = expected,
            .found = found,
            .member = {},
            .packet = packet};
}

/// The first packet that says another rate.
std::optional<Difference> findElement(DescribedStream const& described, DeclaredRate const& rate) {
    auto const& parts = described.stream.parts;
    for (std::uint32_t part = 0; part < parts.size(); ++part) {
        for (auto const& change : parts[part].changes) {
            StreamAttributes const& attributes = described.index.attributes(parts[part], change);
            if (!attributes.smpRate || saysRate(attributes, rate)) {
                continue;
            }
            auto const found = rateIn(attributes, rate.unit);
            PacketRef const packet{.part = part, .packet = change.firstPacket};
            if (!found) {
                return differenceOf(rate.at(kFrequencies[0]), {}, packet);
            }
            // In the system that the element is right for, where it is for any.
            auto const shown = described.index.nominalRate(described.stream);
            double const frequency = shown ? found->frequencyNear(*shown) : kFrequencies[0];
            return differenceOf(rate.at(frequency), found->at(frequency), packet);
        }
    }
    return std::nullopt;
}

/// What smpCnt and arrival show; not set where they do not tell.
/// @param samples  of the run, so far
std::optional<double> measuredRate(SampleRun const& run, std::uint64_t samples) {
    if (run.rateSource == RateSource::counter) {
        return run.rate.perSecond();
    }
    bool const isMeasured = samples >= kEnoughSamples && run.measuredRate > 0;
    return isMeasured ? std::optional(run.measuredRate) : std::nullopt;
}

/// Whether a stream is worth reading: that costs as much as hundreds of samples.
bool canBeMeasured(DescribedStream const& described) {
    std::uint64_t const samples = described.stream.packets;
    return samples >= kEnoughSamples ||
           (samples >= kFewSamples && described.index.nominalRate(described.stream));
}

/// The first run of samples that come at another rate.
std::optional<Difference> findMeasured(DescribedStream const& described, DeclaredRate const& rate) {
    TalIec61850Analysis::SampleOptions options;
    options.withValues = false;
    SampleReader reader(described.index, described.stream, options);
    std::optional<PacketRef> run;
    std::uint64_t samples = 0;
    while (SampleBlock const* const block = reader.next()) {
        if (run != block->run.first) {
            run = block->run.first;
            samples = 0;
        }
        samples += block->size();
        auto const found = measuredRate(block->run, samples);
        if (found && !rate.canBe(*found)) {
            return differenceOf(rate.at(rate.frequencyNear(*found)), *found, *run);
        }
    }
    return std::nullopt;
}

}  // namespace

void compareRate(DescribedStream const& described, DifferenceSet& differences) {
    ControlBlock const& block = described.block;
    bool const isCompared = !described.isGoose() && block.smpRate.value_or(0) != 0;
    if (!isCompared) {
        return;
    }
    DeclaredRate const rate{.count = *block.smpRate, .unit = block.smpRateUnit};
    auto difference = findElement(described, rate);
    if (!difference && canBeMeasured(described)) {
        difference = findMeasured(described, rate);
    }
    if (difference) {
        differences.add(*difference);
    }
}

}  // namespace TalIec61850Scl::detail
