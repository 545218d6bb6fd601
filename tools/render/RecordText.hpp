#pragma once

#include <TalIec61850Analysis/comtrade/ComtradeLimit.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeRecord.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeRows.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Tools {

/// What a header file says besides what its record says.
struct RecordRemarks {
    /// The captures.
    std::vector<std::string> files;
    /// What the samples of each stream are taken for.
    std::vector<std::string> layouts;
    /// The rate, and what tells it.
    std::string rate;
    /// Where the times of rows come from.
    std::string times;
    /// How many rows have no sample, of how many.
    std::string missing;
    /// Where scales and names come from.
    std::string scales;
    /// Where digital channels come from; empty where there are none.
    std::string digitals;
};

/// What a record is, in words for people: its header file, lines ended by a line end.
/// @param losses  one for each analog channel; empty before it is known
[[nodiscard]] std::string recordText(TalIec61850Analysis::ComtradeRecord const& record,
                                     RecordRemarks const& remarks,
                                     std::span<TalIec61850Analysis::ComtradeLosses const> losses);

/// What samples lost in the format of the record; empty where they lost nothing.
[[nodiscard]] std::string lossesText(TalIec61850Analysis::ComtradeRecord const& record,
                                     std::span<TalIec61850Analysis::ComtradeLosses const> losses);

/// Why a record cannot be written.
[[nodiscard]] std::string_view toText(TalIec61850Analysis::ComtradeLimit limit);

}  // namespace TalIec61850Tools
