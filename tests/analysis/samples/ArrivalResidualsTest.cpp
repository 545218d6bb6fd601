// How arrival goes along with the times of samples.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/ArrivalResiduals.hpp>
#include <algorithm>
#include <cstdint>
#include <vector>

#include "analysis/samples/ReadRows.hpp"
#include "support/WaveformStream.hpp"

namespace TalIec61850Analysis {
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

TEST(Residuals, AreNoneWhereNothingHasATime) {
    WaveformStream stream(residualSettings(4000, 1));
    stream.send(1);
    IndexedWaveform const indexed(stream);
    // A single synchronized sample at an unknown rate.
    auto const residuals = arrivalResiduals(indexed.index(), indexed.stream());
    EXPECT_TRUE(!residuals || residuals->samples == 1);
}

}  // namespace
}  // namespace TalIec61850Analysis
