#pragma once

#include <cstdint>
#include <optional>

namespace TalIec61850 {

/// The PRP trailer of a stream (IEC 62439-3). The parsers fill `lanId` alone.
struct PrpInfo {
    /// The sequence number; room for the caller.
    std::optional<std::uint16_t> sequenceNumber;
    /// The network the frame came over, 'A' or 'B'.
    std::optional<char> lanId;
    /// The size field, 12 bits; room for the caller.
    std::optional<std::uint16_t> lsduSize;
};

}  // namespace TalIec61850

namespace TalIec61850Parser {
using TalIec61850::PrpInfo;
}  // namespace TalIec61850Parser
