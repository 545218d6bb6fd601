// The rows of streams of known waveforms, one by one.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <cstdint>
#include <vector>

#include "analysis/samples/ReadRows.hpp"
#include "analysis/traffic/TrafficCaptures.hpp"
#include "support/WaveformStream.hpp"

namespace TalIec61850Analysis::SampleRowsTest {
namespace {

using namespace TalTest;

constexpr std::int64_t kWaveSecond = 1'000'000'000;

/// A rate, and how many ASDUs a frame has at it.
struct RateAndAsdus {
    std::uint32_t rate;
    std::uint32_t asdus;
    double frequency;
};

void PrintTo(RateAndAsdus const& rate, std::ostream* out) {
    *out << rate.rate << " in frames of " << rate.asdus;
}

class SampleRowsAtRate : public testing::TestWithParam<RateAndAsdus> {
protected:
    [[nodiscard]] static WaveformSettings settings() {
        WaveformSettings settings;
        settings.rate = GetParam().rate;
        settings.asdus = GetParam().asdus;
        settings.frequency = GetParam().frequency;
        settings.members = repeatedMembers({WaveMember::int32, WaveMember::quality}, 2);
        // A third of a second before the wrap.
        settings.firstCount = settings.rate / 3 / settings.asdus * 2 * settings.asdus;
        return settings;
    }
    /// So many frames as take that part of a second.
    [[nodiscard]] static std::size_t frames(double seconds) {
        return static_cast<std::size_t>(seconds * GetParam().rate / GetParam().asdus);
    }
};

TEST_P(SampleRowsAtRate, AreTakenAtWholeParts) {
    WaveformStream stream(settings());
    stream.send(frames(1.5));
    expectRowsOf(stream);
}

TEST_P(SampleRowsAtRate, AreMissingAcrossTheWrap) {
    WaveformStream stream(settings());
    stream.send(frames(0.32)).lose(frames(0.03)).send(frames(1.1)).lose().send(20);
    expectRowsOf(stream);
}

TEST_P(SampleRowsAtRate, AreMissingForWholeSeconds) {
    WaveformSettings declared = settings();
    declared.smpRate = static_cast<std::uint16_t>(declared.rate);
    declared.smpMod = 1;
    WaveformStream stream(declared);
    stream.send(40)
        .lose(declared.rate / declared.asdus)
        .send(40)
        .lose(2 * declared.rate / declared.asdus);
    stream.send(40);
    expectRowsOf(stream);
}

TEST_P(SampleRowsAtRate, AreFittedWithoutSynchronization) {
    for (std::optional<std::uint8_t> const smpSynch :
         {std::optional<std::uint8_t>(0), std::optional<std::uint8_t>(1),
          std::optional<std::uint8_t>(5), std::optional<std::uint8_t>(254),
          std::optional<std::uint8_t>()}) {
        WaveformSettings local = settings();
        local.smpSynch = smpSynch;
        WaveformStream stream(local);
        stream.send(frames(0.4)).lose(3).send(frames(0.4));
        expectRowsOf(stream);
    }
}

TEST_P(SampleRowsAtRate, HaveTheTimesOfRefrTm) {
    WaveformSettings timed = settings();
    timed.hasRefrTm = true;
    WaveformStream stream(timed);
    stream.send(frames(0.4)).lose(3).send(frames(0.1));
    expectRowsOf(stream);
}

TEST_P(SampleRowsAtRate, AreInOrderWhereFramesAreLateOrRepeated) {
    WaveformStream stream(settings());
    std::size_t const most = (16 + 1) / GetParam().asdus - 1;
    stream.send(frames(0.2)).sendLate(1).send(frames(0.1)).repeatLast().send(10);
    stream.sendLate(std::max<std::size_t>(most, 1)).repeatLast().lose(2).send().repeatLast();
    stream.send(frames(0.5));
    expectRowsOf(stream);
}

TEST_P(SampleRowsAtRate, BeginAnewWhereTheCounterDoes) {
    WaveformStream stream(settings());
    stream.send(frames(0.2)).restartAt(0).send(frames(0.1)).restartAt(GetParam().rate / 2);
    stream.send(frames(0.1)).lose(2).restartAt(GetParam().asdus).send(frames(0.2));
    expectRowsOf(stream);
}

TEST_P(SampleRowsAtRate, BeginAnewWhereTheCounterGoesFurtherThanTime) {
    // Counters that jump tell a rate less well.
    WaveformSettings declared = settings();
    declared.smpRate = static_cast<std::uint16_t>(declared.rate);
    declared.smpMod = 1;
    WaveformStream stream(declared);
    stream.send(frames(0.2));
    for (std::uint32_t const skipped : {1U, 2U, 5U, 9U}) {
        stream.restartAt((stream.nextCount() + skipped * GetParam().asdus) % GetParam().rate);
        stream.send(frames(0.1));
    }
    expectRowsOf(stream);
}

TEST_P(SampleRowsAtRate, AreLostAfterALateFrame) {
    std::int64_t const frameTime = 1'000'000'000LL * GetParam().asdus / GetParam().rate;
    WaveformStream stream(settings());
    for (std::size_t const lost : {1U, 2U}) {
        stream.send(frames(0.1)).delayNext(frameTime * 9 / 10).send().lose(lost);
    }
    stream.send(frames(0.2));
    expectRowsOf(stream);
}

TEST_P(SampleRowsAtRate, AreLostHoweverUnevenArrivalIs) {
    WaveformSettings uneven = settings();
    uneven.smpRate = static_cast<std::uint16_t>(uneven.rate);
    uneven.smpMod = 1;
    uneven.jitter = 2'000'000'000LL * uneven.asdus / uneven.rate;
    WaveformStream stream(uneven);
    stream.send(frames(0.1));
    for (std::size_t gap = 0; gap < 30; ++gap) {
        stream.lose(1 + gap % 3).send(17);
    }
    expectRowsOf(stream);
}

TEST_P(SampleRowsAtRate, ComeOnceOverTwoWays) {
    for (WaveCopies const copies : {WaveCopies::prp, WaveCopies::hsr}) {
        WaveformSettings twice = settings();
        twice.copies = copies;
        WaveformStream stream(twice);
        stream.send(frames(0.4)).lose(3).sendLate(1).send(frames(0.1));
        expectRowsOf(stream);
    }
}

TEST_P(SampleRowsAtRate, GoThroughRotatedAndOverlappingFiles) {
    WaveformStream stream(settings());
    stream.send(frames(0.2)).nextFile().send(frames(0.1)).lose(2).nextFile().send(frames(0.1));
    stream.captureTwice(true).send(frames(0.05)).nextFile().captureTwice(false);
    stream.send(frames(0.3));
    expectRowsOf(stream);
}

TEST_P(SampleRowsAtRate, AreFoundInNextGenerationFiles) {
    WaveformSettings next = settings();
    next.isPcapng = true;
    WaveformStream stream(next);
    stream.send(frames(0.4)).lose().send(frames(0.1));
    expectRowsOf(stream);
}

INSTANTIATE_TEST_SUITE_P(Rates, SampleRowsAtRate,
                         testing::Values(RateAndAsdus{4000, 1, 50}, RateAndAsdus{4800, 1, 60},
                                         RateAndAsdus{4800, 2, 50}, RateAndAsdus{5760, 1, 60},
                                         RateAndAsdus{12800, 8, 50}, RateAndAsdus{14400, 6, 50},
                                         RateAndAsdus{15360, 8, 60}),
                         [](auto const& one) {
                             return "F" + std::to_string(one.param.rate) + "S" +
                                    std::to_string(one.param.asdus);
                         });

TEST(SampleRows, AreLostWhereFramesHaveOtherStreamsToo) {
    TrafficCapture capture;
    for (std::uint32_t i = 0; i < 1000; ++i) {
        if (i == 500) continue;
        SvMessage message;
        message.asdus.clear();
        for (int unit = 1; unit <= 13; ++unit) {
            Asdu asdu;
            asdu.svID = "MU" + std::to_string(unit);
            asdu.smpCnt = Unsigned<2>(i);
            message.asdus.push_back(asdu);
        }
        capture.addAt(std::uint64_t{i} * 250'000, svFrame(svEthernet(), message));
    }
    IndexedWaveform const indexed({capture.bytes()});
    ASSERT_EQ(indexed.index().streams().size(), 13U);
    for (TrafficStream const& stream : indexed.index().streams()) {
        auto const counts = readRows(indexed.index(), stream).counts;
        EXPECT_EQ(counts.received, 999U) << stream.key.name;
        EXPECT_EQ(counts.lost, 1U);
        EXPECT_EQ(counts.runs, 1U);
    }
}

TEST(SampleRows, KeepTheirTimesUnderJitter) {
    WaveformSettings settings;
    settings.jitter = 400'000;
    settings.firstCount = 3000;
    WaveformStream stream(settings);
    stream.send(500).lose(7).send(2000);
    expectRowsOf(stream);
}

TEST(SampleRows, AreOfTheSecondThatArrivalTells) {
    // By a tenth of a second the clock of the capture may be behind; by less than nine, ahead.
    for (std::int64_t const delay : {-99'000'000, -1'000, 0, 262'430'000, 899'000'000}) {
        SCOPED_TRACE(delay);
        for (std::uint32_t const firstCount : {0U, 399U, 2000U, 3999U}) {
            WaveformSettings settings;
            settings.delay = delay;
            settings.firstCount = firstCount;
            WaveformStream stream(settings);
            stream.send(4500);
            std::vector<WaveformRow> const rows = stream.rows(false);
            ASSERT_EQ(rows.front().time, rows.front().taken);
            expectRowsOf(stream);
        }
    }
    WaveformSettings settings;
    settings.delay = -101'000'000;
    WaveformStream stream(settings);
    stream.send(500);
    EXPECT_EQ(stream.rows(false).front().time, stream.rows(false).front().taken - kWaveSecond);
    expectRowsOf(stream);
}

TEST(SampleRows, AreFittedUnderJitter) {
    WaveformSettings settings;
    settings.jitter = 100'000;
    settings.smpSynch = 0;
    WaveformStream stream(settings);
    stream.send(4500);
    // Jitter is 50 us in the mean; a fit of 4500 is within some of its deviation.
    expectRowsOf(stream, {}, {.fit = 60'000, .havePlaces = true});
}

TEST(SampleRows, GoByTheirOwnSynchronizationInBetween) {
    WaveformSettings settings;
    settings.smpSynch = 0;
    settings.firstCount = 1000;
    WaveformStream stream(settings);
    stream.send(500).synchronize(2).send(1000).synchronize(1).send(600).lose(5);
    stream.send(10).synchronize(2).send(1200).synchronize({}).send(400);
    expectRowsOf(stream);
}

TEST(SampleRows, BeginAnewWhereTheClockOfTheCaptureSteps) {
    for (std::int64_t const step :
         {-kWaveSecond / 2, kWaveSecond / 2, -3 * kWaveSecond, -kWaveSecond, 17 * kWaveSecond / 10,
          -86400 * kWaveSecond, 365 * 86400 * kWaveSecond + kWaveSecond / 4}) {
        SCOPED_TRACE(step);
        WaveformSettings settings;
        settings.firstCount = 3500;
        settings.smpRate = 4000;
        settings.smpMod = 1;
        WaveformStream stream(settings);
        stream.send(800).lose(2).send(10).stepClock(step).send(900).lose(3).send(200);
        expectRowsOf(stream);
    }
}

TEST(SampleRows, BeginAnewWhereTheRateChangesAtASecond) {
    WaveformStream stream(WaveformSettings{.firstCount = 2000});
    stream.send(6000).changeRate(4800, 0).send(9000);
    expectRowsOf(stream);
}

TEST(SampleRows, BeginAnewWhereTheRateChangesInTheMiddleOfASecond) {
    WaveformStream stream(WaveformSettings{.smpSynch = 1, .firstCount = 2000});
    stream.send(7000).changeRate(4800, 0).send(9000);
    expectRowsOf(stream);
}

TEST(SampleRows, BeginAnewWhereADeclaredRateChanges) {
    WaveformSettings settings;
    settings.smpRate = 4000;
    settings.smpMod = 1;
    settings.firstCount = 3900;
    WaveformStream stream(settings);
    stream.send(300).changeRate(4800, 240, 4800).send(400).changeRate(4000, 40, 4000).send(50);
    expectRowsOf(stream);
}

TEST(SampleRows, ThatAreLateComeBeforeTheFirstThatArrived) {
    for (std::uint32_t const firstCount : {3997U, 3998U, 3999U, 0U, 5U, 1234U}) {
        for (std::uint32_t const rate : {4000U, 4800U}) {
            SCOPED_TRACE(std::to_string(firstCount) + " at " + std::to_string(rate));
            WaveformSettings settings;
            settings.rate = rate;
            settings.firstCount = firstCount + rate - 4000;
            WaveformStream stream(settings);
            stream.sendLate(2).lose().send(3).sendLate(3).send(5000);
            expectRowsOf(stream);
        }
    }
}

TEST(SampleRows, ThatAreMissingAfterALateFirstOneAreInTheWrapBefore) {
    // Of the first two frames, the second is lost, and the first comes after the third.
    WaveformSettings settings;
    settings.rate = 4800;
    settings.firstCount = 4798;
    WaveformStream stream(settings);
    stream.sendLate(1, 1).send(300);
    expectRowsOf(stream);
}

TEST(SampleRows, AreFittedWhereTheCounterRunsFreely) {
    WaveformSettings settings;
    settings.wrap = 65536;
    settings.firstCount = 65536 - 3000;
    WaveformStream stream(settings);
    stream.send(2000).lose(3).send(6000);
    expectRowsOf(stream);
}

TEST(SampleRows, OfEachLayoutAreReadAsWhatTheyAre) {
    using enum WaveMember;
    struct Case {
        std::vector<WaveMember> members;
        LayoutSource source;
    };
    for (Case const& one :
         {Case{repeatedMembers({int32, quality}, 8), LayoutSource::inferred},
          Case{repeatedMembers({float32, quality}, 8), LayoutSource::inferred},
          Case{repeatedMembers({float32}, 6), LayoutSource::inferred},
          Case{repeatedMembers({float32}, 5), LayoutSource::inferred},
          Case{{int32, timestamp}, LayoutSource::inferred},
          Case{repeatedMembers({float32, timestamp}, 3), LayoutSource::inferred},
          Case{{boolean, int8, int16, int24, int32, int64, int8u, int16u, int24u, int32u, float32,
                float64, enumerated, quality, timestamp, quality},
               LayoutSource::given},
          Case{{quality, int16, quality, quality, boolean, quality, float64, timestamp, quality,
                int24, int24u, quality},
               LayoutSource::given},
          Case{repeatedMembers({float64, quality}, 3), LayoutSource::given},
          Case{{int16, int16, int16}, LayoutSource::given}}) {
        WaveformSettings settings;
        settings.members = one.members;
        WaveformStream stream(settings);
        stream.send(300).lose(4).send(200);
        SampleOptions options;
        if (one.source == LayoutSource::given) options.layout = layoutOf(one.members);
        expectRowsOf(stream, options);
        ReadStream const read = IndexedWaveform(stream).read(options);
        ASSERT_FALSE(read.layouts.empty());
        for (FoundLayout const& layout : read.layouts) {
            EXPECT_EQ(layout.source, one.source);
            EXPECT_EQ(layout.layout, layoutOf(one.members));
        }
    }
}

TEST(SampleRows, ThatAreNothingKnownAreOctets) {
    using enum WaveMember;
    WaveformSettings settings;
    settings.members = {int8u, int24, int16};
    WaveformStream stream(settings);
    stream.send(100).lose(3).send(50);
    expectRowsOf(stream);
    ReadStream const read = IndexedWaveform(stream).read();
    for (FoundLayout const& layout : read.layouts) {
        EXPECT_FALSE(layout.layout);
        EXPECT_EQ(layout.source, LayoutSource::none);
    }
}

TEST(SampleRows, OfAWindowAreNotLookedForLongAfterItsEnd) {
    WaveformSettings settings;
    settings.rate = 1000;
    for (std::uint8_t const synch : {std::uint8_t{2}, std::uint8_t{0}}) {
        settings.smpSynch = synch;
        WaveformStream stream(settings);
        IndexedWaveform const indexed(stream.send(15'000));
        SampleOptions options;
        options.end = CaptureTime(std::chrono::seconds(settings.second + 1));
        ReadStream const read = indexed.read(options);
        EXPECT_NEAR(static_cast<double>(read.rows.size()), 1000, 1);
        EXPECT_GT(read.counts.received, 10'000U);
        EXPECT_LT(read.counts.received, 13'000U);
    }
}

TEST(SampleRows, OfAWindowGoByTheTimeOfTheSampleAndItsEndIsExcluded) {
    WaveformStream stream(WaveformSettings{.firstCount = 3000});
    stream.send(900).lose(50).send(600);
    IndexedWaveform const indexed(stream);
    std::vector<WaveformRow> const all = stream.rows(true);
    for (auto const& [first, end] : std::vector<std::pair<std::size_t, std::size_t>>{
             {0, all.size()}, {10, 11}, {10, 10}, {905, 940}, {100, 1200}, {920, 1000}}) {
        std::int64_t const endTime = end < all.size() ? all[end].time : all.back().time + 1;
        SampleOptions options;
        options.from = captureTimeOf(all[first].time);
        options.end = captureTimeOf(endTime);
        options.rows = SampleRows::everySample;
        std::vector<WaveformRow> const expected(all.begin() + static_cast<std::ptrdiff_t>(first),
                                                all.begin() + static_cast<std::ptrdiff_t>(end));
        EXPECT_TRUE(areRowsOf(stream.settings(), expected, indexed.read(options)));
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::SampleRowsTest
