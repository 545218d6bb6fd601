#pragma once

// Internal: the identifiers of a savPdu (IEC 61850-9-2).

#include <TalIec61850Parser/wire/BerReader.hpp>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Parser::wire {

inline constexpr std::uint8_t kSavPdu = 0x60;
inline constexpr std::uint8_t kSequenceOfAsdu = 0xA2;
inline constexpr std::uint8_t kAsdu = ber::kSequence;

/// The tag numbers of the fields outside every ASDU. The identifier octet is `ber::primitive` of
/// them.
inline constexpr std::uint8_t kNoAsdu = 0;
inline constexpr std::uint8_t kSecurity = 1;

/// The tag numbers of the fields of an ASDU. The identifier octet is `ber::primitive` of them.
enum AsduField : std::uint8_t {
    kSvID = 0,
    kAsduDatSet = 1,
    kSmpCnt = 2,
    kAsduConfRev = 3,
    kRefrTm = 4,
    kSmpSynch = 5,
    kSmpRate = 6,
    kSeqData = 7,
    kSmpMod = 8,
    kGmIdentity = 9,
};

/// A channel of the usual data set in seqData: a value of four octets, its quality in four more.
inline constexpr std::size_t kSampleSize = 8;

}  // namespace TalIec61850Parser::wire
