// Pictures of captures: from frames to columns and phasors.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/pictures/MeasureCycle.hpp>
#include <TalIec61850Analysis/pictures/StreamPicture.hpp>
#include <bit>
#include <chrono>
#include <cmath>
#include <numbers>

#include "analysis/samples/ReadRows.hpp"
#include "support/WaveformStream.hpp"

namespace TalTest::PictureCapturesTest {
namespace {

using namespace TalIec61850Analysis;

constexpr double kTurn = 2 * std::numbers::pi;
constexpr std::int64_t kStreamStart = 1'700'000'000'000'000'000;

/// A rate with the ASDUs of its frames, and what is sampled.
struct PicturedRate {
    std::uint32_t rate = 4000;
    std::uint32_t asdus = 1;
    double frequency = 50;
};

void PrintTo(PicturedRate const& rate, std::ostream* out) {
    *out << rate.rate << " in frames of " << rate.asdus << ", " << rate.frequency << " Hz";
}

WaveformSettings floatSettings(PicturedRate const& rate) {
    WaveformSettings settings;
    settings.rate = rate.rate;
    settings.asdus = rate.asdus;
    settings.frequency = rate.frequency;
    settings.members = repeatedMembers({WaveMember::float64, WaveMember::quality}, 3);
    return settings;
}

StreamPictureOptions pictureOptions(WaveformSettings const& settings, std::size_t mostSamples) {
    StreamPictureOptions options;
    options.samples.layout = layoutOf(settings.members);
    options.mostSamples = mostSamples;
    options.columns = 64;
    options.fewestColumns = 8;
    return options;
}

StreamPicture pictureOf(WaveformStream const& stream, StreamPictureOptions const& options) {
    IndexedWaveform const indexed(stream);
    return readStreamPicture(indexed.index(), indexed.stream(), options);
}

class PictureAtRate : public testing::TestWithParam<PicturedRate> {};

INSTANTIATE_TEST_SUITE_P(AllRates, PictureAtRate,
                         testing::Values(PicturedRate{4000, 1, 50}, PicturedRate{4000, 1, 60},
                                         PicturedRate{4000, 1, 49.3}, PicturedRate{4800, 2, 60},
                                         PicturedRate{4800, 1, 50}, PicturedRate{5760, 1, 60},
                                         PicturedRate{12800, 8, 50}, PicturedRate{14400, 6, 60.4},
                                         PicturedRate{15360, 8, 60}));

TEST_P(PictureAtRate, HasThePhasorsOfTheWave) {
    auto const settings = floatSettings(GetParam());
    WaveformStream stream(settings);
    stream.send(settings.rate / settings.asdus / 4);
    auto const picture = pictureOf(stream, pictureOptions(settings, settings.rate));
    ASSERT_FALSE(picture.waveform.isTooLong);
    std::int64_t const after = 187'654'321;
    auto const reading = measureCycleAt(picture.waveform, captureTimeOf(kStreamStart + after));
    ASSERT_TRUE(reading.has_value());
    EXPECT_NEAR(reading->frequency / settings.frequency, 1, 1e-7);
    ASSERT_EQ(reading->channels.size(), 3U);
    for (std::size_t channel = 0; channel < 3; ++channel) {
        ASSERT_TRUE(reading->channels[channel].has_value());
        ChannelCycle const& cycle = *reading->channels[channel];
        EXPECT_NEAR(cycle.fundamental.magnitude * std::numbers::sqrt2 / 1e5, 1, 1e-6);
        EXPECT_NEAR(cycle.rms * std::numbers::sqrt2 / 1e5, 1, 1e-6);
        // The wave is a sine that begins a part of a turn after its zero.
        double const turns = settings.frequency * static_cast<double>(after) * 1e-9 + 0.123 +
                             static_cast<double>(channel) / 3 - 0.25;
        EXPECT_NEAR(foldedAngle(cycle.fundamental.angle - kTurn * std::remainder(turns, 1.0)), 0,
                    2e-6);
    }
    EXPECT_NEAR(std::abs(angleAgainst(reading->channels[1]->fundamental.angle,
                                      reading->channels[0]->fundamental.angle)),
                kTurn / 3, 1e-7);
}

/// Whether the finest columns, and all others, are those of rows.
void expectColumnsOf(std::vector<WaveformRow> const& rows, Envelopes const& envelopes) {
    for (EnvelopeLevel const& level : envelopes.levels) {
        std::vector<std::uint64_t> received(level.size());
        std::vector<std::uint64_t> missing(level.size());
        for (WaveformRow const& row : rows) {
            auto const column =
                static_cast<std::size_t>((row.time - envelopes.start) / level.width);
            ASSERT_LT(column, level.size());
            ++(row.isMissing ? missing : received)[column];
            if (row.isMissing) continue;
            for (std::size_t channel = 0; channel < level.channels.size(); ++channel) {
                auto const value = std::bit_cast<double>(row.values[channel]);
                ASSERT_GE(value, level.channels[channel].least[column]);
                ASSERT_LE(value, level.channels[channel].largest[column]);
            }
        }
        EXPECT_EQ(level.received, received);
        EXPECT_EQ(level.missing, missing);
    }
}

TEST_P(PictureAtRate, HasTheEnvelopeOfTheWave) {
    auto const settings = floatSettings(GetParam());
    WaveformStream stream(settings);
    stream.send(settings.rate / settings.asdus / 2);
    auto const picture = pictureOf(stream, pictureOptions(settings, 10));
    EXPECT_TRUE(picture.waveform.isTooLong);
    EXPECT_EQ(picture.waveform.size(), 0U);
    expectColumnsOf(stream.rows(true), picture.envelopes);
    // Cycles are wider than columns at half a second; at the coarsest level, they are not.
    EnvelopeLevel const& coarsest = picture.envelopes.levels.back();
    for (std::size_t channel = 0; channel < 3; ++channel) {
        EXPECT_NEAR(coarsest.channels[channel].largest[0] / 1e5, 1, 1e-2);
        EXPECT_NEAR(coarsest.channels[channel].least[0] / 1e5, -1, 1e-2);
    }
}

TEST(StreamPicture, ShowsWhatIsMissing) {
    auto const settings = floatSettings({});
    WaveformStream stream(settings);
    stream.send(400).lose(40).send(400).lose(1).send(159);
    auto const picture = pictureOf(stream, pictureOptions(settings, 2000));
    EXPECT_EQ(picture.counts.lost, 41U);
    expectColumnsOf(stream.rows(true), picture.envelopes);
    ASSERT_EQ(picture.spans.missing.size(), 2U);
    EXPECT_EQ(picture.spans.missing[0].from, kStreamStart + 100'000'000);
    EXPECT_EQ(picture.spans.missing[0].to, kStreamStart + 110'000'000);
    EXPECT_EQ(picture.spans.missing[0].samples, 40U);
    EXPECT_EQ(picture.spans.missing[1].samples, 1U);
    auto const isMeasured = [&](std::int64_t row) {
        CaptureTime const time(std::chrono::nanoseconds(kStreamStart + row * 250'000));
        return measureCycleAt(picture.waveform, time, {.nominal = 50}).has_value();
    };
    EXPECT_TRUE(isMeasured(399));
    EXPECT_FALSE(isMeasured(400));
    EXPECT_FALSE(isMeasured(440 + 78));
    EXPECT_TRUE(isMeasured(440 + 79));
    EXPECT_FALSE(isMeasured(840));
    EXPECT_FALSE(isMeasured(841 + 78));
    EXPECT_TRUE(isMeasured(841 + 79));
}

TEST(StreamPicture, ShowsBadQuality) {
    auto const settings = floatSettings({});
    WaveformStream stream(settings);
    stream.send(70);
    auto const picture = pictureOf(stream, pictureOptions(settings, 0));
    // Every seventh sample of a channel, beginning with the second of the first, is questionable,
    // and for tests.
    ASSERT_EQ(picture.spans.qualities.size(), 3U);
    for (std::size_t channel = 0; channel < 3; ++channel) {
        ASSERT_EQ(picture.spans.qualities[channel].size(), 10U);
        SampleSpan const& first = picture.spans.qualities[channel][0];
        EXPECT_EQ(first.from, kStreamStart + (static_cast<std::int64_t>(channel) + 1) * 250'000);
        EXPECT_EQ(first.to - first.from, 250'000);
        EXPECT_EQ(first.quality, 0x803U);
    }
}

TEST(StreamPicture, MeasuresWithinARun) {
    auto const settings = floatSettings({});
    WaveformStream stream(settings);
    stream.send(400).restartAt(2345).send(400);
    auto const picture = pictureOf(stream, pictureOptions(settings, 2000));
    ASSERT_EQ(picture.waveform.runs.size(), 2U);
    EXPECT_EQ(picture.waveform.runs[1].firstRow, 400U);
}

TEST(StreamPicture, HasNothingOfAWindowWithoutSamples) {
    auto const settings = floatSettings({});
    WaveformStream stream(settings);
    stream.send(400);
    auto options = pictureOptions(settings, 2000);
    options.samples.from = captureTimeOf(kStreamStart + 5'000'000'000);
    options.samples.end = *options.samples.from + std::chrono::seconds(1);
    auto const picture = pictureOf(stream, options);
    EXPECT_EQ(picture.waveform.size(), 0U);
    EXPECT_TRUE(picture.spans.missing.empty());
    ASSERT_FALSE(picture.envelopes.levels.empty());
    EXPECT_EQ(picture.envelopes.levels[0].received, std::vector<std::uint64_t>(64));
}

TEST(StreamPicture, CountsSamplesWithoutALayout) {
    auto settings = floatSettings({});
    settings.members = {WaveMember::int24, WaveMember::int16};
    WaveformStream stream(settings);
    stream.send(400);
    StreamPictureOptions options;
    options.columns = 16;
    auto const picture = pictureOf(stream, options);
    ASSERT_FALSE(picture.envelopes.levels.empty());
    EXPECT_TRUE(picture.envelopes.levels[0].channels.empty());
    std::uint64_t received = 0;
    for (std::uint64_t const count : picture.envelopes.levels[0].received) received += count;
    EXPECT_EQ(received, 400U);
}

RC_GTEST_PROP(StreamPictureProperty, AnyWindowHasTheColumnsOfItsRows, ()) {
    auto const settings = floatSettings({});
    WaveformStream stream(settings);
    auto const steps = *rc::gen::inRange(1, 6);
    for (int i = 0; i < steps; ++i) {
        stream.send(*rc::gen::inRange<std::size_t>(1, 300));
        stream.lose(*rc::gen::inRange<std::size_t>(0, 30)).send();
    }
    auto options = pictureOptions(settings, 0);
    std::int64_t const from = kStreamStart + *rc::gen::inRange<std::int64_t>(0, 300'000'000);
    std::int64_t const end = from + *rc::gen::inRange<std::int64_t>(1, 300'000'000);
    options.samples.from = captureTimeOf(from);
    options.samples.end = captureTimeOf(end);
    auto const picture = pictureOf(stream, options);
    auto rows = stream.rows(true);
    std::erase_if(rows, [&](WaveformRow const& row) { return row.time < from || row.time >= end; });
    RC_ASSERT(picture.envelopes.start == from);
    expectColumnsOf(rows, picture.envelopes);
}

}  // namespace
}  // namespace TalTest::PictureCapturesTest
