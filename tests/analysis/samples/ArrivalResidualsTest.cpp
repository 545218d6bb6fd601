// How arrival goes along with the times of samples.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/ArrivalResiduals.hpp>
#include <algorithm>
#include <cstdint>
#include <vector>

#include "analysis/samples/ReadRows.hpp"
#include "support/CaptureFile.hpp"
#include "support/SampledValues.hpp"
#include "support/WaveformStream.hpp"

namespace TalIec61850Analysis::ArrivalResidualsTest {
namespace {

using namespace TalTest;

std::optional<ArrivalResiduals> residualsOf(WaveformStream const& stream) {
    IndexedWaveform const indexed(stream);
    return arrivalResiduals(indexed.index(), indexed.stream());
}

WaveformSettings residualSettings(std::uint32_t rate, std::uint32_t asdus) {
    WaveformSettings settings;
    settings.rate = rate;
    settings.asdus = asdus;
    settings.members = repeatedMembers({WaveMember::int32, WaveMember::quality}, 1);
    settings.firstCount = rate / 2;
    return settings;
}

TEST(Residuals, AreTheDelayWhereThatIsTheSame) {
    for (std::uint32_t const asdus : {1U, 6U}) {
        WaveformSettings settings = residualSettings(14400, asdus);
        settings.delay = 1'234'567;
        WaveformStream stream(settings);
        stream.send(26'000 / asdus).lose(3).send(100);
        auto const residuals = residualsOf(stream);
        ASSERT_TRUE(residuals);
        EXPECT_EQ(residuals->samples, 26'000 / asdus + 100);
        EXPECT_EQ(residuals->least, 1'234'567);
        EXPECT_EQ(residuals->median, 0);
        EXPECT_EQ(residuals->percentile99, 0);
        EXPECT_EQ(residuals->largest, 0);
        ASSERT_TRUE(residuals->driftPpm);
        EXPECT_NEAR(*residuals->driftPpm, 0, 0.001);
    }
}

TEST(Residuals, AreOneOfAFrameWhoseAsdusAreOfTwoStreamsInTurn) {
    constexpr std::uint32_t kFrames = 4000;  // of 2 samples each, 2 s
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (std::uint32_t frame = 0; frame < kFrames; ++frame) {
        SvMessage message;
        message.asdus.clear();
        for (std::uint32_t const sample : {2 * frame, 2 * frame + 1}) {
            for (char const* const svID : {"MU01", "MU02"}) {
                Asdu asdu;
                asdu.svID = svID;
                asdu.smpCnt = static_cast<std::uint16_t>(sample % 4000);
                message.asdus.push_back(asdu);
            }
        }
        std::uint32_t const newest = 2 * frame + 1;
        std::uint32_t const late = newest % 4000 * 250'000 + 70'000;
        capture.add(1'700'000'000 + newest / 4000, late, svFrame(svEthernet(), message));
    }
    IndexedWaveform const indexed({capture.bytes()});
    ASSERT_EQ(indexed.index().streams().size(), 2U);
    for (TrafficStream const& stream : indexed.index().streams()) {
        auto const residuals = arrivalResiduals(indexed.index(), stream);
        ASSERT_TRUE(residuals);
        EXPECT_EQ(residuals->samples, kFrames);
        EXPECT_EQ(residuals->least, 70'000);
        EXPECT_EQ(residuals->largest, 0);
    }
}

TEST(Residuals, HaveThePercentilesOfTheJitter) {
    WaveformSettings settings = residualSettings(4800, 2);
    settings.jitter = 350'000;
    WaveformStream stream(settings);
    stream.send(4000).lose(50).send(1000);
    std::vector<std::int64_t> own;
    for (WaveformRow const& row : stream.rows(false)) {
        if (row.asdu == 1) own.push_back(row.arrival - row.time);
    }
    std::sort(own.begin(), own.end());
    auto const residuals = residualsOf(stream);
    ASSERT_TRUE(residuals);
    EXPECT_EQ(residuals->samples, own.size());
    EXPECT_EQ(residuals->least, own.front());
    EXPECT_EQ(residuals->largest, own.back() - own.front());
    auto const percentile = [&](std::size_t percent) {
        return static_cast<double>(own[(own.size() * percent + 99) / 100 - 1] - own.front());
    };
    auto const expectNear = [](std::int64_t is, double should) {
        EXPECT_NEAR(static_cast<double>(is), should, should / 100);
    };
    expectNear(residuals->median, percentile(50));
    expectNear(residuals->percentile90, percentile(90));
    expectNear(residuals->percentile99, percentile(99));
}

TEST(Residuals, TellHowTheClocksDrift) {
    for (double const drift : {-20.0, 1.7, 100.0}) {
        WaveformSettings settings = residualSettings(4000, 1);
        settings.driftPpm = drift;
        WaveformStream stream(settings);
        stream.send(14'000);
        auto const residuals = residualsOf(stream);
        ASSERT_TRUE(residuals);
        ASSERT_TRUE(residuals->driftPpm);
        EXPECT_NEAR(*residuals->driftPpm, drift, std::abs(drift) / 20);
    }
}

TEST(Residuals, TellTheDriftUnderJitter) {
    WaveformSettings settings = residualSettings(4000, 1);
    settings.driftPpm = 20;
    settings.jitter = 100'000;
    WaveformStream stream(settings);
    stream.send(16'000);
    auto const residuals = residualsOf(stream);
    ASSERT_TRUE(residuals && residuals->driftPpm);
    EXPECT_NEAR(*residuals->driftPpm, 20, 3);
}

TEST(Residuals, TellNoDriftInLessThanASecond) {
    WaveformStream stream(residualSettings(4000, 1));
    stream.send(3000);
    auto const residuals = residualsOf(stream);
    ASSERT_TRUE(residuals);
    EXPECT_FALSE(residuals->driftPpm);
}

TEST(Residuals, AreSmallAgainstAFit) {
    WaveformSettings settings = residualSettings(4000, 1);
    settings.smpSynch = 0;
    WaveformStream stream(settings);
    stream.send(6000);
    auto const residuals = residualsOf(stream);
    ASSERT_TRUE(residuals);
    EXPECT_LE(std::abs(residuals->least), 1000);
    EXPECT_LE(residuals->largest, 1000);
}

TEST(Residuals, AreThoseOfTheTimesThatThePublisherSays) {
    for (std::uint32_t const asdus : {1U, 6U}) {
        WaveformSettings settings = residualSettings(4800, asdus);
        settings.hasRefrTm = true;
        settings.smpSynch = 0;
        settings.delay = 1'234'567;
        WaveformStream stream(settings);
        stream.send(9600 / asdus);
        auto const residuals = residualsOf(stream);
        ASSERT_TRUE(residuals);
        EXPECT_EQ(residuals->samples, 9600 / asdus);
        // refrTm counts in 60 ns; a fit would leave nothing of the delay.
        EXPECT_NEAR(static_cast<double>(residuals->least), 1'234'567, 60);
        EXPECT_LE(residuals->largest, 120);
    }
}

TEST(Residuals, AreNoneWhereNothingHasATime) {
    WaveformStream stream(residualSettings(4000, 1));
    stream.send(1);
    IndexedWaveform const indexed(stream);
    // A single synchronized sample at an unknown rate.
    auto const residuals = arrivalResiduals(indexed.index(), indexed.stream());
    EXPECT_TRUE(!residuals || residuals->samples == 1);
}

}  // namespace
}  // namespace TalIec61850Analysis::ArrivalResidualsTest
