#pragma once

#include <cstdint>
#include <functional>

#include "support/StationDevice.hpp"

namespace TalTest {

/// A sender of frames that carry neither GOOSE nor SV, at a fixed interval.
class OtherTraffic : public StationDevice {
public:
    /// @param interval  between two frames, and before the first; on the grid
    /// @param build     makes a frame of its number, counted from 0
    OtherTraffic(std::uint64_t phase, std::uint64_t interval,
                 std::function<Bytes(std::uint32_t)> build);

    [[nodiscard]] Bytes const& send() override;

private:
    std::uint64_t interval_;
    std::function<Bytes(std::uint32_t)> build_;
    Bytes frame_ = {};
    std::uint32_t numFrames_ = 0;
};

/// A Sync of the Precision Time Protocol (IEEE 1588, over Ethernet).
[[nodiscard]] Bytes ptpSync(std::uint32_t number);

/// A request of the Address Resolution Protocol.
[[nodiscard]] Bytes arpRequest(std::uint32_t number);

/// A TCP segment over IPv4 with a few octets of payload.
[[nodiscard]] Bytes tcpSegment(std::uint32_t number);

/// A UDP datagram over IPv4 with a few octets of payload.
[[nodiscard]] Bytes udpDatagram(std::uint32_t number);

/// A configuration message of the spanning tree protocol (IEEE 802.1D): an IEEE 802.3 frame, which
/// has a length and LLC where others have an EtherType.
[[nodiscard]] Bytes spanningTreeHello();

}  // namespace TalTest
