#pragma once

#include <functional>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/input/FollowedCaptures.hpp"
#include "tools/options/FollowOptions.hpp"

namespace TalIec61850Tools {

/// How long is waited between two looks at the captures.
enum class FollowPace {
    fast,    ///< packets are listed as they come
    steady,  ///< once a second, for what takes a while to be certain of
};

/// Reads captures on while they are written: hands over what was added, again and again, until
/// nothing was added for as long as the options say. Rows that were written are handed over to the
/// output after each call.
/// @param take  called with what was added, which may be nothing; false ends it
void followCaptures(CommandRun& run, FollowOptions const& options, FollowPace pace,
                    FollowedCaptures& captures,
                    std::function<bool(std::vector<AddedTraffic>&& added)> const& take);

}  // namespace TalIec61850Tools
