// Which step is chosen for samples from the smallest to the largest.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/comtrade/ComtradeStep.hpp>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "analysis/comtrade/EncodedComtrade.hpp"

namespace TalTest::ComtradeStepTest {
namespace {

using namespace TalIec61850Analysis;

constexpr ComtradeFormat kText1999{ComtradeEdition::of1999, ComtradeData::ascii};
constexpr ComtradeFormat kText2013{ComtradeEdition::of2013, ComtradeData::ascii};
constexpr ComtradeFormat kBinary{ComtradeEdition::of1999, ComtradeData::binary};
constexpr ComtradeFormat kBinary32{ComtradeEdition::of2013, ComtradeData::binary32};
constexpr ComtradeStep kAsTheyAre{};

TEST(ComtradeSteps, OfIntegersThatFitLeaveThemAsTheyAre) {
    EXPECT_EQ(stepForIntegers(kBinary, -32767, 32767), kAsTheyAre);
    EXPECT_EQ(stepForIntegers(kText1999, -99'999, 99'998), kAsTheyAre);
    EXPECT_EQ(stepForIntegers(kText2013, -999'999'999'999, 99'998), kAsTheyAre);
    EXPECT_EQ(stepForIntegers(kBinary32, -2147483647, 2147483647), kAsTheyAre);
}

TEST(ComtradeSteps, OfIntegersWhoseSpanFitsShiftThem) {
    EXPECT_EQ(stepForIntegers(kBinary, 32768, 32768), (ComtradeStep{.size = 1, .middle = 1}));
    EXPECT_EQ(stepForIntegers(kBinary, -32768, 0), (ComtradeStep{.size = 1, .middle = -1}));
    EXPECT_EQ(stepForIntegers(kBinary, 0, 65534), (ComtradeStep{.size = 1, .middle = 32767}));
    EXPECT_EQ(stepForIntegers(kText1999, 0, 99'999), (ComtradeStep{.size = 1, .middle = 1}));
}

TEST(ComtradeSteps, KeepAll32BitsInTheTextOf2013) {
    EXPECT_EQ(stepForIntegers(kText2013, std::numeric_limits<std::int32_t>::min(),
                              std::numeric_limits<std::int32_t>::max()),
              (ComtradeStep{.size = 1, .middle = 2147383649}));
}

TEST(ComtradeSteps, OfAlternatingSamplesKeepZeroAtZero) {
    ComtradeStep const step = stepForIntegers(kBinary, -400'000, 399'000);
    EXPECT_EQ(step.middle, 0);
    EXPECT_NEAR(step.size, 400'000 / 32767.0, 0.01);
    EXPECT_EQ(stepForReals(kBinary, -0.9, 1.0).middle, 0);
    EXPECT_EQ(stepForReals(kText1999, -0.9, 1.0).middle, 0);
}

TEST(ComtradeSteps, OfSamplesOfOneSignTakeTheWholeRange) {
    ComtradeStep const step = stepForReals(kBinary, 10, 11);
    EXPECT_NEAR(step.middle, 10.5, 1e-6);
    EXPECT_NEAR(step.size, 1 / 65534.0, 1e-8);
}

TEST(ComtradeSteps, OfIntegersHaveAnIntegerInTheMiddle) {
    ComtradeStep const step = stepForIntegers(kBinary, 1'000'000, 2'000'001);
    EXPECT_GT(step.size, 1);
    EXPECT_NEAR(step.middle, 1'500'000.5, 0.6);
    EXPECT_EQ(step.middle, std::trunc(step.middle));
}

TEST(ComtradeSteps, OfOneRealAloneStoreItExactly) {
    EXPECT_EQ(stepForReals(kBinary, 3.7, 3.7), (ComtradeStep{.size = 1, .middle = 3.7}));
}

TEST(ComtradeSteps, WithoutSamplesAreOne) {
    double const none = std::numeric_limits<double>::quiet_NaN();
    double const infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(stepForIntegers(kBinary, 1'000'000, -1'000'000), kAsTheyAre);
    EXPECT_EQ(stepForReals(kBinary, 1, -1), kAsTheyAre);
    EXPECT_EQ(stepForReals(kBinary, none, 1), kAsTheyAre);
    EXPECT_EQ(stepForReals(kBinary, 1, none), kAsTheyAre);
    EXPECT_EQ(stepForReals(kBinary, -infinite, 1), kAsTheyAre);
    EXPECT_EQ(stepForReals(kBinary, 1, infinite), kAsTheyAre);
}

TEST(ComtradeSteps, OfTheWidestSamplesAreFiniteNumbers) {
    double const largest = std::numeric_limits<double>::max();
    double const least = std::numeric_limits<double>::denorm_min();
    for (ComtradeFormat const format : everyFormat()) {
        for (ComtradeStep const step :
             {stepForReals(format, -largest, largest), stepForReals(format, 0, largest),
              stepForReals(format, 0, least), stepForReals(format, -largest, 0)}) {
            EXPECT_TRUE(std::isfinite(step.size) && step.size > 0);
            EXPECT_TRUE(std::isfinite(step.middle));
        }
    }
}

/// How far stored samples are from what they were, and whether any was clamped.
template <typename Raw>
void expectWithinHalfAStep(ComtradeFormat format, std::vector<Raw> const& samples,
                           ComtradeStep step) {
    ComtradeRecord record = recordOf(format, 1, 0, samples.size());
    record.analogs[0].step = step;
    ComtradeColumns const columns{
        .analogs = {{.samples = std::span<Raw const>(samples), .missing = {}}}, .digitals = {}};
    RC_ASSERT(encoded(record, columns).losses[0] == ComtradeLosses{});
    ReadComtrade const read = readBack(record, columns);
    for (std::size_t row = 0; row < samples.size(); ++row) {
        auto const sample = static_cast<double>(samples[row]);
        auto const value = read.value(row, 0);
        RC_ASSERT(value.has_value());
        // What double precision itself loses comes on top.
        double const rounding =
            4 * std::numeric_limits<double>::epsilon() * (std::abs(sample) + std::abs(step.middle));
        RC_ASSERT(std::abs(value.value_or(0) - sample) <= step.size / 2 * 1.000001 + rounding);
    }
}

RC_GTEST_PROP(ComtradeSteps, KeepIntegersWithinHalfAStep, (std::vector<std::int64_t> samples)) {
    RC_PRE(!samples.empty());
    // From single digits up to all 64 bits.
    auto const shift = *rc::gen::inRange(0, 64);
    for (std::int64_t& sample : samples) {
        sample = *rc::gen::arbitrary<std::int64_t>() >> shift;
    }
    auto const offset = *rc::gen::arbitrary<std::int64_t>() / 2;
    if (shift > 1) {
        for (std::int64_t& sample : samples) {
            sample += offset;
        }
    }
    auto const [smallest, largest] = std::minmax_element(samples.begin(), samples.end());
    for (ComtradeFormat const format : everyFormat()) {
        expectWithinHalfAStep(format, samples, stepForIntegers(format, *smallest, *largest));
    }
}

RC_GTEST_PROP(ComtradeSteps, KeepRealsWithinHalfAStep, (std::vector<double> samples)) {
    RC_PRE(!samples.empty());
    double const factor = std::pow(10.0, *rc::gen::inRange(-30, 30));
    double const offset =
        *rc::gen::arbitrary<double>() * std::pow(10.0, *rc::gen::inRange(-30, 30));
    for (double& sample : samples) {
        sample = sample * factor + offset;
    }
    auto const [smallest, largest] = std::minmax_element(samples.begin(), samples.end());
    for (ComtradeFormat const format : everyFormat()) {
        expectWithinHalfAStep(format, samples, stepForReals(format, *smallest, *largest));
    }
}

}  // namespace
}  // namespace TalTest::ComtradeStepTest
