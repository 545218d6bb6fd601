#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Tools {

/// What the help says of a field, by the name of the field.
using FieldRemarks = std::map<std::string_view, std::string_view>;

/// The fields of a row in words: "time, timeNs (nanoseconds since 1970), file".
[[nodiscard]] std::string listFields(std::vector<std::string_view> const& names,
                                     FieldRemarks const& remarks);

}  // namespace TalIec61850Tools
