// Samples themselves, as far as they fit a budget.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/pictures/Waveform.hpp>
#include <cmath>
#include <limits>

#include "analysis/pictures/SampleBlocks.hpp"

namespace TalTest::WaveformTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kFirstRow = 1'700'000'000'000'000'000;

TEST(WaveformBuilder, HoldsWhatBlocksHold) {
    auto samples = plainSamples(kFirstRow, {5, -7, 3}, 0x801);
    samples[1].isMissing = true;
    WaveformBuilder builder(10);
    builder.add(blockOf(samples));
    builder.add(blockOf(plainSamples(kFirstRow + 3'000'000, {2.5}, {}), PlainType::float32));
    Waveform const waveform = builder.take();
    ASSERT_EQ(waveform.size(), 4U);
    EXPECT_EQ(waveform.times[3], kFirstRow + 3'000'000);
    EXPECT_EQ(waveform.states[0], SampleState::received);
    EXPECT_EQ(waveform.states[1], SampleState::missing);
    ASSERT_EQ(waveform.channels.size(), 1U);
    EXPECT_EQ(waveform.channels[0].values[0], 5);
    EXPECT_TRUE(std::isnan(waveform.channels[0].values[1]));
    EXPECT_EQ(waveform.channels[0].values[3], 2.5);
    EXPECT_EQ(waveform.channels[0].qualities, (std::vector<std::uint32_t>{0x801, 0, 0x801, 0}));
    ASSERT_EQ(waveform.runs.size(), 1U);
    EXPECT_EQ(waveform.runs[0].rate.samples, 1000U);
    EXPECT_FALSE(waveform.isTooLong);
}

TEST(WaveformBuilder, HasNothingOfWhatIsTooLong) {
    for (std::size_t const budget : {std::size_t{0}, std::size_t{2}, std::size_t{3}}) {
        WaveformBuilder builder(budget);
        builder.add(blockOf(plainSamples(kFirstRow, {1, 2})));
        builder.add(blockOf(plainSamples(kFirstRow + 2'000'000, {3})));
        builder.add(blockOf({}));
        EXPECT_EQ(builder.waveform().size(), budget == 3 ? 3U : 0U);
        EXPECT_EQ(builder.waveform().isTooLong, budget != 3);
        EXPECT_EQ(builder.waveform().channelsOfStream, 1U);
    }
}

TEST(WaveformBuilder, TakesChannelsInThatComeLater) {
    WaveformBuilder builder(10);
    builder.add(blockOf(plainSamples(kFirstRow, {1})));
    builder.add(blockOf({{.time = kFirstRow + 1'000'000, .values = {5, 6}}}));
    builder.add(blockOf(plainSamples(kFirstRow + 2'000'000, {3})));
    Waveform const& waveform = builder.waveform();
    ASSERT_EQ(waveform.channels.size(), 2U);
    ASSERT_EQ(waveform.channels[1].values.size(), 3U);
    EXPECT_TRUE(std::isnan(waveform.channels[1].values[0]));
    EXPECT_EQ(waveform.channels[1].values[1], 6);
    EXPECT_TRUE(std::isnan(waveform.channels[1].values[2]));
}

TEST(WaveformBuilder, BeginsARunWithItsFirstRow) {
    WaveformBuilder builder(10);
    auto block = blockOf(plainSamples(kFirstRow, {1, 2}));
    builder.add(block);
    block.run.start = RunStart::restart;
    block.run.first.packet = 2;
    builder.add(block);
    builder.add(block);
    EXPECT_EQ(builder.waveform().runs,
              (std::vector<WaveformRun>{
                  {.firstRow = 0, .rate = {.samples = 1000}, .start = RunStart::first},
                  {.firstRow = 2, .rate = {.samples = 1000}, .start = RunStart::restart}}));
}

TEST(WaveformBuilder, ForgetsTheFirstRows) {
    auto const filled = [] {
        WaveformBuilder builder(10);
        auto block = blockOf(plainSamples(kFirstRow, {1, 2}));
        builder.add(block);
        block.run.start = RunStart::restart;
        block.run.first.packet = 2;
        builder.add(block);
        return builder;
    };
    auto builder = filled();
    builder.keepLast(5);
    EXPECT_EQ(builder.waveform().size(), 4U);
    builder.keepLast(3);
    EXPECT_EQ(builder.waveform().channels[0].values, (std::vector<double>{2, 1, 2}));
    EXPECT_EQ(builder.waveform().channels[0].qualities.size(), 3U);
    ASSERT_EQ(builder.waveform().runs.size(), 2U);
    EXPECT_EQ(builder.waveform().runs[1].firstRow, 1U);
    builder.keepLast(2);
    ASSERT_EQ(builder.waveform().runs.size(), 1U);
    EXPECT_EQ(builder.waveform().runs[0].start, RunStart::restart);
    EXPECT_EQ(builder.waveform().runs[0].firstRow, 0U);
    builder.keepLast(0);
    EXPECT_EQ(builder.waveform().size(), 0U);
    EXPECT_TRUE(builder.waveform().runs.empty());
}

}  // namespace
}  // namespace TalTest::WaveformTest
