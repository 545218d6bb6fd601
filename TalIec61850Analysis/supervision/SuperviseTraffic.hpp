#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstdint>
#include <optional>
#include <stop_token>

namespace TalIec61850Analysis {

/// How traffic is supervised.
struct SupervisionOptions {
    /// A frame of SV that arrives farther than this from the even course of its stream is a
    /// finding, in nanoseconds; not set for half an interval of its frames.
    std::optional<std::int64_t> jitter;
    /// Whether the samples of SV are read again too, for the qualities of their values and the size
    /// of seqData.
    bool withSamples = false;
    /// Ends supervision soon after a stop is requested; nothing is handed on then.
    std::stop_token stop = {};
};

/// Goes through all streams of an index, and tells what goes wrong in them and in the captures.
///
/// Of SV, the index alone is read, unless samples are wanted; the messages of GOOSE are read again
/// from their captures, and so are all frames of sources that came over both ways of HSR or PRP.
/// Where more than a hundred findings of one kind begin within a second of one stream, they are
/// made one. Memory grows with streams and findings, not with packets.
/// @param index    of captures that are still there
/// @param options  what is looked at, and how closely
/// @param sink     called with each finding, in the order of their times, when all are known
/// @throws std::system_error  a capture cannot be read again
TALIEC61850ANALYSIS_EXPORT void superviseTraffic(TrafficIndex const& index,
                                                 SupervisionOptions const& options,
                                                 FindingSink sink);

}  // namespace TalIec61850Analysis
