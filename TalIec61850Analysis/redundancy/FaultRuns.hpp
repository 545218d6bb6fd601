#pragma once

// Internal: faults of frames one after the other are made one.

#include <TalIec61850Analysis/redundancy/RedundancyFault.hpp>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace TalIec61850Analysis::detail {

/// The faults that the frames of each stream have at the moment.
class FaultRuns {
public:
    /// @param streams  of the index
    explicit FaultRuns(std::size_t streams) : areOpen_(streams) {}

    /// A frame of a stream has a fault.
    /// @param fault  of one frame
    void add(RedundancyFault const& fault);
    /// Whether the frame before had one.
    [[nodiscard]] bool isOpen(RedundancyFaultKind kind, char lane, std::size_t stream) const {
        return (areOpen_[stream] >> slotOf(kind, lane) & 1U) != 0;
    }
    /// Whether it had any.
    [[nodiscard]] bool isAnyOpen(std::size_t stream) const { return areOpen_[stream] != 0; }
    /// A frame of a stream does not have a fault.
    void end(RedundancyFaultKind kind, char lane, std::size_t stream, RedundancyFaultSink sink) {
        if (isOpen(kind, lane, stream)) [[unlikely]] {
            close(slotOf(kind, lane), stream, sink);
        }
    }
    /// There are no more frames.
    void endAll(RedundancyFaultSink sink);

private:
    static constexpr unsigned kSlots = 16;

    [[nodiscard]] static unsigned slotOf(RedundancyFaultKind kind, char lane) {
        // Copies that differ are compared with the first, whichever way that came.
        bool const isOfWay = kind != RedundancyFaultKind::copyDiffers;
        return 2 * static_cast<unsigned>(kind) + (isOfWay && lane == 'B' ? 1U : 0U);
    }
    void close(unsigned slot, std::size_t stream, RedundancyFaultSink sink);

    /// By stream, a bit for each slot.
    std::vector<std::uint16_t> areOpen_;
    /// By stream and slot.
    std::unordered_map<std::uint64_t, RedundancyFault> open_;
};

}  // namespace TalIec61850Analysis::detail
