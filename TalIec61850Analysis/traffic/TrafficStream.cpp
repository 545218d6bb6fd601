#include <TalIec61850Analysis/traffic/TimeWalk.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>

namespace TalIec61850Analysis {

void TrafficStream::visit(TimeWindow const& window, PacketSink sink) const {
    detail::visitInTime(parts, window, [&](PacketRef const& ref) {
        if (!parts[ref.part].packets.flags()[ref.packet].isDuplicate()) {
            sink(ref);
        }
    });
}

std::uint64_t TrafficStream::size() const noexcept {
    std::uint64_t size = 0;
    for (StreamPart const& part : parts) {
        size += part.packets.size();
    }
    return size;
}

}  // namespace TalIec61850Analysis
