#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tools/inspect/BinaryTime.hpp"
#include "tools/inspect/BitString.hpp"
#include "tools/inspect/Fault.hpp"
#include "tools/inspect/OctetString.hpp"
#include "tools/inspect/UtcTime.hpp"

namespace TalIec61850Tools {

/// The kinds of values in a data set, by their tags.
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

/// An object identifier: the numbers of its dotted form.
struct ObjectId {
    std::vector<std::uint64_t> arcs;

    friend bool operator==(ObjectId const&, ObjectId const&) = default;
};

/// One value of a data set (ISO 9506-2, Data), with those inside it.
struct DataValue {
    using Members = std::vector<DataValue>;
    using Content = std::variant<OctetString, bool, BitString, std::int64_t, std::uint64_t, float,
                                 double, std::string, BinaryTime, UtcTime, ObjectId, Members>;

    /// Index in the frame of its identifier octet.
    std::size_t offset = 0;
    /// The identifier octet.
    std::uint8_t tag = 0;
    DataKind kind = DataKind::unknown;
    /// Why the value is not what its kind should hold; mostly it is then octets.
    std::optional<FaultKind> fault;
    /// By the kind:
    ///
    /// - array, structure: Members; OctetString beyond the depth that is read
    /// - boolean: bool
    /// - bitString, booleanArray: BitString
    /// - integer, unsignedNumber, bcd: std::int64_t; std::uint64_t above its range; OctetString
    ///   beyond 64 bits
    /// - floatingPoint: float or double
    /// - octetString, unknown: OctetString
    /// - visibleString, mmsString: std::string, octet for octet
    /// - binaryTime: BinaryTime; utcTime: UtcTime; objectId: ObjectId
    /// - unreadable: OctetString, from the identifier to the end of what the value stands in
    ///
    /// Any kind holds its OctetString where they make no value of it, or are not all there.
    Content value;

    friend bool operator==(DataValue const&, DataValue const&) = default;
};

/// Structures and arrays are read to this depth, values of the data set itself being at depth 1;
/// what stands in those at this depth stays octets.
inline constexpr std::size_t kMaxDataDepth = 32;

/// The kind of a value by its identifier octet.
[[nodiscard]] DataKind kindOf(std::uint8_t tag);

}  // namespace TalIec61850Tools
