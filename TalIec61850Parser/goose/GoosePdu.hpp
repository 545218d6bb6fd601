#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace TalIec61850Parser {

/// The fields of one goosePdu (IEC 61850-8-1) as texts for display, and its data as octets. A field
/// that does not occur in the PDU is empty.
struct GoosePdu {
    /// The reference of the control block, rendered as the other names by
    /// Asn1Parser::bytesToString.
    std::string gocbRef;
    /// Milliseconds, in decimal.
    std::string timeAllowedToLive;
    /// The reference of the data set.
    std::string datSet;
    /// The identifier that the publisher gave the stream.
    std::string goID;
    /// As in Asn1Parser::convertGooseTimestampToDateTime.
    std::string t;
    /// Deliberate: from the first octet only.
    std::string stNum;
    /// Deliberate: from the first two octets only, and 0 where there is a single one.
    std::string sqNum;
    /// "true" or "false".
    std::string simulation;
    /// The configuration revision, in decimal, from the first four octets.
    std::string confRev;
    /// "true" or "false".
    std::string ndsCom;
    /// Deliberate: from the first octet only.
    std::string numDatSetEntries;
    /// The content of allData, undecoded.
    std::vector<std::uint8_t> allData;
};

}  // namespace TalIec61850Parser
