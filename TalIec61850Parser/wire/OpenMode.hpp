#pragma once

// Internal: how capture files are opened.

#include <fcntl.h>
#include <sys/stat.h>

#include <ios>
#include <string>

namespace TalIec61850Parser::wire {

/// For streams. Opening a pipe for reading alone waits for a writer, perhaps for ever. Opened for
/// both it does not, and is then refused like anything else that cannot be sought in.
inline std::ios_base::openmode openMode(std::string const& path) {
    struct stat status {};
    bool const isPipe = ::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
    return std::ios_base::binary | std::ios_base::in |
           (isPipe ? std::ios_base::out : std::ios_base::openmode{});
}

/// For ::open. Without waiting for the writer of a pipe, and without the descriptor becoming that
/// of a child process or the terminal that of this one.
inline constexpr int kOpenFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

}  // namespace TalIec61850Parser::wire
