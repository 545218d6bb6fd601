#pragma once

#include <cstdint>
#include <string>

#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

// Frames and captures that the tests under faults have in common.

namespace TalTest {

/// A GOOSE frame of one of several relays.
[[nodiscard]] inline Bytes relayFrame(unsigned number, std::uint64_t sqNum,
                                      Ethernet const& link = {}) {
    GooseMessage message;
    message.gocbRef = "RELAY" + std::to_string(number) + "LD0/LLN0$GO$gcb1";
    message.sqNum = sqNum;
    return gooseFrame(link, message);
}

/// An SV frame of one of several merging units.
[[nodiscard]] inline Bytes mergingUnitFrame(unsigned number, std::uint16_t smpCnt,
                                            Ethernet const& link = svEthernet()) {
    return svFrame(link, message92le("a merging unit's name " + std::to_string(number), smpCnt));
}

/// Frames of publishers that take turns, after what the capture holds.
/// @param frame  `Bytes frame(unsigned publisher, std::uint16_t turn)`
template <typename MakeFrame>
CaptureBuilder& addTurns(CaptureBuilder& capture, unsigned turns, unsigned publishers,
                         MakeFrame const& frame) {
    for (unsigned turn = 0; turn < turns; ++turn)
        for (unsigned number = 0; number < publishers; ++number)
            capture.add(turn, number, frame(number, static_cast<std::uint16_t>(turn)));
    return capture;
}

[[nodiscard]] inline Bytes gooseCapture(unsigned turns, unsigned publishers) {
    CaptureBuilder capture;
    return addTurns(capture, turns, publishers,
                    [](unsigned number, std::uint16_t turn) { return relayFrame(number, turn); })
        .bytes();
}

[[nodiscard]] inline Bytes svCapture(unsigned turns, unsigned publishers) {
    CaptureBuilder capture;
    return addTurns(
               capture, turns, publishers,
               [](unsigned number, std::uint16_t turn) { return mergingUnitFrame(number, turn); })
        .bytes();
}

/// Two merging units, three relays and other traffic.
[[nodiscard]] inline Bytes mixedCapture(CaptureVariant variant = CaptureVariant::microLittle,
                                        std::uint16_t turns = 30) {
    CaptureBuilder capture(variant);
    for (std::uint16_t turn = 0; turn < turns; ++turn) {
        capture.add(turn, 1, mergingUnitFrame(1, turn));
        capture.add(turn, 2, relayFrame(turn % 3U, turn));
        capture.add(turn, 3, ethernetFrame({}, 0x0800, Bytes(60)));
        capture.add(turn, 4, mergingUnitFrame(2, turn));
    }
    return capture.bytes();
}

/// Elements in elements, each with one after it, so that every level is come back to.
[[nodiscard]] inline Bytes nestedWithSiblings(unsigned levels) {
    Bytes inside;
    for (unsigned level = 0; level < levels; ++level)
        inside = ber(0xA2, concat({inside, ber(0x61, {})}));
    return inside;
}

}  // namespace TalTest
