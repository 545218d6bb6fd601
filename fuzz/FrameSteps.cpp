#include "fuzz/FrameSteps.hpp"

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/goose/GooseParserSimple.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <TalIec61850Parser/sv/SvParserSimple.hpp>

#include "fuzz/Check.hpp"

namespace TalFuzz {

using namespace TalIec61850Parser;
using TalTest::Bytes;

namespace {

constexpr std::size_t kApduHeaderSize = 8;

/// A record with what is before the PDU, which the steps do not read.
template <typename Record>
Record headerOf(Record const& read) {
    Record record;
    record.appId = read.appId;
    record.reserved1Bit0 = read.reserved1Bit0;
    return record;
}

void requireGooseSteps(Bytes const& pdu, std::uint64_t position, Filter const& filter,
                       Goose const& expected, Package const& place) {
    Package package;
    Goose goose = headerOf(expected);
    require(GooseParser::_parseAsn1Structure(pdu, 1, 0, position, {}, goose, package, filter) &&
                GooseEqual()(goose, expected) && package == place,
            "the walk of a goosePdu is the parser's");
    goose = headerOf(expected);
    require(GooseParser::_processNestedStructure(pdu, 1, 0, position, {}, goose, package, filter) &&
                GooseEqual()(goose, expected),
            "the walk of a level of GOOSE");
    goose = headerOf(expected);
    require(GooseParserSimple::_parseAsn1Structure(pdu, 1, 0, goose, filter) &&
                GooseEqual()(goose, expected),
            "the walk of a goosePdu for its identity");
    goose = headerOf(expected);
    require(GooseParserSimple::_processNestedStructure(pdu, 1, 0, goose, filter) &&
                GooseEqual()(goose, expected),
            "the walk of a level of GOOSE for its identity");
}

void requireSvSteps(Bytes const& pdu, std::uint64_t position, Filter const& filter,
                    Sv const& expected, Package const& place) {
    Package package;
    Sv sv = headerOf(expected);
    require(SvParser::_parseAsn1Structure(pdu, 1, 0, position, {}, sv, package, filter, false) &&
                SvEqual()(sv, expected) && package == place,
            "the walk of a savPdu is the parser's");
    sv = headerOf(expected);
    require(
        SvParser::_processNestedStructure(pdu, 1, 0, position, {}, sv, package, filter, false) &&
            SvEqual()(sv, expected),
        "the walk of a level of SV");
    sv = headerOf(expected);
    require(SvParserSimple::_parseAsn1Structure(pdu, 1, 0, sv, filter, false) &&
                SvEqual()(sv, expected),
            "the walk of a savPdu for its identity");
    sv = headerOf(expected);
    require(SvParserSimple::_processNestedStructure(pdu, 1, 0, sv, filter, false) &&
                SvEqual()(sv, expected),
            "the walk of a level of SV for its identity");
}

}  // namespace

void requireOneIdentity(Bytes const& frame, std::size_t offset, Filter const& filter) {
    Package package;
    Goose goose;
    Goose judgedGoose;
    bool const isGoose = GooseParser::parsePacket(frame, offset, {}, 0, goose, package, filter);
    require(GooseParserSimple::parsePacket(frame, offset, judgedGoose, filter) == isGoose,
            "both roads say the same of GOOSE");
    require(GooseEqual()(goose, judgedGoose), "one GOOSE stream");
    Package svPackage;
    Sv sv;
    Sv judgedSv;
    bool const isSv = SvParser::parsePacket(frame, offset, {}, 0, sv, svPackage, filter);
    require(SvParserSimple::parsePacket(frame, offset, judgedSv, filter) == isSv,
            "both roads say the same of SV");
    require(SvEqual()(sv, judgedSv), "one SV stream");
    if (!isGoose && !isSv) return;
    std::size_t const position = offset + kApduHeaderSize;
    Bytes const pdu(frame.begin() + static_cast<std::ptrdiff_t>(position), frame.end());
    if (isGoose) requireGooseSteps(pdu, position, filter, goose, package);
    if (isSv) requireSvSteps(pdu, position, filter, sv, svPackage);
}

}  // namespace TalFuzz
