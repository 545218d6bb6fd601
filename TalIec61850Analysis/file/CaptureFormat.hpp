#pragma once

namespace TalIec61850Analysis {

/// How a capture file is written.
enum class CaptureFormat {
    /// The format of libpcap: one header, then records of one link type.
    classic,
    /// Sections of blocks, with any number of interfaces: pcapng.
    nextGeneration,
};

}  // namespace TalIec61850Analysis
