#pragma once

#include <cstdint>
#include <optional>

namespace TalIec61850 {

/// The IEEE 802.1Q tag of a stream. The parsers fill `vlanId` alone.
struct VlanInfo {
    std::optional<std::uint8_t> priority;
    std::optional<std::uint8_t> dei;
    /// The 12-bit VLAN identifier; 0 for a tag that carries a priority only.
    std::optional<std::uint16_t> vlanId;
};

}  // namespace TalIec61850

namespace TalIec61850Parser {
using TalIec61850::VlanInfo;
}  // namespace TalIec61850Parser
