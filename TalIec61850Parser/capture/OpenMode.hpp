#pragma once

// Internal: how capture files are opened.

#include <sys/stat.h>

#include <ios>
#include <string>

namespace TalIec61850Parser::detail {

/// Opening a pipe for reading alone waits for a writer, perhaps for ever. Opened for both it does
/// not, and is then refused like anything else that cannot be sought in.
inline std::ios_base::openmode openMode(std::string const& path) {
    struct stat status {};
    bool const isPipe = ::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
    return std::ios_base::binary | std::ios_base::in |
           (isPipe ? std::ios_base::out : std::ios_base::openmode{});
}

}  // namespace TalIec61850Parser::detail
