#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/BinaryTime.hpp>
#include <TalIec61850Analysis/packet/BitString.hpp>
#include <TalIec61850Analysis/packet/DataKind.hpp>
#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/ObjectId.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace TalIec61850Analysis {

/// One value of a data set (ISO 9506-2, Data), with those inside it.
struct DataValue {
    /// The values inside a structure or array.
    using Members = std::vector<DataValue>;
    /// All that a value can hold.
    using Content = std::variant<OctetString, bool, BitString, std::int64_t, std::uint64_t, float,
                                 double, std::string, BinaryTime, UtcTime, ObjectId, Members>;

    /// Index in the frame of its identifier octet.
    std::size_t offset = 0;
    /// The identifier octet.
    std::uint8_t tag = 0;
    /// By the tag.
    DataKind kind = DataKind::unknown;
    /// Why the value is not what its kind should hold; mostly it is then octets.
    std::optional<FaultKind> fault;
    /// As in DataView, each in its owning form: OctetString for Octets, Members for DataViews.
    Content value;

    /// Member by member.
    friend bool operator==(DataValue const&, DataValue const&) = default;
};

/// A copy with octets of its own.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT DataValue toOwned(DataView const& view);

/// A copy with octets of its own.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::vector<DataValue> toOwned(DataViews const& views);

}  // namespace TalIec61850Analysis
