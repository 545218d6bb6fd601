#pragma once

#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Scl/Export.hpp>
#include <TalIec61850Scl/model/StationDescription.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace TalIec61850Scl {

/// How a stream was recognised.
enum class MatchedBy : std::uint8_t {
    name,     ///< by gocbRef or svID
    address,  ///< by its destination and APPID: its name is another
};

/// The control block that publishes a stream.
struct StreamMatch {
    /// Its number among the control blocks of the description.
    std::size_t controlBlock = 0;
    /// How it was recognised.
    MatchedBy by = MatchedBy::name;

    /// Member by member.
    friend bool operator==(StreamMatch const&, StreamMatch const&) = default;
};

/// Finds the control block of each stream: by name first; then, of control blocks that have no
/// stream by their names, by address.
///
/// Where several control blocks have one svID, the one with the stream's address and VLAN is taken,
/// else the first with its address, else the first; where several have one address, the first. Of
/// these, such as have no stream go before the others. Streams that differ in source or VLAN alone
/// are of one control block where there is no other. Takes time in streams and control blocks,
/// whatever their names are.
/// @return one for each stream of the index, in its order; not set where none is described
[[nodiscard]] TALIEC61850SCL_EXPORT std::vector<std::optional<StreamMatch>> matchStreams(
    TalIec61850Analysis::TrafficIndex const& index, StationDescription const& station);

/// The same for streams without an index.
/// @param streams  each once; in the order of their keys, the result is that of an index of them
/// @param station  the description
/// @return one for each stream, in their order; not set where none is described
[[nodiscard]] TALIEC61850SCL_EXPORT std::vector<std::optional<StreamMatch>> matchStreams(
    std::span<TalIec61850Analysis::StreamKey const> streams, StationDescription const& station);

/// Finds the control block of a single stream, without regard to others: by name, of several the
/// one with its address and VLAN; else by address, where only one control block has it. All control
/// blocks are gone through: for many streams, matchStreams is faster, and knows which control
/// blocks have a stream by their names.
/// @return not set where none is described, or which one cannot be told
[[nodiscard]] TALIEC61850SCL_EXPORT std::optional<StreamMatch> matchStream(
    TalIec61850Analysis::StreamKey const& stream, StationDescription const& station);

/// Whether a stream may be of a control block, by name or by address, whatever other streams and
/// control blocks there are. Of the others, matchStreams never gives it one.
[[nodiscard]] TALIEC61850SCL_EXPORT bool mayBeOf(TalIec61850Analysis::StreamKey const& stream,
                                                 ControlBlock const& block);

}  // namespace TalIec61850Scl
