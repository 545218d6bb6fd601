#pragma once

#include <TalIec61850Analysis/packet/Sink.hpp>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Analysis {

/// What can be wrong with an element of a frame.
enum class FaultKind : std::uint8_t {
    headerCut,         ///< the frame ends inside its header
    notThere,          ///< the expected element does not start here
    pastCapture,       ///< runs past the captured octets: a snapped frame, or a wrong length
    pastParent,        ///< runs past the element that it is in
    indefiniteLength,  ///< a length in the indefinite form
    longLength,        ///< a length that takes more than four octets
    longIdentifier,    ///< an identifier of several octets
    tooDeep,           ///< nested deeper than is read
    repeated,          ///< a field that was there before
    wrongLength,       ///< a length that its kind does not have
    wrongContent,      ///< octets that make no value of its kind
    tooWide,           ///< a number that takes more than 64 bits
    tooLong,           ///< what follows is beyond the octets that are read
    negative,          ///< a number with the sign bit set where none is negative
};

/// One thing that is wrong with a packet, and where.
struct Fault {
    /// Index in the frame of the element's identifier octet.
    std::size_t offset = 0;
    /// What is wrong.
    FaultKind kind = FaultKind::notThere;

    /// Member by member.
    friend bool operator==(Fault const&, Fault const&) = default;
};

/// Faults, front to back.
using Faults = std::vector<Fault>;

/// Takes faults without a list of them.
using FaultSink = Sink<Fault>;

}  // namespace TalIec61850Analysis
