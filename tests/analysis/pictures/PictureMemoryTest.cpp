// Hours of samples take no more memory than seconds.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/pictures/EnvelopeBuilder.hpp>
#include <TalIec61850Analysis/pictures/SampleSpans.hpp>

#include "analysis/pictures/SampleBlocks.hpp"
#include "support/WatchedHeap.hpp"

namespace TalTest::PictureMemoryTest {
namespace {

using namespace TalIec61850Analysis;

/// A block of a second at 4000 a second, with a missing sample and one of bad quality.
SampleBlock oneSecond() {
    std::vector<PlainSample> samples;
    for (int i = 0; i < 4000; ++i) {
        samples.push_back({.time = 1'700'000'000'000'000'000 + std::int64_t{250'000} * i,
                           .values = {static_cast<double>(i % 80)},
                           .qualities = {i == 77 ? 1U : 0U},
                           .isMissing = i == 1234});
    }
    return blockOf(samples, PlainType::int32, 4000);
}

void goOnBySeconds(SampleBlock& block, std::int64_t seconds) {
    for (std::int64_t& time : block.sampleTimes) time += seconds * 1'000'000'000;
}

TEST(PictureMemory, DoesNotGrowWithHours) {
    SampleBlock block = oneSecond();
    EnvelopeBuilder envelopes({.columns = 1000});
    SampleSpanBuilder spans({.mostSpans = 100});
    auto const addSeconds = [&](int seconds) {
        for (int i = 0; i < seconds; ++i) {
            envelopes.add(block);
            spans.add(block);
            goOnBySeconds(block, 1);
        }
    };
    addSeconds(300);
    std::size_t const live = liveAllocations();
    addSeconds(3000);
    EXPECT_EQ(liveAllocations(), live);
    // A second in each hour of the next four days.
    for (int hour = 0; hour < 96; ++hour) {
        goOnBySeconds(block, 3600);
        addSeconds(1);
    }
    EXPECT_EQ(liveAllocations(), live);
    Envelopes const made = envelopes.take();
    std::uint64_t received = 0;
    std::uint64_t missing = 0;
    EXPECT_LE(made.levels.at(0).size(), 1000U);
    for (std::size_t i = 0; i < made.levels[0].size(); ++i) {
        received += made.levels[0].received[i];
        missing += made.levels[0].missing[i];
    }
    EXPECT_EQ(received, 3396U * 3999U);
    EXPECT_EQ(missing, 3396U);
    SampleSpans const found = spans.take();
    EXPECT_LE(found.missing.size(), 100U);
    std::uint64_t bad = 0;
    for (SampleSpan const& span : found.qualities.at(0)) bad += span.samples;
    EXPECT_EQ(bad, 3396U);
}

TEST(PictureMemory, IsNotTakenByBlocksOfTheSameColumns) {
    SampleBlock const block = oneSecond();
    EnvelopeBuilder envelopes({.columns = 1000});
    SampleSpanBuilder spans;
    envelopes.add(block);
    spans.add(block);
    std::size_t const taken = heapAllocations();
    envelopes.add(block);
    EXPECT_EQ(heapAllocations(), taken);
}

}  // namespace
}  // namespace TalTest::PictureMemoryTest
