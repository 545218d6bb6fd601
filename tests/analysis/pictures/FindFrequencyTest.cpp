// The frequency of waves that are known.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/pictures/FindFrequency.hpp>
#include <cmath>
#include <random>

#include "analysis/pictures/AnalyticWave.hpp"

namespace TalTest::FindFrequencyTest {
namespace {

using namespace TalIec61850Analysis;

TEST(FindFrequency, TellsFiftyFromSixty) {
    for (double const frequency : {50.0, 60.0, 49.3, 60.7, 45.0, 65.0}) {
        AnalyticWave const wave{.frequency = frequency, .parts = {{1, 3, 0.3}}};
        auto const found = findFrequency(wave.samples(4000, 400), 4000);
        ASSERT_TRUE(found.has_value()) << frequency;
        EXPECT_NEAR(*found, frequency, 1e-7);
        EXPECT_EQ(nearestNominal(*found), frequency < 55 ? 50 : 60);
    }
}

TEST(FindFrequency, LooksNearWhatIsExpected) {
    AnalyticWave const wave{.frequency = 16.5, .parts = {{1, 3, 0.3}}};
    auto const values = wave.samples(4000, 2000);
    EXPECT_FALSE(findFrequency(values, 4000).has_value());
    EXPECT_FALSE(findFrequency(values, 4000, 50).has_value());
    EXPECT_NEAR(findFrequency(values, 4000, 16.7).value(), 16.5, 1e-7);
}

TEST(FindFrequency, TakesTwoCycles) {
    AnalyticWave const wave{.frequency = 49.3, .parts = {{1, 3, 0.3}, {3, 0.5, 1}}};
    EXPECT_FALSE(findFrequency({}, 4000).has_value());
    EXPECT_FALSE(findFrequency(wave.samples(4000, 81), 4000).has_value());
    EXPECT_NEAR(findFrequency(wave.samples(4000, 162), 4000).value(), 49.3, 1e-6);
}

TEST(FindFrequency, HasNoneOfWhatHasNoFundamental) {
    EXPECT_FALSE(findFrequency(std::vector<double>(400), 4000).has_value());
    EXPECT_FALSE(findFrequency(std::vector<double>(400, 7.5), 4000).has_value());
    AnalyticWave const harmonics{.frequency = 50, .parts = {{3, 1, 0}, {5, 1, 0}}};
    EXPECT_FALSE(findFrequency(harmonics.samples(4000, 400), 4000, 50).has_value());
    // Two samples in a cycle tell nothing.
    EXPECT_FALSE(findFrequency(AnalyticWave{}.samples(100, 400), 100).has_value());
    EXPECT_FALSE(findFrequency(AnalyticWave{}.samples(4000, 400), 0).has_value());
    EXPECT_FALSE(findFrequency(AnalyticWave{}.samples(4000, 400), 1e12).has_value());
}

TEST(FindFrequency, IsExactBesideStrongHarmonics) {
    for (double const frequency : {47.5, 49.3, 50.0, 51.9}) {
        AnalyticWave const wave{.frequency = frequency,
                                .parts = {{1, 1000, 0.3}, {2, 500, 1}, {3, 900, 2}, {7, 400, 0}}};
        auto const found = findFrequency(wave.samples(4000, 400), 4000, 50);
        ASSERT_TRUE(found.has_value()) << frequency;
        EXPECT_NEAR(*found, frequency, 1e-6);
    }
}

TEST(FindFrequency, IsNearForNoise) {
    std::mt19937 random(61850);
    AnalyticWave const wave{.frequency = 50.4, .parts = {{1, 1000, 0.3}}};
    auto values = wave.samples(4000, 400);
    for (double& value : values) value += static_cast<double>(random() % 2001) / 100 - 10;
    auto const found = findFrequency(values, 4000);
    ASSERT_TRUE(found.has_value());
    EXPECT_NEAR(*found, 50.4, 0.01);
}

RC_GTEST_PROP(FindFrequency, IsExactForAnyPureWave, ()) {
    double const frequency = *rc::gen::inRange(45'000, 65'000) / 1000.0;
    auto const rate = static_cast<double>(*rc::gen::inRange(800, 16'000));
    double const angle = *rc::gen::inRange(-3140, 3140) / 1000.0;
    AnalyticWave const wave{.frequency = frequency, .mean = 3, .parts = {{1, 100, angle}}};
    auto const cycles = *rc::gen::inRange(25, 80) / 10.0;
    auto const count = static_cast<std::size_t>(cycles * rate / frequency);
    auto const found = findFrequency(wave.samples(rate, count), rate);
    RC_ASSERT(found.has_value());
    RC_ASSERT(std::abs(*found / frequency - 1) < 1e-7);
}

RC_GTEST_PROP(FindFrequency, EndsForAnyValues, ()) {
    auto const values = *rc::gen::container<std::vector<double>>(
        rc::gen::map(rc::gen::arbitrary<std::int32_t>(),
                     [](std::int32_t value) { return static_cast<double>(value); }));
    double const found = findFrequency(values, 1000).value_or(55);
    RC_ASSERT(found > 43);
    RC_ASSERT(found < 67);
}

}  // namespace
}  // namespace TalTest::FindFrequencyTest
