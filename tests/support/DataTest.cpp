#include <gtest/gtest.h>

#include "support/Data.hpp"

namespace TalTest::DataTest {
namespace {

TEST(DataBuilder, WritesNumbersOfBothPrecisions) {
    EXPECT_EQ(dataFloat(-1.5F), (Bytes{0x87, 5, 8, 0xBF, 0xC0, 0, 0}));
    EXPECT_EQ(dataDouble(-1.5), (Bytes{0x87, 9, 11, 0xBF, 0xF8, 0, 0, 0, 0, 0, 0}));
}

TEST(DataBuilder, WritesABinaryTimeWithoutAndWithDays) {
    EXPECT_EQ(dataBinaryTime(0x01020304), (Bytes{0x8C, 4, 1, 2, 3, 4}));
    EXPECT_EQ(dataBinaryTime(1, 0x3960), (Bytes{0x8C, 6, 0, 0, 0, 1, 0x39, 0x60}));
}

TEST(DataBuilder, WritesTheRarerTypes) {
    EXPECT_EQ(dataBcd(42), (Bytes{0x8D, 1, 42}));
    EXPECT_EQ(dataBooleanArray({0xA0}, 4), (Bytes{0x8E, 2, 4, 0xA0}));
    EXPECT_EQ(dataObjectId({0x28, 0xCA, 0x22}), (Bytes{0x8F, 3, 0x28, 0xCA, 0x22}));
    EXPECT_EQ(dataMmsString("ab"), (Bytes{0x90, 2, 'a', 'b'}));
}

TEST(DataBuilder, NestsStructuresAndArrays) {
    EXPECT_EQ(dataStructure({}), (Bytes{0xA2, 0}));
    EXPECT_EQ(dataArray({dataBoolean(true), dataStructure({dataBcd(1)})}),
              (Bytes{0xA1, 8, 0x83, 1, 0xFF, 0xA2, 3, 0x8D, 1, 1}));
}

}  // namespace
}  // namespace TalTest::DataTest
