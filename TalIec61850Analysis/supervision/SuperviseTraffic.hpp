#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/supervision/StreamSummary.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>

namespace TalIec61850Analysis {

/// How traffic is supervised.
struct SupervisionOptions {
    /// Which streams are watched; all where it is empty. Who lost what is missing, and where the
    /// clock of a capture was set, is asked of all streams all the same. Called on one thread.
    std::function<bool(StreamKey const&)> watches = {};
    /// A frame of SV that arrives farther than this from the even course of its stream is a
    /// finding, in nanoseconds; not set for half an interval of its frames.
    std::optional<std::int64_t> jitter = {};
    /// Whether the ASDUs of SV are read again too, for the qualities of their values, the size of
    /// seqData, the clock that they name, and the quality of their times.
    bool withSamples = false;
    /// What the samples of a stream are by their description, so that qualities are where it says;
    /// of samples of another size, and where it gives nothing, that is inferred. Called on one
    /// thread.
    std::function<std::optional<SampleLayout>(StreamKey const&)> layoutOf = {};
    /// How many threads go through streams; 0 for as many as the machine has cores. What is found
    /// does not depend on it.
    std::size_t jobs = 1;
    /// Ends supervision soon after a stop is requested; nothing is handed on then.
    std::stop_token stop = {};
};

/// Goes through the streams of an index, and tells what goes wrong in them and in the captures.
///
/// Of SV, the index alone is read, unless samples are wanted; the messages of GOOSE are read again
/// from their captures, and so are all frames of sources that came over both ways of HSR or PRP.
/// Where more than a hundred findings of one kind begin within a second of one stream, they are
/// made one. Memory grows with streams and findings, not with packets. All captures are taken to
/// have one clock: alignClocks sees to that.
/// @param index    of captures that are still there
/// @param options  what is looked at, and how closely
/// @param sink     called with each finding, in the order of their times, when all are known
/// @throws std::system_error  a capture cannot be read again
TALIEC61850ANALYSIS_EXPORT void superviseTraffic(TrafficIndex const& index,
                                                 SupervisionOptions const& options,
                                                 FindingSink sink);

/// The same, and tells each stream in figures. This takes somewhat longer.
/// @param index      of captures that are still there
/// @param options    what is looked at, and how closely
/// @param sink       called with each finding, in the order of their times, when all are known
/// @param summaries  called after that with each stream that is watched, in the order of the index
/// @throws std::system_error  a capture cannot be read again
TALIEC61850ANALYSIS_EXPORT void superviseTraffic(TrafficIndex const& index,
                                                 SupervisionOptions const& options,
                                                 FindingSink sink, StreamSummarySink summaries);

}  // namespace TalIec61850Analysis
