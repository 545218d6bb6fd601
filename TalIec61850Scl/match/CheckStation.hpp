#pragma once

#include <TalIec61850Analysis/packet/DataKind.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <TalIec61850Scl/Export.hpp>
#include <TalIec61850Scl/match/MatchStreams.hpp>
#include <TalIec61850Scl/model/BasicType.hpp>
#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <TalIec61850Scl/model/StationDescription.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace TalIec61850Scl {

/// How a control block and the captures agree.
enum class StationResult : std::uint8_t {
    match,       ///< it is there as it is described
    missing,     ///< no stream is its
    differs,     ///< a stream is its, and is not as it is described
    unexpected,  ///< a stream that is not described
};

/// In what a stream and its description differ.
enum class DifferenceKind : std::uint8_t {
    mac,           ///< the destination
    appId,         ///< APPID
    vlanId,        ///< the innermost VLAN; 0, no tag and none described are the same
    vlanPriority,  ///< of the innermost tag, where frames have one
    gocbRef,       ///< the reference of the GOOSE control block
    goID,          ///< the message's name
    svID,          ///< the name of the samples
    datSet,        ///< the reference of the data set
    confRev,       ///< its revision
    memberCount,   ///< values at the outermost level; of SV, octets of seqData
    memberType,  ///< a value is of another type, or a structure has other values; only of messages
                 ///< that have as many values as described
    smpRate,     ///< as an element, else as measured: beyond 1 %
    noASDU,      ///< ASDUs in a frame
    options,     ///< the optional fields of an ASDU, as far as SmvOpts and ASDUs tell them
    maxTime,     ///< a message came later after the one before than it may, by more than 10 % and
                 ///< 1 ms, or no more did until the captures end
};

/// A value of a difference, by its kind: MacAddress of mac; std::string of names; BasicType and
/// DataKind of memberType; SmvOptions of options; double of smpRate, samples a second; else
/// std::int64_t, nanoseconds of maxTime. Not set where there is none.
///
/// Where a message has a value that should be a structure, the BasicType is `structure`; where it
/// should be an array, the DataKind is `array`. Options that cannot be seen, or need not be there,
/// are found as they are described. maxTime is the longest interval.
using DifferenceValue =
    std::variant<std::monostate, std::int64_t, double, std::string, TalIec61850Analysis::MacAddress,
                 BasicType, TalIec61850Analysis::DataKind, SmvOptions>;

/// One difference between a stream and its description. Each kind is told once for a row.
struct Difference {
    /// In what.
    DifferenceKind kind = DifferenceKind::mac;
    /// As described.
    DifferenceValue expected;
    /// As captured.
    DifferenceValue found;
    /// Of memberType: the path of the value; else empty.
    std::vector<std::uint32_t> member;
    /// The packet that shows it, of the stream of the row: of maxTime the one after the interval,
    /// and the last one where none came after it.
    std::optional<TalIec61850Analysis::PacketRef> packet;

    /// Member by member.
    friend bool operator==(Difference const&, Difference const&) = default;
};

/// One control block and one of its streams, or one of the two alone.
struct StationRow {
    /// How they agree.
    StationResult result = StationResult::match;
    /// Its number among the control blocks; not set where the stream is unexpected.
    std::optional<std::size_t> controlBlock;
    /// Its number in the index; not set where it is missing.
    std::optional<std::size_t> stream;
    /// How the stream was recognised.
    MatchedBy by = MatchedBy::name;
    /// In the order of DifferenceKind. Empty unless the result is `differs`.
    std::vector<Difference> differences;
    /// Of the stream, copies and duplicates once; 0 where it is missing.
    std::uint64_t packets = 0;
    /// The packet that shows the first difference, else the first one of the stream; not set where
    /// it is missing.
    std::optional<TalIec61850Analysis::PacketRef> packet;

    /// Member by member.
    friend bool operator==(StationRow const&, StationRow const&) = default;
};

/// What to compare, and how.
struct StationCheckOptions {
    /// Streams to compare, by their numbers; not set: all. Rows of other streams are left out; a
    /// control block that has one of these is not missing.
    std::optional<std::vector<std::size_t>> streams;
    /// Threads; 0: as many as there are cores.
    std::size_t jobs = 0;
};

/// Compares captures with the description of their station.
///
/// Values are compared wherever they change: the attributes of each packet by their history,
/// members whenever their number or types are others than in the packet before, the priority and
/// the optional fields of each frame. Copies, duplicates and what a snap length cut off make no
/// difference. What the description does not say is not compared, but for the VLAN of an address,
/// and a data set that a control block is said not to have.
///
/// Intervals between messages are compared within files that have the stream, and over several that
/// follow each other within 1 ms; so is the time from the last message to the end of these and of
/// files that follow them. A rate is measured over some hundred samples, or some dozen where
/// smpCnt begins again. A control block that is sent to one subscriber and has no address is not
/// missing where it is not there: it goes over a connection.
///
/// Takes time in the packets of streams that are described, and in streams and control blocks.
/// @param index    of the captures, whose files are read again
/// @param station  the description
/// @param options  what to compare
/// @return a row for each control block, in the order of the description, where several streams are
///         its one row for each; then a row for each stream that is not described, in the order of
///         the index
/// @throws std::system_error  where a capture cannot be read again
[[nodiscard]] TALIEC61850SCL_EXPORT std::vector<StationRow> checkStation(
    TalIec61850Analysis::TrafficIndex const& index, StationDescription const& station,
    StationCheckOptions const& options = {});

}  // namespace TalIec61850Scl
