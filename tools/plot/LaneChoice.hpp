#pragma once

#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <utility>
#include <vector>

#include "tools/plot/PlotContent.hpp"
#include "tools/render/PictureNames.hpp"

namespace TalIec61850Tools {

/// Which GOOSE members a picture has: of each stream those that change, or all where none does; and
/// of all streams those that change first, where there is no room for all.
class LaneChoice {
public:
    /// @param mostLanes, mostStreams  in the picture
    LaneChoice(std::size_t mostLanes, std::size_t mostStreams)
        : mostLanes_(mostLanes), mostStreams_(mostStreams) {}

    /// Adds the lanes of a stream. How many are kept does not grow with streams.
    void add(PlottedStates states);

    /// What has a place. Nothing may be added after that.
    [[nodiscard]] std::vector<PlottedStates> take() { return std::move(streams_); }
    /// Members that have no lane, because they do not change.
    [[nodiscard]] std::size_t unchanging() const { return unchanging_; }
    /// Members for which there is no room.
    [[nodiscard]] std::size_t withoutRoom() const { return withoutRoom_; }
    void countWithoutRoom(std::size_t members) { withoutRoom_ += members; }

private:
    void prune();

    std::size_t mostLanes_;
    std::size_t mostStreams_;
    std::vector<PlottedStates> streams_;
    std::size_t unchanging_ = 0;
    std::size_t withoutRoom_ = 0;
};

/// The members of a GOOSE stream.
struct ReadLanesResult {
    PlottedStates states;
    /// Members beyond those.
    std::size_t leftOut = 0;
};

/// Reads the members of a GOOSE stream for a picture.
/// @param stream         its number in the index
/// @param mostIntervals  of each lane; at least 16
/// @throws std::system_error  a capture cannot be read
[[nodiscard]] ReadLanesResult readLanes(TalIec61850Analysis::TrafficIndex const& index,
                                        std::size_t stream,
                                        TalIec61850Analysis::TimeWindow const& window,
                                        std::size_t mostIntervals, PictureNames const& names);

}  // namespace TalIec61850Tools
