#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tools/inspect/OctetString.hpp"
#include "tools/inspect/RawElement.hpp"
#include "tools/inspect/SampleQuality.hpp"
#include "tools/inspect/UtcTime.hpp"

namespace TalIec61850Tools {

/// One channel of one sample, as received: nothing is scaled.
struct ChannelSample {
    std::int32_t value = 0;
    SampleQuality quality;

    friend bool operator==(ChannelSample const&, ChannelSample const&) = default;
};

/// The channels where seqData is made of eight octets each; any other length stays octets, for then
/// the data set is of another make.
using SequenceOfData = std::variant<std::vector<ChannelSample>, OctetString>;

/// One ASDU (IEC 61850-9-2). A field that does not occur whole is not set; one that does not make a
/// value of its type holds its octets.
struct AsduContent {
    /// Index in the frame of its identifier octet (30).
    std::size_t offset = 0;
    std::optional<std::string> svID;
    std::optional<std::string> datSet;
    // Numbers without a sign, whatever their width; one that is not the standard's has a fault.
    std::optional<Readable<std::uint64_t>> smpCnt;    ///< two octets
    std::optional<Readable<std::uint64_t>> confRev;   ///< four octets
    std::optional<Readable<UtcTime>> refrTm;          ///< eight octets
    std::optional<Readable<std::uint64_t>> smpSynch;  ///< one octet
    std::optional<Readable<std::uint64_t>> smpRate;   ///< two octets
    std::optional<SequenceOfData> seqData;
    std::optional<Readable<std::uint64_t>> smpMod;  ///< two octets
    /// Of the clock; eight octets.
    std::optional<OctetString> gmIdentity;
    /// Elements that are none of these fields, in their order: unknown, repeated or damaged ones.
    std::vector<RawElement> others;

    friend bool operator==(AsduContent const&, AsduContent const&) = default;
};

}  // namespace TalIec61850Tools
