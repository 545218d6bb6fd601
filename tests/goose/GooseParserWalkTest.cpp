#include <gtest/gtest.h>

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <cstdint>
#include <limits>
#include <vector>

#include "capture/Criteria.hpp"
#include "capture/FrameWalk.hpp"
#include "support/Ber.hpp"
#include "support/Goose.hpp"

// The walk over nested elements, called level by level.

namespace TalTest::GooseParserWalkTest {
namespace {

using namespace TalIec61850Parser;

using Walked = WalkedGoose;

Walked walk(Bytes const& buffer, int depth, std::size_t filePosition = 1000,
            Filter const& filter = {}, std::size_t start = 0) {
    Walked result;
    result.accepted = GooseParser::_parseAsn1Structure(buffer, depth, start, filePosition, kHeader,
                                                       result.goose, result.package, filter);
    return result;
}

/// Shows in the package where it was found, wherever that is.
Bytes probe() { return ber(0x61, {}); }

TEST(GooseParserWalk, EmptyBufferIsAccepted) {
    for (int const depth : {-1, 0, 1, 2, 3, 10, kMaxDepth}) {
        Walked const result = walk({}, depth);
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.package, kUntouched);
    }
}

TEST(GooseParserWalk, FieldsCountAtDepthTwoOnly) {
    Bytes const fields = concat(
        {ber(0x80, "c"), ber(0x82, "d"), ber(0x83, "g"), ber(0x87, {0x01}), ber(0x88, {0x01})});
    for (int const depth : {-1, 0, 1, 2, 3, 10, kMaxDepth}) {
        Walked const result = walk(fields, depth);
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.goose.gocbRef.has_value(), depth == 2) << depth;
        EXPECT_EQ(result.goose.datSet.has_value(), depth == 2) << depth;
        EXPECT_EQ(result.goose.goID.has_value(), depth == 2) << depth;
        EXPECT_EQ(result.goose.simulation.has_value(), depth == 2) << depth;
        EXPECT_EQ(result.goose.confRev.has_value(), depth == 2) << depth;
        EXPECT_FALSE(result.goose.appId.has_value());
        EXPECT_FALSE(result.goose.reserved1Bit0.has_value());
    }
}

TEST(GooseParserWalk, FieldsAreFilteredAtDepthTwoOnly) {
    Filter const filter = gooseFilter({wanted(&GooseIdentifer::goID, "wanted")});
    for (int const depth : {-1, 0, 1, 2, 3, 10, kMaxDepth}) {
        EXPECT_EQ(walk(ber(0x83, "other"), depth, 0, filter).accepted, depth != 2) << depth;
    }
}

TEST(GooseParserWalk, DepthGrowsByOneWithEachDescent) {
    Bytes const field = ber(0x83, "g");
    for (int levels = 0; levels < 6; ++levels) {
        Bytes const buffer = nested(0x30, static_cast<std::size_t>(levels), field);
        for (int depth = -3; depth <= 3; ++depth) {
            EXPECT_EQ(walk(buffer, depth).goose.goID.has_value(), depth + levels == 2)
                << depth << " and " << levels << " levels";
        }
    }
}

TEST(GooseParserWalk, EveryConstructedElementLeadsToTheFields) {
    // Neither the goosePdu nor its tag is needed for the fields to be found.
    for (std::uint8_t const tag : Bytes{0x30, 0x61, 0xA0, 0xA5, 0xBF}) {
        EXPECT_EQ(walk(ber(tag, ber(0x83, "g")), 1).goose.goID, "g");
    }
}

TEST(GooseParserWalk, DescendsByTagAndDepth) {
    for (int const depth : {-1, 0, 1, 2, 3, 4, 10, kMaxDepth}) {
        for (int tag = 0; tag < 256; ++tag) {
            bool descends = tag == 0x30 || tag == 0x61 || (tag & 0xE0) == 0xA0;
            if (depth == 2) descends = descends || tag == 0x8B;
            if (depth >= 3) descends = descends || tag == 0x81 || tag == 0x82;
            Walked const result = walk(ber(static_cast<std::uint8_t>(tag), probe()), depth);
            EXPECT_TRUE(result.accepted);
            EXPECT_EQ(result.package, (descends ? Package{{5, 999}, 1002} : kUntouched))
                << "tag " << tag << " at depth " << depth;
        }
    }
}

TEST(GooseParserWalk, PrimitiveAllDataIsWalkedAsData) {
    // At depth 3 the probe inside 82 is found, and a text with the tag of goID is no goID.
    Walked const result = walk(ber(0x8B, concat({ber(0x83, "g"), ber(0x82, probe())})), 2);
    EXPECT_FALSE(result.goose.goID.has_value());
    EXPECT_EQ(result.package.position, 1000U + 2 + 3 + 2);
}

TEST(GooseParserWalk, DataChangesNothing) {
    GooseMessage message;
    message.setData({ber(0x80, "c"), ber(0x82, ""), ber(0x83, "g"), ber(0x87, {0x01}),
                     ber(0x88, {0x09}), dataUtcTime(1, 2), dataVisibleString("text"),
                     dataStructure({ber(0x83, "deep"), dataArray({ber(0x80, "deeper")})}),
                     ber(0x91, {}), ber(0x91, {0x01}), ber(0x90, {0xFF}), ber(0x9F, "x")});
    Walked const result = walk(goosePdu(message), 1);
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(result.goose.gocbRef, message.gocbRef);
    EXPECT_EQ(result.goose.goID, message.goID);
    EXPECT_EQ(result.goose.confRev, 1U);
    EXPECT_EQ(result.package.position, 1000U);
}

TEST(GooseParserWalk, PduIsFoundAtAnyDepth) {
    for (int const depth : {-1, 0, 1, 2, 3, 10, kMaxDepth}) {
        Walked const result = walk(concat({ber(0x04, "abc"), probe()}), depth);
        EXPECT_EQ(result.package, (Package{{5, 999}, 1005})) << depth;
    }
}

TEST(GooseParserWalk, LastPduWins) {
    EXPECT_EQ(walk(concat({probe(), probe(), probe()}), 1).package.position, 1004U);
    EXPECT_EQ(walk(nested(0x61, 4), 1).package.position, 1006U);
    EXPECT_EQ(walk(concat({nested(0x61, 2), ber(0x04, "abc")}), 1).package.position, 1002U);
}

TEST(GooseParserWalk, PositionCountsEveryHeaderAsLongAsItIs) {
    for (LengthForm const outer :
         {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets,
          LengthForm::threeOctets, LengthForm::fourOctets}) {
        for (LengthForm const inner : {LengthForm::shortest, LengthForm::fourOctets}) {
            Bytes const content = concat({ber(0x04, "ab", inner), probe()});
            Bytes const buffer = ber(0x30, ber(0xA3, content, inner), outer);
            for (std::size_t const filePosition : {0UL, 1UL, 0xFFFF'FFFFUL, 0x10'0000'0000UL}) {
                EXPECT_EQ(walk(buffer, 1, filePosition).package.position,
                          filePosition + buffer.size() - 2);
            }
        }
    }
}

TEST(GooseParserWalk, EmptyPduIsFoundAndNotEntered) {
    Walked const result = walk({0x61, 0x00, 0x83, 0x01, 0x41}, 1);
    EXPECT_EQ(result.package.position, 1000U);
    EXPECT_FALSE(result.goose.goID.has_value());
}

TEST(GooseParserWalk, IndefiniteLengthIsAnEmptyElement) {
    // What follows is not inside the element but beside it.
    Bytes const content = ber(0x83, "g");
    EXPECT_FALSE(walk(ber(0x61, content, LengthForm::indefinite), 1).goose.goID.has_value());
    EXPECT_EQ(walk(ber(0x61, content, LengthForm::indefinite), 2).goose.goID, "g");
}

TEST(GooseParserWalk, MalformedElementEndsItsLevelOnly) {
    Bytes const broken = concat({{0x83, 0x7F}, ber(0x83, "lost")});
    Walked const result = walk(concat({ber(0x30, broken), ber(0x30, ber(0x83, "g"))}), 1);
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(result.goose.goID, "g");
    EXPECT_FALSE(walk(concat({broken, ber(0x30, probe())}), 2).goose.goID.has_value());
}

TEST(GooseParserWalk, RejectionEndsTheWalkFromBelow) {
    Filter const filter = gooseFilter({wanted(&GooseIdentifer::goID, "wanted")});
    Walked const result = walk(concat({ber(0x30, ber(0x83, "other")), probe()}), 1, 0, filter);
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.package, kUntouched);
    // From far below as well.
    EXPECT_FALSE(walk(nested(0x30, 100, ber(0x83, "other")), -98, 0, filter).accepted);
}

TEST(GooseParserWalk, FiftyFirstElementIsNotRead) {
    for (std::size_t const before : {0UL, 48UL, 49UL, 50UL, 51UL, 200UL}) {
        Bytes const fields = concat({times(before, ber(0x81, {0x01})), ber(0x88, {0x07})});
        EXPECT_EQ(walk(fields, 2).goose.confRev.has_value(), before < 50) << before;
        Bytes const pdus = concat({times(before, ber(0x04, "")), probe()});
        for (int const depth : {1, 2, 3, kMaxDepth}) {
            EXPECT_EQ(walk(pdus, depth).package != kUntouched, before < 50) << before;
        }
    }
}

TEST(GooseParserWalk, EmptyElementsCountAsWell) {
    EXPECT_TRUE(walk(concat({times(49, {0x00, 0x00}), ber(0x83, "g")}), 2).goose.goID);
    EXPECT_FALSE(walk(concat({times(50, {0x00, 0x00}), ber(0x83, "g")}), 2).goose.goID);
}

TEST(GooseParserWalk, EachLevelCountsItsOwnElements) {
    Bytes const full = times(60, ber(0x04, "x"));
    for (std::size_t const before : {48UL, 49UL, 50UL}) {
        // The element that is descended into counts once, whatever it holds.
        Bytes const level = concat({ber(0x30, full), times(before - 1, ber(0xA0, full)), probe()});
        EXPECT_EQ(walk(level, 1).package != kUntouched, before < 50) << before;
        // Two levels below, the count begins anew.
        Bytes const deep = concat({times(49, ber(0x04, "x")),
                                   ber(0x30, concat({times(before, ber(0x04, "x")), probe()}))});
        EXPECT_EQ(walk(deep, 1).package != kUntouched, before < 50) << before;
        EXPECT_EQ(walk(concat({ber(0x30, deep), ber(0x04, "x")}), 1).package != kUntouched,
                  before < 50);
    }
}

TEST(GooseParserWalk, FiftyFirstElementIsNotReadEvenWhenItWouldReject) {
    Filter const filter = gooseFilter({wanted(&GooseIdentifer::goID, "wanted")});
    Bytes const other = ber(0x83, "other");
    EXPECT_FALSE(walk(concat({times(49, ber(0x81, "")), other}), 2, 0, filter).accepted);
    EXPECT_TRUE(walk(concat({times(50, ber(0x81, "")), other}), 2, 0, filter).accepted);
}

TEST(GooseParserWalk, StartIsNotLookedAt) {
    Bytes const pdu = goosePdu({});
    Walked const expected = walk(pdu, 1);
    for (std::size_t const start :
         {1UL, 7UL, pdu.size(), std::numeric_limits<std::size_t>::max()}) {
        Walked const result = walk(pdu, 1, 1000, {}, start);
        EXPECT_EQ(result.package, expected.package);
        EXPECT_EQ(result.goose.goID, expected.goose.goID);
    }
}

TEST(GooseParserWalk, ProcessNestedStructureIsTheSame) {
    Filter const reject = gooseFilter({wanted(&GooseIdentifer::goID, "wanted")});
    Bytes const fields = concat({ber(0x80, "c"), ber(0x83, "g"), ber(0x81, probe())});
    for (Filter const& filter : {Filter{}, reject}) {
        for (Bytes const& buffer : {Bytes{}, goosePdu({}), fields, Bytes{0x61}}) {
            for (int const depth : {-1, 0, 1, 2, 3, 10, kMaxDepth}) {
                Walked const expected = walk(buffer, depth, 500, filter);
                Walked result;
                result.accepted = GooseParser::_processNestedStructure(
                    buffer, depth, 3, 500, kHeader, result.goose, result.package, filter);
                EXPECT_EQ(result.accepted, expected.accepted);
                EXPECT_EQ(result.package, expected.package);
                EXPECT_EQ(result.goose.gocbRef, expected.goose.gocbRef);
                EXPECT_EQ(result.goose.goID, expected.goose.goID);
            }
        }
    }
}

}  // namespace
}  // namespace TalTest::GooseParserWalkTest
