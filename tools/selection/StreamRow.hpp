#pragma once

#include <TalIec61850Parser/store/Db.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/selection/CaptureTime.hpp"

namespace TalIec61850Tools {

enum class Protocol { goose, sv };

/// What is told of one stream: its identity as the store holds it, and figures from its index.
/// What a protocol does not have is not set.
struct StreamRow {
    Protocol protocol = Protocol::goose;
    std::optional<std::string> source;
    std::optional<std::string> destination;
    std::optional<TalIec61850Parser::VlanInfo> vlan;
    /// Tells SV streams apart; of a GOOSE stream this is only what its first packet had.
    std::optional<TalIec61850Parser::HsrInfo> hsr;
    /// Of the stream's first packet; tells no streams apart.
    std::optional<TalIec61850Parser::PrpInfo> prp;
    std::optional<std::uint64_t> appId;
    std::optional<std::uint8_t> reserved1Bit0;
    std::optional<std::string> svID;
    std::optional<std::string> gocbRef;
    std::optional<std::string> datSet;
    std::optional<std::string> goID;
    std::optional<std::uint64_t> confRev;
    /// GOOSE: whether the frames carry the simulation element, be it true or false.
    std::optional<bool> simulationPresent;

    /// Packets in the index, over all files.
    std::uint64_t packets = 0;
    /// Capture files that hold packets of the stream.
    std::uint64_t files = 0;
    /// Packets that have a capture time in the index: those with a position.
    std::uint64_t timedPackets = 0;
    /// The earliest and the latest of those times.
    std::optional<CaptureTime> firstTime;
    std::optional<CaptureTime> lastTime;

    /// The mean rate in 1/s between the first and the last time; none when fewer than two packets
    /// have a time, or no time passes.
    [[nodiscard]] std::optional<double> packetsPerSecond() const;
};

/// One row for each stream of the store: GOOSE before SV, then by destination, APPID, names, and
/// whatever else tells streams apart, so that the order is the same at every run.
[[nodiscard]] std::vector<StreamRow> collectRows(TalIec61850Parser::Db const& db);

}  // namespace TalIec61850Tools
