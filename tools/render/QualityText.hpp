#pragma once

#include <TalIec61850Analysis/packet/Quality.hpp>
#include <TalIec61850Analysis/packet/SampleQuality.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Tools {

using TalIec61850Analysis::Quality;
using TalIec61850Analysis::SampleQuality;
using TalIec61850Analysis::Source;
using TalIec61850Analysis::Validity;

[[nodiscard]] std::string_view toText(Validity validity);
[[nodiscard]] std::string_view toText(Source source);

/// The names of the flags that are set, in their order; "substituted" for the source.
[[nodiscard]] std::vector<std::string_view> setFlags(Quality const& quality);

/// "good", or "questionable, oldData, test".
[[nodiscard]] std::string toText(Quality const& quality);

/// As that of a Quality, with "derived" at the end where it is set.
[[nodiscard]] std::string toText(SampleQuality const& quality);

}  // namespace TalIec61850Tools
