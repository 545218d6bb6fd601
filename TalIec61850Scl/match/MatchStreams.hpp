#pragma once

#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Scl/Export.hpp>
#include <TalIec61850Scl/model/StationDescription.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
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

/// Finds the control block of a single stream, without regard to others: by name, of several the
/// one with its address and VLAN; else by address, the first of several. All control blocks are
/// gone through: for many streams, matchStreams is faster.
/// @return not set where none is described
[[nodiscard]] TALIEC61850SCL_EXPORT std::optional<StreamMatch> matchStream(
    TalIec61850Analysis::StreamKey const& stream, StationDescription const& station);

}  // namespace TalIec61850Scl
