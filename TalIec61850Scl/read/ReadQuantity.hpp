#pragma once

// Internal: the unit and scale of values of a data object.

#include <TalIec61850Scl/model/DataSet.hpp>
#include <TalIec61850Scl/read/NamedChildren.hpp>
#include <TalIec61850Scl/read/TypeTable.hpp>
#include <optional>
#include <string>

namespace TalIec61850Scl::detail {

/// What values of a data object are in.
struct Quantity {
    /// With its multiplier; empty where there is none.
    std::string unit;
    /// Of integers.
    std::optional<MemberScale> scale;
};

/// Which of the values of a data object.
enum class QuantityPart : std::uint8_t {
    value,  ///< units, and magSVC or else sVC
    angle,  ///< angUnits and angSVC
};

/// Reads what a data object says of its values: at its instance, else in its type.
/// @param type      a DOType
/// @param instance  DOI or SDI; may be none
[[nodiscard]] Quantity readQuantity(TypeTable& types, NamedChildren& children, TypeNumber type,
                                    Element instance, QuantityPart part);

}  // namespace TalIec61850Scl::detail
