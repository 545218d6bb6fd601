#include <gtest/gtest.h>

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "capture/SmallStack.hpp"
#include "support/Ber.hpp"
#include "support/Data.hpp"
#include "support/Sanitized.hpp"

namespace TalTest::BooleanValuesTest {
namespace {

using namespace TalIec61850Parser;

using Values = std::vector<float>;

static_assert(std::is_same_v<decltype(&GooseParser::parseBooleanValues),
                             Values (*)(std::vector<std::uint8_t> const&)>);
static_assert(std::is_same_v<decltype(&GooseParser::_extractBooleanValues),
                             void (*)(std::vector<std::uint8_t> const&, Values&)>);

Bytes const kTrue = {0x83, 0x01, 0x01};
Bytes const kFalse = {0x83, 0x01, 0x00};

Values valuesOf(Bytes const& allData) { return GooseParser::parseBooleanValues(allData); }

/// The values of these octets between two booleans that are true: {1} where they end the level.
Values between(Bytes const& octets) { return valuesOf(concat({kTrue, octets, kTrue})); }

TEST(BooleanValues, AreOneAndZeroInOrder) {
    EXPECT_EQ(valuesOf(concat({kTrue, kFalse, kFalse, kTrue})), (Values{1, 0, 0, 1}));
    EXPECT_EQ(valuesOf({}), Values{});
}

TEST(BooleanValues, AreTrueUnlessTheOctetIsZero) {
    for (unsigned octet = 0; octet <= 0xFF; ++octet)
        EXPECT_EQ(valuesOf({0x83, 0x01, static_cast<std::uint8_t>(octet)}),
                  Values{octet == 0 ? 0.0F : 1.0F});
}

TEST(BooleanValues, AreOneOctetLong) {
    EXPECT_EQ(between(ber(0x83, {})), (Values{1, 1}));
    EXPECT_EQ(between(ber(0x83, {0x00, 0x00})), (Values{1, 1}));
    EXPECT_EQ(between(ber(0x83, Bytes(257))), (Values{1, 1}));
    EXPECT_EQ(valuesOf({0x83, 0x01, 0x00, 0x82, 0x03, 0x83, 0x01, 0x05, 0x83, 0x02, 0x01, 0x01}),
              (Values{0, 1}));
}

TEST(BooleanValues, PassOverAllOtherTagsWithTheirContent) {
    for (unsigned tag = 0; tag <= 0xFF; ++tag) {
        if (tag == 0x82 || tag == 0x83) continue;
        EXPECT_EQ(between(ber(static_cast<std::uint8_t>(tag), kFalse)), (Values{1, 1})) << tag;
    }
    EXPECT_EQ(valuesOf({0xA2, 0x03, 0x83, 0x01, 0x01}), Values{});
    EXPECT_EQ(valuesOf({0xA1, 0x03, 0x83, 0x01, 0x01}), Values{});
}

TEST(BooleanValues, OfUsualDataAreThoseAtItsTop) {
    Bytes const data =
        concat({dataBoolean(true), dataQuality(0x1234), dataStructure({dataBoolean(false)}),
                dataArray({dataBoolean(false)}), dataFloat(1.5F), dataUtcTime(0x83018301),
                dataVisibleString("\x83\x01\x01"), dataInteger(-1), dataBoolean(false)});
    EXPECT_EQ(valuesOf(data), (Values{1, 0}));
}

TEST(BooleanValues, AreFoundInPrimitiveStructures) {
    Bytes const inner = concat({kFalse, ber(0x82, kTrue), kFalse});
    EXPECT_EQ(between(ber(0x82, inner)), (Values{1, 0, 1, 0, 1}));
    EXPECT_EQ(between(ber(0x82, {})), (Values{1, 1}));
    EXPECT_EQ(between(ber(0x82, ber(0xA2, kFalse))), (Values{1, 1}));
    EXPECT_EQ(between(ber(0xA2, ber(0x82, kFalse))), (Values{1, 1}));
}

TEST(BooleanValues, UnderstandUpToFourLengthOctets) {
    for (LengthForm const form : {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets,
                                  LengthForm::threeOctets, LengthForm::fourOctets}) {
        EXPECT_EQ(between(ber(0x83, {0x00}, form)), (Values{1, 0, 1}));
        EXPECT_EQ(between(ber(0x83, {0x00, 0x00}, form)), (Values{1, 1}));
        EXPECT_EQ(between(ber(0x83, {}, form)), (Values{1, 1}));
        EXPECT_EQ(between(ber(0x82, kFalse, form)), (Values{1, 0, 1}));
        EXPECT_EQ(between(ber(0x86, kFalse, form)), (Values{1, 1}));
    }
    for (std::size_t const size : {127UL, 128UL, 255UL, 256UL, 65535UL, 65536UL, 70000UL})
        EXPECT_EQ(between(ber(0x89, repeat(0x83, size))), (Values{1, 1})) << size;
}

TEST(BooleanValues, EndAtOtherLengths) {
    for (unsigned octet = 0x80; octet <= 0xFF; ++octet) {
        if (octet >= 0x81 && octet <= 0x84) continue;
        Bytes const length = {static_cast<std::uint8_t>(octet)};
        for (std::uint8_t const tag : Bytes{0x82, 0x83, 0x86, 0xA2})
            EXPECT_EQ(between(berClaiming(tag, length, Bytes(300))), Values{1}) << octet;
    }
}

TEST(BooleanValues, EndWhereAnElementIsCutShort) {
    for (std::uint8_t const tag : Bytes{0x82, 0x83, 0x86, 0xA2}) {
        for (LengthForm const form :
             {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets,
              LengthForm::threeOctets, LengthForm::fourOctets}) {
            Bytes const element = ber(tag, {0x00}, form);
            for (std::size_t size = 0; size < element.size(); ++size)
                EXPECT_EQ(valuesOf(concat({kFalse, prefix(element, size)})), Values{0}) << size;
            std::size_t const found = tag == 0x83 ? 2 : 1;
            EXPECT_EQ(valuesOf(concat({kFalse, element})).size(), found);
        }
    }
}

TEST(BooleanValues, EndAtLengthsOfGigaoctets) {
    for (Bytes const& length :
         {Bytes{0x84, 0xFF, 0xFF, 0xFF, 0xFF}, Bytes{0x84, 0xFF, 0xFF, 0xFF, 0xF6},
          Bytes{0x84, 0x80, 0x00, 0x00, 0x00}, Bytes{0x83, 0xFF, 0xFF, 0xFF}}) {
        EXPECT_EQ(between(berClaiming(0x83, length, {0x01})), Values{1});
        EXPECT_EQ(between(berClaiming(0x82, length, kTrue)), Values{1});
    }
}

TEST(BooleanValues, GoOnBehindAStructureThatEndsBroken) {
    for (Bytes const& broken :
         {Bytes{0x83}, Bytes{0x83, 0x01}, Bytes{0x83, 0x80}, Bytes{0x83, 0x85, 0, 0, 0, 0, 1, 1},
          Bytes{0x82, 0x05, 0x83, 0x01, 0x01}, Bytes{0x86, 0x82, 0x00}}) {
        EXPECT_EQ(between(ber(0x82, concat({kFalse, broken}))), (Values{1, 0, 1}));
        EXPECT_EQ(between(ber(0x82, ber(0x82, concat({kFalse, broken})))), (Values{1, 0, 1}));
    }
}

TEST(BooleanValues, OfAStructureEndWithIt) {
    // The boolean's value would be the octet after the structure.
    EXPECT_EQ(valuesOf({0x82, 0x02, 0x83, 0x01, 0x83, 0x01, 0x00}), Values{0});
}

TEST(BooleanValues, AreNotLimitedInNumber) {
    for (std::size_t const count : {49UL, 50UL, 51UL, 1000UL, 20'000UL}) {
        Bytes level;
        for (std::size_t i = 0; i < count; ++i) append(level, kTrue);
        EXPECT_EQ(valuesOf(level), Values(count, 1.0F));
        EXPECT_EQ(valuesOf(concat({ber(0x82, level), kTrue})), Values(count + 1, 1.0F));
    }
}

TEST(BooleanValues, AreAppendedToWhatIsThere) {
    Values values = {7, 8};
    GooseParser::_extractBooleanValues(concat({kFalse, ber(0x82, kTrue)}), values);
    EXPECT_EQ(values, (Values{7, 8, 0, 1}));
    GooseParser::_extractBooleanValues({}, values);
    GooseParser::_extractBooleanValues({0x83}, values);
    EXPECT_EQ(values, (Values{7, 8, 0, 1}));
}

TEST(BooleanValues, OfEveryPrefixAreThoseOfItsWholeElements) {
    Bytes const data =
        concat({kTrue, ber(0x82, concat({kFalse, kTrue})), ber(0x85, {1, 2}), kFalse});
    std::vector<Values> const expected = {{}, {1}, {1, 0, 1}, {1, 0, 1}, {1, 0, 1, 0}};
    std::vector<std::size_t> const ends = {0, 3, 11, 15, 18};
    for (std::size_t size = 0; size <= data.size(); ++size) {
        auto const end = std::upper_bound(ends.begin(), ends.end(), size);
        EXPECT_EQ(valuesOf(prefix(data, size)),
                  expected[static_cast<std::size_t>(end - ends.begin()) - 1])
            << size;
    }
}

constexpr std::size_t kMillion = 1'000'000;

TEST(BooleanValues, AreFoundHoweverDeep) {
    for (std::size_t const levels : {1UL, 2UL, 49UL, 50UL, 51UL, 1000UL, kMillion})
        EXPECT_EQ(between(nested(0x82, levels, kFalse)), (Values{1, 0, 1})) << levels;
}

TEST(BooleanValues, OfEveryLevelComeBehindThoseBelowIt) {
    // Built from the inside: each level holds the one below it, then a boolean of its own.
    Bytes reversed;
    Bytes behind;
    for (std::size_t level = 0; level < 1000; ++level) {
        Bytes const length = berLength(reversed.size() + behind.size());
        reversed.insert(reversed.end(), length.rbegin(), length.rend());
        reversed.push_back(0x82);
        append(behind, {0x83, 0x01, static_cast<std::uint8_t>(level % 3 == 0)});
    }
    std::reverse(reversed.begin(), reversed.end());
    append(reversed, behind);
    Values const values = valuesOf(reversed);
    ASSERT_EQ(values.size(), 1000U);
    for (std::size_t level = 0; level < values.size(); ++level)
        EXPECT_EQ(values[level], level % 3 == 0 ? 1.0F : 0.0F) << level;
}

TEST(BooleanValues, NeedNoStack) {
    if (isSanitized) GTEST_SKIP() << "a sanitizer needs the stack itself";
    Bytes const data = nested(0x82, kMillion, kTrue);
    Values values;
    runOnSmallStack([&] { GooseParser::_extractBooleanValues(data, values); });
    EXPECT_EQ(values, Values{1});
}

}  // namespace
}  // namespace TalTest::BooleanValuesTest
