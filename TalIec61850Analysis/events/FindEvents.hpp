#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/events/GooseEvent.hpp>
#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <chrono>
#include <functional>
#include <stop_token>

namespace TalIec61850Analysis {

/// Which events are found.
struct EventOptions {
    /// Which streams are looked at; all of GOOSE where it is empty. Others are not asked about, and
    /// are no next stream either.
    std::function<bool(StreamKey const&)> takes = {};
    /// When the events come. What came before tells what has changed; retransmissions, and the next
    /// event of another stream, may come after. Events without a time are in none but a window
    /// without ends.
    TimeWindow window = {};
    /// How long after an event another stream may change to be its next one.
    std::chrono::nanoseconds nextWithin = std::chrono::seconds(1);
    /// Ends soon after a stop is requested, also by the sink; what was handed on until then holds.
    std::stop_token stop = {};
};

/// Finds the state changes of all GOOSE streams of an index.
///
/// A message begins a new state where its stNum is later than that of the newest message of its
/// stream, or where its counters begin anew: stNum falls to 1 and goes on from there, or falls
/// after the time allowed to live. The first message of a stream, late ones and those that were
/// sent again are no events; copies, duplicates and what another tap has too count once. A message
/// without stNum or sqNum, or with one of more than 32 bits, is passed over.
///
/// The index tells which messages are events. These alone are read again, each with the one before
/// it. Memory grows with streams and events, not with packets; values are kept of one event at a
/// time. All captures are taken to have one clock: alignClocks sees to that.
/// @param index    of captures that are still there
/// @param options  which events are wanted
/// @param sink     called with each, in the order of arrival over all files; those of one time in
///                 the order of the streams, those without a time last
/// @throws std::system_error  a capture cannot be read again, or is another one now
TALIEC61850ANALYSIS_EXPORT void findEvents(TrafficIndex const& index, EventOptions const& options,
                                           EventSink sink);

}  // namespace TalIec61850Analysis
