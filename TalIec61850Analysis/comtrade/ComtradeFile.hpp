#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeRecord.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace TalIec61850Analysis {

/// How many octets the data of a record have.
/// @param record  one for which `brokenLimit` is not set
/// @return none for ASCII, where it depends on the samples
/// @throws std::invalid_argument  the record cannot be written
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<std::uint64_t> comtradeDataSize(
    ComtradeRecord const& record);

/// A text for people as the files of a record hold it, as the header file (hdr) does: each line
/// ends with CR LF, also the last one, and control characters but tabs become `_`.
/// @param text  lines may end with CR LF, LF or CR
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::string comtradeText(std::string_view text);

/// What a record in one file (cff) starts with: the sections CFG, INF and HDR, and the header line
/// of the section DAT. What `ComtradeRows` gives follows directly. The edition of 2013 has such
/// files. Three dashes or more in a row become `_`, in names too, since section headers start with
/// them.
/// @param record       one for which `brokenLimit` is not set
/// @param information  the section INF, see `comtradeText`; it may be empty
/// @param header       the section HDR, likewise
/// @throws std::invalid_argument  the record cannot be written, or is of the edition of 1999
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::string comtradeFileHead(ComtradeRecord const& record,
                                                                      std::string_view information,
                                                                      std::string_view header);

}  // namespace TalIec61850Analysis
