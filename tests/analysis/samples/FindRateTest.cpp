// Which rate a stream has, and what tells it.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/FindRate.hpp>
#include <cstdint>
#include <optional>

#include "analysis/samples/ReadRows.hpp"
#include "support/WaveformStream.hpp"

namespace TalIec61850Analysis::detail::FindRateTest {
namespace {

using namespace TalTest;

FoundRate rateOf(WaveformStream const& stream, SampleRate given = {}) {
    IndexedWaveform const indexed(stream);
    return findRate(indexed.index(), indexed.stream(), PacketCourse(indexed.stream()), given);
}

WaveformSettings smallSettings(std::uint32_t rate) {
    WaveformSettings settings;
    settings.rate = rate;
    settings.members = repeatedMembers({WaveMember::int32, WaveMember::quality}, 1);
    return settings;
}

WaveformSettings declaring(std::uint32_t rate, std::optional<std::uint16_t> smpRate,
                           std::optional<std::uint16_t> smpMod) {
    WaveformSettings settings = smallSettings(rate);
    settings.smpRate = smpRate;
    settings.smpMod = smpMod;
    settings.firstCount = 100;
    return settings;
}

/// Some samples from one on, less than a second of them.
FoundRate rateOfPart(WaveformSettings const& settings, SampleRate given = {}) {
    WaveformStream stream(settings);
    stream.send(settings.rate / 4);
    return rateOf(stream, given);
}

TEST(FoundRates, AreWhatTheCounterShows) {
    for (std::uint32_t const rate : {4000U, 4800U, 5760U, 3333U, 1000U}) {
        WaveformSettings settings = smallSettings(rate);
        settings.firstCount = rate / 2;
        WaveformStream stream(settings);
        stream.send(rate * 2);
        FoundRate const found = rateOf(stream);
        EXPECT_EQ(found.rate, (SampleRate{.samples = rate}));
        EXPECT_EQ(found.source, RateSource::counter);
        EXPECT_EQ(found.wrap, rate);
        EXPECT_TRUE(found.countsSeconds);
        EXPECT_FALSE(found.isContradicted);
        EXPECT_NEAR(found.measured, rate, 0.5);
        EXPECT_EQ(found.packets, std::uint64_t{rate} * 2);
    }
}

TEST(FoundRates, AreShownByTheCounterWhateverIsDeclared) {
    for (std::uint16_t const declared : std::initializer_list<std::uint16_t>{4000, 4800, 80, 1}) {
        for (std::optional<std::uint16_t> const smpMod :
             {std::optional<std::uint16_t>(), std::optional<std::uint16_t>(0),
              std::optional<std::uint16_t>(1)}) {
            WaveformSettings settings = declaring(4030, declared, smpMod);
            settings.firstCount = 2000;
            WaveformStream stream(settings);
            stream.send(5000);
            FoundRate const found = rateOf(stream);
            EXPECT_EQ(found.rate.samples, 4030U) << declared;
            EXPECT_EQ(found.source, RateSource::counter) << declared;
        }
    }
    WaveformSettings settings = declaring(4000, 4800, 1);
    settings.firstCount = 2000;
    WaveformStream stream(settings);
    stream.send(5000);
    EXPECT_EQ(rateOf(stream).rate.samples, 4000U);
    EXPECT_TRUE(rateOf(stream).isContradicted);
}

TEST(FoundRates, AreDeclaredInSamplesASecond) {
    FoundRate const found = rateOfPart(declaring(4800, 4800, 1));
    EXPECT_EQ(found.rate.samples, 4800U);
    EXPECT_EQ(found.source, RateSource::declared);
    EXPECT_FALSE(found.isContradicted);
    FoundRate const odd = rateOfPart(declaring(4321, 4321, 1));
    EXPECT_EQ(odd.rate.samples, 4321U);
    EXPECT_EQ(odd.source, RateSource::declared);
    FoundRate const contradicted = rateOfPart(declaring(4000, 4800, 1));
    EXPECT_EQ(contradicted.rate.samples, 4800U);
    EXPECT_TRUE(contradicted.isContradicted);
}

TEST(FoundRates, AreDeclaredInSamplesAPeriodOfTheMeasuredFrequency) {
    struct Case {
        std::uint32_t rate;
        std::uint16_t smpRate;
    };
    for (Case const& one : {Case{4000, 80}, Case{4800, 80}, Case{4800, 96}, Case{5760, 96},
                            Case{12800, 256}, Case{15360, 256}, Case{4000, 4000}, Case{3333, 3333},
                            Case{14400, 14400}, Case{3500, 70}}) {
        for (std::optional<std::uint16_t> const smpMod :
             {std::optional<std::uint16_t>(), std::optional<std::uint16_t>(0)}) {
            FoundRate const found = rateOfPart(declaring(one.rate, one.smpRate, smpMod));
            EXPECT_EQ(found.rate.samples, one.rate) << one.smpRate;
            EXPECT_EQ(found.source, RateSource::declared) << one.smpRate;
            EXPECT_FALSE(found.isContradicted) << one.smpRate;
        }
    }
}

TEST(FoundRates, AreNotDeclaredByWhatIsMoreThanOnePercentOff) {
    for (std::uint16_t const smpRate :
         std::initializer_list<std::uint16_t>{82, 78, 65, 68, 3940, 4060, 1}) {
        FoundRate const found = rateOfPart(declaring(4000, smpRate, {}));
        EXPECT_EQ(found.rate.samples, 4000U) << smpRate;
        EXPECT_EQ(found.source, RateSource::standard) << smpRate;
        EXPECT_TRUE(found.isContradicted) << smpRate;
    }
}

TEST(FoundRates, AreDeclaredInSecondsASample) {
    WaveformSettings settings = smallSettings(1);
    settings.smpRate = 1;
    settings.smpMod = 2;
    settings.wrap = 65536;
    WaveformStream stream(settings);
    stream.send(100);
    FoundRate const found = rateOf(stream);
    EXPECT_EQ(found.rate, (SampleRate{.samples = 1, .seconds = 1}));
    EXPECT_EQ(found.source, RateSource::declared);
}

TEST(FoundRates, AreThoseOfStandardsWithinOnePercent) {
    for (std::uint32_t const rate : {4000U, 4800U, 5760U, 12800U, 14400U, 15360U, 96000U}) {
        for (double const off : {0.0, 0.008, -0.008}) {
            WaveformSettings settings = smallSettings(rate);
            settings.rate = static_cast<std::uint32_t>(rate * (1 + off));
            WaveformStream stream(settings);
            stream.send(rate / 5);
            FoundRate const found = rateOf(stream);
            EXPECT_EQ(found.rate.samples, rate) << off;
            EXPECT_EQ(found.source, RateSource::standard) << off;
        }
    }
}

TEST(FoundRates, AreMeasuredWhereNoStandardNamesThem) {
    for (std::uint32_t const rate : {4050U, 3950U, 1000U, 200U, 50U, 20000U}) {
        FoundRate const found = rateOfPart([&] {
            WaveformSettings settings = smallSettings(rate);
            settings.firstCount = 1;
            return settings;
        }());
        EXPECT_EQ(found.rate.samples, rate);
        EXPECT_EQ(found.source, RateSource::arrival);
    }
}

TEST(FoundRates, AreGivenByTheCaller) {
    SampleRate const given{.samples = 4200};
    FoundRate const found = rateOfPart(declaring(4000, 4000, 1), given);
    EXPECT_EQ(found.rate, given);
    EXPECT_EQ(found.source, RateSource::given);
    EXPECT_EQ(found.wrap, 4200U);
}

TEST(FoundRates, AreShownByALargestValueWithinOnePercentAlone) {
    // It begins again after 4030 samples at 4000 a second, then after 3000: that one is a restart.
    WaveformSettings settings = smallSettings(4000);
    settings.wrap = 65536;
    WaveformStream stream(settings);
    stream.send(4030).restartAt(0).send(3000).restartAt(0).send(500);
    FoundRate const found = rateOf(stream);
    EXPECT_EQ(found.rate.samples, 4030U);
    EXPECT_EQ(found.source, RateSource::counter);

    WaveformStream restarts(settings);
    restarts.send(3900).restartAt(0).send(3900).restartAt(0).send(1000);
    FoundRate const standard = rateOf(restarts);
    EXPECT_EQ(standard.rate.samples, 4000U);
    EXPECT_EQ(standard.source, RateSource::standard);
}

TEST(FoundRates, CountNoSecondsWhereTheCounterGoesFarBeyondThem) {
    WaveformSettings settings = smallSettings(4000);
    settings.wrap = 65536;
    settings.firstCount = 3000;
    WaveformStream stream(settings);
    stream.send(3000);
    FoundRate const found = rateOf(stream);
    EXPECT_EQ(found.rate.samples, 4000U);
    EXPECT_EQ(found.source, RateSource::standard);
    EXPECT_EQ(found.wrap, 65536U);
    EXPECT_FALSE(found.countsSeconds);
}

TEST(FoundRates, AreUnknownForASinglePacket) {
    WaveformStream stream(smallSettings(4000));
    stream.send();
    FoundRate const found = rateOf(stream);
    EXPECT_FALSE(found.rate.isKnown());
    EXPECT_EQ(found.source, RateSource::none);
    EXPECT_EQ(found.packets, 1U);
}

TEST(FoundRates, AreMeasuredByFewFramesOfSeveralAsdus) {
    for (std::size_t const frames : {3U, 10U, 40U, 100U}) {
        WaveformSettings settings = smallSettings(12800);
        settings.asdus = 8;
        settings.firstCount = 800;
        WaveformStream stream(settings);
        stream.send(frames);
        FoundRate const found = rateOf(stream);
        EXPECT_EQ(found.rate.samples, 12800U) << frames;
        EXPECT_EQ(found.source, RateSource::standard) << frames;
    }
}

TEST(FoundRates, AreNotMeasuredByLateSamples) {
    WaveformSettings settings = smallSettings(4800);
    settings.firstCount = 100;
    WaveformStream stream(settings);
    for (int i = 0; i < 20; ++i) stream.send(20).sendLate(10);
    FoundRate const found = rateOf(stream);
    EXPECT_EQ(found.rate.samples, 4800U);
    EXPECT_EQ(found.source, RateSource::standard);
}

TEST(FoundRates, AreNotMeasuredByAStepOfTheClock) {
    WaveformSettings settings = smallSettings(4800);
    settings.firstCount = 100;
    WaveformStream stream(settings);
    stream.send(150).stepClock(363'000'000).send(20);
    FoundRate const found = rateOf(stream);
    EXPECT_EQ(found.rate.samples, 4800U);
    EXPECT_EQ(found.source, RateSource::standard);
}

TEST(FoundRates, AreNotMeasuredAcrossALostSecond) {
    WaveformSettings settings = smallSettings(4800);
    settings.firstCount = 100;
    WaveformStream stream(settings);
    stream.send(150).lose(4800).send(20);
    FoundRate const found = rateOf(stream);
    EXPECT_EQ(found.rate.samples, 4800U);
    EXPECT_EQ(found.source, RateSource::standard);
}

TEST(FoundRates, EndWhereWhatIsDeclaredChanges) {
    WaveformStream stream(declaring(4000, 4000, 1));
    stream.send(500).changeRate(4800, 0, 4800).send(300);
    FoundRate const found = rateOf(stream);
    EXPECT_EQ(found.rate.samples, 4000U);
    EXPECT_EQ(found.packets, 500U);
}

TEST(FoundRates, EndWhereArrivalShowsAnotherForASecond) {
    struct Case {
        std::uint32_t before;
        std::uint32_t after;
    };
    for (Case const& one : {Case{4000, 4800}, Case{4800, 4000}, Case{4800, 5760}}) {
        // The change is anywhere in the times over which rates are measured.
        for (std::uint32_t tenths = 10; tenths < 18; ++tenths) {
            WaveformSettings settings = smallSettings(one.before);
            settings.firstCount = 100;
            WaveformStream stream(settings);
            std::uint32_t const frames = one.before * tenths / 10;
            stream.send(frames).changeRate(one.after, 0).send(one.after);
            FoundRate const found = rateOf(stream);
            EXPECT_EQ(found.rate.samples, one.before) << tenths;
            EXPECT_EQ(found.packets, frames) << tenths;
        }
    }
}

TEST(FoundRates, AreMeasuredByWhatWasNotLost) {
    WaveformSettings settings = smallSettings(4000);
    settings.firstCount = 100;
    WaveformStream stream(settings);
    for (int i = 0; i < 100; ++i) stream.send(10).lose(20);
    stream.send();
    FoundRate const found = rateOf(stream);
    EXPECT_EQ(found.rate.samples, 4000U);
    EXPECT_EQ(found.source, RateSource::standard);
}

}  // namespace
}  // namespace TalIec61850Analysis::detail::FindRateTest
