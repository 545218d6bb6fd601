#pragma once

#include <string_view>
#include <vector>

#include "tools/output/RowLayout.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

/// How streams are written. Names and order of the fields are stable; what a stream lacks is null.
///
///     protocol           text       GOOSE or SV
///     source             text       MAC address, such as 00:30:a7:01:02:03
///     destination        text       MAC address
///     vlanId             integer    of the innermost tag, 0 for a tag with a priority alone
///     vlanStack          text       of several tags, outermost first: 88a8:1/8100:2
///     appId              text       hexadecimal, such as 0x4000
///     svID               text       SV
///     gocbRef            text       GOOSE
///     datSet             text       the last
///     goID               text       GOOSE, the last
///     confRev            integer    the last
///     simulated          true/false whether any packet is
///     asdusPerFrame      integer    SV, the last
///     nominalRate        number     SV, samples a second
///     packets            integer    copies once
///     copies             integer    over a second way
///     files              integer    files that hold packets of the stream
///     firstTime          text       first capture time, UTC, 2023-11-14T22:13:20.123456789Z
///     firstTimeNs        integer    the same in nanoseconds since 1970
///     lastTime           text       last capture time
///     lastTimeNs         integer
///     packetsPerSecond   number     mean from the first to the last capture time
///
/// Where streams are described, these come at the end:
///
///     ied                text       that publishes the stream
///     controlBlock       text       its reference as described
/// @param areDescribed  whether they are
[[nodiscard]] RowLayout<StreamRow> streamLayout(bool areDescribed = false);

/// The VLAN tags of a stream: "88a8:1/8100:2".
[[nodiscard]] std::string vlanStackText(std::vector<TalIec61850Analysis::VlanKey> const& vlans);

}  // namespace TalIec61850Tools
