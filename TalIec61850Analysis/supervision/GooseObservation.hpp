#pragma once

// Internal: what supervision is told of a GOOSE message.

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/supervision/RedundancyNumber.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstdint>
#include <optional>
#include <string_view>

namespace TalIec61850Analysis::detail {

/// What a message says besides its counters. Views hold until the next message.
struct GooseContent {
    /// Milliseconds.
    std::optional<std::int64_t> timeAllowedtoLive;
    std::optional<std::string_view> datSet;
    std::optional<std::int64_t> confRev;
    std::optional<UtcTime> t;
    /// FALSE where the message leaves it out; not set where it cannot be read.
    std::optional<bool> simulation;
    std::optional<bool> ndsCom;
    std::optional<std::int64_t> numDatSetEntries;
    /// The octets of the members.
    std::optional<Octets> allData;
};

/// One message.
struct GooseObservation {
    /// In nanoseconds, or kNoTime.
    std::int64_t arrival = kNoTime;
    /// Handed back with findings, and not looked into.
    PacketRef packet;
    /// Where `isCounted`.
    std::uint32_t stNum = 0;
    std::uint32_t sqNum = 0;
    /// Packets of several ways to the capture (LANs, lanes, taps) need not keep to one order.
    std::uint16_t way = 0;
    /// The sequence number of HSR or PRP; kNoSequence without one.
    std::int32_t sequence = kNoSequence;
    /// Whether there are stNum and sqNum.
    bool isCounted = true;
    /// The simulated bit of the application header.
    bool isSimulated = false;
    /// Whether the content is that of the message that was told before.
    bool isSame = false;
    /// Null where it was cut off.
    GooseContent const* content = nullptr;
};

}  // namespace TalIec61850Analysis::detail
