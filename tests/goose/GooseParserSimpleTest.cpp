#include <gtest/gtest.h>

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/goose/GooseParserSimple.hpp>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "capture/Criteria.hpp"
#include "capture/FrameWalk.hpp"
#include "capture/Indexing.hpp"
#include "support/Ber.hpp"
#include "support/Goose.hpp"

namespace TalTest::GooseParserSimpleTest {
namespace {

using namespace TalIec61850Parser;

using Judged = WalkedGoose;

Judged parse(Bytes const& data, Filter const& filter = {}, std::size_t offset = 0) {
    return judged<GooseParserSimple, Judged>(data, filter, offset);
}

void expectAsIndexed(Bytes const& data, Filter const& filter = {}) {
    expectSame(parse(data, filter), indexed<GooseParser, Judged>(data, filter));
}

/// Seven messages that differ in what the parser might trip over.
std::vector<GooseMessage> messages() {
    std::vector<GooseMessage> all(7);
    all[1].reserved1 = 0x8001;
    all[1].simulation.reset();
    all[2].gocbRef = "";
    all[2].datSet = "";
    all[2].goID = "";
    all[3].goID = std::string("A\0B", 3);
    all[3].confRev = {0xFFFF'FFFF, 4};
    all[4].allDataTag = 0x8B;
    all[4].setData({ber(0x83, "deep"), ber(0x82, ber(0x83, "deeper")), dataUtcTime(1)});
    all[5].setData({dataStructure({ber(0x80, "c"), dataArray({ber(0x83, "g")})}), dataFloat(1)});
    all[6].confRev.reset();
    all[6].length = 0;
    return all;
}

// --- What is stored ----------------------------------------------------------------------------

TEST(GooseParserSimple, FillsTheIdentity) {
    GooseMessage message;
    message.appId = 0xFEDC;
    message.reserved1 = 0x0001;
    message.confRev = {0xFFFF'FFFF, 4};
    Judged const result = parse(gooseApdu(message));
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(result.goose.appId, 0xFEDCU);
    EXPECT_EQ(result.goose.reserved1Bit0, 1);
    EXPECT_EQ(result.goose.gocbRef, message.gocbRef);
    EXPECT_EQ(result.goose.datSet, message.datSet);
    EXPECT_EQ(result.goose.goID, message.goID);
    EXPECT_EQ(result.goose.simulation, true);
    EXPECT_EQ(result.goose.confRev, 0xFFFF'FFFFU);
}

TEST(GooseParserSimple, LeavesTheRestOfTheRecordAlone) {
    Goose goose;
    goose.srcMac = "source";
    goose.packetCount = 7;
    static_cast<void>(goose.addFile("a.pcap"));
    EXPECT_TRUE(GooseParserSimple::parsePacket(gooseApdu({}), 0, goose, {}));
    EXPECT_EQ(goose.srcMac, "source");
    EXPECT_FALSE(goose.dstMac || goose.vlan || goose.hsr || goose.prp);
    EXPECT_EQ(goose.packetCount, 7U);
    EXPECT_EQ(goose.files.size(), 1U);
}

TEST(GooseParserSimple, FieldsThatTheFrameLacksKeepTheirValue) {
    Goose goose;
    goose.goID = "before";
    goose.simulation = false;
    EXPECT_TRUE(GooseParserSimple::parsePacket(gooseWithFields(ber(0x82, "d")), 0, goose, {}));
    EXPECT_EQ(goose.goID, "before");
    EXPECT_EQ(goose.simulation, false);
    EXPECT_EQ(goose.datSet, "d");
    EXPECT_FALSE(goose.gocbRef || goose.confRev);
}

TEST(GooseParserSimple, FlagIsTheLowestBitOfTheSixthOctet) {
    Bytes data = gooseApdu({});
    for (int octet = 0; octet < 256; ++octet) {
        data[4] = static_cast<std::uint8_t>(~octet);
        data[5] = static_cast<std::uint8_t>(octet);
        EXPECT_EQ(parse(data).goose.reserved1Bit0, octet & 1) << octet;
    }
}

TEST(GooseParserSimple, SimulationIsTrueWhateverItsElementSays) {
    for (Bytes const& value : {Bytes{0x00}, Bytes{0x01}, Bytes{}, Bytes{0, 0}}) {
        EXPECT_EQ(parse(gooseWithFields(ber(0x87, value))).goose.simulation, true);
    }
}

TEST(GooseParserSimple, EmptyNamesAreStoredForGocbRefOnly) {
    Goose const goose = parse(gooseWithFields({0x80, 0, 0x82, 0, 0x83, 0, 0x88, 0})).goose;
    EXPECT_EQ(goose.gocbRef, "");
    EXPECT_FALSE(goose.datSet || goose.goID);
    EXPECT_EQ(goose.confRev, 0U);
}

TEST(GooseParserSimple, EmptyNamesAreFilteredForGocbRefOnly) {
    auto const accepts = [](auto member, Bytes const& field) {
        return parse(gooseWithFields(field), gooseFilter({wanted(member, "x")})).accepted;
    };
    EXPECT_FALSE(accepts(&GooseIdentifer::gocbRef, {0x80, 0}));
    EXPECT_TRUE(accepts(&GooseIdentifer::datSet, {0x82, 0}));
    EXPECT_TRUE(accepts(&GooseIdentifer::goID, {0x83, 0}));
}

TEST(GooseParserSimple, UnprintableNamesAreRendered) {
    Bytes const data = gooseWithFields(
        concat({ber(0x80, {0x41, 0, 0x42}), ber(0x82, {0x7F}), ber(0x83, {0x20, 0x7E})}));
    Goose const goose = parse(data).goose;
    EXPECT_EQ(goose.gocbRef, "[41 00 42]");
    EXPECT_EQ(goose.datSet, "[7F]");
    EXPECT_EQ(goose.goID, " ~");
    EXPECT_TRUE(
        parse(data, gooseFilter({wanted(&GooseIdentifer::gocbRef, "[41 00 42]")})).accepted);
}

TEST(GooseParserSimple, ConfRevIsReadFromItsFirstFourOctets) {
    EXPECT_EQ(parse(gooseWithFields(ber(0x88, {1, 2, 3, 4, 5}))).goose.confRev, 0x0102'0304U);
    EXPECT_EQ(parse(gooseWithFields(ber(0x88, {1, 2}))).goose.confRev, 0x0102U);
}

TEST(GooseParserSimple, LastOfSeveralFieldsStays) {
    EXPECT_EQ(parse(gooseWithFields(concat({ber(0x83, "a"), ber(0x83, "b")}))).goose.goID, "b");
    EXPECT_EQ(parse(concat({gooseApdu({}), ber(0x61, ber(0x83, "z"))})).goose.goID, "z");
}

TEST(GooseParserSimple, LengthFieldIsNotLookedAt) {
    for (std::uint16_t const length : std::vector<std::uint16_t>{0, 8, 9, 0xFFFF}) {
        GooseMessage message;
        message.length = length;
        EXPECT_EQ(parse(gooseApdu(message)).goose.goID, message.goID);
    }
}

// --- False, and what is stored then --------------------------------------------------------------

TEST(GooseParserSimple, FewerThanNineOctetsAreRejected) {
    Bytes const data = concat({repeat(0xEE, 5), gooseApdu({})});
    for (std::size_t octets = 0; octets < 9; ++octets) {
        Judged const result = parse(prefix(data, 5 + octets), {}, 5);
        EXPECT_FALSE(result.accepted) << octets;
        EXPECT_FALSE(result.goose.appId || result.goose.reserved1Bit0);
    }
    EXPECT_TRUE(parse(prefix(data, 14), {}, 5).accepted);
}

TEST(GooseParserSimple, OffsetBehindTheDataIsRejected) {
    Bytes const data = gooseApdu({});
    constexpr std::size_t kMax = std::numeric_limits<std::size_t>::max();
    for (std::size_t const offset : {data.size() - 8, data.size(), data.size() + 1, kMax / 2,
                                     kMax - 8, kMax - 7, kMax - 1, kMax}) {
        EXPECT_FALSE(parse(data, {}, offset).accepted) << offset;
    }
    EXPECT_TRUE(parse(data, {}, data.size() - 9).accepted);
    EXPECT_FALSE(parse({}).accepted);
}

TEST(GooseParserSimple, RejectedFrameIsFilledUpToTheCriterionThatFailed) {
    struct Case {
        GooseIdentifer entry;
        /// Which of appId, flag, gocbRef, datSet, goID, simulation and confRev are stored.
        std::vector<bool> stored;
    };
    GooseMessage message;
    for (Case const& each : std::vector<Case>{
             {wanted(&GooseIdentifer::appId, 9U),
              {false, false, false, false, false, false, false}},
             {wanted(&GooseIdentifer::reserved1Bit0, std::uint8_t{1}),
              {true, false, false, false, false, false, false}},
             {wanted(&GooseIdentifer::gocbRef, "x"),
              {true, true, true, false, false, false, false}},
             {wanted(&GooseIdentifer::datSet, "x"), {true, true, true, true, false, false, false}},
             {wanted(&GooseIdentifer::goID, "x"), {true, true, true, true, true, false, false}},
             {wanted(&GooseIdentifer::simulation, false),
              {true, true, true, true, true, true, false}},
             {wanted(&GooseIdentifer::confRev, 9U), {true, true, true, true, true, true, true}},
         }) {
        Judged const result = parse(gooseApdu(message), gooseFilter({each.entry}));
        EXPECT_FALSE(result.accepted);
        Goose const& goose = result.goose;
        EXPECT_EQ((std::vector<bool>{goose.appId.has_value(), goose.reserved1Bit0.has_value(),
                                     goose.gocbRef.has_value(), goose.datSet.has_value(),
                                     goose.goID.has_value(), goose.simulation.has_value(),
                                     goose.confRev.has_value()}),
                  each.stored)
            << listing::identity(each.entry);
        expectAsIndexed(gooseApdu(message), gooseFilter({each.entry}));
    }
}

TEST(GooseParserSimple, FrameThatMeetsEveryCriterionIsAccepted) {
    GooseMessage const message;
    auto entry = anyStream<GooseIdentifer>();
    static_cast<GooseIdentifer&>(entry) = parse(gooseApdu(message)).goose;
    EXPECT_TRUE(parse(gooseApdu(message), gooseFilter({entry})).accepted);
    EXPECT_TRUE(parse(gooseApdu(message), gooseFilter({anyStream<GooseIdentifer>()})).accepted);
}

TEST(GooseParserSimple, FieldThatTheFrameLacksIsNoCriterion) {
    auto entry = wanted(&GooseIdentifer::goID, "x");
    entry.gocbRef = "x";
    entry.simulation = false;
    EXPECT_TRUE(parse(gooseWithFields(ber(0x82, "d")), gooseFilter({entry})).accepted);
}

TEST(GooseParserSimple, EachCriterionIsMatchedOverTheWholeList) {
    Filter const filter =
        gooseFilter({wanted(&GooseIdentifer::goID, "A"), wanted(&GooseIdentifer::appId, 1)});
    GooseMessage message;
    message.appId = 2;
    for (char const* const goID : {"A", "B"}) {
        message.goID = goID;
        EXPECT_TRUE(parse(gooseApdu(message), filter).accepted) << goID;
    }
    Filter const onlyA =
        gooseFilter({wanted(&GooseIdentifer::goID, "A"), wanted(&GooseIdentifer::goID, "A")});
    EXPECT_FALSE(parse(gooseApdu(message), onlyA).accepted);
}

// --- The same as indexing ------------------------------------------------------------------------

TEST(GooseParserSimple, AgreesWithIndexing) {
    for (GooseMessage const& message : messages()) expectAsIndexed(gooseApdu(message));
}

TEST(GooseParserSimple, AgreesWithIndexingWhereverTheFrameIsCut) {
    Filter const filter = gooseFilter({wanted(&GooseIdentifer::goID, "RELAY1_gcb1")});
    for (GooseMessage const& message : messages()) {
        Bytes const data = gooseApdu(message);
        for (std::size_t size = 0; size <= data.size(); ++size) {
            SCOPED_TRACE(size);
            expectAsIndexed(prefix(data, size));
            expectAsIndexed(prefix(data, size), filter);
        }
    }
}

TEST(GooseParserSimple, AcceptsAFrameCutBehindItsHeader) {
    // The goosePdu claims more than there is, so that nothing of it is read.
    Bytes const data = gooseApdu({});
    for (std::size_t size = 9; size < data.size(); ++size) {
        Judged const result = parse(prefix(data, size));
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.goose.appId, 1U);
        EXPECT_FALSE(result.goose.gocbRef.has_value()) << size;
    }
}

TEST(GooseParserSimple, PrimitiveAllDataChangesNothing) {
    Bytes const data = concat({ber(0x83, "g"), ber(0x30, ber(0x80, "c")), ber(0x61, ber(0x88, {9})),
                               ber(0x82, ber(0x83, "d"))});
    GooseMessage message;
    message.allData = data;
    message.allDataTag = 0x8B;
    Judged const result = parse(gooseApdu(message), gooseFilter({parse(gooseApdu({})).goose}));
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(listing::identity(result.goose), listing::identity(parse(gooseApdu({})).goose));
    EXPECT_EQ(listing::identity(indexed<GooseParser, Judged>(gooseApdu(message)).goose),
              listing::identity(result.goose));
}

}  // namespace
}  // namespace TalTest::GooseParserSimpleTest
