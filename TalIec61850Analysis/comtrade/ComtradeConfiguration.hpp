#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeRecord.hpp>
#include <string>

namespace TalIec61850Analysis {

/// The text of a record's configuration file (cfg), in ASCII, lines ending with CR LF. Times are
/// UTC. Numbers have as many digits as it takes to read them back, whatever the locale.
/// @param record  one for which `brokenLimit` is not set
/// @throws std::invalid_argument  the record cannot be written
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::string comtradeConfiguration(
    ComtradeRecord const& record);

}  // namespace TalIec61850Analysis
