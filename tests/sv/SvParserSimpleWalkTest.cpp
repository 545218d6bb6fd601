#include <gtest/gtest.h>

#include <TalIec61850Parser/sv/SvParser.hpp>
#include <TalIec61850Parser/sv/SvParserSimple.hpp>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "capture/Criteria.hpp"
#include "capture/FrameWalk.hpp"
#include "capture/SmallStack.hpp"
#include "support/Ber.hpp"
#include "support/SampledValues.hpp"
#include "support/Sanitized.hpp"

// The single-frame walk over nested elements, called level by level, in and out of an ASDU.

namespace TalTest::SvParserSimpleWalkTest {
namespace {

using namespace TalIec61850Parser;

using Walked = WalkedSv;

Walked walk(Bytes const& buffer, bool inAsdu = false, Filter const& filter = {}, int depth = 1,
            std::size_t start = 0) {
    Walked result;
    result.accepted =
        SvParserSimple::_parseAsn1Structure(buffer, depth, start, result.sv, filter, inAsdu);
    return result;
}

/// Whether the walk came upon an svID.
bool findsSvId(Bytes const& buffer, bool inAsdu = false) {
    Walked const result = walk(buffer, inAsdu);
    EXPECT_TRUE(result.accepted);
    return result.sv.svID.has_value();
}

/// svID in an ASDU, noASDU outside of one.
Bytes probe() { return ber(0x80, "A"); }

Filter const& wantsAnother() {
    static Filter const filter = svFilter({wanted(&SvIdentifer::svID, "another")});
    return filter;
}

TEST(SvParserSimpleWalk, EmptyBufferIsAccepted) {
    EXPECT_TRUE(walk({}, false, wantsAnother()).accepted);
    EXPECT_TRUE(walk({}, true, wantsAnother()).accepted);
}

TEST(SvParserSimpleWalk, MeaningComesFromTheFlagNotTheDepth) {
    Bytes const fields = concat({probe(), ber(0x82, {0, 2}), ber(0x83, {0x03}), ber(0x86, {0, 4})});
    for (int const depth : {-1, 0, 1, 2, 3, 10, kMaxDepth}) {
        for (bool const inAsdu : {false, true}) {
            Sv const sv = walk(fields, inAsdu, {}, depth).sv;
            EXPECT_EQ(sv.svID.has_value(), inAsdu) << depth;
            EXPECT_EQ(sv.confRev.has_value(), inAsdu) << depth;
            EXPECT_EQ(sv.appId, 0x4000U);
            EXPECT_FALSE(sv.reserved1Bit0.has_value());
            EXPECT_EQ(sv.maxNoASDU, 0U);
            EXPECT_EQ(sv.maxSmpCnt, 0);
            EXPECT_EQ(sv.smpRate, 0);
            EXPECT_EQ(walk(fields, inAsdu, wantsAnother(), depth).accepted, !inAsdu) << depth;
        }
    }
}

TEST(SvParserSimpleWalk, OtherContextTagsAreIgnored) {
    for (int tag = 0x81; tag <= 0x9F; ++tag) {
        if (tag == 0x83) continue;
        for (Bytes const& value : {Bytes{}, Bytes{0x01}, Bytes{1, 2}, probe()}) {
            Sv const sv = walk(ber(static_cast<std::uint8_t>(tag), value), true).sv;
            EXPECT_FALSE(sv.svID || sv.confRev) << tag;
            EXPECT_EQ(sv.maxNoASDU + sv.maxSmpCnt + sv.smpRate, 0U) << tag;
        }
    }
}

TEST(SvParserSimpleWalk, StructuresAreDescendedInto) {
    for (int tag = 0; tag < 256; ++tag) {
        bool const structure = tag == 0x30 || tag == 0x60 || (tag & 0xE0) == 0xA0;
        Bytes const buffer = ber(static_cast<std::uint8_t>(tag), ber(0x83, {0x01}));
        EXPECT_EQ(walk(buffer, true).sv.confRev == 1U, structure) << tag;
        // Nothing but 30 begins an ASDU.
        EXPECT_EQ(walk(buffer, false).sv.confRev.has_value(), tag == 0x30) << tag;
    }
}

TEST(SvParserSimpleWalk, SequenceMarksTheRestOfItsLevel) {
    Bytes const asdu = ber(0x30, ber(0x82, {0, 1}));
    EXPECT_FALSE(findsSvId(concat({probe(), asdu})));
    EXPECT_TRUE(findsSvId(concat({asdu, probe()})));
    // The levels below what follows are marked as well.
    EXPECT_TRUE(findsSvId(concat({asdu, ber(0xA2, ber(0xA3, probe()))})));
    // Also when nothing in it can be read.
    EXPECT_TRUE(findsSvId(concat({{0x30, 0x01, 0x80}, probe()})));
}

TEST(SvParserSimpleWalk, SequenceLeavesTheLevelAboveUnmarked) {
    for (std::uint8_t const tag : Bytes{0x60, 0xA0, 0xA2}) {
        Bytes const below = ber(tag, ber(0x30, ber(0x82, {0, 1})));
        EXPECT_FALSE(findsSvId(concat({below, probe()})));
        EXPECT_TRUE(findsSvId(concat({below, probe()}), true));
    }
}

TEST(SvParserSimpleWalk, SequenceCutShortMarksNothing) {
    EXPECT_FALSE(findsSvId({0x30, 0x7F, 0x80, 0x01, 0x41}));
}

TEST(SvParserSimpleWalk, EmptySequenceMarksNothingHereAndItsLevelInIndexing) {
    // Deliberate: the one thing in which the two walks read the same octets differently.
    for (Bytes const& empty : {Bytes{0x30, 0x00}, Bytes{0x30, 0x80}, Bytes{0x30, 0x81, 0x00},
                               Bytes{0x30, 0x84, 0, 0, 0, 0}}) {
        Bytes const pdu = ber(0x60, ber(0xA2, concat({empty, probe()})));
        Bytes const data = apdu({}, pdu);
        for (Filter const& filter : {Filter{}, wantsAnother()}) {
            Sv simple;
            EXPECT_TRUE(SvParserSimple::parsePacket(data, 0, simple, filter));
            EXPECT_FALSE(simple.svID.has_value());

            Sv other;
            Package package;
            EXPECT_EQ(SvParser::parsePacket(data, 0, {}, 0, other, package, filter),
                      filter.svFilters.empty());
            EXPECT_EQ(other.svID, "A");
            EXPECT_EQ(other.maxNoASDU, 0U);
        }
    }
}

TEST(SvParserSimpleWalk, EmptySequenceDoesNotTakeAMarkBack) {
    EXPECT_TRUE(findsSvId(concat({{0x30, 0x00}, probe()}), true));
    EXPECT_TRUE(findsSvId(concat({ber(0x30, {0x04, 0x00}), {0x30, 0x00}, probe()})));
}

TEST(SvParserSimpleWalk, IndefiniteLengthIsAnEmptyElement) {
    EXPECT_FALSE(findsSvId(ber(0x30, probe(), LengthForm::indefinite)));
    EXPECT_TRUE(findsSvId(ber(0xA2, ber(0x30, probe()), LengthForm::indefinite)));
}

TEST(SvParserSimpleWalk, EveryLengthFormIsRead) {
    for (LengthForm const form : {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets,
                                  LengthForm::threeOctets, LengthForm::fourOctets}) {
        EXPECT_TRUE(findsSvId(ber(0xA2, ber(0x30, ber(0x80, "A", form), form), form)));
    }
}

TEST(SvParserSimpleWalk, MalformedElementEndsItsLevelOnly) {
    for (Bytes const& damage :
         {Bytes{0x80}, Bytes{0x80, 0x7F}, Bytes{0x83, 0x82, 0x01}, Bytes{0xA2, 0x84, 0xFF, 0xFF},
          Bytes{0x81, 0x85, 0, 0, 0, 0, 1}, Bytes{0x81, 0xFF}}) {
        Bytes const asdu = ber(0x30, concat({ber(0x83, {0x07}), damage}));
        Walked const result = walk(concat({asdu, ber(0x30, probe())}));
        EXPECT_TRUE(result.accepted);
        EXPECT_EQ(result.sv.confRev, 7U);
        EXPECT_EQ(result.sv.svID, "A");
    }
    Bytes const long5 = berClaiming(0x81, {0x85, 0, 0, 0, 0, 1}, {0});
    EXPECT_FALSE(findsSvId(concat({long5, probe()}), true));
    Bytes const long4 = berClaiming(0x81, {0x84, 0, 0, 0, 1}, {0});
    EXPECT_TRUE(findsSvId(concat({long4, probe()}), true));
}

TEST(SvParserSimpleWalk, RejectionEndsTheWalkFromBelow) {
    Bytes const behind = ber(0x30, ber(0x83, {0x01}));
    Walked const result = walk(concat({ber(0x30, probe()), behind}), false, wantsAnother());
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.sv.svID, "A");
    EXPECT_FALSE(result.sv.confRev.has_value());
    EXPECT_FALSE(walk(nested(0x30, 100, probe()), false, wantsAnother()).accepted);
}

TEST(SvParserSimpleWalk, FiftyFirstElementIsNotRead) {
    for (std::size_t const before : {0UL, 48UL, 49UL, 50UL, 51UL, 200UL}) {
        for (Bytes const& other : {ber(0x81, {0x01}), ber(0x04, "x"), Bytes{0x00, 0x00},
                                   Bytes{0x30, 0x00}, ber(0xA0, times(60, {0x04, 0x00}))}) {
            Bytes const fields = concat({times(before, other), probe()});
            EXPECT_EQ(findsSvId(fields, true), before < 50) << before;
            EXPECT_EQ(walk(fields, true, wantsAnother()).accepted, before >= 50) << before;
        }
    }
}

TEST(SvParserSimpleWalk, EachLevelCountsItsOwnElements) {
    for (std::size_t const before : {48UL, 49UL, 50UL}) {
        Bytes const inner = concat({times(before, ber(0x04, "x")), probe()});
        Bytes const outer = concat({times(49, ber(0x04, "x")), ber(0x30, inner)});
        EXPECT_EQ(findsSvId(outer), before < 50) << before;
    }
}

TEST(SvParserSimpleWalk, AsduBehindTheFiftiethIsNotMatched) {
    SvMessage message;
    message.asdus.assign(50, Asdu{});
    for (Asdu& asdu : message.asdus) asdu.seqData = Bytes(8);
    Asdu other = message.asdus.front();
    other.svID = "other";
    message.asdus.push_back(other);
    Filter const filter = svFilter({wanted(&SvIdentifer::svID, "MU01")});
    EXPECT_TRUE(walk(savPdu(message), false, filter).accepted);
    message.asdus.erase(message.asdus.begin());
    EXPECT_FALSE(walk(savPdu(message), false, filter).accepted);
}

TEST(SvParserSimpleWalk, StartIsNotLookedAt) {
    Bytes const pdu = savPdu({});
    for (std::size_t const start :
         {1UL, 7UL, pdu.size(), std::numeric_limits<std::size_t>::max()}) {
        EXPECT_EQ(walk(pdu, false, {}, 1, start).sv.svID, "MU01");
    }
}

TEST(SvParserSimpleWalk, ProcessNestedStructureIsTheSame) {
    for (Filter const& filter : {Filter{}, wantsAnother()}) {
        for (Bytes const& buffer : {Bytes{}, savPdu({}), probe(), Bytes{0x60}}) {
            for (bool const inAsdu : {false, true}) {
                for (int const depth : {-1, 0, 1, 2, 3, kMaxDepth}) {
                    Walked const expected = walk(buffer, inAsdu, filter, depth);
                    Sv sv;
                    EXPECT_EQ(SvParserSimple::_processNestedStructure(buffer, depth, 3, sv, filter,
                                                                      inAsdu),
                              expected.accepted);
                    EXPECT_EQ(sv.svID, expected.sv.svID);
                    EXPECT_EQ(sv.confRev, expected.sv.confRev);
                }
            }
        }
    }
}

// --- Nesting without end -------------------------------------------------------------------------

TEST(SvParserSimpleNesting, IsWalkedToItsEnd) {
    for (std::uint8_t const tag : Bytes{0x30, 0x60, 0xA2}) {
        Bytes const buffer = nested(tag, kMillion, ber(0x30, probe()));
        EXPECT_TRUE(findsSvId(buffer));
        EXPECT_FALSE(walk(buffer, false, wantsAnother()).accepted);
    }
}

TEST(SvParserSimpleNesting, IsComeBackFrom) {
    Bytes const deep = nested(0x30, kMillion, ber(0x04, "x"));
    EXPECT_TRUE(findsSvId(ber(0x60, concat({deep, probe()}))));
    // The mark of an ASDU is taken back with the level that it was set on.
    EXPECT_FALSE(findsSvId(concat({ber(0x60, deep), probe()})));
    for (Bytes const& end : {Bytes{0xA2}, Bytes{0xA2, 0x7F}, Bytes{0xA2, 0x85, 0, 0, 0, 0, 0}}) {
        EXPECT_TRUE(findsSvId(ber(0x60, concat({nested(0x30, kMillion, end), probe()}))));
    }
}

TEST(SvParserSimpleNesting, NeedsNoStack) {
    if (isSanitized) GTEST_SKIP() << "a sanitizer needs the stack itself";
    for (std::uint8_t const tag : Bytes{0x30, 0x60, 0xA2}) {
        Bytes const data =
            apdu({.length = 0}, ber(0x30, concat({nested(tag, kMillion), ber(0x80, "last")})));
        Sv sv;
        bool accepted = false;
        runOnSmallStack([&] { accepted = SvParserSimple::parsePacket(data, 0, sv, {}); });
        EXPECT_TRUE(accepted);
        // The 30 around them holds the svID beside them.
        EXPECT_EQ(sv.svID, "last");
    }
}

}  // namespace
}  // namespace TalTest::SvParserSimpleWalkTest
