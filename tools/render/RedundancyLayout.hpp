#pragma once

#include "tools/output/RowLayout.hpp"
#include "tools/output/RowLines.hpp"
#include "tools/selection/RedundancyRow.hpp"

namespace TalIec61850Tools {

/// How the copies of streams are written. Names and order of the fields are stable; what a stream
/// lacks is null.
///
///     protocol           text       GOOSE or SV
///     source             text       MAC address
///     destination        text       MAC address
///     vlanId             integer    of the innermost tag
///     appId              text       hexadecimal, such as 0x4000
///     svID               text       SV
///     gocbRef            text       GOOSE
///     redundancy         text       hsr or prp
///     both               integer    frames that came once over each way
///     onlyA, onlyB       integer    frames that came once, over one way
///     more               integer    frames that came more than once over one way
///     firstA, firstB     integer    of both: over which way first
///     differenceNs       object     of both: time over B minus time over A, in nanoseconds: min,
///                                   p50, p99, max. In csv four columns: differenceMinNs,
///                                   differenceP50Ns, differenceP99Ns, differenceMaxNs
///     clockOffsetNs      integer    the clock of B's tap ahead of that of A's, with the time that
///                                   differs over the network; null with one clock
///     missingRunsA       integer    how often copies over A are missing, one after the other
///     missingRunsB       integer
///     differs            integer    frames with copies of other octets
///     wrongLan           integer    frames that came twice with one LAN, and not with the other
///
/// @param format  the one that is written
[[nodiscard]] RowLayout<RedundancyRow> redundancyLayout(Format format);

}  // namespace TalIec61850Tools
