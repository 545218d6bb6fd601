#pragma once

#include "tools/output/RowLayout.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

/// How streams are written. The fields after those of StreamFields:
///
///     packets            integer
///     files              integer    files that hold packets of the stream
///     firstTime          text       first capture time, UTC, 2023-11-14T22:13:20.123456789Z
///     firstTimeNs        integer    the same in nanoseconds since 1970
///     lastTime           text       last capture time
///     lastTimeNs         integer
///     packetsPerSecond   number     mean from the first to the last capture time
[[nodiscard]] RowLayout<StreamRow> streamLayout();

}  // namespace TalIec61850Tools
