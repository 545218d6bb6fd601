#include "tools/input/CaptureFinder.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>

#include "tools/output/TextEscape.hpp"
#include "tools/render/CaptureText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureCheck;
using TalIec61850Analysis::CaptureFault;
using TalIec61850Analysis::checkCapture;

namespace {

namespace fs = std::filesystem;

/// A file that is read without a fault, but is no capture.
bool isSomethingElse(CaptureCheck const& check) {
    return check.fault == CaptureFault::notCapture || check.fault == CaptureFault::notRegularFile;
}

class Finder {
public:
    void follow(std::string const& argument) {
        std::error_code ignored;
        if (argument == "-") {
            addStandardInput();
        } else if (fs::is_directory(argument, ignored)) {
            searchFolder(argument);
        } else {
            add(argument, argument, checkCapture(argument));
        }
    }

    [[nodiscard]] FoundCaptures take() { return std::move(found_); }

private:
    void refuse(std::string const& name, std::string const& reason) {
        if (refused_.insert(name).second) {
            found_.faults.push_back(
                fmt::format("{}: {}", name.empty() ? "''" : escapeText(name), reason));
        }
    }

    void add(std::string const& path, std::string const& name, CaptureCheck const& check) {
        found_.files.insert(check.identity);
        if (auto const fault = faultText(check)) {
            refuse(name, *fault);
            return;
        }
        auto const [known, isNew] = known_.emplace(check.identity, found_.captures.size());
        found_.numbers.emplace(name, known->second);
        if (isNew) {
            found_.captures.push_back(
                {.path = path, .name = name, .identity = check.identity, .size = check.size});
        }
    }

    void addStandardInput() {
        try {
            if (!found_.standardInput) {
                found_.standardInput = std::make_shared<StandardInput>();
            }
            std::string const& path = found_.standardInput->path();
            add(path, "-", checkCapture(path));
        } catch (std::system_error const& error) {
            refuse("-", error.code().message());
        }
    }

    void searchFolder(std::string const& folder) {
        std::size_t const faultsBefore = found_.faults.size();
        bool hasCapture = false;
        for (auto const& path : filesBelow(folder)) {
            CaptureCheck const check = checkCapture(path);
            if (!isSomethingElse(check)) {
                hasCapture = true;
                add(path, path, check);
            }
        }
        if (!hasCapture && found_.faults.size() == faultsBefore) {
            refuse(folder, "no captures in this folder");
        }
    }

    /// All but folders, sorted by path.
    std::vector<std::string> filesBelow(std::string const& folder) {
        std::vector<std::string> files;
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
                    files.push_back(entry->path());
                }
            }
            if (error) {
                refuse(current, error.message());
            }
        }
        std::sort(files.begin(), files.end());
        return files;
    }

    FoundCaptures found_;
    std::map<FileIdentity, std::size_t> known_;
    std::set<std::string> refused_;
};

}  // namespace

FoundCaptures findCaptures(std::vector<std::string> const& arguments) {
    Finder finder;
    for (auto const& argument : arguments) {
        finder.follow(argument);
    }
    return finder.take();
}

}  // namespace TalIec61850Tools
