// Which values may be of which basic type: all types against all kinds of values.

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "scl/match/DescribedTraffic.hpp"
#include "support/Data.hpp"

namespace TalTest::FitsTest {
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
    EXPECT_EQ(fitting(BasicType::bitString), (Names{"84/2", "84/8", "84/13", "84/16"}));
}

TEST(Fits, AsksForTheTagOfTimesAndTexts) {
    EXPECT_EQ(fitting(BasicType::timestamp), Names{"91"});
    EXPECT_EQ(fitting(BasicType::entryTime), Names{"8c"});
    EXPECT_EQ(fitting(BasicType::visibleString), Names{"8a"});
    EXPECT_EQ(fitting(BasicType::objectReference), Names{"8a"});
    EXPECT_EQ(fitting(BasicType::currency), Names{"8a"});
    EXPECT_EQ(fitting(BasicType::unicodeString), (Names{"8a", "90"}));
    EXPECT_EQ(fitting(BasicType::octetString), Names{"89"});
    EXPECT_EQ(fitting(BasicType::structure), Names{"a2"});
}

bool fitsOctets(BasicType type, Bytes const& octets) {
    Elements const elements(octets);
    return fits(type, viewData(*elements.begin()));
}

/// Whether a member of a type, by its text, may have this value.
bool fitsMember(std::string const& bType, Bytes const& octets) {
    DataSetMember member = memberOf({0}, basicTypeOf(bType));
    member.bType = bType;
    Elements const elements(octets);
    return fits(member, viewData(*elements.begin()));
}

TEST(Fits, AsksForTheRangeOfNumbers) {
    struct Range {
        BasicType type;
        std::int64_t least;
        std::int64_t greatest;
    };
    for (Range const& range :
         {Range{BasicType::int8, -128, 127}, Range{BasicType::int16, -32'768, 32'767},
          Range{BasicType::int24, -8'388'608, 8'388'607},
          Range{BasicType::int32, -2'147'483'648, 2'147'483'647}}) {
        EXPECT_TRUE(fitsOctets(range.type, dataInteger(range.least)));
        EXPECT_TRUE(fitsOctets(range.type, dataInteger(range.greatest)));
        EXPECT_FALSE(fitsOctets(range.type, dataInteger(range.least - 1)));
        EXPECT_FALSE(fitsOctets(range.type, dataInteger(range.greatest + 1)));
    }
    for (Range const& range :
         {Range{BasicType::int8u, 0, 255}, Range{BasicType::int16u, 0, 65'535},
          Range{BasicType::int24u, 0, 16'777'215}, Range{BasicType::int32u, 0, 4'294'967'295}}) {
        auto const greatest = static_cast<std::uint64_t>(range.greatest);
        EXPECT_TRUE(fitsOctets(range.type, dataUnsigned(greatest)));
        EXPECT_FALSE(fitsOctets(range.type, dataUnsigned(greatest + 1)));
    }
    Bytes const widest = ber(0x85, Bytes(9, 0x11));
    EXPECT_FALSE(fitsOctets(BasicType::int64, widest));
    EXPECT_FALSE(fitsOctets(BasicType::enumerated, widest));
    EXPECT_TRUE(fitsOctets(BasicType::int128, widest));
    EXPECT_FALSE(fitsOctets(BasicType::int128, ber(0x85, Bytes(17, 0x11))));
}

TEST(Fits, TakesNumbersInMoreOctetsThanTheyNeed) {
    EXPECT_TRUE(fitsOctets(BasicType::int8, ber(0x85, {0, 0, 0, 0, 5})));
    EXPECT_TRUE(fitsOctets(BasicType::int8, ber(0x85, {0xFF, 0x80})));
    EXPECT_TRUE(fitsOctets(BasicType::int8u, ber(0x86, {0, 0, 0xFF})));
    EXPECT_FALSE(fitsOctets(BasicType::int8, ber(0x85, {0x01, 0x2C})));
    EXPECT_FALSE(fitsOctets(BasicType::int8u, ber(0x86, {0x01, 0x2C})));
}

TEST(Fits, TakesUnsignedNumbersWithoutTheOctetOfZerosInFront) {
    EXPECT_TRUE(fitsOctets(BasicType::int8u, ber(0x86, {0xFF})));
    EXPECT_TRUE(fitsOctets(BasicType::int32u, ber(0x86, {0xFF, 0, 0, 0})));
    EXPECT_FALSE(fitsOctets(BasicType::int8u, ber(0x86, {0x80, 0})));
}

TEST(Fits, TakesNoOctetsThatMakeNoValue) {
    EXPECT_FALSE(fitsOctets(BasicType::boolean, ber(0x83, {0, 1})));
    EXPECT_FALSE(fitsOctets(BasicType::boolean, ber(0x83, {})));
    EXPECT_FALSE(fitsOctets(BasicType::timestamp, ber(0x91, {1, 2, 3, 4, 5})));
    EXPECT_FALSE(fitsOctets(BasicType::entryTime, ber(0x8C, {1, 2, 3})));
    EXPECT_FALSE(fitsOctets(BasicType::int32, ber(0x85, {})));
    EXPECT_FALSE(fitsOctets(BasicType::octetString, {0x89, 4, 1}));
    EXPECT_FALSE(fitsOctets(BasicType::visibleString, {0x8A, 4, 'a'}));
}

TEST(Fits, AsksForTheLengthOfTextsAndOctets) {
    EXPECT_TRUE(fitsMember("VisString32", dataVisibleString(std::string(32, 'a'))));
    EXPECT_FALSE(fitsMember("VisString32", dataVisibleString(std::string(33, 'a'))));
    EXPECT_TRUE(fitsMember("VisString255", dataVisibleString(std::string(255, 'a'))));
    EXPECT_TRUE(fitsMember("Octet6", dataOctetString(Bytes(6))));
    EXPECT_FALSE(fitsMember("Octet6", dataOctetString(Bytes(8))));
    EXPECT_TRUE(fitsMember("Octet64", dataOctetString({})));
    EXPECT_TRUE(fitsMember("EntryID", dataOctetString(Bytes(8))));
    EXPECT_TRUE(fitsMember("ObjRef", dataVisibleString(std::string(100, 'a'))));
    EXPECT_FALSE(fitsMember("Octet6", dataVisibleString("a")));
}

TEST(Fits, TakesAnyValueForAnUnknownType) {
    EXPECT_EQ(fitting(BasicType::unknown).size(), kValues.size());
}

}  // namespace
}  // namespace TalTest::FitsTest
