#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/file/CaptureFormat.hpp>
#include <TalIec61850Analysis/file/FileIdentity.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <system_error>

namespace TalIec61850Analysis {

/// Why a file cannot be read as a capture.
enum class CaptureFault {
    /// The operating system refuses it, a folder for example.
    refusedBySystem,
    /// A pipe, a terminal or another character device, a socket.
    notRegularFile,
    /// It starts like no capture.
    notCapture,
};

/// What is known of a file before it is read.
struct CaptureCheck {
    /// Why the file cannot be read as a capture; not set when it can.
    std::optional<CaptureFault> fault;
    /// What the operating system says; set with `CaptureFault::refusedBySystem` only.
    std::error_code error;
    /// How the file is written; set unless there is a fault.
    std::optional<CaptureFormat> format;
    /// Set for a regular file or a block device alone, be it a capture or not.
    FileIdentity identity;
    /// The size of a regular file in octets; 0 for a block device, where only reading tells.
    std::uint64_t size = 0;
};

/// Looks whether a file can be read, and starts like a capture: a classic one with microseconds or
/// nanoseconds, of either byte order, or a next-generation one. Never waits: pipes, terminals and
/// the like are refused without being opened.
/// @param path  links are followed
/// @return what is refused is told, not thrown
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT CaptureCheck checkCapture(std::string const& path);

}  // namespace TalIec61850Analysis
