#include <TalIec61850Analysis/redundancy/CopyPairer.hpp>
#include <TalIec61850Analysis/redundancy/FindTapClocks.hpp>
#include <TalIec61850Analysis/redundancy/FrameCourse.hpp>
#include <TalIec61850Analysis/redundancy/PairCopies.hpp>
#include <TalIec61850Analysis/redundancy/RedundantSources.hpp>
#include <cstdint>

namespace TalIec61850Analysis {

TrafficRedundancy pairCopies(TrafficIndex const& index, PairingOptions const& options,
                             RedundancyFaultSink sink) {
    // Frames between two looks at whether to stop.
    constexpr std::uint64_t kFramesBetweenLooks = 0xFFF;
    detail::RedundantSources const sources(index);
    if (!sources.isAny()) {
        return {};
    }
    auto const clocks = detail::findTapClocks(index, sources, options.stop);
    detail::CopyPairer pairer(index, sources, clocks, options.window);
    detail::FrameCourse course(index, sources, clocks);
    for (std::uint64_t seen = 0; auto const* const frame = course.next(); ++seen) {
        if ((seen & kFramesBetweenLooks) == 0 && options.stop.stop_requested()) {
            break;
        }
        pairer.add(*frame, sink);
    }
    pairer.finish(sink);
    return pairer.result();
}

}  // namespace TalIec61850Analysis
