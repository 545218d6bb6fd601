#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

/// The protocol's name: GOOSE or SV.
[[nodiscard]] std::string_view toText(Protocol protocol);

/// The fields of a row for other programs. Names and order are stable; what a stream lacks is
/// null. The names of a stream stand there octet for octet, valid UTF-8 or not.
///
///     protocol           text       GOOSE or SV
///     source             text       MAC address, such as 00:30:a7:01:02:03
///     destination        text       MAC address
///     vlanId             integer    VLAN identifier, 0 for a tag with a priority alone
///     appId              integer
///     hsrLane            text       A or B; of a GOOSE stream that of its first packet alone
///     prpLane            text       A or B, of the stream's first packet alone
///     reserved1Bit0      integer    0 or 1
///     svID               text       SV
///     gocbRef            text       GOOSE
///     datSet             text       GOOSE
///     goID               text       GOOSE
///     confRev            integer
///     simulationPresent  true/false GOOSE: frames carry the simulation element, true or false
///     packets            integer
///     files              integer    files that hold packets of the stream
///     firstTime          text       first capture time, UTC, 2023-11-14T22:13:20.123456789Z
///     firstTimeNs        integer    the same in nanoseconds since 1970
///     lastTime           text       last capture time
///     lastTimeNs         integer
///     packetsPerSecond   number     mean from the first to the last capture time
[[nodiscard]] nlohmann::ordered_json toFields(StreamRow const& row);

}  // namespace TalIec61850Tools
