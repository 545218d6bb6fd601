#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Analysis {

/// The kinds of values in a data set, by their tags (ISO 9506-2, Data).
enum class DataKind : std::uint8_t {
    array,           ///< A1
    structure,       ///< A2
    boolean,         ///< 83
    bitString,       ///< 84
    integer,         ///< 85
    unsignedNumber,  ///< 86
    floatingPoint,   ///< 87
    octetString,     ///< 89
    visibleString,   ///< 8A
    binaryTime,      ///< 8C
    bcd,             ///< 8D
    booleanArray,    ///< 8E
    objectId,        ///< 8F
    mmsString,       ///< 90
    utcTime,         ///< 91
    unknown,         ///< any other tag
    unreadable,      ///< octets that make no element: no identifier of one octet and length
};

/// Structures and arrays are read to this depth, values of the data set itself being at depth 1;
/// what is in those at this depth stays octets.
inline constexpr std::size_t kMaxDataDepth = 32;

/// The kind of a value by its identifier octet.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT DataKind kindOf(std::uint8_t tag) noexcept;

}  // namespace TalIec61850Analysis
