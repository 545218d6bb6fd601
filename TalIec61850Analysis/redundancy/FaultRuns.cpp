#include <TalIec61850Analysis/redundancy/FaultRuns.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

void FaultRuns::add(RedundancyFault const& fault) {
    unsigned const slot = slotOf(fault.kind, fault.lane);
    auto const [at, isNew] = open_.try_emplace(fault.stream * kSlots + slot, fault);
    areOpen_[fault.stream] = static_cast<std::uint16_t>(areOpen_[fault.stream] | 1U << slot);
    if (!isNew) {
        at->second.until = std::max(at->second.until, fault.until);
        ++at->second.count;
    }
}

void FaultRuns::close(unsigned slot, std::size_t stream, RedundancyFaultSink sink) {
    areOpen_[stream] =
        static_cast<std::uint16_t>(areOpen_[stream] & ~static_cast<unsigned>(1U << slot));
    auto const at = open_.find(stream * kSlots + slot);
    if (at != open_.end()) {
        sink(at->second);
        open_.erase(at);
    }
}

void FaultRuns::endAll(RedundancyFaultSink sink) {
    for (std::size_t stream = 0; stream < areOpen_.size(); ++stream) {
        for (unsigned slot = 0; slot < kSlots; ++slot) {
            if ((areOpen_[stream] >> slot & 1U) != 0) {
                close(slot, stream, sink);
            }
        }
    }
}

}  // namespace TalIec61850Analysis::detail
