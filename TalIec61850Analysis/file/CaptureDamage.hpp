#pragma once

#include <cstdint>

namespace TalIec61850Analysis {

/// What keeps a capture from being read to its end.
enum class CaptureDamageKind {
    /// The file starts like no capture.
    notCapture,
    /// The file ends inside its own header.
    fileHeaderCut,
    /// The file ends inside the header of a record.
    recordHeaderCut,
    /// The file ends inside the octets of a record; also where a header claims too many.
    recordCut,
};

/// Damage in a capture, with its place. What comes before it is read; nothing after it is.
struct CaptureDamage {
    /// What is wrong.
    CaptureDamageKind kind = CaptureDamageKind::notCapture;
    /// Where the header starts that is cut, or the record, in octets from the start of the file.
    std::uint64_t fileOffset = 0;
    /// Of a record that is cut: the octets that its header claims, without the header.
    std::uint32_t claimedSize = 0;
    /// Of a record that is cut: how many of these the file does not hold.
    std::uint64_t missingSize = 0;

    /// Member by member.
    friend bool operator==(CaptureDamage const&, CaptureDamage const&) = default;
};

}  // namespace TalIec61850Analysis
