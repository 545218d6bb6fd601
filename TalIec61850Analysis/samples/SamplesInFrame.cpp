#include <TalIec61850Analysis/samples/SamplesInFrame.hpp>
#include <algorithm>
#include <cstddef>

namespace TalIec61850Analysis::detail {

std::uint32_t samplesInFrame(TrafficStream const& stream) {
    constexpr std::size_t kFrames = 64;
    if (stream.parts.empty()) {
        return 1;
    }
    auto const offsets = stream.parts.front().packets.frameOffsets();
    std::uint32_t most = 1;
    std::uint32_t count = 1;
    std::size_t frames = 0;
    for (std::size_t i = 1; i < offsets.size() && frames < kFrames; ++i) {
        bool const isSame = offsets[i] == offsets[i - 1];
        count = isSame ? count + 1 : 1;
        frames += isSame ? 0 : 1;
        most = std::max(most, count);
    }
    return most;
}

}  // namespace TalIec61850Analysis::detail
