#pragma once

#include <string>

namespace TalIec61850Tools {

/// From now on, a signal that ends the program (interrupt, quit, terminate, hangup, broken pipe)
/// removes this file before.
/// @param path  one file at a time; too long a path is not guarded
void guardUnfinishedFile(std::string const& path) noexcept;

/// The file has its place, or is gone: nothing is removed any more.
void releaseUnfinishedFile() noexcept;

}  // namespace TalIec61850Tools
