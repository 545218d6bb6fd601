#pragma once

#include "tools/commands/WantedSamples.hpp"

namespace TalIec61850Tools {

/// Says on standard error, with the place of a second one's first packet, which svIDs are sent by
/// several sources: each of these is a stream, and mostly a mistake.
void noteTwoPublishers(WantedSamples const& samples);

/// Says on standard error which samples of a stream stay raw counts, though scaled ones are wanted.
void noteNoScale(WantedStream const& stream);

}  // namespace TalIec61850Tools
