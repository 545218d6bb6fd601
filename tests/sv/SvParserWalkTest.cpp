#include <gtest/gtest.h>

#include <TalIec61850Parser/sv/SvParser.hpp>
#include <cstdint>
#include <limits>
#include <vector>

#include "capture/Criteria.hpp"
#include "capture/FrameWalk.hpp"
#include "support/Ber.hpp"
#include "support/SampledValues.hpp"

// The walk over nested elements, called level by level, in and out of an ASDU.

namespace TalTest::SvParserWalkTest {
namespace {

using namespace TalIec61850Parser;

using Walked = WalkedSv;

Walked walk(Bytes const& buffer, bool inAsdu = false, int depth = 1,
            std::size_t filePosition = 1000, Filter const& filter = {}, std::size_t start = 0) {
    Walked result;
    result.accepted = SvParser::_parseAsn1Structure(buffer, depth, start, filePosition, kHeader,
                                                    result.sv, result.package, filter, inAsdu);
    return result;
}

/// Shows in the package where it was found, wherever that is.
Bytes probe() { return ber(0xA2, {}); }

/// noASDU outside an ASDU, svID in one.
Bytes ambiguous() { return ber(0x80, "A"); }

TEST(SvParserWalk, EmptyBufferIsAccepted) {
    for (bool const inAsdu : {false, true}) {
        Walked const result = walk({}, inAsdu);
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.package, kUntouched);
    }
}

TEST(SvParserWalk, MeaningComesFromTheFlagNotTheDepth) {
    Bytes const fields =
        concat({ambiguous(), ber(0x82, {0, 2}), ber(0x83, {0x03}), ber(0x86, {0, 4})});
    for (int const depth : {-1, 0, 1, 2, 3, 10, kMaxDepth}) {
        Walked const outside = walk(fields, false, depth);
        EXPECT_EQ(outside.sv.maxNoASDU, 0x41U);
        EXPECT_FALSE(outside.sv.svID.has_value());
        EXPECT_EQ(outside.sv.maxSmpCnt, 0);
        EXPECT_FALSE(outside.sv.confRev.has_value());
        EXPECT_EQ(outside.sv.smpRate, 0);

        Walked const inside = walk(fields, true, depth);
        EXPECT_EQ(inside.sv.maxNoASDU, 0U);
        EXPECT_EQ(inside.sv.svID, "A");
        EXPECT_EQ(inside.sv.maxSmpCnt, 2);
        EXPECT_EQ(inside.sv.confRev, 3U);
        EXPECT_EQ(inside.sv.smpRate, 4);
        EXPECT_EQ(inside.sv.appId, 0x4000U);
        EXPECT_FALSE(inside.sv.reserved1Bit0.has_value());
    }
}

TEST(SvParserWalk, FieldsAreFilteredInAnAsduOnly) {
    Filter const filter = svFilter({wanted(&SvIdentifer::svID, "wanted")});
    EXPECT_TRUE(walk(ambiguous(), false, 1, 0, filter).accepted);
    EXPECT_FALSE(walk(ambiguous(), true, 1, 0, filter).accepted);
}

TEST(SvParserWalk, AnAsduBeginsWithASequence) {
    EXPECT_EQ(walk(ber(0x30, ambiguous())).sv.svID, "A");
    for (std::uint8_t const tag : Bytes{0x60, 0xA0, 0xA1, 0xA2, 0xBF}) {
        Walked const result = walk(ber(tag, ambiguous()));
        EXPECT_FALSE(result.sv.svID.has_value());
        EXPECT_EQ(result.sv.maxNoASDU, 0x41U);
        EXPECT_EQ(walk(ber(tag, ambiguous()), true).sv.svID, "A");
    }
}

TEST(SvParserWalk, SequenceMarksTheRestOfItsLevel) {
    Bytes const asdu = ber(0x30, ber(0x82, {0, 1}));
    Walked result = walk(concat({ambiguous(), asdu}));
    EXPECT_EQ(result.sv.maxNoASDU, 0x41U);
    EXPECT_FALSE(result.sv.svID.has_value());

    result = walk(concat({asdu, ambiguous()}));
    EXPECT_EQ(result.sv.maxNoASDU, 0U);
    EXPECT_EQ(result.sv.svID, "A");

    // The levels below what follows are marked as well.
    EXPECT_EQ(walk(concat({asdu, ber(0xA2, ber(0xA3, ambiguous()))})).sv.svID, "A");
}

TEST(SvParserWalk, EmptySequenceMarksTheRestOfItsLevel) {
    Walked const result = walk(concat({{0x30, 0x00}, ambiguous()}));
    EXPECT_EQ(result.sv.svID, "A");
    EXPECT_EQ(result.sv.maxNoASDU, 0U);
}

TEST(SvParserWalk, SequenceLeavesTheLevelAboveUnmarked) {
    for (std::uint8_t const tag : Bytes{0x60, 0xA0, 0xA2}) {
        for (Bytes const& below : {Bytes{0x30, 0x00}, ber(0x30, ber(0x80, "MU")),
                                   ber(0xA2, ber(0x30, ber(0x80, "MU")))}) {
            Walked const result = walk(concat({ber(tag, below), ambiguous()}));
            EXPECT_EQ(result.sv.maxNoASDU, 0x41U);
            EXPECT_NE(result.sv.svID, "A");
        }
    }
}

TEST(SvParserWalk, DescendsByTag) {
    for (bool const inAsdu : {false, true}) {
        for (int const depth : {-1, 0, 1, 2, 3, 10, kMaxDepth}) {
            for (int tag = 0; tag < 256; ++tag) {
                bool const descends = tag == 0x30 || tag == 0x60 || (tag & 0xE0) == 0xA0;
                Walked const result =
                    walk(ber(static_cast<std::uint8_t>(tag), probe()), inAsdu, depth);
                EXPECT_TRUE(result.accepted);
                EXPECT_EQ(result.package, (descends ? Package{{5, 999}, 1002} : kUntouched))
                    << "tag " << tag << " at depth " << depth;
            }
        }
    }
}

TEST(SvParserWalk, SequenceOfAsduIsFoundAnywhere) {
    for (bool const inAsdu : {false, true}) {
        EXPECT_EQ(walk(concat({ber(0x04, "abc"), probe()}), inAsdu).package,
                  (Package{{5, 999}, 1005}));
    }
}

TEST(SvParserWalk, LastSequenceOfAsduWins) {
    EXPECT_EQ(walk(concat({probe(), probe(), probe()})).package.position, 1004U);
    EXPECT_EQ(walk(nested(0xA2, 4)).package.position, 1006U);
    EXPECT_EQ(walk(ber(0xA2, ber(0x30, concat({ambiguous(), probe()})))).package.position, 1007U);
}

TEST(SvParserWalk, PositionCountsEveryHeaderAsLongAsItIs) {
    for (LengthForm const outer :
         {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets,
          LengthForm::threeOctets, LengthForm::fourOctets}) {
        for (LengthForm const inner : {LengthForm::shortest, LengthForm::fourOctets}) {
            Bytes const content = concat({ber(0x04, "ab", inner), probe()});
            Bytes const buffer = ber(0x60, ber(0xA3, content, inner), outer);
            for (std::size_t const filePosition : {0UL, 1UL, 0xFFFF'FFFFUL, 0x10'0000'0000UL}) {
                EXPECT_EQ(walk(buffer, false, 1, filePosition).package.position,
                          filePosition + buffer.size() - 2);
            }
        }
    }
}

TEST(SvParserWalk, IndefiniteLengthIsAnEmptyElement) {
    // What follows is not inside the sequence but beside it, where the mark holds too.
    EXPECT_EQ(walk(ber(0x30, ambiguous(), LengthForm::indefinite)).sv.svID, "A");
    EXPECT_EQ(walk(ber(0xA2, ambiguous(), LengthForm::indefinite)).sv.maxNoASDU, 0x41U);
}

TEST(SvParserWalk, MalformedElementEndsItsLevelOnly) {
    Bytes const broken = concat({{0x80, 0x7F}, ber(0x80, "lost")});
    Walked const result = walk(concat({ber(0x30, broken), ber(0x30, ambiguous())}));
    EXPECT_TRUE(result.accepted);
    EXPECT_EQ(result.sv.svID, "A");
    EXPECT_FALSE(walk(concat({broken, ambiguous()}), true).sv.svID.has_value());
    for (Bytes const& malformed : {Bytes{0x82}, Bytes{0x82, 0x85, 0, 0, 0, 0, 0},
                                   Bytes{0x82, 0x84, 0, 0}, Bytes{0x82, 0x20}}) {
        EXPECT_FALSE(walk(concat({malformed, ambiguous()}), true).sv.svID.has_value());
    }
}

TEST(SvParserWalk, RejectionEndsTheWalkFromBelow) {
    Filter const filter = svFilter({wanted(&SvIdentifer::svID, "wanted")});
    Walked const result = walk(concat({ber(0x30, ambiguous()), probe()}), false, 1, 1000, filter);
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.package, kUntouched);
    EXPECT_FALSE(walk(nested(0x30, 100, ambiguous()), false, 1, 1000, filter).accepted);
}

TEST(SvParserWalk, FiftyFirstElementIsNotRead) {
    for (std::size_t const before : {0UL, 48UL, 49UL, 50UL, 51UL, 200UL}) {
        Bytes const filler = times(before, ber(0x81, {0x01}));
        EXPECT_EQ(walk(concat({filler, ambiguous()})).sv.maxNoASDU != 0, before < 50) << before;
        EXPECT_EQ(walk(concat({filler, ambiguous()}), true).sv.svID.has_value(), before < 50);
        EXPECT_EQ(walk(concat({filler, probe()})).package != kUntouched, before < 50) << before;
    }
}

TEST(SvParserWalk, EachLevelCountsItsOwnElements) {
    Bytes const full = times(60, ber(0x04, "x"));
    for (std::size_t const before : {48UL, 49UL, 50UL}) {
        Bytes const level = concat({ber(0x30, full), times(before - 1, ber(0xA0, full)), probe()});
        EXPECT_EQ(walk(level).package != kUntouched, before < 50) << before;
        Bytes const deep = concat({times(49, ber(0x04, "x")),
                                   ber(0x30, concat({times(before, ber(0x04, "x")), probe()}))});
        EXPECT_EQ(walk(deep).package != kUntouched, before < 50) << before;
        EXPECT_EQ(walk(concat({ber(0x30, deep), ber(0x04, "x")})).package != kUntouched,
                  before < 50);
    }
}

TEST(SvParserWalk, StartIsNotLookedAt) {
    Bytes const pdu = savPdu({});
    Walked const expected = walk(pdu);
    for (std::size_t const start :
         {1UL, 7UL, pdu.size(), std::numeric_limits<std::size_t>::max()}) {
        Walked const result = walk(pdu, false, 1, 1000, {}, start);
        EXPECT_EQ(result.package, expected.package);
        EXPECT_EQ(result.sv.svID, expected.sv.svID);
    }
}

TEST(SvParserWalk, ProcessNestedStructureIsTheSame) {
    Filter const reject = svFilter({wanted(&SvIdentifer::svID, "wanted")});
    for (Filter const& filter : {Filter{}, reject}) {
        for (Bytes const& buffer : {Bytes{}, savPdu({}), ambiguous(), Bytes{0xA2}}) {
            for (bool const inAsdu : {false, true}) {
                for (int const depth : {-1, 0, 1, 2, 3, 10, kMaxDepth}) {
                    Walked const expected = walk(buffer, inAsdu, depth, 500, filter);
                    Walked result;
                    result.accepted = SvParser::_processNestedStructure(
                        buffer, depth, 3, 500, kHeader, result.sv, result.package, filter, inAsdu);
                    EXPECT_EQ(result.accepted, expected.accepted);
                    EXPECT_EQ(result.package, expected.package);
                    EXPECT_EQ(result.sv.svID, expected.sv.svID);
                    EXPECT_EQ(result.sv.maxNoASDU, expected.sv.maxNoASDU);
                }
            }
        }
    }
}

}  // namespace
}  // namespace TalTest::SvParserWalkTest
