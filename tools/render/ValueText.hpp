#pragma once

#include <TalIec61850Analysis/packet/BinaryTime.hpp>
#include <TalIec61850Analysis/packet/BitString.hpp>
#include <TalIec61850Analysis/packet/DataKind.hpp>
#include <TalIec61850Analysis/packet/ObjectId.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <cstdint>
#include <string>
#include <string_view>

#include "tools/render/AddressText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::BinaryTime;
using TalIec61850Analysis::BitString;
using TalIec61850Analysis::DataKind;
using TalIec61850Analysis::ObjectId;
using TalIec61850Analysis::OctetString;
using TalIec61850Analysis::UtcTime;

/// Lower-case hexadecimal digits, two for each octet, nothing between them.
[[nodiscard]] std::string toHex(OctetString const& octets);

/// The bits as 0 and 1.
[[nodiscard]] std::string toText(BitString const& bits);

/// Two bits read as a double point position: intermediate-state, off, on or bad-state. Empty for
/// any other number of bits.
[[nodiscard]] std::string_view dbposReading(BitString const& bits);

/// 1.3.6.1
[[nodiscard]] std::string toText(ObjectId const& id);

/// The name of a kind in the protocol: "bit-string", "unsigned", "utc-time".
[[nodiscard]] std::string_view toText(DataKind kind);

/// What a smpSynch says: none, local, global, "clock 17" for 5 to 254, or reserved.
[[nodiscard]] std::string smpSynchText(std::uint64_t smpSynch);

/// What a smpMod says: samplesPerPeriod, samplesPerSecond, secondsPerSample, or reserved.
[[nodiscard]] std::string_view smpModText(std::uint64_t smpMod);

/// The time as 2023-11-14T22:13:20.123456789Z.
[[nodiscard]] std::string toIsoText(UtcTime const& time);

/// 1984-01-02T00:00:00.001Z, or 00:00:00.001 without a date. Milliseconds of more than a day are
/// carried over into the date, or else count hours beyond 23.
[[nodiscard]] std::string toIsoText(BinaryTime const& time);

}  // namespace TalIec61850Tools
