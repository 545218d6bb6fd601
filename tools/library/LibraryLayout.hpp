#pragma once

#include "tools/library/LibraryRow.hpp"
#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// How the streams of the library are written. The fields after those of libraryFields:
///
///     packets            integer
///     files              integer    files that hold packets of the stream
///     firstTime          text       first capture time, UTC, 2023-11-14T22:13:20.123456789Z
///     firstTimeNs        integer    the same in nanoseconds since 1970
///     lastTime           text       last capture time
///     lastTimeNs         integer
///     packetsPerSecond   number     mean from the first to the last capture time
[[nodiscard]] RowLayout<LibraryRow> libraryLayout();

}  // namespace TalIec61850Tools
