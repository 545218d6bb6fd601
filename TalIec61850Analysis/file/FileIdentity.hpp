#pragma once

#include <sys/types.h>

#include <compare>

namespace TalIec61850Analysis {

/// What tells files apart, whatever the paths that lead to them. It holds as long as the file is
/// there.
struct FileIdentity {
    /// The device that holds the file, `st_dev`.
    dev_t device = 0;
    /// The file's number there, `st_ino`.
    ino_t inode = 0;

    /// By device, then by number: an order for sets of files.
    // clang-tidy 14 mistakes the 0 of the generated comparisons for a null pointer.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    friend auto operator<=>(FileIdentity const&, FileIdentity const&) = default;
};

}  // namespace TalIec61850Analysis
