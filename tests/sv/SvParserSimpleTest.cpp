#include <gtest/gtest.h>

#include <TalIec61850Parser/sv/SvParser.hpp>
#include <TalIec61850Parser/sv/SvParserSimple.hpp>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "capture/Criteria.hpp"
#include "capture/FrameWalk.hpp"
#include "support/Ber.hpp"
#include "support/SampledValues.hpp"

namespace TalTest::SvParserSimpleTest {
namespace {

using namespace TalIec61850Parser;

using Judged = WalkedSv;

Judged parse(Bytes const& data, Filter const& filter = {}, std::size_t offset = 0) {
    return judged<SvParserSimple, Judged>(data, filter, offset);
}

void expectAsIndexed(Bytes const& data, Filter const& filter = {}) {
    expectSame(parse(data, filter), indexed<SvParser, Judged>(data, filter));
}

std::vector<SvMessage> messages() {
    std::vector<SvMessage> all(6);
    all[1].reserved1 = 0x8001;
    all[1].appId = 0xFFFF;
    all[2] = messageOf({"A", "", "MU01"});
    all[2].asdus[1].confRev = {0xFFFF'FFFF, 4};
    all[3].asdus[0].svID = std::string("A\0B", 3);
    all[3].asdus[0].datSet = "dataSet";
    all[3].asdus[0].smpRate = 80;
    all[4].security = Bytes{1, 2, 3};
    all[4].extraInSequence = ber(0x80, "before");
    all[5].omitNoASDU = true;
    all[5].asdus[0].confRev.reset();
    all[5].length = 0;
    return all;
}

// --- What is stored ----------------------------------------------------------------------------

TEST(SvParserSimple, FillsTheIdentity) {
    SvMessage message;
    message.appId = 0xFEDC;
    message.reserved1 = 0x0001;
    message.asdus[0].confRev = {0xFFFF'FFFF, 4};
    Judged const result = parse(svApdu(message));
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(result.sv.appId, 0xFEDCU);
    EXPECT_EQ(result.sv.reserved1Bit0, 1);
    EXPECT_EQ(result.sv.svID, "MU01");
    EXPECT_EQ(result.sv.confRev, 0xFFFF'FFFFU);
}

TEST(SvParserSimple, LeavesTheRestOfTheRecordAlone) {
    SvMessage message;
    message.noASDU = {3, 1};
    message.asdus[0].smpCnt = 4;
    message.asdus[0].smpRate = 5;
    Sv sv;
    sv.srcMac = "source";
    sv.spareText = "spare";
    sv.maxNoASDU = 70;
    sv.maxSmpCnt = 80;
    sv.smpRate = 90;
    sv.packetCount = 100;
    static_cast<void>(sv.addFile("a.pcap"));
    EXPECT_TRUE(SvParserSimple::parsePacket(svApdu(message), 0, sv, {}));
    EXPECT_EQ(sv.svID, "MU01");
    EXPECT_EQ(sv.srcMac, "source");
    EXPECT_EQ(sv.spareText, "spare");
    EXPECT_FALSE(sv.dstMac || sv.vlan || sv.hsr || sv.prp);
    EXPECT_EQ(sv.maxNoASDU, 70U);
    EXPECT_EQ(sv.maxSmpCnt, 80);
    EXPECT_EQ(sv.smpRate, 90);
    EXPECT_EQ(sv.packetCount, 100U);
    EXPECT_EQ(sv.files.size(), 1U);
}

TEST(SvParserSimple, FieldsThatTheFrameLacksKeepTheirValue) {
    Sv sv;
    sv.svID = "before";
    sv.confRev = 7;
    EXPECT_TRUE(SvParserSimple::parsePacket(svWithFields(ber(0x82, {0, 1})), 0, sv, {}));
    EXPECT_EQ(sv.svID, "before");
    EXPECT_EQ(sv.confRev, 7U);
    EXPECT_EQ(sv.appId, 0U);
}

TEST(SvParserSimple, FlagIsTheLowestBitOfTheSixthOctet) {
    Bytes data = svApdu({});
    for (int octet = 0; octet < 256; ++octet) {
        data[4] = static_cast<std::uint8_t>(~octet);
        data[5] = static_cast<std::uint8_t>(octet);
        EXPECT_EQ(parse(data).sv.reserved1Bit0, octet & 1) << octet;
    }
}

TEST(SvParserSimple, ValuesOfTheLastAsduStay) {
    SvMessage message = messageOf({"A", "B", "C"});
    message.asdus[1].confRev = 2;
    message.asdus[2].confRev.reset();
    Sv const sv = parse(svApdu(message)).sv;
    EXPECT_EQ(sv.svID, "C");
    EXPECT_EQ(sv.confRev, 2U);
}

TEST(SvParserSimple, SvIdIsRenderedAndEmptyOnesAreStored) {
    EXPECT_EQ(parse(svWithFields(ber(0x80, {0x41, 0, 0x42}))).sv.svID, "[41 00 42]");
    EXPECT_EQ(parse(svWithFields(ber(0x80, {}))).sv.svID, "");
    EXPECT_FALSE(
        parse(svWithFields(ber(0x80, {})), svFilter({wanted(&SvIdentifer::svID, "x")})).accepted);
}

TEST(SvParserSimple, ConfRevIsReadFromItsFirstFourOctets) {
    EXPECT_EQ(parse(svWithFields(ber(0x83, {1, 2, 3, 4, 5}))).sv.confRev, 0x0102'0304U);
    EXPECT_EQ(parse(svWithFields(ber(0x83, {1, 2}))).sv.confRev, 0x0102U);
    EXPECT_EQ(parse(svWithFields(ber(0x83, {}))).sv.confRev, 0U);
}

TEST(SvParserSimple, LengthFieldIsNotLookedAt) {
    for (std::uint16_t const length : std::vector<std::uint16_t>{0, 8, 9, 0xFFFF}) {
        SvMessage message;
        message.length = length;
        EXPECT_EQ(parse(svApdu(message)).sv.svID, "MU01");
    }
}

TEST(SvParserSimple, FrameWithoutAsdusIsAccepted) {
    Judged const result = parse(apdu({.appId = 5}, {0x60, 0x03, 0x80, 0x01, 0x01}),
                                svFilter({wanted(&SvIdentifer::svID, "x")}));
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(result.sv.appId, 5U);
    EXPECT_EQ(result.sv.maxNoASDU, 0U);
    EXPECT_FALSE(result.sv.svID || result.sv.confRev);
}

// --- False, and what is stored then --------------------------------------------------------------

TEST(SvParserSimple, FewerThanNineOctetsAreRejected) {
    Bytes const data = concat({repeat(0xEE, 5), svApdu({})});
    for (std::size_t octets = 0; octets < 9; ++octets) {
        Judged const result = parse(prefix(data, 5 + octets), {}, 5);
        EXPECT_FALSE(result.accepted) << octets;
        EXPECT_FALSE(result.sv.reserved1Bit0.has_value());
    }
    EXPECT_TRUE(parse(prefix(data, 14), {}, 5).accepted);
}

TEST(SvParserSimple, OffsetBehindTheDataIsRejected) {
    Bytes const data = svApdu({});
    constexpr std::size_t kMax = std::numeric_limits<std::size_t>::max();
    for (std::size_t const offset : {data.size() - 8, data.size(), data.size() + 1, kMax / 2,
                                     kMax - 8, kMax - 7, kMax - 1, kMax}) {
        EXPECT_FALSE(parse(data, {}, offset).accepted) << offset;
    }
    EXPECT_TRUE(parse(data, {}, data.size() - 9).accepted);
    EXPECT_FALSE(parse({}).accepted);
}

TEST(SvParserSimple, RejectedFrameIsFilledUpToTheCriterionThatFailed) {
    Bytes const data = svApdu({});
    auto const reject = [&data](auto member, auto value) {
        Filter const filter = svFilter({wanted(member, value)});
        Judged const result = parse(data, filter);
        EXPECT_FALSE(result.accepted);
        expectAsIndexed(data, filter);
        return result.sv;
    };
    Sv sv = reject(&SvIdentifer::appId, 9U);
    EXPECT_FALSE(sv.reserved1Bit0.has_value());
    sv = reject(&SvIdentifer::reserved1Bit0, std::uint8_t{1});
    EXPECT_EQ(sv.appId, 0x4000U);
    EXPECT_FALSE(sv.reserved1Bit0 || sv.svID);
    sv = reject(&SvIdentifer::svID, "x");
    EXPECT_EQ(sv.reserved1Bit0, 0);
    EXPECT_EQ(sv.svID, "MU01");
    EXPECT_FALSE(sv.confRev.has_value());
    sv = reject(&SvIdentifer::confRev, 9U);
    EXPECT_EQ(sv.svID, "MU01");
    EXPECT_EQ(sv.confRev, 1U);
}

TEST(SvParserSimple, AppIdIsNotStoredWhenItIsRejected) {
    Sv sv;
    sv.appId.reset();
    Filter const filter = svFilter({wanted(&SvIdentifer::appId, 9U)});
    EXPECT_FALSE(SvParserSimple::parsePacket(svApdu({}), 0, sv, filter));
    EXPECT_FALSE(sv.appId.has_value());
}

TEST(SvParserSimple, DefaultEntryAsksForAppId4000) {
    SvMessage message;
    EXPECT_TRUE(parse(svApdu(message), svFilter({SvIdentifer{}})).accepted);
    message.appId = 0x4001;
    EXPECT_FALSE(parse(svApdu(message), svFilter({SvIdentifer{}})).accepted);
    EXPECT_TRUE(parse(svApdu(message), svFilter({anyStream<SvIdentifer>()})).accepted);
}

TEST(SvParserSimple, EveryAsduMustPass) {
    Filter const filter = svFilter({wanted(&SvIdentifer::svID, "A")});
    EXPECT_TRUE(parse(svApdu(messageOf({"A", "A", "A"})), filter).accepted);
    EXPECT_FALSE(parse(svApdu(messageOf({"B", "A", "A"})), filter).accepted);
    Judged const result = parse(svApdu(messageOf({"A", "A", "B"})), filter);
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.sv.svID, "B");
}

TEST(SvParserSimple, SecondAsduThatIsRejectedLeavesItsValues) {
    SvMessage message = messageOf({"A", "B"});
    message.asdus[1].confRev = 2;
    Judged const result = parse(svApdu(message), svFilter({wanted(&SvIdentifer::confRev, 1U)}));
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.sv.svID, "B");
    EXPECT_EQ(result.sv.confRev, 2U);
}

TEST(SvParserSimple, FieldThatTheFrameLacksIsNoCriterion) {
    auto entry = wanted(&SvIdentifer::svID, "x");
    entry.confRev = 99;
    EXPECT_TRUE(parse(svWithFields(ber(0x82, {0, 1})), svFilter({entry})).accepted);
}

TEST(SvParserSimple, EachCriterionIsMatchedOverTheWholeList) {
    SvMessage message = messageOf({"B"});
    message.asdus[0].confRev = 2;
    Filter filter = svFilter({wanted(&SvIdentifer::svID, "A"), wanted(&SvIdentifer::confRev, 1U)});
    EXPECT_TRUE(parse(svApdu(message), filter).accepted);
    filter.svFilters.pop_back();
    EXPECT_FALSE(parse(svApdu(message), filter).accepted);
}

// --- The same as indexing ------------------------------------------------------------------------

TEST(SvParserSimple, AgreesWithIndexing) {
    for (SvMessage const& message : messages()) {
        expectAsIndexed(svApdu(message));
        expectAsIndexed(svApdu(message), svFilter({wanted(&SvIdentifer::svID, "MU01")}));
    }
}

TEST(SvParserSimple, AgreesWithIndexingWhereverTheFrameIsCut) {
    Filter const filter = svFilter({wanted(&SvIdentifer::svID, "MU01")});
    for (SvMessage const& message : messages()) {
        Bytes const data = svApdu(message);
        for (std::size_t size = 0; size <= data.size(); ++size) {
            SCOPED_TRACE(size);
            expectAsIndexed(prefix(data, size));
            expectAsIndexed(prefix(data, size), filter);
        }
    }
}

TEST(SvParserSimple, AcceptsAFrameCutBehindItsHeader) {
    // The savPdu claims more than there is, so that nothing of it is read.
    Bytes const data = svApdu({});
    for (std::size_t size = 9; size < data.size(); ++size) {
        Judged const result =
            parse(prefix(data, size), svFilter({wanted(&SvIdentifer::svID, "x")}));
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.sv.appId, 0x4000U);
        EXPECT_FALSE(result.sv.svID.has_value()) << size;
    }
}

}  // namespace
}  // namespace TalTest::SvParserSimpleTest
