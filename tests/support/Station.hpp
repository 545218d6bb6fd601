#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "support/CaptureFile.hpp"

namespace TalTest {

/// One stream of the station: what identifies it, and what was written of it.
struct StationStream {
    enum class Protocol { goose, sampledValues };

    Protocol protocol = Protocol::goose;
    std::string destination = {};
    std::string source = {};
    std::optional<std::uint16_t> vlanId = {};
    std::optional<char> hsrLan = {};
    std::optional<char> prpLan = {};
    std::uint16_t appId = 0;
    /// gocbRef, or svID.
    std::string id = {};
    std::string datSet = {};
    /// Of a GOOSE stream.
    std::string goID = {};
    std::uint32_t confRev = 0;
    /// Of an SV stream: ASDUs in a frame, the greatest smpCnt written at the end of a frame, and
    /// smpRate (0 where the stream does not carry it).
    std::uint8_t noASDU = 0;
    std::uint16_t maxSmpCnt = 0;
    std::uint16_t smpRate = 0;

    std::uint64_t packets = 0;
    /// Times of the first and the last packet, in nanoseconds since 1970, and where their records
    /// begin in the capture.
    std::uint64_t firstTime = 0;
    std::uint64_t lastTime = 0;
    std::uint64_t firstPosition = 0;
    std::uint64_t lastPosition = 0;
};

/// What writeStation() wrote.
struct StationSummary {
    /// The streams that have a packet, in the order in which they first appear.
    std::vector<StationStream> streams = {};
    /// Frames that are neither GOOSE nor SV.
    std::uint64_t otherFrames = 0;
    std::uint64_t frames = 0;
    /// The size of the capture in octets.
    std::uint64_t size = 0;

    [[nodiscard]] std::size_t streamCount(StationStream::Protocol protocol) const;
    [[nodiscard]] std::uint64_t packetCount(StationStream::Protocol protocol) const;
};

/// Writes a capture of `frames` frames as a tap in a station's network sees them, about 16,600 a
/// second: four merging units (9-2LE; one over both LANs of PRP; one with eight ASDUs in a frame),
/// four relays that send GOOSE with its retransmissions (one over an HSR ring), and PTP, ARP and
/// TCP between. A fault occurs after a quarter of a second, and every four seconds from then on.
///
/// The frames depend on nothing but their number, and their times strictly increase, in
/// microseconds too. Whether the writing went well, the stream knows.
StationSummary writeStation(std::ostream& out, CaptureVariant variant, std::uint64_t frames);

}  // namespace TalTest
