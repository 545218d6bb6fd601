#include <gtest/gtest.h>

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "capture/Criteria.hpp"
#include "capture/FrameWalk.hpp"
#include "support/Ber.hpp"
#include "support/Goose.hpp"

namespace TalTest::GooseParserFilterTest {
namespace {

using namespace TalIec61850Parser;

using Parsed = WalkedGoose;

Parsed parse(Bytes const& data, Filter const& filter) {
    Parsed result;
    result.accepted =
        GooseParser::parsePacket(data, 0, {}, 0, result.goose, result.package, filter);
    return result;
}

TEST(GooseParserFilter, AppId) {
    Bytes const data = gooseApdu({});
    EXPECT_TRUE(parse(data, gooseFilter({wanted(&GooseIdentifer::appId, 1)})).accepted);
    EXPECT_TRUE(parse(data, gooseFilter({anyStream<GooseIdentifer>()})).accepted);
    for (std::uint64_t const other : {0UL, 2UL, 0x0100UL, 0x1'0001UL, 0x1'0000'0001UL}) {
        Parsed const result = parse(data, gooseFilter({wanted(&GooseIdentifer::appId, other)}));
        EXPECT_FALSE(result.accepted) << other;
        EXPECT_FALSE(result.goose.appId.has_value());
        EXPECT_EQ(result.package, kUntouched);
    }
}

TEST(GooseParserFilter, HeaderFlag) {
    for (std::uint16_t const flag : std::vector<std::uint16_t>{0, 1}) {
        GooseMessage message;
        message.reserved1 = flag;
        for (std::uint8_t const criterion : Bytes{0, 1, 2, 255}) {
            Parsed const result =
                parse(gooseApdu(message),
                      gooseFilter({wanted(&GooseIdentifer::reserved1Bit0, criterion)}));
            EXPECT_EQ(result.accepted, criterion == flag);
            EXPECT_EQ(result.goose.appId, 1U);
            EXPECT_EQ(result.goose.reserved1Bit0.has_value(), criterion == flag);
        }
    }
}

TEST(GooseParserFilter, TextsAreMatchedOctetForOctet) {
    Bytes const data =
        gooseWithFields(concat({ber(0x80, "Name"), ber(0x82, "Name"), ber(0x83, "Name")}));
    for (auto const member :
         {&GooseIdentifer::gocbRef, &GooseIdentifer::datSet, &GooseIdentifer::goID}) {
        EXPECT_TRUE(parse(data, gooseFilter({wanted(member, "Name")})).accepted);
        EXPECT_TRUE(
            parse(data, gooseFilter({wanted(member, "x"), wanted(member, "Name")})).accepted);
        EXPECT_TRUE(parse(data, gooseFilter({wanted(member, "x"), GooseIdentifer{}})).accepted);
        for (std::string const& other :
             {std::string("name"), std::string("Nam"), std::string("Name "), std::string(),
              std::string("Name\0", 5)}) {
            EXPECT_FALSE(parse(data, gooseFilter({wanted(member, other)})).accepted) << other;
        }
    }
}

TEST(GooseParserFilter, UnprintableTextIsMatchedInHexadecimal) {
    for (std::uint8_t const tag : Bytes{0x80, 0x82, 0x83}) {
        Bytes const data = gooseWithFields(ber(tag, {0x41, 0x00, 0x42}));
        auto const member = tag == 0x80   ? &GooseIdentifer::gocbRef
                            : tag == 0x82 ? &GooseIdentifer::datSet
                                          : &GooseIdentifer::goID;
        EXPECT_TRUE(parse(data, gooseFilter({wanted(member, "[41 00 42]")})).accepted);
        EXPECT_FALSE(parse(data, gooseFilter({wanted(member, std::string("A\0B", 3))})).accepted);
    }
}

TEST(GooseParserFilter, EmptyGocbRefIsMatchedEmptyDatSetAndGoIdAreNot) {
    Filter const gocbRef = gooseFilter({wanted(&GooseIdentifer::gocbRef, "c")});
    EXPECT_FALSE(parse(gooseWithFields(ber(0x80, "")), gocbRef).accepted);
    EXPECT_TRUE(
        parse(gooseWithFields(ber(0x80, "")), gooseFilter({wanted(&GooseIdentifer::gocbRef, "")}))
            .accepted);
    EXPECT_TRUE(
        parse(gooseWithFields(ber(0x82, "")), gooseFilter({wanted(&GooseIdentifer::datSet, "d")}))
            .accepted);
    EXPECT_TRUE(
        parse(gooseWithFields(ber(0x83, "")), gooseFilter({wanted(&GooseIdentifer::goID, "g")}))
            .accepted);
}

TEST(GooseParserFilter, FieldThatTheFrameLacksIsNoCriterion) {
    GooseIdentifer entry;
    entry.gocbRef = entry.datSet = entry.goID = "x";
    entry.simulation = false;
    entry.confRev = 99;
    EXPECT_TRUE(parse(gooseWithFields(ber(0x81, {0x01})), gooseFilter({entry})).accepted);
}

TEST(GooseParserFilter, SimulationElementMatchesTrueOnly) {
    for (std::uint8_t const value : Bytes{0x00, 0xFF}) {
        Bytes const data = gooseWithFields(ber(0x87, {value}));
        EXPECT_TRUE(parse(data, gooseFilter({wanted(&GooseIdentifer::simulation, true)})).accepted);
        EXPECT_FALSE(
            parse(data, gooseFilter({wanted(&GooseIdentifer::simulation, false)})).accepted);
    }
}

TEST(GooseParserFilter, ConfRev) {
    Bytes const data = gooseWithFields(ber(0x88, {0xFF, 0xFF, 0xFF, 0xFF}));
    auto const accepts = [&data](std::uint64_t confRev) {
        return parse(data, gooseFilter({wanted(&GooseIdentifer::confRev, confRev)})).accepted;
    };
    EXPECT_TRUE(accepts(0xFFFFFFFF));
    EXPECT_FALSE(accepts(0));
    EXPECT_FALSE(accepts(0xFFFFFFFE));
    EXPECT_FALSE(accepts(0x1'FFFF'FFFF));
    EXPECT_FALSE(accepts(0xFFFF'FFFF'FFFF'FFFF));
}

TEST(GooseParserFilter, EveryOneOfSeveralMustPass) {
    Filter const filter = gooseFilter({wanted(&GooseIdentifer::goID, "A")});
    EXPECT_TRUE(parse(gooseWithFields(concat({ber(0x83, "A"), ber(0x83, "A")})), filter).accepted);
    EXPECT_FALSE(parse(gooseWithFields(concat({ber(0x83, "A"), ber(0x83, "B")})), filter).accepted);
    EXPECT_FALSE(parse(gooseWithFields(concat({ber(0x83, "B"), ber(0x83, "A")})), filter).accepted);
}

TEST(GooseParserFilter, EachCriterionIsMatchedOverTheWholeList) {
    Filter const filter =
        gooseFilter({wanted(&GooseIdentifer::goID, "A"), wanted(&GooseIdentifer::appId, 1)});
    for (char const* const goID : {"A", "B"}) {
        GooseMessage message;
        message.appId = 2;
        message.goID = goID;
        EXPECT_TRUE(parse(gooseApdu(message), filter).accepted) << goID;
    }
    auto first = wanted(&GooseIdentifer::goID, "A");
    first.appId = 1;
    auto second = wanted(&GooseIdentifer::goID, "A");
    second.appId = 2;
    GooseMessage message;
    message.goID = "B";
    EXPECT_FALSE(parse(gooseApdu(message), gooseFilter({first, second})).accepted);
}

TEST(GooseParserFilter, RejectedFrameIsFilledUpToTheCriterionThatFailed) {
    Bytes const data = gooseWithFields(concat(
        {ber(0x80, "c"), ber(0x82, "d"), ber(0x83, "g"), ber(0x87, {0x00}), ber(0x88, {0x07})}));
    Parsed result = parse(data, gooseFilter({wanted(&GooseIdentifer::gocbRef, "x")}));
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.goose.reserved1Bit0, 0);
    EXPECT_EQ(result.goose.gocbRef, "c");
    EXPECT_FALSE(result.goose.datSet.has_value());
    EXPECT_EQ(result.package.position, 8U);

    result = parse(data, gooseFilter({wanted(&GooseIdentifer::datSet, "x")}));
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.goose.datSet, "d");
    EXPECT_FALSE(result.goose.goID.has_value());

    result = parse(data, gooseFilter({wanted(&GooseIdentifer::goID, "x")}));
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.goose.goID, "g");
    EXPECT_FALSE(result.goose.simulation.has_value());

    result = parse(data, gooseFilter({wanted(&GooseIdentifer::simulation, false)}));
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.goose.simulation, true);
    EXPECT_FALSE(result.goose.confRev.has_value());

    result = parse(data, gooseFilter({wanted(&GooseIdentifer::confRev, 8)}));
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.goose.confRev, 7U);
}

TEST(GooseParserFilter, RejectionBehindThePduCountsToo) {
    GooseMessage message;
    message.trailing = ber(0x30, ber(0x83, "other"));
    Filter const filter = gooseFilter({wanted(&GooseIdentifer::goID, *message.goID)});
    EXPECT_FALSE(parse(gooseApdu(message), filter).accepted);
}

}  // namespace
}  // namespace TalTest::GooseParserFilterTest
