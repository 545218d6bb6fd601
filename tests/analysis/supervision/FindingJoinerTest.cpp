#include <gtest/gtest.h>

#include <TalIec61850Analysis/supervision/FindingJoiner.hpp>

namespace TalTest::FindingJoinerTest {
namespace {

using namespace TalIec61850Analysis;

Finding gapAt(std::int64_t time, LossCause cause = LossCause::network) {
    Finding finding;
    finding.from = time;
    finding.until = time;
    finding.lost = 2;
    finding.cause = cause;
    return finding;
}

constexpr std::int64_t kMillisecond = 1'000'000;

TEST(FindingJoiner, KeepsAHundredInASecond) {
    detail::FindingJoiner joiner;
    for (std::int64_t i = 0; i < 100; ++i) {
        joiner.add(gapAt(i * kMillisecond));
    }
    EXPECT_TRUE(joiner.isFlooded(FindingKind::sampleGap, 100 * kMillisecond));
    EXPECT_FALSE(joiner.isFlooded(FindingKind::late, 100 * kMillisecond));
    EXPECT_FALSE(joiner.isFlooded(FindingKind::sampleGap, 1000 * kMillisecond));
    EXPECT_EQ(joiner.take().size(), 100U);
}

TEST(FindingJoiner, JoinsMoreThanAHundred) {
    detail::FindingJoiner joiner;
    for (std::int64_t i = 0; i < 1500; ++i) {
        joiner.add(gapAt(i * kMillisecond));
    }
    auto const findings = joiner.take();
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].count, 1000U);
    EXPECT_EQ(findings[0].lost, 2000U);
    EXPECT_EQ(findings[0].until, 999 * kMillisecond);
    EXPECT_EQ(findings[0].cause, LossCause::network);
    EXPECT_EQ(findings[1].count, 500U);
}

TEST(FindingJoiner, KeepsNoCauseThatNotAllHave) {
    detail::FindingJoiner joiner;
    for (std::int64_t i = 0; i < 200; ++i) {
        joiner.add(gapAt(i * kMillisecond, i == 50 ? LossCause::capture : LossCause::network));
    }
    auto const findings = joiner.take();
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].cause, LossCause::unknown);
}

TEST(FindingJoiner, GivesFindingsInTheOrderOfTime) {
    detail::FindingJoiner joiner;
    Finding other = gapAt(5);
    other.kind = FindingKind::late;
    joiner.add(gapAt(10));
    joiner.add(other);
    joiner.add(gapAt(20));
    auto const findings = joiner.take();
    ASSERT_EQ(findings.size(), 3U);
    EXPECT_EQ(findings[0].from, 5);
    EXPECT_EQ(findings[1].from, 10);
    EXPECT_EQ(findings[2].from, 20);
}

}  // namespace
}  // namespace TalTest::FindingJoinerTest
