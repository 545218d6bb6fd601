#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/inspect/Quality.hpp"
#include "tools/inspect/SampleQuality.hpp"

namespace TalIec61850Tools {

[[nodiscard]] std::string_view toText(Validity validity);
[[nodiscard]] std::string_view toText(Source source);

/// The names of the flags that are set, in their order; "substituted" for the source.
[[nodiscard]] std::vector<std::string_view> setFlags(Quality const& quality);

/// "good", or "questionable, oldData, test".
[[nodiscard]] std::string toText(Quality const& quality);

/// As that of a Quality, with "derived" at the end where it is set.
[[nodiscard]] std::string toText(SampleQuality const& quality);

}  // namespace TalIec61850Tools
