#include "tools/report/ArrivalPicture.hpp"

#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <utility>
#include <vector>

namespace TalIec61850Tools {

using TalIec61850Analysis::EnvelopeOptions;
using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleOptions;
using TalIec61850Analysis::SampleState;

ArrivalPicture::ArrivalPicture(SampleOptions const& samples, std::size_t columns)
    : builder_(EnvelopeOptions{.from = samples.from,
                               .end = samples.end,
                               .columns = columns,
                               .fewestColumns = columns,
                               .channels = {}}) {}

void ArrivalPicture::add(SampleBlock const& block) {
    SampleBlock arrivals;
    arrivals.run = block.run;
    std::vector<std::int64_t> residuals;
    std::vector<std::int64_t> distances;
    for (std::size_t row = 0; row < block.size(); ++row) {
        std::int64_t const arrival = block.arrivals[row];
        std::int64_t const time = block.sampleTimes[row];
        // ASDUs of one frame come together: the first one tells.
        if (arrival == kNoTime || time == kNoTime || block.places[row].asdu != 0) {
            continue;
        }
        if (before_) {
            arrivals.sampleTimes.push_back(time);
            residuals.push_back(arrival - time);
            distances.push_back(arrival - *before_);
            arrivals.arrivals.push_back(arrival);
            arrivals.smpCnts.push_back(block.smpCnts[row]);
            arrivals.smpSynchs.push_back(block.smpSynchs[row]);
            arrivals.timeSources.push_back(block.timeSources[row]);
            arrivals.states.push_back(SampleState::received);
            arrivals.places.push_back(block.places[row]);
        }
        before_ = arrival;
    }
    if (arrivals.empty()) {
        return;
    }
    arrivals.channels.push_back({.values = std::move(residuals), .qualities = {}});
    arrivals.channels.push_back({.values = std::move(distances), .qualities = {}});
    builder_.add(arrivals);
}

}  // namespace TalIec61850Tools
