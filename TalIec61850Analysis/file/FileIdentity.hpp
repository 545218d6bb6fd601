#pragma once

#include <sys/types.h>

#include <compare>

namespace TalIec61850Analysis {

/// What tells files apart, whatever the paths that lead to them. It holds as long as the file is
/// there.
struct FileIdentity {
    /// Of `stat`: the device that holds the file, and its number there.
    dev_t device = 0;
    ino_t inode = 0;

    friend auto operator<=>(FileIdentity const&, FileIdentity const&) = default;
};

}  // namespace TalIec61850Analysis
