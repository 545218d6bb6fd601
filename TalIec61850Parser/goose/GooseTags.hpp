#pragma once

// Internal: the identifiers of a goosePdu (IEC 61850-8-1).

#include <cstdint>

namespace TalIec61850Parser::detail {

inline constexpr std::uint8_t kGoosePdu = 0x61;

/// The tag numbers of the fields of a goosePdu.
enum GooseField : std::uint8_t {
    kGocbRef = 0,
    kTimeAllowedToLive = 1,
    kDatSet = 2,
    kGoID = 3,
    kEventTime = 4,
    kStNum = 5,
    kSqNum = 6,
    kSimulation = 7,
    kConfRev = 8,
    kNdsCom = 9,
    kNumDatSetEntries = 10,
    kAllData = 11,
};

// Data choices inside allData.
inline constexpr std::uint8_t kPrimitiveArray = 0x81;
inline constexpr std::uint8_t kPrimitiveStructure = 0x82;
inline constexpr std::uint8_t kBoolean = 0x83;

}  // namespace TalIec61850Parser::detail
