// Which values may be of which basic type: all types against all kinds of values.

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "scl/match/DescribedTraffic.hpp"
#include "support/Data.hpp"

namespace TalTest {
namespace {

using namespace TalIec61850Scl;
using TalIec61850Analysis::DataView;
using TalIec61850Analysis::Elements;
using TalIec61850Analysis::viewData;

/// Values of all kinds, and of some widths.
std::map<std::string, Bytes> const kValues = {
    {"83", dataBoolean(true)},
    {"84/2", dataBitString({0x80}, 6)},
    {"84/8", dataBitString({0x80})},
    {"84/13", dataQuality()},
    {"84/16", dataBitString({0x80, 0x00})},
    {"84/none", ber(0x84, {})},
    {"85", dataInteger(5)},
    {"86", dataUnsigned(5)},
    {"87/5", dataFloat(1)},
    {"87/9", dataDouble(1)},
    {"87/3", ber(0x87, {0x08, 0x01, 0x02})},
    {"89", dataOctetString({1, 2})},
    {"8a", dataVisibleString("x")},
    {"8c", dataBinaryTime(1, 2)},
    {"8d", dataBcd(1)},
    {"8e", dataBooleanArray({0x80}, 6)},
    {"8f", dataObjectId({1, 2})},
    {"90", dataMmsString("x")},
    {"91", dataUtcTime(1)},
    {"a1", dataArray({dataBoolean(true)})},
    {"a2", dataStructure({dataBoolean(true)})},
    {"99", ber(0x99, {0x01})},
};

/// The values that fit a type.
std::set<std::string> fitting(BasicType type) {
    std::set<std::string> names;
    for (auto const& [name, octets] : kValues) {
        Elements const elements(octets);
        if (fits(type, viewData(*elements.begin()))) {
            names.insert(name);
        }
    }
    return names;
}

using Names = std::set<std::string>;

TEST(Fits, AsksForTheTagOfNumbers) {
    for (BasicType const type :
         {BasicType::int8, BasicType::int16, BasicType::int24, BasicType::int32, BasicType::int64,
          BasicType::int128, BasicType::enumerated}) {
        EXPECT_EQ(fitting(type), Names{"85"});
    }
    for (BasicType const type :
         {BasicType::int8u, BasicType::int16u, BasicType::int24u, BasicType::int32u}) {
        EXPECT_EQ(fitting(type), Names{"86"});
    }
    EXPECT_EQ(fitting(BasicType::boolean), Names{"83"});
}

TEST(Fits, AsksForTheFormatOfFloatingPointNumbers) {
    EXPECT_EQ(fitting(BasicType::float32), Names{"87/5"});
    EXPECT_EQ(fitting(BasicType::float64), Names{"87/9"});
}

TEST(Fits, AsksForTheBitsOfBitStrings) {
    for (BasicType const type : {BasicType::dbpos, BasicType::tcmd, BasicType::check}) {
        EXPECT_EQ(fitting(type), Names{"84/2"});
    }
    EXPECT_EQ(fitting(BasicType::quality), Names{"84/13"});
    EXPECT_EQ(fitting(BasicType::bitString), (Names{"84/2", "84/8", "84/13", "84/16", "84/none"}));
}

TEST(Fits, AsksForTheTagOfTimesAndTexts) {
    EXPECT_EQ(fitting(BasicType::timestamp), Names{"91"});
    EXPECT_EQ(fitting(BasicType::entryTime), Names{"8c"});
    EXPECT_EQ(fitting(BasicType::visibleString), Names{"8a"});
    EXPECT_EQ(fitting(BasicType::objectReference), Names{"8a"});
    EXPECT_EQ(fitting(BasicType::currency), Names{"8a"});
    EXPECT_EQ(fitting(BasicType::unicodeString), (Names{"8a", "90"}));
    EXPECT_EQ(fitting(BasicType::octetString), Names{"89"});
    EXPECT_EQ(fitting(BasicType::structure), (Names{"a1", "a2"}));
}

TEST(Fits, TakesAnyValueForAnUnknownType) {
    EXPECT_EQ(fitting(BasicType::unknown).size(), kValues.size());
}

}  // namespace
}  // namespace TalTest
