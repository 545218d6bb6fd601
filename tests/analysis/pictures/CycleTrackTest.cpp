// Phasors at equal steps of time.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/pictures/CycleTrack.hpp>
#include <cmath>
#include <numbers>

#include "analysis/pictures/AnalyticWave.hpp"
#include "analysis/pictures/SampleBlocks.hpp"

namespace TalTest::CycleTrackTest {
namespace {

using namespace TalIec61850Analysis;

/// Rows of two channels at 4000 a second, the second one of ten times the first.
SampleBlock trackBlock(AnalyticWave const& wave, std::size_t first, std::size_t rows,
                       std::optional<std::size_t> missing = {}) {
    std::vector<PlainSample> samples;
    for (std::size_t row = first; row < first + rows; ++row) {
        double const value = wave.at(static_cast<double>(row) / 4000);
        samples.push_back({.time = kWaveformStart + 250'000 * static_cast<std::int64_t>(row),
                           .values = {value, 10 * value},
                           .qualities = {0, 0},
                           .isMissing = missing == row});
    }
    return blockOf(samples, PlainType::float64, 4000);
}

CycleTrack trackOf(std::vector<SampleBlock> const& blocks, TrackOptions const& options = {}) {
    CycleTrackBuilder builder(options);
    for (SampleBlock const& block : blocks) builder.add(block);
    return builder.take();
}

void expectTrackOf(AnalyticWave const& wave, CycleTrack const& track, std::size_t first) {
    for (std::size_t i = first; i < track.instants.size(); ++i) {
        EXPECT_NEAR(track.frequencies[i], wave.frequency, 1e-6);
        double const since = static_cast<double>(track.instants[i] - kWaveformStart) * 1e-9;
        double const turns = std::remainder(wave.frequency * since, 1.0);
        for (std::size_t channel = 0; channel < 2; ++channel) {
            double const factor = channel == 0 ? 1 : 10;
            TrackChannel const& is = track.channels.at(channel);
            EXPECT_NEAR(is.magnitudes[i] * std::numbers::sqrt2 / factor, 1, 1e-6);
            EXPECT_NEAR(is.rms[i] * std::numbers::sqrt2 / factor, 1, 1e-6);
            EXPECT_NEAR(foldedAngle(is.angles[i] - 2 * std::numbers::pi * turns), 0, 1e-5);
        }
    }
}

TEST(CycleTrack, FollowsTheWave) {
    AnalyticWave const wave{.frequency = 49.3};
    auto const track =
        trackOf({trackBlock(wave, 0, 333), trackBlock(wave, 333, 1), trackBlock(wave, 334, 466)});
    // 0.2 s, at each 20 ms; the first cycle, of 81 samples, is whole just then.
    ASSERT_EQ(track.instants.size(), 10U);
    EXPECT_EQ(track.instants[0], kWaveformStart);
    EXPECT_EQ(track.instants[9], kWaveformStart + 180'000'000);
    EXPECT_TRUE(std::isnan(track.frequencies[0]));
    EXPECT_TRUE(std::isnan(track.channels.at(0).rms[0]));
    expectTrackOf(wave, track, 1);
    EXPECT_EQ(track.channelNumbers, (std::vector<std::size_t>{0, 1}));
}

TEST(CycleTrack, IsTheSameHoweverBlocksAreCut) {
    AnalyticWave const wave{.frequency = 50.6};
    std::vector<SampleBlock> blocks;
    for (std::size_t row = 0; row < 800; row += 16) blocks.push_back(trackBlock(wave, row, 16));
    TrackOptions const options{.step = std::chrono::milliseconds(7), .cycle = {.frequency = 50.6}};
    auto const one = trackOf({trackBlock(wave, 0, 800)}, options);
    auto const many = trackOf(blocks, options);
    EXPECT_EQ(one.instants, many.instants);
    expectTrackOf(wave, many, 4);
    for (std::size_t i = 4; i < one.instants.size(); ++i) {
        EXPECT_EQ(one.channels[0].rms[i], many.channels[0].rms[i]);
    }
}

TEST(CycleTrack, HasNothingWhereASampleIsMissing) {
    AnalyticWave const wave;
    auto const track = trackOf({trackBlock(wave, 0, 800, 410)}, {.cycle = {.frequency = 50}});
    ASSERT_EQ(track.instants.size(), 10U);
    EXPECT_FALSE(std::isnan(track.channels.at(0).rms[5]));
    EXPECT_TRUE(std::isnan(track.channels[0].rms[6]));
    EXPECT_FALSE(std::isnan(track.channels[0].rms[7]));
}

TEST(CycleTrack, IsBounded) {
    AnalyticWave const wave;
    auto const track =
        trackOf({trackBlock(wave, 0, 800)}, {.cycle = {.frequency = 50}, .mostInstants = 4});
    EXPECT_EQ(track.instants.size(), 4U);
    EXPECT_EQ(track.frequencies.size(), 4U);
    EXPECT_EQ(track.channels.at(1).angles.size(), 4U);
    EXPECT_EQ(track.leftOut, 6U);
}

TEST(CycleTrack, HasNothingWithoutARate) {
    auto block = trackBlock(AnalyticWave{}, 0, 800);
    block.run.rate = {};
    EXPECT_TRUE(trackOf({block}).instants.empty());
    EXPECT_TRUE(trackOf({}).instants.empty());
    // Any step is taken.
    EXPECT_EQ(trackOf({trackBlock(AnalyticWave{}, 0, 800)},
                      {.step = std::chrono::nanoseconds(-5), .cycle = {.frequency = 50}})
                  .instants.size(),
              200U);
}

}  // namespace
}  // namespace TalTest::CycleTrackTest
