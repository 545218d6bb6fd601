#pragma once

#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <cstdint>
#include <optional>
#include <span>

namespace TalIec61850Analysis {

/// The header of one record of a capture file, and where it is.
struct CaptureRecord {
    /// Offset in the file, in octets, of the record's header, or of the block that holds the frame.
    std::uint64_t fileOffset = 0;
    /// Offset of the frame's first octet in the file, in octets.
    std::uint64_t frameOffset = 0;
    /// When the frame was captured. Not set where the file does not say it, as in a simple packet
    /// block, or says a time before 1970 or after 2262.
    std::optional<CaptureTime> time;
    /// Octets of the frame in the file.
    std::uint32_t capturedSize = 0;
    /// Octets of the frame on the wire, as the header says.
    std::uint32_t originalSize = 0;
    /// What the frame starts with, by the registry of link types: 1 for Ethernet.
    std::uint16_t linkType = 1;
    /// Which of the file's interfaces captured it, by its place in `CaptureFile::interfaces`.
    std::uint32_t interface = 0;
    /// Packets that the interface lost between the one before and this one. Not set where the file
    /// does not say it.
    std::optional<std::uint64_t> dropped;

    /// Member by member.
    friend bool operator==(CaptureRecord const&, CaptureRecord const&) = default;
};

/// A record, and its octets where they have been read to.
struct RecordView {
    /// Where the record is, and what its header says.
    CaptureRecord record;
    /// The captured octets; valid as long as the view is.
    std::span<std::uint8_t const> frame;
};

}  // namespace TalIec61850Analysis
