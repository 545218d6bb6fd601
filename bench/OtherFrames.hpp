#pragma once

#include "bench/Publisher.hpp"

namespace TalBench {

/// What else a station's network carries, none of it GOOSE or SV: 28 senders, of which 20 send TCP
/// segments in frames of 60 to 1500 octets, four ARP requests and four PTP messages.
[[nodiscard]] Publishers otherFrames();

}  // namespace TalBench
