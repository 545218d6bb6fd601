#include <gtest/gtest.h>

#include <TalIec61850Parser/goose/GooseParserSimple.hpp>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "capture/Criteria.hpp"
#include "capture/FrameWalk.hpp"
#include "capture/SmallStack.hpp"
#include "support/Ber.hpp"
#include "support/Goose.hpp"
#include "support/Sanitized.hpp"

// The single-frame walk over nested elements, called level by level.

namespace TalTest::GooseParserSimpleWalkTest {
namespace {

using namespace TalIec61850Parser;

using Walked = WalkedGoose;

Walked walk(Bytes const& buffer, int depth, Filter const& filter = {}, std::size_t start = 0) {
    Walked result;
    result.accepted =
        GooseParserSimple::_parseAsn1Structure(buffer, depth, start, result.goose, filter);
    return result;
}

/// Whether the walk, begun at this depth, came upon a goID.
bool findsGoId(Bytes const& buffer, int depth) {
    Walked const result = walk(buffer, depth);
    EXPECT_TRUE(result.accepted);
    return result.goose.goID.has_value();
}

/// A goID where depth is 2.
Bytes probe() { return ber(0x83, "g"); }

Filter const& wantsAnother() {
    static Filter const filter = gooseFilter({wanted(&GooseIdentifer::goID, "another")});
    return filter;
}

TEST(GooseParserSimpleWalk, EmptyBufferIsAccepted) {
    for (int const depth : {-1, 0, 1, 2, 3, kMaxDepth}) {
        EXPECT_TRUE(walk({}, depth, wantsAnother()).accepted);
    }
}

TEST(GooseParserSimpleWalk, FieldsCountAtDepthTwoOnly) {
    Bytes const fields = concat(
        {ber(0x80, "c"), ber(0x82, "d"), ber(0x83, "g"), ber(0x87, {0x01}), ber(0x88, {0x01})});
    for (int const depth : {-1, 0, 1, 2, 3, 10, kMaxDepth}) {
        Goose const goose = walk(fields, depth).goose;
        EXPECT_EQ(goose.gocbRef.has_value(), depth == 2) << depth;
        EXPECT_EQ(goose.datSet.has_value(), depth == 2) << depth;
        EXPECT_EQ(goose.goID.has_value(), depth == 2) << depth;
        EXPECT_EQ(goose.simulation.has_value(), depth == 2) << depth;
        EXPECT_EQ(goose.confRev.has_value(), depth == 2) << depth;
        EXPECT_FALSE(goose.appId || goose.reserved1Bit0);
        EXPECT_EQ(walk(fields, depth, wantsAnother()).accepted, depth != 2) << depth;
    }
}

TEST(GooseParserSimpleWalk, OtherContextTagsAreIgnored) {
    for (int tag = 0x80; tag <= 0x9F; ++tag) {
        if (tag == 0x80 || tag == 0x82 || tag == 0x83 || tag == 0x87 || tag == 0x88) continue;
        // Whatever they hold, more than one octet or nothing.
        for (Bytes const& value : {Bytes{}, Bytes{0x01}, probe(), ber(0x30, probe())}) {
            Goose const goose = walk(ber(static_cast<std::uint8_t>(tag), value), 2).goose;
            EXPECT_FALSE(goose.gocbRef || goose.datSet || goose.goID || goose.simulation ||
                         goose.confRev)
                << tag;
        }
    }
}

TEST(GooseParserSimpleWalk, DepthGrowsByOneWithEachDescent) {
    for (int levels = 0; levels < 6; ++levels) {
        Bytes const buffer = nested(0x30, static_cast<std::size_t>(levels), probe());
        for (int depth = -3; depth <= 3; ++depth) {
            EXPECT_EQ(findsGoId(buffer, depth), depth + levels == 2)
                << depth << " and " << levels << " levels";
        }
    }
}

TEST(GooseParserSimpleWalk, StructuresAreDescendedInto) {
    for (int tag = 0; tag < 256; ++tag) {
        bool const structure = tag == 0x30 || tag == 0x61 || (tag & 0xE0) == 0xA0;
        Bytes const buffer = ber(static_cast<std::uint8_t>(tag), probe());
        EXPECT_EQ(findsGoId(buffer, 1), structure) << tag;
        // Depths at which context tags have no meaning of their own.
        EXPECT_EQ(findsGoId(nested(0xA0, 1, buffer), 0), structure) << tag;
        EXPECT_FALSE(findsGoId(buffer, 0)) << tag;
    }
}

TEST(GooseParserSimpleWalk, FieldsBehindAStructureAreRead) {
    for (std::uint8_t const tag : Bytes{0x30, 0x61, 0xA0, 0xAB, 0xBF}) {
        EXPECT_TRUE(findsGoId(concat({ber(tag, ber(0x30, "x")), probe()}), 2));
        EXPECT_TRUE(findsGoId(concat({{tag, 0x00}, probe()}), 2));
    }
}

TEST(GooseParserSimpleWalk, DataChangesNothingAndIsNotFiltered) {
    Bytes const data =
        concat({ber(0x80, "c"), ber(0x82, "d"), probe(), ber(0x87, {0x01}), ber(0x88, {0x09}),
                ber(0x81, probe()), ber(0x82, ber(0x30, probe())), dataUtcTime(1, 2), ber(0x91, {}),
                dataStructure({probe(), dataArray({probe()})}), dataVisibleString("text")});
    for (int const depth : {3, 4, 10, kMaxDepth}) {
        Walked const result = walk(data, depth, wantsAnother());
        EXPECT_TRUE(result.accepted) << depth;
        EXPECT_FALSE(result.goose.goID || result.goose.confRev || result.goose.simulation);
    }
    EXPECT_TRUE(walk(ber(0xAB, data), 2, wantsAnother()).accepted);
    EXPECT_TRUE(walk(ber(0x8B, data), 2, wantsAnother()).accepted);
}

TEST(GooseParserSimpleWalk, IndefiniteLengthIsAnEmptyElement) {
    // What follows is not inside the element but beside it.
    Bytes const buffer = ber(0x61, probe(), LengthForm::indefinite);
    EXPECT_FALSE(findsGoId(buffer, 1));
    EXPECT_TRUE(findsGoId(buffer, 2));
}

TEST(GooseParserSimpleWalk, EveryLengthFormIsRead) {
    for (LengthForm const form : {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets,
                                  LengthForm::threeOctets, LengthForm::fourOctets}) {
        EXPECT_TRUE(findsGoId(ber(0x61, ber(0x83, "g", form), form), 1));
    }
}

TEST(GooseParserSimpleWalk, MalformedElementEndsItsLevelOnly) {
    for (Bytes const& damage :
         {Bytes{0x83}, Bytes{0x83, 0x7F}, Bytes{0x83, 0x82, 0x01}, Bytes{0xA2, 0x84, 0xFF, 0xFF},
          Bytes{0x81, 0x85, 0, 0, 0, 0, 1}, Bytes{0x81, 0xFF}}) {
        Bytes const level = ber(0x30, concat({ber(0x82, "d"), damage}));
        Walked const result = walk(concat({level, ber(0x30, probe())}), 1);
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.goose.datSet, "d");
        EXPECT_EQ(result.goose.goID, "g");
    }
    // More than four length octets, and nothing else wrong.
    Bytes const long5 = berClaiming(0x81, {0x85, 0, 0, 0, 0, 1}, {0});
    EXPECT_FALSE(findsGoId(concat({long5, probe()}), 2));
    Bytes const long4 = berClaiming(0x81, {0x84, 0, 0, 0, 1}, {0});
    EXPECT_TRUE(findsGoId(concat({long4, probe()}), 2));
}

TEST(GooseParserSimpleWalk, RejectionEndsTheWalkFromBelow) {
    Bytes const behind = ber(0x30, ber(0x88, {0x01}));
    Walked const result = walk(concat({ber(0x30, probe()), behind}), 1, wantsAnother());
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.goose.goID, "g");
    EXPECT_FALSE(result.goose.confRev.has_value());
    // From far below as well.
    EXPECT_FALSE(walk(nested(0x30, 100, probe()), -98, wantsAnother()).accepted);
}

TEST(GooseParserSimpleWalk, FiftyFirstElementIsNotRead) {
    for (std::size_t const before : {0UL, 48UL, 49UL, 50UL, 51UL, 200UL}) {
        for (Bytes const& other : {ber(0x81, {0x01}), ber(0x04, "x"), Bytes{0x00, 0x00},
                                   ber(0xA0, times(60, {0x04, 0x00}))}) {
            Bytes const fields = concat({times(before, other), probe()});
            EXPECT_EQ(findsGoId(fields, 2), before < 50) << before;
            EXPECT_EQ(walk(fields, 2, wantsAnother()).accepted, before >= 50) << before;
            Bytes const pdus = concat({times(before, other), ber(0x61, probe())});
            EXPECT_EQ(findsGoId(pdus, 1), before < 50) << before;
        }
    }
}

TEST(GooseParserSimpleWalk, EachLevelCountsItsOwnElements) {
    for (std::size_t const before : {48UL, 49UL, 50UL}) {
        Bytes const inner = concat({times(before, ber(0x04, "x")), probe()});
        Bytes const outer = concat({times(49, ber(0x04, "x")), ber(0x30, inner)});
        EXPECT_EQ(findsGoId(outer, 1), before < 50) << before;
    }
}

TEST(GooseParserSimpleWalk, StartIsNotLookedAt) {
    Bytes const pdu = goosePdu({});
    for (std::size_t const start :
         {1UL, 7UL, pdu.size(), std::numeric_limits<std::size_t>::max()}) {
        EXPECT_EQ(walk(pdu, 1, {}, start).goose.goID, GooseMessage().goID);
    }
}

TEST(GooseParserSimpleWalk, ProcessNestedStructureIsTheSame) {
    for (Filter const& filter : {Filter{}, wantsAnother()}) {
        for (Bytes const& buffer :
             {Bytes{}, goosePdu({}), concat({ber(0x80, "c"), probe()}), Bytes{0x61}}) {
            for (int const depth : {-1, 0, 1, 2, 3, kMaxDepth}) {
                Walked const expected = walk(buffer, depth, filter);
                Goose goose;
                EXPECT_EQ(
                    GooseParserSimple::_processNestedStructure(buffer, depth, 3, goose, filter),
                    expected.accepted);
                EXPECT_EQ(goose.gocbRef, expected.goose.gocbRef);
                EXPECT_EQ(goose.goID, expected.goose.goID);
            }
        }
    }
}

// --- Nesting without end -------------------------------------------------------------------------

TEST(GooseParserSimpleNesting, IsWalkedToItsEnd) {
    for (std::uint8_t const tag : Bytes{0x30, 0x61, 0xA2}) {
        // Only a begin this far above makes the end a level of fields.
        int const begin = 2 - static_cast<int>(kMillion);
        Bytes const buffer = nested(tag, kMillion, probe());
        EXPECT_TRUE(findsGoId(buffer, begin));
        EXPECT_FALSE(walk(buffer, begin, wantsAnother()).accepted);
        EXPECT_FALSE(findsGoId(buffer, 1));
    }
}

TEST(GooseParserSimpleNesting, IsComeBackFrom) {
    Bytes const deep = nested(0xA2, kMillion, ber(0x04, "x"));
    EXPECT_TRUE(findsGoId(ber(0x61, concat({deep, probe()})), 1));
    // Also when it ends broken.
    for (Bytes const& end : {Bytes{0xA2}, Bytes{0xA2, 0x7F}, Bytes{0xA2, 0x85, 0, 0, 0, 0, 0}}) {
        EXPECT_TRUE(findsGoId(ber(0x61, concat({nested(0xA2, kMillion, end), probe()})), 1));
    }
}

TEST(GooseParserSimpleNesting, NeedsNoStack) {
    if (isSanitized) GTEST_SKIP() << "a sanitizer needs the stack itself";
    GooseMessage message;
    message.length = 0;
    message.allData = nested(0xA2, kMillion);
    message.extraLast = ber(0x80, "last");
    Bytes const data = gooseApdu(message);
    Goose goose;
    bool accepted = false;
    runOnSmallStack([&] { accepted = GooseParserSimple::parsePacket(data, 0, goose, {}); });
    EXPECT_TRUE(accepted);
    EXPECT_EQ(goose.gocbRef, "last");
}

}  // namespace
}  // namespace TalTest::GooseParserSimpleWalkTest
