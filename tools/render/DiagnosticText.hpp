#pragma once

#include <TalIec61850Scl/model/StationDescription.hpp>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// A diagnostic on a line, safe for a terminal: "station.scd:123: MissingDOType: POS_1".
/// @param files  those of the description
[[nodiscard]] std::string diagnosticText(TalIec61850Scl::Diagnostic const& diagnostic,
                                         std::vector<std::string> const& files);

/// What is wrong with a description, one line for each of the first diagnostics, and one for how
/// many more there are. Files that are no description at all are left out.
[[nodiscard]] std::vector<std::string> diagnosticTexts(
    TalIec61850Scl::StationDescription const& station);

}  // namespace TalIec61850Tools
