#pragma once

// Internal: what GOOSE and SV streams do alike with their packet indexes.

#include <TalIec61850Parser/store/PackageFile.hpp>
#include <string>

namespace TalIec61850Parser::detail {

/// Finds the packet index of a capture file, or adds an empty one.
/// @return the element of that name, valid until it is erased; never null
PackageFile const* findOrAddFile(PackageFileSet& files, std::string const& fileName);

}  // namespace TalIec61850Parser::detail
