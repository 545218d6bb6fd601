#pragma once

#include <TalIec61850Analysis/events/GooseEvent.hpp>
#include <string>

namespace TalIec61850Tools {

/// The first intervals between the messages of a state as a small drawing (svg), which needs no
/// script: a point for each, higher by as much for each tenfold time.
/// @return empty where there is none
[[nodiscard]] std::string retransmissionCurve(TalIec61850Analysis::GooseEvent const& event);

}  // namespace TalIec61850Tools
