#pragma once

#include <TalIec61850Analysis/file/CaptureDamage.hpp>
#include <TalIec61850Analysis/file/CaptureFormat.hpp>
#include <TalIec61850Analysis/file/CaptureInterface.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace TalIec61850Analysis {

/// Why a frame that is GOOSE or SV by its EtherType is of no stream.
enum class UnreadReason : std::uint8_t {
    headerCut,     ///< the frame ends inside its application header
    cut,           ///< a snap length cut it before the end of what tells its stream
    noPdu,         ///< no goosePdu or savPdu is after the header
    pduPastFrame,  ///< the PDU claims more octets than the frame has
    noName,        ///< there is no gocbRef, or an ASDU has no svID
    noAsdu,        ///< there is no ASDU
};

/// A frame that is GOOSE or SV by its EtherType, and is not read, or not in full.
struct UnreadFrame {
    /// Offset of the frame in the file, in octets.
    std::uint64_t frameOffset = 0;
    /// When it was captured, if the file says so.
    std::optional<CaptureTime> time;
    /// By the EtherType.
    StreamProtocol protocol = StreamProtocol::goose;
    /// Why it is not read. With `noName`, an SV frame may have other ASDUs that are of streams.
    UnreadReason reason = UnreadReason::headerCut;

    /// Member by member.
    friend bool operator==(UnreadFrame const&, UnreadFrame const&) = default;
};

/// What one capture file holds, frames of all kinds included.
struct CaptureSummary {
    /// As it was given.
    std::string path;
    /// Octets of the file.
    std::uint64_t fileSize = 0;
    /// Where reading began, in octets from the start of the file: not 0 where TrafficFollower went
    /// on in a file that has grown. What is counted below is of what was read.
    std::uint64_t startOffset = 0;
    /// How the file is written.
    CaptureFormat format = CaptureFormat::classic;
    /// What the file says of the interfaces that its records come from.
    std::vector<CaptureInterface> interfaces;
    /// Whole records; one that the file ends inside is none of them.
    std::uint64_t records = 0;
    /// Octets of frames that were captured.
    std::uint64_t capturedOctets = 0;
    /// Octets of the same frames on the wire.
    std::uint64_t originalOctets = 0;
    /// The earliest time of all records.
    std::optional<CaptureTime> first;
    /// The latest time of all records.
    std::optional<CaptureTime> last;
    /// Frames that were cut by a snap length.
    std::uint64_t snappedFrames = 0;
    /// Packets that the capture lost by the counts at its records; not set where none has one. The
    /// interfaces have counts of their own.
    std::optional<std::uint64_t> dropped;

    /// GOOSE frames by their EtherType, those of no stream included.
    std::uint64_t gooseFrames = 0;
    /// SV frames by their EtherType, those of no stream included.
    std::uint64_t svFrames = 0;
    /// Of both: frames with octets after the PDU that are neither zeros nor a PRP trailer, such as
    /// a signature. Frames that were cut by a snap length are not among them.
    std::uint64_t unknownTrailers = 0;
    /// Other frames by EtherType, that after VLAN and HSR tags; 0 for those with a length in its
    /// place (IEEE 802.3), and for those too short for one.
    std::map<std::uint16_t, std::uint64_t> otherFrames;
    /// Of these: GOOSE over UDP, which is only recognised.
    std::uint64_t routableGooseFrames = 0;
    /// Of these: SV over UDP, which is only recognised.
    std::uint64_t routableSvFrames = 0;
    /// Of these: segments to or from TCP port 102, which MMS has; they are only recognised.
    std::uint64_t mmsFrames = 0;
    /// How many of `routableGooseFrames`, `routableSvFrames` and `mmsFrames` together came over
    /// IPv6; the rest came over IPv4.
    std::uint64_t recognisedIpv6Frames = 0;
    /// Frames by the number of their link type.
    std::map<std::uint16_t, std::uint64_t> linkTypes;
    /// GOOSE and SV frames of no stream.
    std::vector<UnreadFrame> unread;

    /// The damage that ended the file.
    std::optional<CaptureDamage> damage;
    /// All that is wrong with the file, in its order: the first hundred of `damageCount`.
    std::vector<CaptureDamage> damages;
    /// How often damage was met.
    std::uint64_t damageCount = 0;
    /// What the operating system says where the file cannot be opened, or be read to its end. What
    /// was read before that is in the index.
    std::error_code error;
    /// Whether indexing was stopped before the end of the file.
    bool stopped = false;

    /// Member by member.
    friend bool operator==(CaptureSummary const&, CaptureSummary const&) = default;
};

}  // namespace TalIec61850Analysis
