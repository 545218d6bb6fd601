#pragma once

#include <string>
#include <system_error>
#include <vector>

namespace TalIec61850Tools {

/// What is in a folder and in the folders below it.
struct FilesBelow {
    /// A folder that cannot be looked into.
    struct Closed {
        std::string path;
        std::error_code error;
    };

    /// The paths of all but folders, sorted.
    std::vector<std::string> files;
    std::vector<Closed> closed;
};

/// Looks for files. Links to folders are not followed.
/// @param folder  how the paths begin
[[nodiscard]] FilesBelow filesBelow(std::string const& folder);

}  // namespace TalIec61850Tools
