#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/Goose.hpp"
#include "support/StationDevice.hpp"

namespace TalTest {

/// What a protection relay of the station publishes.
struct RelaySettings {
    Ethernet ethernet = {};
    std::uint16_t appId = 0x0001;
    /// The name of the IED, which gocbRef, datSet and goID begin with.
    std::string device = {};
    std::uint32_t confRev = 1;
    /// Pairs of a boolean and its quality in the data set, before the trip's structure.
    std::size_t numPoints = 4;
    /// When the first heartbeat is sent; on the grid.
    std::uint64_t firstHeartbeat = 0;
    /// How long after the fault comes or goes the relay reports it; on the grid.
    std::uint64_t delay = 0;
    std::uint64_t phase = 0;
};

/// A protection relay: a heartbeat each second, and after a change of its state a new stNum and
/// retransmissions at intervals that double from 2 ms until they are a heartbeat again.
class Relay : public StationDevice {
public:
    explicit Relay(RelaySettings const& settings);

    [[nodiscard]] Bytes const& send() override;

private:
    void enterState(std::uint64_t time);
    [[nodiscard]] Bytes build() const;
    [[nodiscard]] std::vector<Bytes> data() const;

    RelaySettings settings_;
    Bytes frame_ = {};
    bool tripped_ = false;
    std::uint32_t stNum_ = 1;
    /// The last change was a day ago, a heartbeat for each of its seconds.
    std::uint32_t sqNum_ = 86'400;
    std::uint64_t interval_;
    std::uint64_t nextChange_;
    /// Seconds and fraction of the last change, as t tells them.
    Bytes changeTime_;
    std::uint16_t numFrames_ = 0;
};

}  // namespace TalTest
