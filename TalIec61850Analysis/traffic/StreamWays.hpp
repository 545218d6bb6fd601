#pragma once

// Internal: over which way each packet of a stream came into the captures.

#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstdint>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Numbers ways: LANs and lanes, and taps. Files that have packets of a stream at the same time are
/// of several taps; files one after the other are of one.
class StreamWays {
public:
    explicit StreamWays(TrafficStream const& stream);

    [[nodiscard]] std::uint16_t wayOf(std::uint32_t part, PacketFlags flags) const {
        // What a trailer says is of that LAN, whether its size is right or not.
        char const lane = flags.isTrailerMisfit() ? flags.claimedLane() : flags.lane();
        unsigned const number = lane == 0 ? 0U : (lane == 'A' ? 1U : 2U);
        return static_cast<std::uint16_t>(taps_[part] * 4U + number);
    }
    /// By part: whether it is of the tap that was there first.
    [[nodiscard]] std::vector<bool> areOfFirstTap() const;
    /// Whether packets may come over several.
    [[nodiscard]] bool areSeveral() const { return areSeveral_; }

private:
    /// By part.
    std::vector<unsigned> taps_;
    bool areSeveral_ = false;
};

}  // namespace TalIec61850Analysis::detail
