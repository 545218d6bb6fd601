#include <gtest/gtest.h>

#include <TalIec61850Analysis/time/TimeWindow.hpp>

namespace TalIec61850Analysis::TimeWindowTest {
namespace {

constexpr CaptureTime at(std::int64_t nanoseconds) { return captureTimeOf(nanoseconds); }

TEST(TimeWindow, WithoutEndsContainsEveryInstant) {
    EXPECT_TRUE(TimeWindow{}.contains(CaptureTime::min()));
    EXPECT_TRUE(TimeWindow{}.contains(CaptureTime::max()));
}

TEST(TimeWindow, ContainsBothItsEnds) {
    TimeWindow const window{.from = at(3), .to = at(5)};
    EXPECT_FALSE(window.contains(at(2)));
    EXPECT_TRUE(window.contains(at(3)));
    EXPECT_TRUE(window.contains(at(5)));
    EXPECT_FALSE(window.contains(at(6)));
}

TEST(TimeWindow, MayBeOpenAtOneEnd) {
    EXPECT_TRUE((TimeWindow{.from = at(3), .to = {}}).contains(CaptureTime::max()));
    EXPECT_FALSE((TimeWindow{.from = at(3), .to = {}}).contains(at(2)));
    EXPECT_TRUE((TimeWindow{.from = {}, .to = at(5)}).contains(CaptureTime::min()));
    EXPECT_FALSE((TimeWindow{.from = {}, .to = at(5)}).contains(at(6)));
}

TEST(TimeWindow, ThatEndsBeforeItStartsContainsNothing) {
    TimeWindow const window{.from = at(5), .to = at(3)};
    EXPECT_FALSE(window.contains(at(4)));
    EXPECT_FALSE(window.contains(at(3)));
    EXPECT_FALSE(window.contains(at(5)));
}

}  // namespace
}  // namespace TalIec61850Analysis::TimeWindowTest
