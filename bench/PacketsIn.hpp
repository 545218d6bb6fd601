#pragma once

#include <TalIec61850Parser/store/Db.hpp>
#include <cstdint>

namespace TalBench {

/// How many packets the streams of a store count.
[[nodiscard]] inline std::uint64_t packetsIn(TalIec61850Parser::Db const& db) {
    std::uint64_t packets = 0;
    for (auto const& stream : db.gooseProto.streams) {
        packets += stream.packetCount;
    }
    for (auto const& stream : db.svProto.streams) {
        packets += stream.packetCount;
    }
    return packets;
}

}  // namespace TalBench
