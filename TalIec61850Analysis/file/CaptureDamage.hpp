#pragma once

#include <cstdint>

namespace TalIec61850Analysis {

/// What is wrong with a capture. The first group ends its reading; what the second one tells of is
/// passed over, and the rest is read.
enum class CaptureDamageKind {
    /// The file starts like no capture.
    notCapture,
    /// The file ends inside its own header.
    fileHeaderCut,
    /// The file ends inside the header of a record, or of a block.
    recordHeaderCut,
    /// The file ends inside the octets of a record or block; also where a header claims too many.
    recordCut,
    /// The file became shorter while it was read: it ends at the offset told.
    fileShrank,
    /// The length of a block is too small for any, or no multiple of four.
    blockLength,
    /// The block that starts a section tells no byte order.
    byteOrder,

    /// The file has all octets of a record or block, but these are more than 2 MiB, as no frame
    /// has.
    recordTooLong,
    /// The two lengths of a block, before and after its body, differ. The first one is believed.
    blockLengthsDiffer,
    /// A block is too short for what its type always has.
    blockTooShort,
    /// A block has fewer octets of its frame than it says.
    frameTooLong,
    /// A packet or statistics of an interface that has not been described, or not legibly.
    unknownInterface,
    /// More interfaces than are kept: 16384 in a file.
    tooManyInterfaces,
    /// A section of another version than 1; its blocks are passed over.
    unknownVersion,
    /// A section says that it has more octets than there are up to the end of the file, or to the
    /// next section.
    sectionCut,
    /// An option is cut off by the end of its block.
    optionCut,
    /// Units of time finer than 10^-19 s or 2^-63 s: the records of the interface have no time.
    timeResolution,
    /// A time before 1970, or too late for nanoseconds in 63 bits: the record has no time.
    timeOutOfRange,
};

/// Damage in a capture, with its place.
struct CaptureDamage {
    /// What is wrong.
    CaptureDamageKind kind = CaptureDamageKind::notCapture;
    /// Where the header starts that is cut, or the record or block that is damaged, in octets from
    /// the start of the file.
    std::uint64_t fileOffset = 0;
    /// Of a record that is cut or too long: the octets that its header claims, without the header.
    /// Of a block or a section, all that it claims.
    std::uint64_t claimedSize = 0;
    /// Of a record, block or section that is cut: how many of these the file does not hold.
    std::uint64_t missingSize = 0;

    /// Member by member.
    friend bool operator==(CaptureDamage const&, CaptureDamage const&) = default;
};

}  // namespace TalIec61850Analysis
