#pragma once

// Internal: the values of a data set that hold no others.

#include "tools/inspect/DataValue.hpp"
#include "tools/inspect/FieldReader.hpp"
#include "tools/inspect/OctetString.hpp"

namespace TalIec61850Tools {

/// Makes the value of its kind of the value octets of an element; octets that make none stay what
/// they are. Arrays and structures are not read.
[[nodiscard]] Reading<DataValue::Content> readContent(DataKind kind, OctetString&& octets);

}  // namespace TalIec61850Tools
