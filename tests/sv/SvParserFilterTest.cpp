#include <gtest/gtest.h>

#include <TalIec61850Parser/sv/SvParser.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "capture/Criteria.hpp"
#include "capture/FrameWalk.hpp"
#include "support/Ber.hpp"
#include "support/SampledValues.hpp"

namespace TalTest::SvParserFilterTest {
namespace {

using namespace TalIec61850Parser;

using Parsed = WalkedSv;

Parsed parse(Bytes const& data, Filter const& filter) {
    Parsed result;
    result.accepted = SvParser::parsePacket(data, 0, {}, 0, result.sv, result.package, filter);
    return result;
}

TEST(SvParserFilter, AppId) {
    Bytes const data = svApdu({});
    EXPECT_TRUE(parse(data, svFilter({wanted(&SvIdentifer::appId, 0x4000)})).accepted);
    EXPECT_TRUE(parse(data, svFilter({anyStream<SvIdentifer>()})).accepted);
    EXPECT_TRUE(parse(data, svFilter({SvIdentifer{}})).accepted);
    for (std::uint64_t const other : {0UL, 0x4001UL, 0x0040UL, 0x1'4000UL, 0x1'0000'4000UL}) {
        Parsed const result = parse(data, svFilter({wanted(&SvIdentifer::appId, other)}));
        EXPECT_FALSE(result.accepted) << other;
        EXPECT_FALSE(result.sv.reserved1Bit0.has_value());
        EXPECT_EQ(result.package, kUntouched);
    }
}

TEST(SvParserFilter, DefaultEntryAsksForAppId4000) {
    SvMessage message;
    message.appId = 0x4001;
    EXPECT_FALSE(parse(svApdu(message), svFilter({SvIdentifer{}})).accepted);
}

TEST(SvParserFilter, HeaderFlag) {
    for (std::uint16_t const flag : std::vector<std::uint16_t>{0, 1}) {
        SvMessage message;
        message.reserved1 = flag;
        for (std::uint8_t const criterion : Bytes{0, 1, 2, 255}) {
            Parsed const result =
                parse(svApdu(message), svFilter({wanted(&SvIdentifer::reserved1Bit0, criterion)}));
            EXPECT_EQ(result.accepted, criterion == flag);
            EXPECT_EQ(result.sv.reserved1Bit0.has_value(), criterion == flag);
        }
    }
}

TEST(SvParserFilter, SvIdIsMatchedOctetForOctet) {
    Bytes const data = svApdu({});
    auto const accepts = [&data](std::string const& svID) {
        return parse(data, svFilter({wanted(&SvIdentifer::svID, svID)})).accepted;
    };
    EXPECT_TRUE(accepts("MU01"));
    for (std::string const& other : {std::string("mu01"), std::string("MU0"), std::string("MU01 "),
                                     std::string(), std::string("MU01\0", 5)}) {
        EXPECT_FALSE(accepts(other)) << other;
    }
    EXPECT_TRUE(parse(svWithFields(ber(0x80, {0x41, 0x00})),
                      svFilter({wanted(&SvIdentifer::svID, "[41 00]")}))
                    .accepted);
}

TEST(SvParserFilter, EmptySvIdIsMatchedToo) {
    Bytes const data = svWithFields(ber(0x80, ""));
    EXPECT_TRUE(parse(data, svFilter({wanted(&SvIdentifer::svID, "")})).accepted);
    EXPECT_FALSE(parse(data, svFilter({wanted(&SvIdentifer::svID, "MU01")})).accepted);
}

TEST(SvParserFilter, ConfRev) {
    Bytes const data = svWithFields(ber(0x83, {0xFF, 0xFF, 0xFF, 0xFF}));
    auto const accepts = [&data](std::uint64_t confRev) {
        return parse(data, svFilter({wanted(&SvIdentifer::confRev, confRev)})).accepted;
    };
    EXPECT_TRUE(accepts(4294967295));
    EXPECT_FALSE(accepts(0));
    EXPECT_FALSE(accepts(0x1'FFFF'FFFF));
    EXPECT_FALSE(accepts(0xFFFF'FFFF'FFFF'FFFF));
}

TEST(SvParserFilter, EveryAsduMustPass) {
    Filter const filter = svFilter({wanted(&SvIdentifer::svID, "A")});
    EXPECT_TRUE(parse(svApdu(messageOf({"A", "A", "A"})), filter).accepted);
    EXPECT_FALSE(parse(svApdu(messageOf({"B", "A", "A"})), filter).accepted);
    Parsed const result = parse(svApdu(messageOf({"A", "A", "B"})), filter);
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.sv.svID, "B");

    SvMessage message = messageOf({"A", "A"});
    message.asdus.back().confRev = 2;
    EXPECT_FALSE(parse(svApdu(message), svFilter({wanted(&SvIdentifer::confRev, 1)})).accepted);
}

TEST(SvParserFilter, AsduBehindTheFiftiethIsNotMatched) {
    SvMessage message;
    message.asdus.assign(50, Asdu{});
    for (Asdu& asdu : message.asdus) asdu.seqData = Bytes(8);
    Asdu other = message.asdus.front();
    other.svID = "other";
    message.asdus.push_back(other);
    Filter const filter = svFilter({wanted(&SvIdentifer::svID, "MU01")});
    EXPECT_TRUE(parse(svApdu(message), filter).accepted);
    message.asdus.erase(message.asdus.begin());
    EXPECT_FALSE(parse(svApdu(message), filter).accepted);
}

TEST(SvParserFilter, FieldThatTheFrameLacksIsNoCriterion) {
    auto entry = wanted(&SvIdentifer::svID, "x");
    entry.confRev = 99;
    EXPECT_TRUE(parse(svWithFields(ber(0x82, {0, 1})), svFilter({entry})).accepted);
}

TEST(SvParserFilter, EachCriterionIsMatchedOverTheWholeList) {
    SvMessage message = messageOf({"B"});
    message.asdus.front().confRev = 2;
    Filter filter = svFilter({wanted(&SvIdentifer::svID, "A"), wanted(&SvIdentifer::confRev, 1)});
    EXPECT_TRUE(parse(svApdu(message), filter).accepted);
    filter.svFilters.pop_back();
    EXPECT_FALSE(parse(svApdu(message), filter).accepted);
}

TEST(SvParserFilter, RejectedFrameIsFilledUpToTheCriterionThatFailed) {
    SvMessage message;
    message.asdus.front().smpCnt = 77;
    message.asdus.front().smpRate = 80;
    Parsed result = parse(svApdu(message), svFilter({wanted(&SvIdentifer::svID, "x")}));
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.sv.svID, "MU01");
    EXPECT_EQ(result.sv.maxNoASDU, 1U);
    EXPECT_EQ(result.sv.maxSmpCnt, 0);
    EXPECT_EQ(result.package.position, 8U + 5U);

    result = parse(svApdu(message), svFilter({wanted(&SvIdentifer::confRev, 9)}));
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.sv.maxSmpCnt, 77);
    EXPECT_EQ(result.sv.confRev, 1U);
    EXPECT_EQ(result.sv.smpRate, 0);
}

}  // namespace
}  // namespace TalTest::SvParserFilterTest
