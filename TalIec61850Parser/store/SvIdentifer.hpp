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
    /// Six lower-case hexadecimal pairs joined by colons, such as 01:0c:cd:04:00:01.
    std::optional<std::string> srcMac;
    /// Filled by nothing, part of no comparison.
    std::optional<std::string> spareText;
    std::optional<VlanInfo> vlan;
    std::optional<HsrInfo> hsr;
    std::optional<PrpInfo> prp;
    /// The default is 0x4000, the first APPID reserved for Sampled Values.
    std::optional<std::uint64_t> appId = 0x4000;
    std::optional<std::string> dstMac;
    /// Bit 0 of the second octet of the Reserved 1 field of the SV header.
    std::optional<std::uint8_t> reserved1Bit0;
    /// Of several ASDUs in a frame, that of the last; as a criterion, each of theirs must meet it.
    /// Printable text as it stands, anything else as in Asn1Parser::bytesToString.
    std::optional<std::string> svID;
    /// Deliberate: from the first four octets of its element, should it have more.
    std::optional<std::uint64_t> confRev;
};

}  // namespace TalIec61850

namespace TalIec61850Parser {
using TalIec61850::SvIdentifer;
}  // namespace TalIec61850Parser
