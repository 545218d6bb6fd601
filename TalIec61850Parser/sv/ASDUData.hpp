#pragma once

#include <TalIec61850Parser/sv/SampleData.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace TalIec61850Parser {

/// One decoded ASDU of a savPdu (IEC 61850-9-2). An element that does not occur, or not in
/// the width said here, leaves its field as it was.
struct ASDUData {
    /// The names, octet for octet; deliberate: not rendered as the stream's svID is.
    std::string svID;
    std::string datSet;
    /// Two octets.
    std::uint16_t smpCnt = 0;
    /// Four octets.
    std::uint32_t confRev = 0;
    /// As received, normally eight octets of UtcTime.
    std::vector<std::uint8_t> refrTm;
    /// One octet.
    std::uint8_t smpSynch = 0;
    /// Two octets.
    std::uint16_t smpRate = 0;
    /// One entry for every whole eight octets of seqData.
    std::vector<SampleData> samples;
};

}  // namespace TalIec61850Parser
