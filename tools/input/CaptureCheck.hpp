#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

namespace TalIec61850Tools {

/// What tells files apart, whatever the paths that lead to them.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;

    friend bool operator==(FileIdentity const&, FileIdentity const&) = default;
    friend bool operator<(FileIdentity const& a, FileIdentity const& b) {
        return std::tie(a.device, a.inode) < std::tie(b.device, b.inode);
    }
};

/// What is known of a file before the library is given its path.
struct CaptureCheck {
    /// Why the file cannot be indexed, for people; not set when it can.
    std::optional<std::string> fault;
    /// The file is what it says, but no capture at all; `fault` is set too.
    bool isSomethingElse = false;
    /// Of a file that is there, and no folder, pipe or the like.
    FileIdentity identity;
    /// Octets in such a file; 0 where only reading it would tell.
    std::uint64_t size = 0;
};

/// Looks whether a file can be read and starts like a capture that the library indexes. Never
/// waits: pipes, terminals and the like are refused without being opened.
[[nodiscard]] CaptureCheck checkCapture(std::string const& path);

}  // namespace TalIec61850Tools
