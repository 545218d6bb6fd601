#pragma once

#include <cstdint>

namespace TalIec61850Parser {

/// The decoded link-layer header of one frame (IEEE 802.3, 802.1Q, IEC 62439-3).
struct EthernetHeader {
    std::uint8_t dstMac[6] = {};
    std::uint8_t srcMac[6] = {};
    /// The EtherType of the payload, behind a VLAN and an HSR tag.
    std::uint16_t etherType = 0;
    /// The 12-bit VLAN identifier; 0 when untagged.
    std::uint16_t vlanId = 0;
    bool hasVlan = false;
    bool hasHsr = false;
    bool hasPrp = false;
    /// 'A' or 'B'; 0 without an HSR tag.
    char hsrLan = 0;
    /// 'A' or 'B'; 0 without a PRP trailer.
    char prpLan = 0;
};

}  // namespace TalIec61850Parser
