#pragma once

#include <TalIec61850Scl/Export.hpp>
#include <cstdint>
#include <string_view>

namespace TalIec61850Scl {

/// The basic types of data attributes (IEC 61850-6, bType).
enum class BasicType : std::uint8_t {
    unknown,          ///< a type that could not be found, or one that is not known here
    boolean,          ///< BOOLEAN
    int8,             ///< INT8
    int16,            ///< INT16
    int24,            ///< INT24
    int32,            ///< INT32
    int64,            ///< INT64
    int128,           ///< INT128
    int8u,            ///< INT8U
    int16u,           ///< INT16U
    int24u,           ///< INT24U
    int32u,           ///< INT32U
    float32,          ///< FLOAT32
    float64,          ///< FLOAT64
    enumerated,       ///< Enum
    dbpos,            ///< Dbpos: two bits
    tcmd,             ///< Tcmd: two bits
    check,            ///< Check: two bits
    quality,          ///< Quality: 13 bits
    timestamp,        ///< Timestamp
    entryTime,        ///< EntryTime
    visibleString,    ///< VisString32 to VisString255
    objectReference,  ///< ObjRef
    currency,         ///< Currency
    unicodeString,    ///< Unicode255
    octetString,      ///< Octet6 to Octet64, EntryID
    bitString,        ///< OptFlds, SvOptFlds, TrgOps and other bits of no fixed meaning here
    structure,        ///< Struct; never the type of a member of a data set
};

/// A basic type by its text, letter for letter; `unknown` where there is none of that name.
[[nodiscard]] TALIEC61850SCL_EXPORT BasicType basicTypeOf(std::string_view bType) noexcept;

}  // namespace TalIec61850Scl
