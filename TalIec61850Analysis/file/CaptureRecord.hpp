#pragma once

#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <cstdint>

namespace TalIec61850Analysis {

/// The header of one record of a capture file, and where it is.
struct CaptureRecord {
    /// Offset of the record's header in the file, in octets.
    std::uint64_t fileOffset = 0;
    /// Offset of the frame's first octet in the file, in octets.
    std::uint64_t frameOffset = 0;
    /// When the frame was captured.
    CaptureTime time;
    /// Octets of the frame in the file.
    std::uint32_t capturedSize = 0;
    /// Octets of the frame on the wire, as the header says.
    std::uint32_t originalSize = 0;

    /// Member by member.
    friend bool operator==(CaptureRecord const&, CaptureRecord const&) = default;
};

}  // namespace TalIec61850Analysis
