#pragma once

#include <TalIec61850Parser/store/HsrInfo.hpp>
#include <TalIec61850Parser/store/PrpInfo.hpp>
#include <TalIec61850Parser/store/VlanInfo.hpp>
#include <cstdint>
#include <optional>
#include <string>

namespace TalIec61850 {

/// What identifies a GOOSE stream (IEC 61850-8-1).
///
/// In the store it is the constant part of a `Goose` record. In `Filter::gooseFilters` it is a
/// criterion: a member that is set must be met, a member that is not set admits any value.
struct GooseIdentifer {
    /// The source address: six lower-case hexadecimal pairs joined by colons.
    std::optional<std::string> srcMac;
    /// The destination address, likewise, such as 01:0c:cd:01:00:01.
    std::optional<std::string> dstMac;
    /// Set when the frame carries an 802.1Q tag. As a criterion, its `vlanId` counts.
    std::optional<VlanInfo> vlan;
    /// Set when the frame carries an HSR tag. As a criterion, its `lanId` counts.
    std::optional<HsrInfo> hsr;
    /// Set when the frame carries a PRP trailer. As a criterion, its `lanId` counts.
    std::optional<PrpInfo> prp;
    /// The APPID of the GOOSE header, 16 bits.
    std::optional<std::uint64_t> appId;
    /// Bit 0 of the second octet of the Reserved 1 field of the GOOSE header.
    std::optional<std::uint8_t> reserved1Bit0;
    /// The reference of the control block, rendered as the other names by
    /// Asn1Parser::bytesToString.
    std::optional<std::string> gocbRef;
    /// The reference of the data set; not set when the frame carries it empty.
    std::optional<std::string> datSet;
    /// The identifier that the publisher gave the stream; not set when the frame carries it empty.
    std::optional<std::string> goID;
    /// True when the frame carries the simulation element at all, whatever the element says.
    std::optional<bool> simulation;
    /// The configuration revision. Deliberate: from the first four octets of its element, should it
    /// have more.
    std::optional<std::uint64_t> confRev;
};

}  // namespace TalIec61850

namespace TalIec61850Parser {
using TalIec61850::GooseIdentifer;
}  // namespace TalIec61850Parser
