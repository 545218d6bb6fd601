// Where samples are missing or of bad quality.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/pictures/SampleSpans.hpp>
#include <limits>

#include "analysis/pictures/SampleBlocks.hpp"

namespace TalTest::SampleSpansTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kSpanMs = 1'000'000;
constexpr std::int64_t kSpanStart = 1'700'000'000'000'000'000;

SampleSpans spansOf(SpanOptions const& options, std::vector<SampleBlock> const& blocks) {
    SampleSpanBuilder builder(options);
    for (SampleBlock const& block : blocks) builder.add(block);
    return builder.take();
}

/// Rows of a millisecond each, by their qualities; unset is a missing one.
std::vector<PlainSample> rowsOfQualities(std::int64_t firstMs,
                                         std::vector<std::optional<std::uint32_t>> const& words) {
    std::vector<PlainSample> samples;
    for (auto const& word : words) {
        samples.push_back(
            {.time = kSpanStart + (firstMs + static_cast<int>(samples.size())) * kSpanMs,
             .values = {1},
             .qualities = {word.value_or(0)},
             .isMissing = !word});
    }
    return samples;
}

SampleSpan spanMs(std::int64_t from, std::int64_t to, std::uint64_t samples,
                  std::uint32_t quality = 0) {
    return {.from = kSpanStart + from * kSpanMs,
            .to = kSpanStart + to * kSpanMs,
            .samples = samples,
            .quality = quality};
}

TEST(SampleSpans, TellsMissingSamplesAcrossBlocks) {
    auto const made = spansOf({}, {blockOf(rowsOfQualities(0, {0, {}, {}, 0, {}})),
                                   blockOf(rowsOfQualities(5, {{}, 0, {}}))});
    EXPECT_EQ(made.missing,
              (std::vector<SampleSpan>{spanMs(1, 3, 2), spanMs(4, 6, 2), spanMs(7, 8, 1)}));
}

TEST(SampleSpans, EndsASpanWhereTheNextBlockBeginsWithoutOne) {
    auto const made =
        spansOf({}, {blockOf(rowsOfQualities(0, {0, {}})), blockOf(rowsOfQualities(2, {0, 0})),
                     blockOf(rowsOfQualities(4, {{}, 0}))});
    EXPECT_EQ(made.missing, (std::vector<SampleSpan>{spanMs(1, 2, 1), spanMs(4, 5, 1)}));
}

TEST(SampleSpans, TellsEachQualityOfAChannel) {
    auto const made = spansOf({}, {blockOf(rowsOfQualities(0, {0, 1, 1, 3, 0, 0x801})),
                                   blockOf(rowsOfQualities(6, {0x801, 0, {}, 1}))});
    ASSERT_EQ(made.qualities.size(), 1U);
    EXPECT_EQ(made.qualities[0],
              (std::vector<SampleSpan>{spanMs(1, 3, 2, 1), spanMs(3, 4, 1, 3),
                                       spanMs(5, 7, 2, 0x801), spanMs(9, 10, 1, 1)}));
    EXPECT_EQ(made.channelNumbers, (std::vector<std::size_t>{0}));
}

TEST(SampleSpans, TakesTheBitsThatCount) {
    std::vector<SampleBlock> const blocks = {blockOf(rowsOfQualities(0, {0x2000, 0x2001, 0x800}))};
    // That a value was derived is nothing bad.
    EXPECT_EQ(spansOf({}, blocks).qualities[0],
              (std::vector<SampleSpan>{spanMs(1, 2, 1, 1), spanMs(2, 3, 1, 0x800)}));
    EXPECT_EQ(spansOf({.qualityBits = 0x3}, blocks).qualities[0],
              (std::vector<SampleSpan>{spanMs(1, 2, 1, 1)}));
    EXPECT_EQ(spansOf({.qualityBits = 0x2000}, blocks).qualities[0],
              (std::vector<SampleSpan>{spanMs(0, 2, 2, 0x2000)}));
}

TEST(SampleSpans, EndsASpanWithItsRun) {
    auto other = blockOf(rowsOfQualities(3, {{}, 0, 1}));
    other.run.start = RunStart::restart;
    auto const made = spansOf({}, {blockOf(rowsOfQualities(0, {0, 1, {}})), other});
    EXPECT_EQ(made.missing, (std::vector<SampleSpan>{spanMs(2, 3, 1), spanMs(3, 4, 1)}));
}

TEST(SampleSpans, PassesOverSamplesWithoutATime) {
    auto block = blockOf(rowsOfQualities(0, {{}, {}, 1, 1}));
    block.sampleTimes[0] = kNoTime;
    block.sampleTimes[3] = kNoTime;
    block.arrivals[3] = kNoTime;
    auto made = spansOf({}, {block});
    EXPECT_EQ(made.missing, (std::vector<SampleSpan>{spanMs(1, 2, 1)}));
    EXPECT_EQ(made.qualities[0], (std::vector<SampleSpan>{spanMs(2, 3, 1, 1)}));
    block.sampleTimes = std::vector<std::int64_t>(4, kNoTime);
    block.arrivals = block.sampleTimes;
    made = spansOf({}, {block});
    EXPECT_TRUE(made.missing.empty());
    EXPECT_TRUE(made.qualities[0].empty());
}

TEST(SampleSpans, EndsOneNanosecondLaterWithoutARate) {
    auto const made = spansOf({}, {blockOf(rowsOfQualities(0, {0, 1}), PlainType::int32, 0)});
    EXPECT_EQ(made.qualities[0][0].to, kSpanStart + kSpanMs + 1);
}

TEST(SampleSpans, TakesTimesThatMayBeAnyNumbers) {
    for (std::int64_t const time :
         {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min() + 1}) {
        auto const made = spansOf({}, {blockOf({{.time = time, .values = {1}, .qualities = {1}}})});
        ASSERT_EQ(made.qualities[0].size(), 1U);
        EXPECT_EQ(made.qualities[0][0].from, time);
    }
}

RC_GTEST_PROP(SampleSpans, AreBoundedAndCountAllSamples, ()) {
    SampleSpanBuilder builder({.mostSpans = 16});
    std::uint64_t missing = 0;
    std::uint64_t bad = 0;
    std::uint32_t any = 0;
    std::int64_t firstMs = 0;
    auto const blocks = *rc::gen::inRange(0, 8);
    for (int i = 0; i < blocks; ++i) {
        std::vector<std::optional<std::uint32_t>> words;
        auto const rows = *rc::gen::inRange(0, 60);
        for (int row = 0; row < rows; ++row) {
            words.push_back(*rc::gen::elementOf(
                std::vector<std::optional<std::uint32_t>>{0U, 0U, 1U, 0x803U, std::nullopt}));
            missing += words.back() ? 0 : 1;
            bad += words.back().value_or(0) != 0 ? 1 : 0;
            any |= words.back().value_or(0);
        }
        builder.add(blockOf(rowsOfQualities(firstMs, words)));
        firstMs += rows;
    }
    auto const made = builder.take();
    auto const sum = [](std::vector<SampleSpan> const& spans) {
        std::uint64_t samples = 0;
        std::int64_t last = 0;
        for (SampleSpan const& span : spans) {
            samples += span.samples;
            RC_ASSERT(span.from >= last);
            RC_ASSERT(span.to > span.from);
            last = span.to;
        }
        return samples;
    };
    RC_ASSERT(made.missing.size() <= 16U);
    RC_ASSERT(sum(made.missing) == missing);
    for (auto const& spans : made.qualities) {
        RC_ASSERT(spans.size() <= 16U);
        RC_ASSERT(sum(spans) == bad);
        std::uint32_t seen = 0;
        for (SampleSpan const& span : spans) seen |= span.quality;
        RC_ASSERT((seen & ~3U) == (any & ~3U));
    }
}

}  // namespace
}  // namespace TalTest::SampleSpansTest
