#pragma once

namespace TalIec61850Parser {

/// How a capture is indexed. What comes of it is the same whatever is chosen.
struct IndexOptions {
    /// Whether a second thread reads the file ahead of the one that indexes, into four blocks of
    /// 256 KiB. Worth it for captures of many megabytes, where a second processor is free. It lives
    /// as long as the call; where it cannot be started, indexing goes on without it. It calls
    /// nothing of the caller's and blocks all signals.
    bool readAhead = false;
};

}  // namespace TalIec61850Parser
