// A whole capture file, indexed true to the wire: with the memory of walks and without it, alone
// and twice in one index.

#include <TalIec61850Analysis/traffic/IndexFile.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "fuzz/CaptureInput.hpp"
#include "fuzz/Check.hpp"
#include "fuzz/Tally.hpp"
#include "index/Indexing.hpp"

namespace {

using namespace TalIec61850Analysis;
using namespace TalFuzz;
using detail::FileTraffic;
using detail::indexFile;
using detail::WalkMemory;

void requireInOrder(TrafficStream const& stream) {
    std::int64_t last = std::numeric_limits<std::int64_t>::min();
    std::uint64_t visited = 0;
    stream.visit({}, [&](PacketRef const& ref) {
        std::int64_t const time = stream.parts[ref.part].packets.times()[ref.packet];
        require(time >= last, "packets are visited in the order of time");
        last = time;
        ++visited;
    });
    require(visited == stream.packets + stream.copies, "all packets are visited but duplicates");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Tally indexed("captures have packets");
    static TalTest::ScratchFile file;
    file.assign(captureInput({data, size}).capture);
    FileTraffic const remembered = indexFile(file.path(), 0, {});
    FileTraffic const plain = indexFile(file.path(), 0, {}, WalkMemory::off);
    require(remembered.file == plain.file, "a file is the same without the memory of walks");
    require(remembered.streams == plain.streams, "streams are the same without it");

    std::vector<std::string> const twice = {file.path(), file.path()};
    TrafficIndex const index = indexCaptures(twice);
    std::uint64_t packets = 0;
    for (TrafficStream const& stream : index.streams()) {
        require(stream.packets + stream.copies + stream.duplicates == stream.size(),
                "each packet is counted once");
        requireInOrder(stream);
        static_cast<void>(index.nominalRate(stream));
        packets += stream.packets;
    }
    indexed.add(packets == 0 ? 0 : 1, 1);
    return 0;
}
