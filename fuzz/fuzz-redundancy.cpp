// A whole capture file, its copies paired: alone, and its ways in files of their own.

#include <TalIec61850Analysis/redundancy/PairCopies.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/CaptureInput.hpp"
#include "fuzz/Check.hpp"
#include "fuzz/Tally.hpp"
#include "index/Indexing.hpp"

namespace {

using namespace TalIec61850Analysis;
using namespace TalFuzz;

/// How often a stream has each fault.
struct FaultCounts {
    std::array<std::uint64_t, 5> all{};

    [[nodiscard]] std::uint64_t of(RedundancyFaultKind kind) const {
        return all.at(static_cast<std::size_t>(kind));
    }
};

/// Frames with a tag or a trailer that fits, of a stream; each once.
std::uint64_t copiesIn(TrafficStream const& stream) {
    std::uint64_t copies = 0;
    for (StreamPart const& part : stream.parts) {
        for (std::size_t i = 0; i < part.packets.size(); ++i) {
            PacketFlags const flags = part.packets.flags()[i];
            copies += flags.redundancy() != Redundancy::none && !flags.isDuplicate() ? 1U : 0U;
        }
    }
    return copies;
}

void requireCounts(CopyCounts const& counts) {
    require(counts.firstA + counts.firstB == counts.both, "each pair has a first copy");
    require(counts.differences.has_value() == (counts.both > 0), "pairs have differences");
    require(counts.differs <= counts.frames(), "what differs was counted");
    if (counts.differences) {
        TimeDifferences const& all = *counts.differences;
        require(all.min <= all.p50 && all.p50 <= all.p99 && all.p99 <= all.max,
                "percentiles are in their order");
    }
}

void requireFaults(TrafficIndex const& index, RedundancyFault const& fault) {
    require(fault.stream < index.streams().size(), "the stream is there");
    TrafficStream const& stream = index.streams()[fault.stream];
    auto const isThere = [&](PacketRef packet) {
        return packet.part < stream.parts.size() &&
               packet.packet < stream.parts[packet.part].packets.size();
    };
    require(isThere(fault.packet), "the packet is there");
    require(!fault.other || isThere(*fault.other), "so is the other one");
    require(fault.from <= fault.until && fault.count > 0, "it lasts");
}

TrafficRedundancy requirePairs(TrafficIndex const& index) {
    std::vector<FaultCounts> faults(index.streams().size());
    TrafficRedundancy paired = pairCopies(index, {}, [&](RedundancyFault const& fault) {
        requireFaults(index, fault);
        faults[fault.stream].all.at(static_cast<std::size_t>(fault.kind)) += fault.count;
    });
    for (StreamRedundancy const& each : paired.streams) {
        requireCounts(each.counts);
        require(each.counts.frames() <= copiesIn(index.streams()[each.stream]),
                "no frame is made up");
        require(faults[each.stream].of(RedundancyFaultKind::wrongLan) == each.counts.wrongLan,
                "each wrong LAN is told");
        require(faults[each.stream].of(RedundancyFaultKind::copyDiffers) == each.counts.differs,
                "each difference is told");
    }
    for (SourceRedundancy const& each : paired.sources) {
        requireCounts(each.counts);
    }
    return paired;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Tally paired("captures have copies");
    static TalTest::ScratchFile file;
    static TalTest::ScratchFile other;
    CaptureInput const input = captureInput({data, size});
    file.assign(input.capture);
    TrafficIndex const index = indexCapture(file.path());
    TrafficRedundancy const alone = requirePairs(index);
    // What another file has at the same time is there once.
    other.assign(input.capture);
    std::vector<std::string> const twice = {file.path(), other.path()};
    TrafficRedundancy const again = requirePairs(indexCaptures(twice));
    require(again.streams.size() == alone.streams.size(), "a second file adds no stream");
    paired.add(alone.streams.empty() ? 0 : 1, 1);
    return 0;
}
