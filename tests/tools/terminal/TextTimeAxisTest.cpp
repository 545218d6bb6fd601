#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "tools/output/TextEscape.hpp"
#include "tools/terminal/PlainPictures.hpp"
#include "tools/terminal/TextTimeAxis.hpp"

namespace TalIec61850Tools::TextTimeAxisTest {
namespace {

using TalTest::kPictureMs;
using TalTest::kPictureStart;

constexpr std::int64_t kHourLength = 3'600'000 * kPictureMs;

std::string axisOf(std::int64_t from, std::int64_t length, std::size_t columns,
                   std::size_t labelColumns = 0, bool isUtf8 = false) {
    TimeScale const scale(from, from + length, columns);
    return timeAxisLine(scale, labelColumns, {.columns = columns + labelColumns, .isUtf8 = isUtf8});
}

TEST(TextTimeAxis, HasItsMarksInTheColumnsOfRoundTimes) {
    EXPECT_EQ(axisOf(kPictureStart, 400 * kPictureMs, 60),
              "|10:00:00.0    |10:00:00.1    |10:00:00.2    |10:00:00.3\n");
    EXPECT_EQ(axisOf(kPictureStart + 50 * kPictureMs, 400 * kPictureMs, 60),
              "       |10:00:00.1    |10:00:00.2    |10:00:00.3    |\n");
    EXPECT_EQ(axisOf(kPictureStart, 400 * kPictureMs, 60, 0, true).substr(0, 13),
              "\u257510:00:00.0");
}

TEST(TextTimeAxis, HasTheDayBelowTheLabelsWhereItFits) {
    EXPECT_EQ(axisOf(kPictureStart, 2 * kHourLength, 24, 12), "2024-03-20  |10:00      |11:00\n");
    EXPECT_EQ(axisOf(kPictureStart, 2 * kHourLength, 24, 10), "          |10:00      |11:00\n");
}

TEST(TextTimeAxis, NamesTheNextDayAtMidnight) {
    EXPECT_EQ(axisOf(kPictureStart + 12 * kHourLength, 4 * kHourLength, 48),
              "|22:00      |23:00      |2024-03-21 |01:00\n");
}

TEST(TextTimeAxis, TakesWindowsFromANanosecondToCenturies) {
    EXPECT_EQ(axisOf(kPictureStart, 1, 40), "|10:00:00.000000000\n");
    EXPECT_EQ(axisOf(0, std::numeric_limits<std::int64_t>::max(), 20).substr(0, 11), "|1970-01-01");
}

RC_GTEST_PROP(TextTimeAxis, NeverTakesMoreThanItsColumns, ()) {
    auto const bits = *rc::gen::inRange(0, 61);
    auto const length = *rc::gen::inRange<std::int64_t>(1, (std::int64_t{1} << bits) + 1);
    auto const columns = *rc::gen::inRange<std::size_t>(1, 200);
    auto const labels = *rc::gen::inRange<std::size_t>(0, 30);
    bool const isUtf8 = *rc::gen::arbitrary<bool>();
    std::string line = axisOf(kPictureStart, length, columns, labels, isUtf8);
    RC_ASSERT(line.back() == '\n');
    line.pop_back();
    RC_ASSERT(countColumns(line) <= columns + labels);
}

}  // namespace
}  // namespace TalIec61850Tools::TextTimeAxisTest
