#pragma once

#include <TalIec61850Analysis/traffic/CaptureSummary.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// How many frames of a capture are of a protocol.
struct ProtocolCount {
    /// A name where the protocol is known, as "PTP"; the EtherType otherwise, as "0x1234".
    std::string protocol;
    std::uint64_t frames = 0;

    friend bool operator==(ProtocolCount const&, ProtocolCount const&) = default;
};

/// The frames of a capture that are neither GOOSE nor SV, the most frequent first. Each is counted
/// once: routable GOOSE and SV, and MMS, are not counted as IP.
[[nodiscard]] std::vector<ProtocolCount> otherProtocols(
    TalIec61850Analysis::CaptureSummary const& summary);

}  // namespace TalIec61850Tools
