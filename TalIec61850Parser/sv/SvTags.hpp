#pragma once

// Internal: the identifiers of a savPdu (IEC 61850-9-2).

#include <cstdint>

namespace TalIec61850Parser::detail {

inline constexpr std::uint8_t kSavPdu = 0x60;
inline constexpr std::uint8_t kSequenceOfAsdu = 0xA2;

/// The tag number of noASDU, outside every ASDU.
inline constexpr std::uint8_t kNoAsdu = 0;

/// The tag numbers of the fields of an ASDU.
enum AsduField : std::uint8_t {
    kSvID = 0,
    kAsduDatSet = 1,
    kSmpCnt = 2,
    kAsduConfRev = 3,
    kRefrTm = 4,
    kSmpSynch = 5,
    kSmpRate = 6,
    kSeqData = 7,
};

}  // namespace TalIec61850Parser::detail
