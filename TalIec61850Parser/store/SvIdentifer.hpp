#pragma once

#include <TalIec61850Parser/store/HsrInfo.hpp>
#include <TalIec61850Parser/store/PrpInfo.hpp>
#include <TalIec61850Parser/store/VlanInfo.hpp>
#include <cstdint>
#include <optional>
#include <string>

namespace TalIec61850 {

/// What identifies a Sampled Values stream (IEC 61850-9-2).
///
/// In the store it is the constant part of an `Sv` record. In `Filter::svFilters` it is a
/// criterion: a member that is set must be met, a member that is not set admits any value.
/// Mind `appId`: it is set from the start, so a filter entry for any APPID must reset it.
struct SvIdentifer {
    /// The source address: six lower-case hexadecimal pairs joined by colons.
    std::optional<std::string> srcMac;
    /// Filled by nothing, part of no comparison.
    std::optional<std::string> spareText;
    /// Set when the frame carries an 802.1Q tag. As a criterion, its `vlanId` counts.
    std::optional<VlanInfo> vlan;
    /// Set when the frame carries an HSR tag. As a criterion, its `lanId` counts.
    std::optional<HsrInfo> hsr;
    /// Set when the frame carries a PRP trailer. As a criterion, its `lanId` counts.
    std::optional<PrpInfo> prp;
    /// The APPID of the SV header, 16 bits. The default is 0x4000, the first APPID reserved for
    /// Sampled Values.
    std::optional<std::uint64_t> appId = 0x4000;
    /// The destination address, written as `srcMac`, such as 01:0c:cd:04:00:01.
    std::optional<std::string> dstMac;
    /// Bit 0 of the second octet of the Reserved 1 field of the SV header.
    std::optional<std::uint8_t> reserved1Bit0;
    /// The name of the stream, rendered by Asn1Parser::bytesToString. Of several ASDUs in a frame,
    /// that of the last; as a criterion, each of theirs must meet it.
    std::optional<std::string> svID;
    /// The configuration revision. Deliberate: from the first four octets of its element, should it
    /// have more.
    std::optional<std::uint64_t> confRev;
};

}  // namespace TalIec61850

namespace TalIec61850Parser {
using TalIec61850::SvIdentifer;
}  // namespace TalIec61850Parser
