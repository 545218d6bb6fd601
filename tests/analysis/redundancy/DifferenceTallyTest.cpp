#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/redundancy/DifferenceTally.hpp>
#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace TalIec61850Analysis::detail::DifferenceTallyTest {
namespace {

TimeDifferences sorted(std::vector<std::int64_t> values) {
    std::sort(values.begin(), values.end());
    auto const ranked = [&](std::size_t percent) {
        return values[(values.size() * percent + 99) / 100 - 1];
    };
    return {.min = values.front(), .p50 = ranked(50), .p99 = ranked(99), .max = values.back()};
}

std::optional<TimeDifferences> tallied(std::vector<std::int64_t> const& values) {
    DifferenceTally tally;
    for (std::int64_t const value : values) {
        tally.add(value);
    }
    return tally.result();
}

TEST(DifferenceTally, HasNoResultWithoutValues) { EXPECT_EQ(tallied({}), std::nullopt); }

RC_GTEST_PROP(DifferenceTallyProperty, GivesWhatSortingGives,
              (std::vector<std::int64_t> const& values)) {
    RC_PRE(!values.empty());
    RC_ASSERT(tallied(values) == sorted(values));
}

TEST(DifferenceTally, IsExactForAMillionDifferentValues) {
    std::mt19937_64 random(42);
    std::vector<std::int64_t> values;
    for (int i = 0; i < 1'000'000; ++i) {
        values.push_back(static_cast<std::int64_t>(random() % 800'000'000) - 400'000'000);
    }
    EXPECT_EQ(tallied(values), sorted(values));
}

TEST(DifferenceTally, IsExactForManyMoreOfFewValues) {
    DifferenceTally tally;
    for (std::int64_t i = 0; i < 2'500'000; ++i) {
        tally.add(i % 1000);
    }
    EXPECT_EQ(tally.result(), (TimeDifferences{.min = 0, .p50 = 499, .p99 = 989, .max = 999}));
}

TEST(DifferenceTally, RoundsWhereValuesAreTooMany) {
    constexpr std::int64_t kMany = 3'000'000;
    DifferenceTally tally;
    for (std::int64_t i = 0; i < kMany; ++i) {
        tally.add(i * 7);
    }
    auto const result = tally.result();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->min, 0);
    EXPECT_EQ(result->max, (kMany - 1) * 7);
    std::int64_t const allowed = kMany * 7 / 1'000'000;
    std::int64_t const median = (kMany / 2 - 1) * 7;
    EXPECT_LE(result->p50, median);
    EXPECT_GE(result->p50, median - allowed);
}

TEST(DifferenceTally, TakesAnyValue) {
    constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
    constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(tallied({kMost, kLeast, 0}),
              (TimeDifferences{.min = kLeast, .p50 = 0, .p99 = kMost, .max = kMost}));
}

}  // namespace
}  // namespace TalIec61850Analysis::detail::DifferenceTallyTest
