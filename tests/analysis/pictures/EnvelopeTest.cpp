// Columns of samples that are few enough to count.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/pictures/EnvelopeBuilder.hpp>
#include <TalIec61850Analysis/pictures/JoinedQuality.hpp>
#include <chrono>
#include <cmath>
#include <limits>

#include "analysis/pictures/SampleBlocks.hpp"

namespace TalTest::EnvelopeTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kColumnMs = 1'000'000;
constexpr std::int64_t kEnvelopeStart = 1'700'000'000'000'000'000;
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

CaptureTime envelopeInstant(std::int64_t afterStart) {
    return captureTimeOf(kEnvelopeStart + afterStart);
}

/// 16 columns of two milliseconds.
EnvelopeOptions sixteenColumns() {
    return {.from = envelopeInstant(0),
            .end = envelopeInstant(32 * kColumnMs),
            .columns = 16,
            .fewestColumns = 4};
}

Envelopes envelopesOf(EnvelopeOptions const& options, std::vector<SampleBlock> const& blocks) {
    EnvelopeBuilder builder(options);
    for (SampleBlock const& block : blocks) builder.add(block);
    return builder.take();
}

void expectValues(std::vector<double> const& values, std::vector<double> const& expected) {
    ASSERT_GE(values.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_TRUE(values[i] == expected[i] || (std::isnan(values[i]) && std::isnan(expected[i])))
            << "column " << i << " is " << values[i] << ", should be " << expected[i];
    }
}

TEST(Envelope, TellsLeastLargestFirstAndLast) {
    auto const made = envelopesOf(sixteenColumns(),
                                  {blockOf(plainSamples(kEnvelopeStart, {5, -7, 3, 3})),
                                   blockOf(plainSamples(kEnvelopeStart + 5 * kColumnMs, {9, 1}))});
    ASSERT_EQ(made.levels.size(), 3U);
    EXPECT_EQ(made.start, kEnvelopeStart);
    EXPECT_EQ(made.channelNumbers, (std::vector<std::size_t>{0}));
    EnvelopeLevel const& finest = made.levels[0];
    EXPECT_EQ(finest.width, 2 * kColumnMs);
    ASSERT_EQ(finest.size(), 16U);
    EXPECT_EQ(std::vector(finest.received.begin(), finest.received.begin() + 5),
              (std::vector<std::uint64_t>{2, 2, 1, 1, 0}));
    EnvelopeChannel const& channel = finest.channels.at(0);
    expectValues(channel.least, {-7, 3, 9, 1, kNone});
    expectValues(channel.largest, {5, 3, 9, 1, kNone});
    expectValues(channel.first, {5, 3, 9, 1, kNone});
    expectValues(channel.last, {-7, 3, 9, 1, kNone});
    EXPECT_EQ(made.levels[1].width, 4 * kColumnMs);
    EXPECT_EQ(made.levels[1].size(), 8U);
    expectValues(made.levels[1].channels[0].least, {-7, 1, kNone});
    expectValues(made.levels[1].channels[0].largest, {5, 9, kNone});
    expectValues(made.levels[1].channels[0].first, {5, 9, kNone});
    expectValues(made.levels[1].channels[0].last, {3, 1, kNone});
    EXPECT_EQ(made.levels[2].size(), 4U);
}

TEST(Envelope, CountsMissingSamplesWithoutTheirZeros) {
    auto samples = plainSamples(kEnvelopeStart, {5, 6, 7, 8});
    samples[1].isMissing = true;
    samples[2].isMissing = true;
    samples[3].isMissing = true;
    auto const made = envelopesOf(sixteenColumns(), {blockOf(samples)});
    EnvelopeLevel const& finest = made.levels.at(0);
    EXPECT_EQ(finest.received[0], 1U);
    EXPECT_EQ(finest.missing[0], 1U);
    EXPECT_EQ(finest.received[1], 0U);
    EXPECT_EQ(finest.missing[1], 2U);
    expectValues(finest.channels.at(0).least, {5, kNone});
    EXPECT_EQ(finest.channels[0].counts[1], 0U);
}

TEST(Envelope, TellsTheWorstQuality) {
    auto samples = plainSamples(kEnvelopeStart, {1, 1, 1, 1, 1, 1});
    samples[0].qualities = {0x2003};  // questionable, derived
    samples[1].qualities = {0x0801};  // invalid, test
    samples[3].qualities = {0x0002};  // reserved
    auto const made = envelopesOf(sixteenColumns(), {blockOf(samples)});
    auto const& qualities = made.levels.at(0).channels.at(0).qualities;
    EXPECT_EQ(qualities[0], 0x2801U);
    EXPECT_EQ(qualities[1], 0x0002U);
    EXPECT_EQ(qualities[2], 0U);
    EXPECT_EQ(made.levels[1].channels[0].qualities[0], 0x2801U);
}

TEST(Envelope, OrdersValidities) {
    // From the best to the worst: good, questionable, reserved, invalid.
    std::vector<std::uint32_t> const order = {0, 3, 2, 1};
    for (std::size_t a = 0; a < order.size(); ++a) {
        for (std::size_t b = 0; b < order.size(); ++b) {
            EXPECT_EQ(detail::joinedQuality(order[a], order[b]), order[std::max(a, b)]);
        }
    }
    EXPECT_EQ(detail::joinedQuality(0x80000010U, 0x00000800U), 0x80000810U);
}

TEST(Envelope, LeavesOutWhatIsNoNumber) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (PlainType const type : {PlainType::float32, PlainType::float64}) {
        auto const made = envelopesOf(
            sixteenColumns(),
            {blockOf(plainSamples(kEnvelopeStart, {kNone, 2, 4, kInfinity, -kInfinity, kNone}),
                     type)});
        EnvelopeLevel const& finest = made.levels.at(0);
        expectValues(finest.channels.at(0).least, {2, 4, kNone});
        expectValues(finest.channels[0].largest, {2, 4, kNone});
        EXPECT_EQ(finest.channels[0].counts[0], 1U);
        EXPECT_EQ(finest.channels[0].counts[2], 0U);
        EXPECT_EQ(finest.received[2], 2U);
    }
}

TEST(Envelope, TakesEveryType) {
    double const large = 9e18;
    auto const made = envelopesOf(
        sixteenColumns(), {blockOf(plainSamples(kEnvelopeStart, {large, -large}), PlainType::int64),
                           blockOf(plainSamples(kEnvelopeStart + 2 * kColumnMs,
                                                {2'147'483'647.0, -2'147'483'648.0}))});
    expectValues(made.levels.at(0).channels.at(0).least, {-large, -2'147'483'648.0});
    expectValues(made.levels[0].channels[0].largest, {large, 2'147'483'647.0});
}

TEST(Envelope, TakesNothingInAfterItWasTaken) {
    for (EnvelopeOptions const& options : {EnvelopeOptions{}, sixteenColumns()}) {
        EnvelopeBuilder builder(options);
        SampleBlock const block = blockOf(plainSamples(kEnvelopeStart, {1, 2, 3}));
        builder.add(block);
        EXPECT_FALSE(builder.take().levels.empty());
        builder.add(block);
        EXPECT_TRUE(builder.take().levels.empty());
    }
}

TEST(Envelope, HasABoundedNumberOfColumns) {
    auto const made = envelopesOf({.from = envelopeInstant(0),
                                   .end = envelopeInstant(kColumnMs * 10'000),
                                   .columns = std::numeric_limits<std::size_t>::max()},
                                  {});
    ASSERT_FALSE(made.levels.empty());
    EXPECT_LE(made.levels.front().size(), 1'048'576U);
    EXPECT_GT(made.levels.front().size(), 524'288U);
}

TEST(Envelope, JoinsNoColumnsOfListsThatAreNotOfOneLength) {
    auto const made = envelopesOf(sixteenColumns(), {blockOf(plainSamples(kEnvelopeStart, {5}))});
    EnvelopeLevel const& whole = made.levels.front();
    EXPECT_EQ(joinColumns(whole).size(), 8U);
    std::vector<EnvelopeLevel> broken(3, whole);
    broken[0].missing.pop_back();
    broken[1].channels[0].counts.resize(3);
    broken[2].channels[0].last.clear();
    for (EnvelopeLevel const& each : broken) {
        EXPECT_EQ(joinColumns(each).size(), 0U);
    }
}

TEST(Envelope, HasNoColumnsOfAnEmptyWindow) {
    auto options = sixteenColumns();
    options.end = options.from;
    EXPECT_TRUE(envelopesOf(options, {}).levels.empty());
    EXPECT_TRUE(envelopesOf(options, {blockOf(plainSamples(kEnvelopeStart, {1}))}).levels.empty());
    options.end = *options.from - std::chrono::seconds(1);
    EXPECT_TRUE(envelopesOf(options, {blockOf(plainSamples(kEnvelopeStart, {1}))}).levels.empty());
    EXPECT_TRUE(envelopesOf({}, {}).levels.empty());
}

TEST(Envelope, HasEmptyColumnsOfAWindowWithoutSamples) {
    auto const made = envelopesOf(sixteenColumns(), {});
    ASSERT_EQ(made.levels.size(), 3U);
    EXPECT_EQ(made.levels[0].size(), 16U);
    EXPECT_TRUE(made.levels[0].channels.empty());
}

TEST(Envelope, LeavesOutWhatIsNotInTheWindow) {
    auto const made = envelopesOf(sixteenColumns(),
                                  {blockOf(plainSamples(kEnvelopeStart - kColumnMs, {1, 2})),
                                   blockOf(plainSamples(kEnvelopeStart + 31 * kColumnMs, {3, 4}))});
    EnvelopeLevel const& finest = made.levels.at(0);
    EXPECT_EQ(finest.received.front(), 1U);
    EXPECT_EQ(finest.received.back(), 1U);
    expectValues(finest.channels.at(0).largest, {2});
    EXPECT_EQ(finest.channels[0].largest.back(), 3);
    EXPECT_EQ(made.untimed, 0U);
}

TEST(Envelope, EndsInsideAColumnWhereTheWindowDoes) {
    // 17 ms in 16 columns at most: columns of 1,062,500 ns, and no sample of the last one after the
    // window.
    auto options = sixteenColumns();
    options.end = envelopeInstant(17 * kColumnMs - 5);
    auto const made =
        envelopesOf(options, {blockOf(plainSamples(kEnvelopeStart + 16 * kColumnMs, {1})),
                              blockOf(plainSamples(kEnvelopeStart + 17 * kColumnMs - 6, {2})),
                              blockOf(plainSamples(kEnvelopeStart + 17 * kColumnMs - 5, {3}))});
    EXPECT_EQ(made.levels.at(0).size(), 16U);
    EXPECT_EQ(made.levels[0].width, 1'062'500);
    EXPECT_EQ(made.levels[0].received.back(), 2U);
}

TEST(Envelope, FindsTheWindowWhereNoneIsGiven) {
    EnvelopeOptions const options{.columns = 16, .fewestColumns = 16};
    std::vector<SampleBlock> blocks;
    for (int second = 0; second < 100; ++second) {
        blocks.push_back(
            blockOf(plainSamples(kEnvelopeStart + second * 1'000 * kColumnMs, {1.0 * second, -1})));
    }
    auto const made = envelopesOf(options, blocks);
    EXPECT_EQ(made.start, kEnvelopeStart);
    ASSERT_EQ(made.levels.size(), 1U);
    EXPECT_GE(made.levels[0].size(), 8U);
    EXPECT_LE(made.levels[0].size(), 16U);
    EXPECT_EQ(made.levels[0].channels.at(0).largest.back(), 99);
    // The same back to front.
    std::reverse(blocks.begin(), blocks.end());
    auto const back = envelopesOf(options, blocks);
    ASSERT_EQ(back.levels.size(), 1U);
    EXPECT_LE(back.levels[0].size(), 16U);
    EXPECT_EQ(back.levels[0].channels.at(0).largest.back(), 99);
    EXPECT_LE(back.start, kEnvelopeStart);
    EXPECT_GT(back.start, kEnvelopeStart - back.levels[0].width);
}

TEST(Envelope, CountsSamplesWithoutATime) {
    auto block = blockOf(plainSamples(kEnvelopeStart, {1, 2, 3}));
    block.sampleTimes[0] = kNoTime;
    block.arrivals[0] = kNoTime;
    block.sampleTimes[1] = kNoTime;  // goes by arrival
    auto made = envelopesOf({}, {block});
    EXPECT_EQ(made.untimed, 1U);
    EXPECT_EQ(made.start, kEnvelopeStart + kColumnMs);
    for (std::int64_t const time :
         {std::int64_t{-1}, std::int64_t{1} << 62U, std::numeric_limits<std::int64_t>::max()}) {
        made = envelopesOf({}, {blockOf(plainSamples(time, {1}))});
        EXPECT_EQ(made.untimed, 1U);
        EXPECT_TRUE(made.levels.empty());
    }
}

TEST(Envelope, SpansAllTimesThatThereAre) {
    std::int64_t const last = 4'599'999'999'999'999'999;
    for (bool const isForward : {true, false}) {
        auto const made = envelopesOf({.columns = 16, .fewestColumns = 4},
                                      {blockOf(plainSamples(isForward ? 0 : last, {1})),
                                       blockOf(plainSamples(kEnvelopeStart, {2})),
                                       blockOf(plainSamples(isForward ? last : 0, {3}))});
        ASSERT_FALSE(made.levels.empty());
        std::uint64_t received = 0;
        for (std::uint64_t const count : made.levels[0].received) received += count;
        EXPECT_EQ(received, 3U);
        EXPECT_LE(made.levels[0].size(), 16U);
    }
    auto const made = envelopesOf({.from = CaptureTime::min(), .end = CaptureTime::max()},
                                  {blockOf(plainSamples(last, {1}))});
    EXPECT_EQ(made.levels.at(0).size(), 4096U);
    EXPECT_EQ(made.levels[0].received.back(), 1U);
}

TEST(Envelope, ShowsTheChannelsThatWereAskedFor) {
    std::vector<PlainSample> samples = {{.time = kEnvelopeStart, .values = {10, 11, 12}}};
    auto options = sixteenColumns();
    options.channels = {2, 0, 7};
    auto const made = envelopesOf(options, {blockOf(samples)});
    EXPECT_EQ(made.channelNumbers, options.channels);
    EXPECT_EQ(made.channelsOfStream, 3U);
    ASSERT_EQ(made.levels.at(0).channels.size(), 3U);
    EXPECT_EQ(made.levels[0].channels[0].first[0], 12);
    EXPECT_EQ(made.levels[0].channels[1].first[0], 10);
    EXPECT_EQ(made.levels[0].channels[2].counts[0], 0U);
}

TEST(Envelope, ShowsSomeChannelsOfVeryMany) {
    std::vector<PlainSample> samples = {
        {.time = kEnvelopeStart, .values = std::vector<double>(8191, 1)}};
    auto const made = envelopesOf(sixteenColumns(), {blockOf(samples)});
    EXPECT_EQ(made.levels.at(0).channels.size(), kMostPictureChannels);
    EXPECT_EQ(made.channelsOfStream, 8191U);
}

TEST(Envelope, TakesChannelsInThatComeLater) {
    std::vector<PlainSample> const more = {
        {.time = kEnvelopeStart + 2 * kColumnMs, .values = {5, 6}}};
    auto const made =
        envelopesOf(sixteenColumns(), {blockOf(plainSamples(kEnvelopeStart, {1})), blockOf(more),
                                       blockOf(plainSamples(kEnvelopeStart + 4 * kColumnMs, {2}))});
    ASSERT_EQ(made.levels.at(0).channels.size(), 2U);
    expectValues(made.levels[0].channels[0].last, {1, 5, 2, kNone});
    expectValues(made.levels[0].channels[1].last, {kNone, 6, kNone, kNone});
}

TEST(Envelope, ChoosesALevelByTheWidthOfAPixel) {
    auto const made = envelopesOf(sixteenColumns(), {});
    EXPECT_EQ(made.levelFor(1), 0U);
    EXPECT_EQ(made.levelFor(2 * kColumnMs), 0U);
    EXPECT_EQ(made.levelFor(4 * kColumnMs - 1), 0U);
    EXPECT_EQ(made.levelFor(4 * kColumnMs), 1U);
    EXPECT_EQ(made.levelFor(1'000 * kColumnMs), 2U);
    EXPECT_EQ(Envelopes{}.levelFor(5), 0U);
}

}  // namespace
}  // namespace TalTest::EnvelopeTest
