// The samples of a stream in figures.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/samples/SummarizeSamples.hpp>
#include <cstdint>
#include <vector>

#include "analysis/samples/ReadRows.hpp"
#include "support/WaveformStream.hpp"

namespace TalIec61850Analysis::SummarizeSamplesTest {
namespace {

using namespace TalTest;

WaveformSettings summedSettings() {
    WaveformSettings settings;
    settings.members = repeatedMembers({WaveMember::int32, WaveMember::quality}, 1);
    settings.firstCount = 3000;
    return settings;
}

/// A stream, its index, and its figures.
struct Summed {
    explicit Summed(WaveformStream const& stream, SampleRate given = {})
        : indexed(stream), summary(summarizeSamples(indexed.index(), indexed.stream(), given)) {}

    IndexedWaveform indexed;
    SampleSummary summary;
};

TEST(SampleSummaries, SayWhatTellsTheRate) {
    WaveformSettings settings = summedSettings();
    settings.smpRate = 80;
    WaveformStream stream(settings);
    stream.send(2000);
    Summed const counted(stream);
    ASSERT_TRUE(counted.summary.run);
    EXPECT_EQ(counted.summary.run->rate, (SampleRate{.samples = 4000}));
    EXPECT_EQ(counted.summary.run->rateSource, RateSource::counter);
    EXPECT_EQ(counted.summary.run->countedRate, 4000U);
    EXPECT_NEAR(counted.summary.run->measuredRate, 4000, 0.5);
    ASSERT_NE(counted.summary.attributes, nullptr);
    auto const* const declared = valueIn(counted.summary.attributes->smpRate);
    ASSERT_NE(declared, nullptr);
    EXPECT_EQ(*declared, 80U);

    WaveformStream part(settings);
    part.send(900);  // smpCnt does not begin again
    Summed const said(part);
    ASSERT_TRUE(said.summary.run);
    EXPECT_EQ(said.summary.run->rateSource, RateSource::declared);
    EXPECT_EQ(said.summary.run->countedRate, 0U);

    Summed const given(part, {.samples = 4000});
    ASSERT_TRUE(given.summary.run);
    EXPECT_EQ(given.summary.run->rateSource, RateSource::given);
}

TEST(SampleSummaries, CountWhatBecameOfSamples) {
    WaveformSettings settings = summedSettings();
    settings.copies = WaveCopies::prp;
    WaveformStream stream(settings);
    stream.send(500).lose(3).send(500).repeatLast().send(100).sendLate(2).send(100);
    Summed const read(stream);
    auto const expected = stream.counts();
    EXPECT_EQ(read.summary.counts.received, expected.received);
    EXPECT_EQ(read.summary.counts.lost, expected.lost);
    EXPECT_EQ(read.summary.counts.late, expected.late);
    EXPECT_EQ(read.summary.counts.repeated, expected.repeated);
    EXPECT_EQ(read.summary.counts.runs, expected.runs);
    EXPECT_EQ(read.summary.copies, read.indexed.stream().copies);
    EXPECT_GT(read.summary.copies, expected.received / 2);
    std::uint64_t timed = 0;
    for (std::uint64_t const count : read.summary.timeSources) {
        timed += count;
    }
    EXPECT_EQ(timed, expected.received);
}

TEST(SampleSummaries, SayWhatTellsTheTimes) {
    WaveformStream stream(summedSettings());
    stream.send(500).synchronize(1).send(200).synchronize(std::nullopt).send(50).synchronize(2);
    stream.send(100);
    Summed const read(stream);
    EXPECT_EQ(read.summary.timedBy(SampleTimeSource::smpCnt), 600U);
    EXPECT_EQ(read.summary.timedBy(SampleTimeSource::fit), 250U);
    EXPECT_EQ(read.summary.timedBy(SampleTimeSource::none), 0U);
    EXPECT_EQ(read.summary.smpSynchs, (std::vector<std::uint16_t>{1, 2, SampleBlock::kNoSynch}));

    WaveformSettings settings = summedSettings();
    settings.hasRefrTm = true;
    WaveformStream timed(settings);
    timed.send(500);
    Summed const byPublisher(timed);
    EXPECT_EQ(byPublisher.summary.timedBy(SampleTimeSource::refrTm), 500U);
    EXPECT_TRUE(byPublisher.summary.residuals);
}

TEST(SampleSummaries, TellTheRateOfMostSamples) {
    WaveformStream stream(summedSettings());
    stream.send(3000).changeRate(4800, 0, 4800).send(9600);
    Summed const read(stream);
    ASSERT_TRUE(read.summary.run);
    EXPECT_EQ(read.summary.run->rate, (SampleRate{.samples = 4800}));
    EXPECT_EQ(read.summary.counts.runs, 2U);
    ASSERT_NE(read.summary.attributes, nullptr);
    auto const* const declared = valueIn(read.summary.attributes->smpRate);
    ASSERT_NE(declared, nullptr);
    EXPECT_EQ(*declared, 4800U);
}

TEST(SampleSummaries, HaveTheResidualsOfArrival) {
    WaveformSettings settings = summedSettings();
    settings.delay = 1'234'567;
    WaveformStream stream(settings);
    stream.send(5000);
    Summed const read(stream);
    ASSERT_TRUE(read.summary.residuals);
    EXPECT_EQ(read.summary.residuals->least, 1'234'567);
    EXPECT_EQ(read.summary.residuals,
              arrivalResiduals(read.indexed.index(), read.indexed.stream()));
}

}  // namespace
}  // namespace TalIec61850Analysis::SummarizeSamplesTest
