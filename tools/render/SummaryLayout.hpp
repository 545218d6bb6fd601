#pragma once

#include <TalIec61850Analysis/supervision/StreamSummary.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// A stream in figures, and what tells it from others.
struct SummaryRow {
    /// Must outlive the row.
    TalIec61850Analysis::StreamKey const* key = nullptr;
    TalIec61850Analysis::StreamSummary summary = {};
};

/// How streams are written in figures. Names and order of the fields are stable; what a stream
/// lacks is null.
///
///     protocol                 text        GOOSE or SV
///     source                   text        MAC address
///     destination              text        MAC address
///     vlanId                   integer     of the innermost tag
///     appId                    text        hexadecimal
///     svID                     text        SV
///     gocbRef                  text        GOOSE
///     packets                  integer     copies once
///     firstTime, firstTimeNs               first capture time
///     lastTime, lastTimeNs                 last capture time
///     nominalRate              number      SV, samples a second
///     measuredRate             number      SV, samples a second by smpCnt and arrival
///     lost                     integer     samples or messages that are missing, at least
///     late                     integer     packets that came after later ones
///     repeated                 integer     packets that came again
///     restarts                 integer     how often counters went on elsewhere
///     largestGapNs             integer     the longest time from packet to packet
///     largestGapLost           integer     how many are missing in it
///     jitterP50Ns              integer     SV, distance from the even course: half are at most
///     this jitterP99Ns              integer     99 % are at most this jitterMaxNs integer     the
///     largest smpSynch                 integer     SV, the lowest simulated true/false  whether
///     any packet is timeAllowedtoLiveMargin  number      GOOSE, least of timeAllowedtoLive over
///     the time to the
///                                          next message
///     states                   integer     GOOSE
///     errors, warnings, notes  integer     findings
[[nodiscard]] RowLayout<SummaryRow> summaryLayout();

}  // namespace TalIec61850Tools
