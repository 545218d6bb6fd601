#pragma once

#include <TalIec61850Analysis/time/CaptureTime.hpp>

namespace TalIec61850Tools {

using TalIec61850Analysis::afterTime;
using TalIec61850Analysis::CaptureTime;
using TalIec61850Analysis::captureTimeOf;
using TalIec61850Analysis::nanosecondsOf;
using TalIec61850Analysis::nanosecondsSince1970;

/// From when to when there are records.
struct CaptureSpan {
    /// The earliest record of all captures.
    CaptureTime begin;
    /// The latest one.
    CaptureTime end;
};

}  // namespace TalIec61850Tools
