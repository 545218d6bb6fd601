#pragma once

namespace TalIec61850Analysis {

/// How a capture file is read in sequence. What is read is the same whatever is chosen.
enum class ReadMode {
    /// By the thread that asks for records, when it needs more octets.
    plain,
    /// A second thread reads ahead of the one that asks, into four blocks of 256 KiB. Worth it for
    /// captures of many megabytes, where a second processor is free. It lives as long as the file
    /// is open and blocks all signals; where it cannot be started, reading is plain.
    ahead,
};

}  // namespace TalIec61850Analysis
