#pragma once

#include <vector>

#include "tools/library/LibraryStream.hpp"
#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// The fields for what tells a stream from others. Names and order are stable; what a
/// stream lacks is null. The names are those of the index: printable text as it is, anything
/// else as octets such as [4D C3 A9 31].
///
///     protocol           text       GOOSE or SV
///     source             text       MAC address, such as 00:30:a7:01:02:03
///     destination        text       MAC address
///     vlanId             integer    VLAN identifier, 0 for a tag with a priority alone
///     appId              text       hexadecimal, such as 0x4000
///     hsrLane            text       A or B; of a GOOSE stream that of its first packet alone
///     prpLane            text       A or B, of the stream's first packet alone
///     reserved1Bit0      integer    0 or 1
///     svID               text       SV
///     gocbRef            text       GOOSE
///     datSet             text       GOOSE
///     goID               text       GOOSE
///     confRev            integer
///     simulationPresent  true/false GOOSE: frames carry the simulation element, true or false
[[nodiscard]] std::vector<Field<LibraryStream>> libraryFields();

}  // namespace TalIec61850Tools
