// A single frame: the verdict on it goes with what indexing makes of it, under a filter made from
// the input; and both roads read one identity.

#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <TalIec61850Parser/capture/PcapPacketParser.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "fuzz/Check.hpp"
#include "fuzz/FilterChoice.hpp"
#include "fuzz/FrameSteps.hpp"
#include "fuzz/FuzzInput.hpp"
#include "fuzz/Tally.hpp"
#include "index/PlainVerdict.hpp"
#include "index/PlainWalk.hpp"
#include "support/CaptureFile.hpp"

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

/// The index of a capture record that holds the frame.
Db indexOfRecord(Bytes const& frame, Filter const& filter) {
    static PcapFile file("/dev/null");
    auto const size = static_cast<std::uint32_t>(frame.size());
    auto const header = recordHeader(CaptureVariant::microBig, 1, 2000, size, size);
    Db db;
    PcapPacketParser::parsePacket(concat({Bytes(header.begin(), header.end()), frame}), file, false,
                                  false, filter, db);
    return db;
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
    require(isIndexed(indexOfRecord(frame, filter)) == indexed, "a record is its frame");
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
