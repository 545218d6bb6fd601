// Lists of spans that are kept short.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/pictures/JoinShortSpans.hpp>
#include <limits>

namespace TalIec61850Analysis::detail::JoinShortSpansTest {
namespace {

struct TestSpan {
    std::int64_t from = 0;
    std::int64_t to = 0;
    int joined = 1;
};

void joinTestSpans(TestSpan& into, TestSpan const& next) {
    into.to = next.to;
    into.joined += next.joined;
}

TEST(JoinShortSpans, LeavesAShortListAsItIs) {
    std::vector<TestSpan> spans(16, TestSpan{5, 6});
    std::int64_t grain = 0;
    joinShortSpans(spans, 16, grain, joinTestSpans);
    EXPECT_EQ(spans.size(), 16U);
    EXPECT_EQ(grain, 0);
}

TEST(JoinShortSpans, JoinsWhatIsNear) {
    std::vector<TestSpan> spans;
    for (std::int64_t i = 0; i < 20; ++i) spans.push_back({1'000'000 + i, 1'000'001 + i});
    spans.push_back({9'000'000, 9'500'000});
    std::int64_t grain = 0;
    joinShortSpans(spans, 16, grain, joinTestSpans);
    EXPECT_LE(spans.size(), 8U);
    EXPECT_GT(grain, 0);
    EXPECT_EQ(spans.back().from, 9'000'000);
    EXPECT_EQ(spans.back().joined, 1);
}

TEST(JoinShortSpans, EndsForAnyTimes) {
    constexpr std::int64_t kLatest = std::numeric_limits<std::int64_t>::max();
    std::vector<std::vector<TestSpan>> const pairs = {{{-kLatest, 0}, {0, kLatest}},
                                                      {{kLatest - 2, kLatest - 1}, {0, 1}}};
    for (auto const& pair : pairs) {
        std::vector<TestSpan> spans;
        for (int i = 0; i < 40; ++i) spans.insert(spans.end(), pair.begin(), pair.end());
        std::int64_t grain = 0;
        joinShortSpans(spans, 16, grain, joinTestSpans);
        EXPECT_LE(spans.size(), 8U);
        int joined = 0;
        for (TestSpan const& span : spans) joined += span.joined;
        EXPECT_EQ(joined, 80);
    }
}

TEST(JoinShortSpans, StaysAsFineAsItCan) {
    std::vector<TestSpan> spans;
    std::int64_t grain = 0;
    for (std::int64_t i = 0; i < 100'000; ++i) {
        std::int64_t const from = 1'700'000'000'000'000'000 + 1'000'000'000 * i;
        spans.push_back({from, from + 250'000});
        joinShortSpans(spans, 64, grain, joinTestSpans);
        ASSERT_LE(spans.size(), 64U);
        ASSERT_GE(spans.size(), std::min<std::size_t>(static_cast<std::size_t>(i) + 1, 14));
    }
}

RC_GTEST_PROP(JoinShortSpans, KeepsAllOfThemInTheirOrder, ()) {
    std::vector<TestSpan> spans;
    std::int64_t grain = 0;
    std::int64_t time = 1'700'000'000'000'000'000;
    auto const count = *rc::gen::inRange(1, 400);
    std::vector<TestSpan> all;
    for (int i = 0; i < count; ++i) {
        time += *rc::gen::element<std::int64_t>(0, 1, 1000, 100'000'000);
        TestSpan span{time, time + *rc::gen::inRange<std::int64_t>(1, 1'000'000)};
        time = span.to;
        all.push_back(span);
        spans.push_back(span);
        joinShortSpans(spans, 16, grain, joinTestSpans);
        RC_ASSERT(spans.size() <= 16U);
    }
    int joined = 0;
    std::size_t next = 0;
    for (std::size_t i = 0; i < spans.size(); ++i) {
        std::int64_t const before = i == 0 ? spans[i].from : spans[i - 1].to;
        RC_ASSERT(before <= spans[i].from);
        RC_ASSERT(spans[i].from == all[next].from);
        next += static_cast<std::size_t>(spans[i].joined);
        RC_ASSERT(spans[i].to == all[next - 1].to);
        joined += spans[i].joined;
    }
    RC_ASSERT(joined == count);
}

}  // namespace
}  // namespace TalIec61850Analysis::detail::JoinShortSpansTest
