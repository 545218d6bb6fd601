// What holds for the answer about any single frame: it is that of the index.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/goose/GooseParserSimple.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <TalIec61850Parser/sv/SvParserSimple.hpp>
#include <cstddef>
#include <optional>

#include "index/IndexImage.hpp"
#include "index/Indexing.hpp"
#include "index/PlainVerdict.hpp"
#include "index/TrafficGenerators.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"

namespace TalTest::VerdictPropertyTest {
namespace {

using namespace TalIec61850Parser;

/// A frame of any kind; RapidCheck's own strategy would hardly ever make a whole one.
rc::Gen<Bytes> theFrame() { return rc::gen::oneOf(validFrame(), frameOfRandomBer(), anyFrame()); }

/// What a capture of this one frame is indexed to.
Db indexOf(Bytes const& frame, Filter const& filter) {
    ScratchFile const file(captureOf({{1, 2, frame}}, CaptureVariant::microLittle));
    Db db;
    indexInto(db, file.path(), filter);
    return db;
}

void requireVerdictOfTheIndex(Bytes const& frame, Filter const& filter) {
    std::optional<PlainLink> const link = readLink(frame);
    bool const admitted = link && isAdmitted(frame, *link, filter);
    bool const indexed = isIndexed(indexOf(frame, filter));
    RC_CLASSIFY(indexed, "indexed");
    RC_CLASSIFY(link && !admitted, "rejected by its link layer");
    RC_ASSERT(EthernetParser::parsePacketSimple(frame, filter) ==
              verdictFor(link, filter, admitted, indexed));
}

RC_GTEST_PROP(AnyFrame, IsJudgedAsItIsIndexed, ()) {
    requireVerdictOfTheIndex(withoutEmptySequences(*theFrame()), *anyFilter());
}

RC_GTEST_PROP(AnyFrame, IsJudgedAsItIsIndexedWhereverItIsCut, ()) {
    Bytes const frame = withoutEmptySequences(*validFrame());
    Filter const filter = *anyFilter();
    std::size_t const size = *rc::gen::inRange<std::size_t>(0, frame.size() + 1);
    requireVerdictOfTheIndex(prefix(frame, size), filter);
}

RC_GTEST_PROP(AnyFrame, IsJudgedByItsSizeAloneWithoutCriteria, ()) {
    Bytes const frame = *theFrame();
    Filter filter;
    filter.parseGoose = *rc::gen::element(true, true, true, false);
    filter.parseSv = *rc::gen::element(true, true, true, false);
    std::optional<PlainLink> const link = readLink(frame);
    bool const readable = link && frame.size() > link->payload + 8;
    RC_ASSERT(EthernetParser::parsePacketSimple(frame, filter) ==
              verdictFor(link, filter, true, readable));
}

RC_GTEST_PROP(AnyFrame, ThatIsIndexedHasTheIdentityOfItsStream, ()) {
    Bytes const frame = withoutEmptySequences(*theFrame());
    Filter const filter = *anyFilter();
    Db const db = indexOf(frame, filter);
    RC_PRE(isIndexed(db));
    PlainLink const link = readLink(frame).value();
    EthernetHeader const header = headerOf(frame, link);
    if (link.etherType == etherTypeGoose) {
        Goose goose;
        RC_ASSERT(EthernetParser::_checkEthernetFilters(goose, filter.gooseFilters, header));
        RC_ASSERT(GooseParserSimple::parsePacket(frame, link.payload, goose, filter));
        RC_ASSERT(identityText(goose) == identityText(*db.gooseProto.streams.begin()));
    } else {
        Sv sv;
        RC_ASSERT(EthernetParser::_checkEthernetFilters(sv, filter.svFilters, header));
        RC_ASSERT(SvParserSimple::parsePacket(frame, link.payload, sv, filter));
        RC_ASSERT(identityText(sv) == identityText(*db.svProto.streams.begin()));
    }
}

// --- The parsers themselves, also on what a dispatcher would not give them -----------------------

/// Where the payload begins, or now and then anywhere.
std::size_t anyOffset(Bytes const& frame) {
    std::optional<PlainLink> const link = readLink(frame);
    std::size_t const anywhere = *rc::gen::inRange<std::size_t>(0, frame.size() + 12);
    return link && *rc::gen::element(true, true, true, false) ? link->payload : anywhere;
}

RC_GTEST_PROP(AnyFrame, ReadAsGooseGivesTheSameOnBothRoads, ()) {
    Bytes const frame = *theFrame();
    Filter const filter = *anyFilter();
    std::size_t const offset = anyOffset(frame);
    Goose indexed;
    Package package;
    bool const accepted = GooseParser::parsePacket(frame, offset, {}, 0, indexed, package, filter);
    Goose simple;
    RC_CLASSIFY(accepted, "accepted");
    RC_ASSERT(GooseParserSimple::parsePacket(frame, offset, simple, filter) == accepted);
    RC_ASSERT(identityText(simple) == identityText(indexed));
}

RC_GTEST_PROP(AnyFrame, ReadAsSvGivesTheSameOnBothRoads, ()) {
    Bytes const frame = withoutEmptySequences(*theFrame());
    Filter const filter = *anyFilter();
    std::size_t const offset = anyOffset(frame);
    Sv indexed;
    Package package;
    bool const accepted = SvParser::parsePacket(frame, offset, {}, 0, indexed, package, filter);
    Sv simple;
    RC_CLASSIFY(accepted, "accepted");
    RC_ASSERT(SvParserSimple::parsePacket(frame, offset, simple, filter) == accepted);
    RC_ASSERT(identityText(simple) == identityText(indexed));
    RC_ASSERT(simple.maxNoASDU + simple.maxSmpCnt + simple.smpRate == 0U);
}

RC_GTEST_PROP(AnyFrame, ReadAsSvGivesTheIdentityOfThePlainWalk, ()) {
    // Empty sequences included.
    Bytes const frame = *theFrame();
    std::optional<PlainLink> const link = readLink(frame);
    bool const readable = link && frame.size() > link->payload + 8;
    RC_PRE(readable);
    Sv expected;
    expected.appId = frame[link->payload] * 256U + frame[link->payload + 1];
    expected.reserved1Bit0 = frame[link->payload + 5] & 1;
    auto const pdu = static_cast<std::ptrdiff_t>(link->payload) + 8;
    plainSimpleSv(Bytes(frame.begin() + pdu, frame.end()), false, expected);
    Sv sv;
    RC_ASSERT(SvParserSimple::parsePacket(frame, link->payload, sv, {}));
    RC_ASSERT(identityText(sv) == identityText(expected));
}

}  // namespace
}  // namespace TalTest::VerdictPropertyTest
