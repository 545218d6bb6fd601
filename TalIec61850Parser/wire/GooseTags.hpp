#pragma once

// Internal: the identifiers of a goosePdu (IEC 61850-8-1).

#include <TalIec61850Parser/wire/BerReader.hpp>
#include <cstdint>

namespace TalIec61850Parser::wire {

inline constexpr std::uint8_t kGoosePdu = 0x61;

/// The tag numbers of the fields of a goosePdu. The identifier octet is `ber::primitive` of them,
/// and kAllDataTag.
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

/// allData in its usual, constructed form.
inline constexpr std::uint8_t kAllDataTag = ber::constructed(kAllData);

/// The tag numbers of the data choices inside allData (ISO 9506-2). Array and structure are
/// constructed in real frames, all others primitive.
enum DataChoice : std::uint8_t {
    kDataArray = 1,
    kDataStructure = 2,
    kDataBoolean = 3,
    kDataBitString = 4,
    kDataInteger = 5,
    kDataUnsigned = 6,
    kDataFloatingPoint = 7,
    kDataOctetString = 9,
    kDataVisibleString = 10,
    kDataGeneralizedTime = 11,
    kDataBinaryTime = 12,
    kDataBcd = 13,
    kDataBooleanArray = 14,
    kDataObjectId = 15,
    kDataMmsString = 16,
    kDataUtcTime = 17,
};

inline constexpr std::uint8_t kPrimitiveArray = ber::primitive(kDataArray);
inline constexpr std::uint8_t kPrimitiveStructure = ber::primitive(kDataStructure);
inline constexpr std::uint8_t kBoolean = ber::primitive(kDataBoolean);

}  // namespace TalIec61850Parser::wire
