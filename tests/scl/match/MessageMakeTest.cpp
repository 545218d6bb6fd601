// Whether two messages hold values of the same types.

#include <gtest/gtest.h>

#include <TalIec61850Scl/match/MessageMake.hpp>

#include "scl/match/DescribedTraffic.hpp"
#include "support/Data.hpp"

namespace TalTest::MessageMakeTest {
namespace {

bool isSame(std::vector<Bytes> const& one, std::vector<Bytes> const& other) {
    auto const join = [](std::vector<Bytes> const& values) {
        Bytes joined;
        for (Bytes const& value : values) {
            append(joined, value);
        }
        return joined;
    };
    bool const is = TalIec61850Scl::detail::isSameMake(join(one), join(other));
    EXPECT_EQ(is, TalIec61850Scl::detail::isSameMake(join(other), join(one)));
    return is;
}

TEST(MessageMake, IsTheSameWhateverValuesAre) {
    EXPECT_TRUE(isSame({}, {}));
    EXPECT_TRUE(isSame(describedValues(), describedValues()));
    EXPECT_TRUE(
        isSame({dataBoolean(false), dataInteger(1), dataQuality(), dataFloat(1),
                dataVisibleString("a"), dataStructure({dataInteger(70000), dataUtcTime(1)})},
               {dataBoolean(true), dataInteger(-100), dataQuality(0x4000), dataFloat(2),
                dataVisibleString("b"), dataStructure({dataInteger(80000), dataUtcTime(2)})}));
}

TEST(MessageMake, IsAnotherWithOtherTags) {
    EXPECT_FALSE(isSame({dataInteger(1)}, {dataUnsigned(1)}));
    EXPECT_FALSE(isSame({dataStructure({dataInteger(1)})}, {dataStructure({dataUnsigned(1)})}));
    EXPECT_FALSE(isSame({dataStructure({dataInteger(1)})}, {dataArray({dataInteger(1)})}));
}

TEST(MessageMake, IsAnotherWithMoreValues) {
    EXPECT_FALSE(isSame({dataInteger(1)}, {}));
    EXPECT_FALSE(isSame({dataInteger(1)}, {dataInteger(1), dataInteger(1)}));
    EXPECT_FALSE(isSame({dataStructure({dataInteger(1)}), dataInteger(1)},
                        {dataStructure({dataInteger(1), dataInteger(1)})}));
    EXPECT_FALSE(isSame({dataStructure({})}, {dataStructure({dataInteger(1)})}));
}

TEST(MessageMake, IsAnotherWithOtherWidths) {
    EXPECT_FALSE(isSame({dataFloat(1)}, {dataDouble(1)}));
    EXPECT_FALSE(isSame({dataBitString({0x80}, 6)}, {dataBitString({0x80}, 5)}));
    EXPECT_FALSE(isSame({dataBitString({0x80}, 6)}, {dataBitString({0x80, 0x00}, 6)}));
    EXPECT_FALSE(isSame({dataFloat(1)}, {ber(0x87, {0x09, 0x3F, 0x80, 0x00, 0x00})}));
}

TEST(MessageMake, IsAnotherWithOtherLengths) {
    EXPECT_FALSE(isSame({dataVisibleString("a")}, {dataVisibleString("longer")}));
    EXPECT_FALSE(isSame({dataOctetString({1})}, {dataOctetString({1, 2})}));
    EXPECT_FALSE(isSame({dataBoolean(true)}, {ber(0x83, {0, 1})}));
    EXPECT_FALSE(isSame({dataInteger(1)}, {dataInteger(70'000)}));
}

TEST(MessageMake, IsAnotherWithNumbersOfAnotherRange) {
    // 5 needs one octet, 300 two of them.
    EXPECT_FALSE(isSame({ber(0x85, {0x00, 0x05})}, {ber(0x85, {0x01, 0x2C})}));
    EXPECT_FALSE(isSame({ber(0x85, {0x00, 0x7F})}, {ber(0x85, {0x00, 0x80})}));
    EXPECT_FALSE(isSame({ber(0x86, {0x00, 0xFF})}, {ber(0x86, {0x01, 0x00})}));
    EXPECT_FALSE(isSame({ber(0x85, {0xFF, 0x80})}, {ber(0x85, {0xFF, 0x7F})}));
    EXPECT_TRUE(isSame({ber(0x85, {0x00, 0x05})}, {ber(0x85, {0x00, 0x06})}));
    EXPECT_TRUE(isSame({ber(0x86, {0x00, 0xFE})}, {ber(0x86, {0x00, 0xFF})}));
}

TEST(MessageMake, ComparesDeepNestingInLinearTime) {
    Bytes const deep = nested(0xA2, 20'000, dataBoolean(true));
    Bytes other = deep;
    other.back() = 0;
    EXPECT_TRUE(isSame({deep}, {other}));
}

}  // namespace
}  // namespace TalTest::MessageMakeTest
