// Phasors and root mean squares of waves that are known, at all rates.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/pictures/MeasureCycle.hpp>
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "analysis/pictures/AnalyticWave.hpp"

namespace TalTest::MeasureCycleTest {
namespace {

using namespace TalIec61850Analysis;

constexpr double kPi = std::numbers::pi;

CaptureTime waveInstant(std::int64_t afterStart) {
    return captureTimeOf(kWaveformStart + afterStart);
}

/// A rate, and what a power system has there.
struct MeasuredRate {
    std::uint32_t rate = 4000;
    double frequency = 50;
};

void PrintTo(MeasuredRate const& rate, std::ostream* out) {
    *out << rate.rate << " a second, " << rate.frequency << " Hz";
}

std::vector<MeasuredRate> measuredRates() {
    std::vector<MeasuredRate> all;
    for (std::uint32_t const rate : {4000U, 4800U, 5760U, 12800U, 14400U, 15360U}) {
        for (double const frequency : {50.0, 60.0, 49.3, 50.7, 47.5, 59.1, 61.23}) {
            all.push_back({rate, frequency});
        }
    }
    return all;
}

class CycleAtRate : public testing::TestWithParam<MeasuredRate> {
protected:
    [[nodiscard]] static double rate() { return GetParam().rate; }
    [[nodiscard]] static double frequency() { return GetParam().frequency; }
    [[nodiscard]] static std::size_t cycle() { return cycleSamples(rate(), frequency()); }
};

INSTANTIATE_TEST_SUITE_P(AllRates, CycleAtRate, testing::ValuesIn(measuredRates()));

void expectAngle(double angle, double expected) {
    EXPECT_NEAR(foldedAngle(angle - expected), 0, 1e-6) << angle << " and " << expected;
}

TEST_P(CycleAtRate, HasThePhasorOfAPureWave) {
    AnalyticWave const wave{.frequency = frequency(), .parts = {{1, 1000, 0.7}}};
    for (std::size_t const first : {0U, 7U, 39U}) {
        auto const measured =
            measureCycle(wave.samples(rate(), cycle(), first), rate(), frequency(), 0.25e-3);
        ASSERT_TRUE(measured.has_value());
        EXPECT_NEAR(measured->fundamental.magnitude, 1000 / std::numbers::sqrt2, 1e-4);
        EXPECT_NEAR(measured->rms, 1000 / std::numbers::sqrt2, 1e-4);
        EXPECT_NEAR(measured->mean, 0, 1e-4);
        double const instant = static_cast<double>(first + cycle() - 1) / rate() + 0.25e-3;
        expectAngle(measured->fundamental.angle, 0.7 + 2 * kPi * frequency() * instant);
    }
}

TEST_P(CycleAtRate, RejectsTheDirectComponentAndHarmonics) {
    AnalyticWave const wave{.frequency = frequency(),
                            .mean = 300,
                            .parts = {{1, 1000, -2.1},
                                      {2, 120, 1},
                                      {3, 250, 2},
                                      {5, 80, 3},
                                      {7, 60, 0.1},
                                      {13, 40, 0.2},
                                      {25, 20, 0.4}}};
    auto const measured = measureCycle(wave.samples(rate(), cycle(), 11), rate(), frequency());
    ASSERT_TRUE(measured.has_value());
    EXPECT_NEAR(measured->fundamental.magnitude / (1000 / std::numbers::sqrt2), 1, 1e-6);
    EXPECT_NEAR(measured->rms / wave.rms(), 1, 1e-6);
    EXPECT_NEAR(measured->mean, 300, 300e-6);
    double const instant = static_cast<double>(11 + cycle() - 1) / rate();
    expectAngle(measured->fundamental.angle, -2.1 + 2 * kPi * frequency() * instant);
}

TEST_P(CycleAtRate, FindsTheFrequency) {
    AnalyticWave const wave{
        .frequency = frequency(), .mean = 10, .parts = {{1, 1000, 0.4}, {3, 100, 1}, {5, 50, 2}}};
    auto const waveform =
        waveformOf({wave}, GetParam().rate, static_cast<std::size_t>(0.2 * rate()));
    for (std::int64_t const instant : {50'000'000, 123'456'789, 190'000'123}) {
        auto const reading = measureCycleAt(waveform, waveInstant(instant));
        ASSERT_TRUE(reading.has_value());
        EXPECT_EQ(reading->frequencySource, FrequencySource::found);
        EXPECT_NEAR(reading->frequency / frequency(), 1, 1e-8);
        ASSERT_TRUE(reading->channels.at(0).has_value());
        ChannelCycle const& cycle = *reading->channels[0];
        EXPECT_NEAR(cycle.fundamental.magnitude * std::numbers::sqrt2 / 1000, 1, 1e-6);
        EXPECT_NEAR(cycle.rms / wave.rms(), 1, 1e-6);
        expectAngle(cycle.fundamental.angle,
                    0.4 + 2 * kPi * frequency() * static_cast<double>(instant) * 1e-9);
    }
}

TEST(MeasureCycle, IsTheDiscreteFourierTransformOfAWholeCycle) {
    // Noise: the fit of a cycle of a whole number of samples is that transform, whatever they are.
    std::vector<double> values;
    std::uint32_t state = 61850;
    for (int i = 0; i < 80; ++i) {
        state = state * 1'664'525 + 1'013'904'223;
        values.push_back(static_cast<double>(state >> 8U) / 1e4);
    }
    double cosine = 0;
    double sine = 0;
    double square = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        double const angle = 2 * kPi * static_cast<double>(i) / 80;
        cosine += values[i] * std::cos(angle) / 40;
        sine += values[i] * std::sin(angle) / 40;
        square += values[i] * values[i] / 80;
    }
    auto const measured = measureCycle(values, 4000, 50, 1 / 4000.0);
    ASSERT_TRUE(measured.has_value());
    EXPECT_NEAR(measured->fundamental.magnitude / (std::hypot(cosine, sine) / std::numbers::sqrt2),
                1, 1e-12);
    EXPECT_NEAR(foldedAngle(measured->fundamental.angle - std::atan2(-sine, cosine)), 0, 1e-12);
    EXPECT_NEAR(measured->rms / std::sqrt(square), 1, 1e-12);
}

TEST(MeasureCycle, TakesNoOtherNumberOfSamplesAndNoInfinity) {
    AnalyticWave const wave;
    EXPECT_TRUE(measureCycle(wave.samples(4000, 80), 4000, 50).has_value());
    EXPECT_FALSE(measureCycle(wave.samples(4000, 79), 4000, 50).has_value());
    EXPECT_FALSE(measureCycle({}, 4000, 50).has_value());
    EXPECT_FALSE(measureCycle({}, 4000, 0).has_value());
    EXPECT_FALSE(measureCycle({}, 4000, -50).has_value());
    EXPECT_FALSE(measureCycle({}, 0, 50).has_value());
    for (double const bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        auto values = wave.samples(4000, 80);
        values[40] = bad;
        EXPECT_FALSE(measureCycle(values, 4000, 50).has_value());
        EXPECT_FALSE(measureCycle(wave.samples(4000, 80), bad, 50).has_value());
        EXPECT_FALSE(measureCycle(wave.samples(4000, 80), 4000, bad).has_value());
    }
}

TEST(MeasureCycle, CountsTheSamplesOfACycle) {
    EXPECT_EQ(cycleSamples(4000, 50), 80U);
    EXPECT_EQ(cycleSamples(4000, 60), 67U);
    EXPECT_EQ(cycleSamples(4000, 49.3), 81U);
    EXPECT_EQ(cycleSamples(15360, 60), 256U);
    EXPECT_EQ(cycleSamples(200, 50), 4U);
    EXPECT_EQ(cycleSamples(150, 50), 0U);
    EXPECT_EQ(cycleSamples(1e9, 50), 0U);
}

TEST(MeasureCycleAt, EndsOrIsCentredAtTheInstant) {
    auto const waveform = waveformOf({AnalyticWave{}}, 4000, 400);
    CycleOptions options{.frequency = 50};
    auto const at = [&](std::int64_t instant) {
        return measureCycleAt(waveform, waveInstant(instant), options);
    };
    // Sample 100 is the newest until sample 101 is taken.
    EXPECT_EQ(at(25'000'000).value().to, kWaveformStart + 25'000'000);
    EXPECT_EQ(at(25'249'999).value().to, kWaveformStart + 25'000'000);
    EXPECT_EQ(at(25'000'000).value().from, kWaveformStart + 25'000'000 - 79 * 250'000);
    EXPECT_EQ(at(25'000'000).value().frequencySource, FrequencySource::given);
    // The first cycle is whole at sample 79; the last sample is the newest for one interval.
    EXPECT_FALSE(at(79 * 250'000 - 1).has_value());
    EXPECT_TRUE(at(79 * 250'000).has_value());
    EXPECT_TRUE(at(400 * 250'000).has_value());
    EXPECT_FALSE(at(400 * 250'000 + 1).has_value());
    EXPECT_FALSE(at(-1).has_value());
    options.place = CyclePlace::centred;
    EXPECT_EQ(at(25'000'000).value().to, kWaveformStart + 140 * 250'000);
    EXPECT_EQ(at(25'000'000).value().from, kWaveformStart + 61 * 250'000);
    EXPECT_FALSE(at(38 * 250'000).has_value());
    EXPECT_TRUE(at(39 * 250'000).has_value());
    EXPECT_TRUE(at(359 * 250'000).has_value());
    EXPECT_FALSE(at(360 * 250'000).has_value());
}

TEST(MeasureCycleAt, HasTheSameAngleWhereverTheCycleIs) {
    AnalyticWave const wave{.frequency = 49.3, .parts = {{1, 5, 1.1}}};
    auto const waveform = waveformOf({wave}, 4000, 800);
    for (CyclePlace const place : {CyclePlace::ending, CyclePlace::centred}) {
        auto const reading =
            measureCycleAt(waveform, waveInstant(100'123'456), {.nominal = 50, .place = place});
        ASSERT_TRUE(reading.has_value());
        expectAngle(reading->channels[0]->fundamental.angle, 1.1 + 2 * kPi * 49.3 * 0.100123456);
    }
}

TEST(MeasureCycleAt, MeasuresNothingWithAMissingSample) {
    auto waveform = waveformOf({AnalyticWave{}, AnalyticWave{}}, 4000, 400);
    waveform.states[200] = SampleState::missing;
    waveform.channels[0].values[200] = std::numeric_limits<double>::quiet_NaN();
    CycleOptions const options{.frequency = 50};
    auto const isAt = [&](std::int64_t row) {
        return measureCycleAt(waveform, waveInstant(row * 250'000), options).has_value();
    };
    EXPECT_TRUE(isAt(199));
    for (std::int64_t row = 200; row < 280; ++row) EXPECT_FALSE(isAt(row)) << row;
    EXPECT_TRUE(isAt(280));
}

TEST(MeasureCycleAt, MeasuresNothingWhereRowsLackMissingSamples) {
    auto waveform = waveformOf({AnalyticWave{}}, 4000, 400);
    waveform.times.erase(waveform.times.begin() + 200);
    waveform.states.pop_back();
    waveform.channels[0].values.erase(waveform.channels[0].values.begin() + 200);
    waveform.channels[0].qualities.pop_back();
    CycleOptions const options{.frequency = 50};
    EXPECT_TRUE(measureCycleAt(waveform, waveInstant(199 * 250'000), options).has_value());
    EXPECT_FALSE(measureCycleAt(waveform, waveInstant(240 * 250'000), options).has_value());
    EXPECT_TRUE(measureCycleAt(waveform, waveInstant(280 * 250'000), options).has_value());
}

TEST(MeasureCycleAt, LeavesOutAChannelThatIsNotFinite) {
    auto waveform = waveformOf({AnalyticWave{}, AnalyticWave{}}, 4000, 400);
    waveform.channels[1].values[210] = std::numeric_limits<double>::infinity();
    auto const reading = measureCycleAt(waveform, waveInstant(220 * 250'000));
    ASSERT_TRUE(reading.has_value());
    EXPECT_TRUE(reading->channels[0].has_value());
    EXPECT_FALSE(reading->channels[1].has_value());
}

TEST(MeasureCycleAt, MeasuresWithinOneRun) {
    auto waveform = waveformOf({AnalyticWave{}}, 4000, 400);
    waveform.runs.push_back(
        {.firstRow = 200, .rate = {.samples = 4000}, .start = RunStart::restart});
    CycleOptions const options{.frequency = 50};
    EXPECT_TRUE(measureCycleAt(waveform, waveInstant(199 * 250'000), options).has_value());
    EXPECT_FALSE(measureCycleAt(waveform, waveInstant(278 * 250'000), options).has_value());
    EXPECT_TRUE(measureCycleAt(waveform, waveInstant(279 * 250'000), options).has_value());
    waveform.runs[1].rate = {};
    EXPECT_FALSE(measureCycleAt(waveform, waveInstant(300 * 250'000), options).has_value());
}

TEST(MeasureCycleAt, JoinsTheQualitiesOfTheCycle) {
    auto waveform = waveformOf({AnalyticWave{}}, 4000, 400);
    waveform.channels[0].qualities[150] = 0x803;
    waveform.channels[0].qualities[151] = 0x001;
    CycleOptions const options{.frequency = 50};
    auto const qualityAt = [&](std::int64_t row) {
        return measureCycleAt(waveform, waveInstant(row * 250'000), options)
            .value()
            .channels[0]
            ->quality;
    };
    EXPECT_EQ(qualityAt(149), 0U);
    EXPECT_EQ(qualityAt(150), 0x803U);
    EXPECT_EQ(qualityAt(160), 0x801U);
    EXPECT_EQ(qualityAt(230), 0x001U);
    EXPECT_EQ(qualityAt(231), 0U);
}

TEST(MeasureCycleAt, FindsTheFrequencyWhereThereIsAFundamental) {
    AnalyticWave const flat{.mean = 5, .parts = {}};
    AnalyticWave const distorted{.frequency = 50.2, .parts = {{1, 1, 0}, {2.5, 1, 0}}};
    AnalyticWave const clean{.frequency = 50.2};
    auto const waveform = waveformOf({flat, distorted, clean}, 4800, 800);
    auto const instant = waveInstant(120'000'000);
    auto reading = measureCycleAt(waveform, instant);
    ASSERT_TRUE(reading.has_value());
    EXPECT_NEAR(reading->frequency, 50.2, 1e-6);
    EXPECT_NEAR(reading->channels[0]->rms, 5, 1e-9);
    EXPECT_NEAR(reading->channels[0]->fundamental.magnitude, 0, 1e-9);
    // The reference has none.
    EXPECT_FALSE(measureCycleAt(waveform, instant, {.reference = 0}).has_value());
    reading = measureCycleAt(waveform, instant, {.nominal = 50, .reference = 0});
    ASSERT_TRUE(reading.has_value());
    EXPECT_EQ(reading->frequency, 50);
    EXPECT_EQ(reading->frequencySource, FrequencySource::nominal);
}

TEST(MeasureCycleAt, HasNothingOfAnEmptyWaveform) {
    EXPECT_FALSE(measureCycleAt(Waveform{}, waveInstant(0)).has_value());
    EXPECT_FALSE(measureCycleAt(waveformOf({}, 4000, 0), waveInstant(0)).has_value());
    EXPECT_FALSE(
        measureCycleAt(waveformOf({AnalyticWave{}}, 4000, 1), waveInstant(0), {.nominal = 50})
            .has_value());
}

TEST(MeasureCycleAt, TakesTimesThatMayBeAnyNumbers) {
    auto waveform = waveformOf({AnalyticWave{}}, 4000, 100);
    waveform.times.front() = std::numeric_limits<std::int64_t>::min();
    waveform.times.back() = std::numeric_limits<std::int64_t>::max();
    for (std::int64_t const instant :
         {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_FALSE(measureCycleAt(waveform, captureTimeOf(instant)).has_value());
    }
}

TEST(MeasureCycleAt, MeasuresNothingOfAWaveformThatIsNotWhole) {
    AnalyticWave const wave{.frequency = 50, .parts = {{1, 1000, 0.7}}};
    Waveform const whole = waveformOf({wave}, 4000, 400);
    auto const at = captureTimeOf(whole.times[200]);
    ASSERT_TRUE(measureCycleAt(whole, at).has_value());
    std::vector<Waveform> broken(5, whole);
    broken[0].states.pop_back();
    broken[1].channels[0].values.resize(150);
    broken[2].channels[0].qualities.clear();
    broken[3].runs.push_back({.firstRow = 401, .rate = whole.runs[0].rate});
    broken[4].runs = {{.firstRow = 300, .rate = whole.runs[0].rate}, whole.runs[0]};
    for (Waveform const& each : broken) {
        EXPECT_FALSE(measureCycleAt(each, at).has_value());
    }
}

TEST(MeasureCycleAt, MeasuresNothingWithAFrequencyThatIsNone) {
    Waveform const waveform = waveformOf({AnalyticWave{}}, 4000, 400);
    auto const at = captureTimeOf(waveform.times[200]);
    for (double const frequency : {0.0, -50.0, std::numeric_limits<double>::quiet_NaN(),
                                   std::numeric_limits<double>::infinity()}) {
        EXPECT_FALSE(measureCycleAt(waveform, at, {.frequency = frequency}).has_value());
    }
}

TEST(MeasureCycle, HasNoRootMeanSquareThatIsNoNumber) {
    AnalyticWave const wave{.frequency = 50, .parts = {{1, 1e300, 0}}};
    EXPECT_FALSE(measureCycle(wave.samples(4000, 80), 4000, 50).has_value());
}

RC_GTEST_PROP(MeasureCycle, IsExactForAnyPureWave, ()) {
    double const frequency = *rc::gen::inRange(44'000, 66'000) / 1000.0;
    auto const rate = static_cast<double>(*rc::gen::inRange(400, 20'000));
    double const angle = *rc::gen::inRange(-3140, 3140) / 1000.0;
    double const mean = *rc::gen::inRange(-1000, 1000);
    AnalyticWave const wave{.frequency = frequency, .mean = mean, .parts = {{1, 100, angle}}};
    std::size_t const count = cycleSamples(rate, frequency);
    auto const measured = measureCycle(wave.samples(rate, count), rate, frequency);
    RC_ASSERT(measured.has_value());
    RC_ASSERT(std::abs(measured->fundamental.magnitude * std::numbers::sqrt2 / 100 - 1) < 1e-6);
    RC_ASSERT(std::abs(measured->rms / wave.rms() - 1) < 1e-6);
    double const instant = static_cast<double>(count - 1) / rate;
    double const off = measured->fundamental.angle - angle - 2 * kPi * frequency * instant;
    RC_ASSERT(std::abs(foldedAngle(off)) < 1e-6);
}

}  // namespace
}  // namespace TalTest::MeasureCycleTest
