#pragma once

// The events of a station, in words of the tests.

#include <TalIec61850Analysis/events/FindEvents.hpp>
#include <string>
#include <vector>

#include "support/FaultyStation.hpp"

namespace TalTest {

/// The events of captures.
[[nodiscard]] std::vector<TalIec61850Analysis::GooseEvent> eventsIn(
    std::vector<Bytes> const& captures, TalIec61850Analysis::EventOptions const& options = {});

/// A line for each event, in their order: `R1 #20 5->6 after #19: 1 true->false`. Stream, number of
/// the frame, states, `restart` where it is one, number of the frame before, and what changed, by
/// index from 0; `cut` or `absent` where that is not known, `all` where it is all values.
[[nodiscard]] std::vector<std::string> eventLines(
    FaultyStation& station, TalIec61850Analysis::EventOptions const& options = {});

/// The same of captures that are made already, by the frames of the station.
[[nodiscard]] std::vector<std::string> eventLines(
    std::vector<Bytes> const& captures, FaultyStation const& station,
    TalIec61850Analysis::EventOptions const& options = {});

/// What changed, as above.
[[nodiscard]] std::string changesLine(
    std::vector<TalIec61850Analysis::MemberChange> const& changes);

using Lines = std::vector<std::string>;

}  // namespace TalTest
