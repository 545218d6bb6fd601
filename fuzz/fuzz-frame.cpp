// A single frame: the verdict on it goes with what indexing makes of it, under a filter made from
// the input; and both roads read one identity.

#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/goose/GooseParserSimple.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <TalIec61850Parser/sv/SvParserSimple.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "fuzz/Check.hpp"
#include "fuzz/FilterChoice.hpp"
#include "fuzz/FuzzInput.hpp"
#include "fuzz/Tally.hpp"
#include "index/PlainVerdict.hpp"
#include "index/PlainWalk.hpp"

namespace {

using namespace TalIec61850Parser;
using namespace TalTest;
using namespace TalFuzz;

Db indexOf(Bytes const& frame, Filter const& filter) {
    static PcapFile file("/dev/null");
    Db db;
    EthernetParser::parsePacket(frame, 0, file, false, {.tsSec = 1, .tsUsec = 2}, filter, db);
    return db;
}

bool isIndexed(Db const& db) {
    return !db.gooseProto.streams.empty() || !db.svProto.streams.empty();
}

/// Whether the frame's addresses and tags pass the filter list of its protocol.
bool isAdmitted(Bytes const& frame, PlainLink const& link, Filter const& filter) {
    EthernetHeader const header = headerOf(frame, link);
    Goose goose;
    Sv sv;
    return link.etherType == etherTypeGoose
               ? EthernetParser::_checkEthernetFilters(goose, filter.gooseFilters, header)
               : EthernetParser::_checkEthernetFilters(sv, filter.svFilters, header);
}

void requireOneIdentity(Bytes const& frame, std::size_t offset, Filter const& filter) {
    Goose goose;
    Goose judgedGoose;
    Package package;
    bool const isGoose = GooseParser::parsePacket(frame, offset, {}, 0, goose, package, filter);
    require(GooseParserSimple::parsePacket(frame, offset, judgedGoose, filter) == isGoose,
            "both roads say the same of GOOSE");
    require(GooseEqual()(goose, judgedGoose), "one GOOSE stream");
    Sv sv;
    Sv judgedSv;
    bool const isSv = SvParser::parsePacket(frame, offset, {}, 0, sv, package, filter);
    require(SvParserSimple::parsePacket(frame, offset, judgedSv, filter) == isSv,
            "both roads say the same of SV");
    require(SvEqual()(sv, judgedSv), "one SV stream");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Tally payloads("frames hold GOOSE or SV");
    FuzzInput input({data, size});
    Bytes const choice = input.octets(kFilterChoiceSize);
    Bytes const whole = input.octets(size);
    Bytes const frame = withoutEmptySequences(whole);
    FuzzInput chosen(choice);
    Filter const filter = filterFrom(chosen, indexOf(frame, {}));

    std::optional<PlainLink> const link = readLink(frame);
    bool const admitted = link && isAdmitted(frame, *link, filter);
    bool const verdict = EthernetParser::parsePacketSimple(frame, filter);
    bool const indexed = isIndexed(indexOf(frame, filter));
    require(verdict == verdictFor(link, filter, admitted, indexed), "the verdict is the index's");
    requireOneIdentity(frame, link ? link->payload : size, filter);
    if (whole != frame) {
        static_cast<void>(EthernetParser::parsePacketSimple(whole, filter));
        static_cast<void>(indexOf(whole, filter));
    }
    payloads.add(
        link && (link->etherType == etherTypeGoose || link->etherType == etherTypeSampledValues)
            ? 1
            : 0,
        1);
    return 0;
}
