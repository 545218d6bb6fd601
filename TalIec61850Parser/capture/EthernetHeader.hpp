#pragma once

#include <cstdint>

namespace TalIec61850Parser {

/// The decoded link-layer header of one frame (IEEE 802.3, 802.1Q, IEC 62439-3).
struct EthernetHeader {
    /// The destination address, octets in the order of the frame.
    std::uint8_t dstMac[6] = {};
    /// The source address, octets in the order of the frame.
    std::uint8_t srcMac[6] = {};
    /// The EtherType of the payload, after a VLAN and an HSR tag.
    std::uint16_t etherType = 0;
    /// The 12-bit VLAN identifier; 0 when untagged.
    std::uint16_t vlanId = 0;
    /// Whether the frame carries an 802.1Q tag.
    bool hasVlan = false;
    /// Whether the frame carries an HSR tag.
    bool hasHsr = false;
    /// Whether the octets that the frame was read from end in a PRP trailer.
    bool hasPrp = false;
    /// 'A' or 'B'; 0 without an HSR tag.
    char hsrLan = 0;
    /// 'A' or 'B'; 0 without a PRP trailer.
    char prpLan = 0;
};

}  // namespace TalIec61850Parser
