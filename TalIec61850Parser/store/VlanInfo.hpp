#pragma once

#include <cstdint>
#include <optional>

namespace TalIec61850 {

/// The IEEE 802.1Q tag of a stream. The parsers fill `vlanId` alone.
struct VlanInfo {
    /// The priority, 3 bits; room for the caller. Part of a stream's identity as `vlanId` is.
    std::optional<std::uint8_t> priority;
    /// The drop eligible indicator, 1 bit; as `priority`.
    std::optional<std::uint8_t> dei;
    /// The 12-bit VLAN identifier; 0 for a tag that carries a priority only.
    std::optional<std::uint16_t> vlanId;
};

}  // namespace TalIec61850

namespace TalIec61850Parser {
using TalIec61850::VlanInfo;
}  // namespace TalIec61850Parser
