#include "tools/input/FollowedCaptures.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <utility>

#include "tools/output/TextEscape.hpp"
#include "tools/render/CaptureText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::TrafficFollower;
using TalIec61850Analysis::TrafficOptions;

namespace fs = std::filesystem;

FollowedCaptures::FollowedCaptures(std::vector<std::string> arguments, TrafficOptions options)
    : arguments_(std::move(arguments)), options_(std::move(options)) {}

std::vector<AddedTraffic> FollowedCaptures::readOn() {
    std::vector<AddedTraffic> added;
    for (std::string const& argument : arguments_) {
        std::size_t const before = added.size();
        std::error_code ignored;
        if (fs::is_directory(argument, ignored)) {
            readFolder(argument, added);
        } else {
            readFile(argument, added);
        }
        if (added.size() > before) {
            read_.insert(argument);
        }
    }
    return added;
}

std::vector<std::string> FollowedCaptures::unread() const {
    std::vector<std::string> arguments;
    std::copy_if(arguments_.begin(), arguments_.end(), std::back_inserter(arguments),
                 [&](std::string const& argument) {
                     return !read_.contains(argument) && !refused_.contains(argument);
                 });
    return arguments;
}

void FollowedCaptures::readFolder(std::string const& folder, std::vector<AddedTraffic>& added) {
    std::vector<std::string> paths;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_regular_file(ignored)) {
            paths.push_back(entry->path());
        }
    }
    std::sort(paths.begin(), paths.end());
    std::string const inside = (fs::path(folder) / "").string();
    std::vector<std::string> removed;
    for (auto const& [path, follower] : followers_) {
        bool const isHere =
            path.starts_with(inside) && path.find('/', inside.size()) == std::string::npos;
        if (isHere && !std::binary_search(paths.begin(), paths.end(), path)) {
            removed.push_back(path);
        }
    }
    if (error) {
        // What is not listed need not be removed.
        refuse(folder, error.message());
        paths.insert(paths.end(), removed.begin(), removed.end());
        removed.clear();
    }
    // Those that were removed are read to their ends, and forgotten.
    for (std::string const& path : removed) {
        readFile(path, added);
        followers_.erase(path);
        refused_.erase(path);
    }
    for (std::string const& path : paths) {
        readFile(path, added);
    }
}

void FollowedCaptures::readFile(std::string const& path, std::vector<AddedTraffic>& added) {
    TrafficFollower& follower = followers_.try_emplace(path, path, options_).first->second;
    try {
        if (auto index = follower.readOn()) {
            for (std::string const& text : damageTexts(index->files().front().summary)) {
                faults_.push_back(fmt::format("{}: {}", escapeText(path), text));
            }
            added.push_back({.name = path, .index = std::move(*index)});
        }
    } catch (std::system_error const& error) {
        refuse(path, faultText(error.code()));
    }
}

void FollowedCaptures::refuse(std::string const& path, std::string const& reason) {
    if (refused_.insert(path).second) {
        faults_.push_back(fmt::format("{}: {}", escapeText(path), reason));
    }
}

std::vector<std::string> FollowedCaptures::takeFaults() { return std::exchange(faults_, {}); }

}  // namespace TalIec61850Tools
