#pragma once

// What supervision finds in a station, by one clock, in words of the tests.

#include <TalIec61850Analysis/supervision/SuperviseTraffic.hpp>
#include <string>
#include <vector>

#include "support/FaultyStation.hpp"

namespace TalTest {

/// A line for each finding, in their order: kind, stream, number of the frame that shows it (`end`
/// without one), and what there is of: `after` the number of the frame before where that is not the
/// one before in its stream, `lost`, `count`, `until` the number of the last frame, and the cause.
/// `!time` where its time is not that of its frame.
[[nodiscard]] std::vector<std::string> foundIn(
    FaultyStation& station, TalIec61850Analysis::SupervisionOptions const& options = {});

/// The same of captures that are made already, by the frames of the station.
[[nodiscard]] std::vector<std::string> foundIn(
    std::vector<Bytes> const& captures, FaultyStation const& station,
    TalIec61850Analysis::SupervisionOptions const& options = {});

/// The findings themselves.
[[nodiscard]] std::vector<TalIec61850Analysis::Finding> findingsIn(
    std::vector<Bytes> const& captures,
    TalIec61850Analysis::SupervisionOptions const& options = {});

/// The streams in figures; findings are given back if wanted.
[[nodiscard]] std::vector<TalIec61850Analysis::StreamSummary> summariesIn(
    std::vector<Bytes> const& captures, TalIec61850Analysis::SupervisionOptions const& options = {},
    std::vector<TalIec61850Analysis::Finding>* findings = nullptr);

/// The name of a kind of finding, as programs read it.
[[nodiscard]] std::string kindName(TalIec61850Analysis::FindingKind kind);

/// One finding in a line.
[[nodiscard]] std::string lineOf(TalIec61850Analysis::Finding const& finding,
                                 FaultyStation const& station);

using Lines = std::vector<std::string>;

}  // namespace TalTest
