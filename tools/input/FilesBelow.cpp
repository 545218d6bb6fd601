#include "tools/input/FilesBelow.hpp"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace TalIec61850Tools {

namespace {

namespace fs = std::filesystem;

}  // namespace

FilesBelow filesBelow(std::string const& folder) {
    FilesBelow found;
    std::vector<fs::path> folders = {folder};
    while (!folders.empty()) {
        fs::path const current = std::move(folders.back());
        folders.pop_back();
        std::error_code error;
        for (fs::directory_iterator entry(current, error), end; !error && entry != end;
             entry.increment(error)) {
            std::error_code ignored;
            if (entry->symlink_status(ignored).type() == fs::file_type::directory) {
                folders.push_back(entry->path());
            } else if (!entry->is_directory(ignored)) {
                found.files.push_back(entry->path());
            }
        }
        if (error) {
            found.closed.push_back({.path = current, .error = error});
        }
    }
    std::sort(found.files.begin(), found.files.end());
    return found;
}

}  // namespace TalIec61850Tools
