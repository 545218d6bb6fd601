#pragma once

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/selection/CaptureTime.hpp"
#include "tools/selection/PacketCriteria.hpp"

namespace TalIec61850Tools {

/// What is told of one stream: what tells it from others, its last attributes, and figures.
struct StreamRow {
    Protocol protocol = Protocol::goose;
    std::optional<MacAddress> source;
    std::optional<MacAddress> destination;
    /// Outermost first.
    std::vector<TalIec61850Analysis::VlanKey> vlans;
    std::uint16_t appId = 0;
    std::optional<std::string> svID;
    std::optional<std::string> gocbRef;

    // Of the last packet that tells.
    std::optional<std::string> datSet;
    std::optional<std::string> goID;
    std::optional<TalIec61850Analysis::Readable<std::uint64_t>> confRev;
    std::optional<std::uint32_t> asdusPerFrame;

    /// Whether any packet is simulated.
    bool isSimulated = false;
    /// Samples a second, as the stream itself says, or its smpCnt.
    std::optional<double> nominalRate;
    /// What was published, copies once.
    std::uint64_t packets = 0;
    /// Packets that came again over the other lane or LAN.
    std::uint64_t copies = 0;
    /// Packets over lane A and B of HSR, the first ones and copies.
    std::array<std::uint64_t, 2> overHsr{};
    /// Packets over LAN A and B of PRP, likewise.
    std::array<std::uint64_t, 2> overPrp{};
    /// Capture files that hold packets of the stream.
    std::uint64_t files = 0;
    /// Of `packets`, those that have a capture time.
    std::uint64_t timedPackets = 0;
    /// Of these, those at the earliest time, as all ASDUs of one frame.
    std::uint64_t firstPackets = 0;
    /// The earliest and the latest of those times.
    std::optional<CaptureTime> firstTime;
    std::optional<CaptureTime> lastTime;

    /// What publishes it, by a description that outlives the row; null where it is not known.
    TalIec61850Scl::ControlBlock const* controlBlock = nullptr;

    /// What tells it from others.
    [[nodiscard]] TalIec61850Analysis::StreamKey key() const {
        return {.protocol = protocol,
                .source = source,
                .destination = destination,
                .vlans = vlans,
                .appId = appId,
                .name = name()};
    }

    /// svID or gocbRef.
    [[nodiscard]] std::string const& name() const { return svID ? *svID : *gocbRef; }

    /// The mean rate of packets in 1/s between the first and the last time, the packets at the
    /// first one not counted; none where no time passes.
    [[nodiscard]] std::optional<double> packetsPerSecond() const;
};

/// The earliest and the latest time of packets.
struct PacketTimes {
    CaptureTime first;
    CaptureTime last;
};

/// The times of all these streams together; none where no packet has a time.
template <typename Row>
[[nodiscard]] std::optional<PacketTimes> timesOf(std::vector<Row> const& rows) {
    std::optional<PacketTimes> times;
    for (Row const& row : rows) {
        if (row.firstTime) {
            times = times.value_or(PacketTimes{*row.firstTime, *row.lastTime});
            times->first = std::min(times->first, *row.firstTime);
            times->last = std::max(times->last, *row.lastTime);
        }
    }
    return times;
}

/// One row for each stream of the index of which packets are wanted, with figures of these packets
/// alone. GOOSE comes before SV; then the order is by destination, APPID, name, and whatever else
/// tells streams apart, so that it is the same at every run.
/// @param criteria  where they ask for packets over one way, these are no copies
[[nodiscard]] std::vector<StreamRow> collectRows(TalIec61850Analysis::TrafficIndex const& index,
                                                 PacketCriteria const& criteria = {});

}  // namespace TalIec61850Tools
