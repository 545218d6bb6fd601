#pragma once

#include <TalIec61850Parser/sv/SampleData.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace TalIec61850Parser {

/// One decoded ASDU of a savPdu (IEC 61850-9-2). An element that does not occur, or not in
/// the width said here, leaves its field as it was.
struct ASDUData {
    /// The name of the stream, octet for octet; deliberate: not rendered as the stream's svID is.
    std::string svID;
    /// The reference of the data set, as `svID`.
    std::string datSet;
    /// The number of the sample, counted by the publisher. Two octets.
    std::uint16_t smpCnt = 0;
    /// The configuration revision. Four octets.
    std::uint32_t confRev = 0;
    /// The reference time as received, normally eight octets of UtcTime.
    std::vector<std::uint8_t> refrTm;
    /// How the publisher's clock is synchronised. One octet.
    std::uint8_t smpSynch = 0;
    /// The sample rate as received; its unit is the publisher's choice. Two octets.
    std::uint16_t smpRate = 0;
    /// One entry for every whole eight octets of seqData.
    std::vector<SampleData> samples;
};

}  // namespace TalIec61850Parser
