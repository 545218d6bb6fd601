#include "tools/input/CaptureFinder.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <system_error>

#include "tools/input/FilesBelow.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/render/CaptureText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureCheck;
using TalIec61850Analysis::CaptureFault;
using TalIec61850Analysis::CaptureFormat;
using TalIec61850Analysis::checkCapture;

namespace {

namespace fs = std::filesystem;

/// A file that is read without a fault, but is no capture.
bool isSomethingElse(CaptureCheck const& check) {
    return check.fault == CaptureFault::notCapture || check.fault == CaptureFault::notRegularFile;
}

/// Why there is no capture that can be used, with what may help; nothing where there is one.
std::optional<std::string> refusalText(CaptureCheck const& check, bool wasCompressed = false) {
    if (check.fault == CaptureFault::notCapture && check.size == 0) {
        return "empty, no capture";
    }
    auto const fault = faultText(check);
    return fault && wasCompressed ? "unpacked: " + *fault : fault;
}

class Finder {
public:
    void follow(std::string const& argument) {
        std::error_code ignored;
        if (argument == "-") {
            addStandardInput();
        } else if (fs::is_directory(argument, ignored)) {
            searchFolder(argument);
        } else if (fs::is_fifo(argument, ignored)) {
            addPipe(argument);
        } else {
            addFile(argument, false);
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

    /// @return whether a capture is known already by the identity of its file
    bool isKnown(FileIdentity const& identity, std::string const& name) {
        auto const known = known_.find(identity);
        if (known != known_.end()) {
            found_.numbers.emplace(name, known->second);
        }
        return known != known_.end();
    }

    /// @param capture  its identity is that of the file that was named
    void take(CaptureSource capture) {
        std::size_t const number = found_.captures.size();
        known_.emplace(capture.identity, number);
        found_.numbers.emplace(capture.name, number);
        found_.captures.push_back(std::move(capture));
    }

    /// @param check  has no fault
    void take(std::string const& path, std::string const& name, CaptureCheck const& check,
              FileIdentity const& identity) {
        take({.path = path,
              .name = name,
              .identity = identity,
              .size = check.size,
              .format = check.format.value_or(CaptureFormat::classic)});
    }

    /// @param isInFolder  what is no capture is passed over
    /// @return whether there is a capture
    bool addFile(std::string const& path, bool isInFolder) {
        CaptureCheck const check = checkCapture(path);
        if (check.fault == CaptureFault::notCapture && startsCompressed(path)) {
            found_.files.insert(check.identity);
            return isKnown(check.identity, path) ||
                   addSpool(::open(path.c_str(), O_RDONLY | O_CLOEXEC), path, check.identity,
                            isInFolder);
        }
        if (isInFolder && isSomethingElse(check)) {
            return false;
        }
        found_.files.insert(check.identity);
        if (auto const reason = refusalText(check)) {
            refuse(path, *reason);
        } else if (!isKnown(check.identity, path)) {
            take(path, path, check, check.identity);
        }
        return true;
    }

    void addPipe(std::string const& path) {
        struct stat status {};
        ::stat(path.c_str(), &status);
        FileIdentity const identity{.device = status.st_dev, .inode = status.st_ino};
        if (!isKnown(identity, path)) {
            addSpool(::open(path.c_str(), O_RDONLY | O_CLOEXEC), path, identity, false);
        }
    }

    void addStandardInput() {
        struct stat status {};
        if (::fstat(STDIN_FILENO, &status) != 0) {
            refuse("-", std::generic_category().message(errno));
            return;
        }
        FileIdentity const identity{.device = status.st_dev, .inode = status.st_ino};
        if (isKnown(identity, "-")) {
            return;
        }
        std::string const path = fmt::format("/proc/self/fd/{}", STDIN_FILENO);
        bool const isWhole = S_ISREG(status.st_mode) && ::lseek(STDIN_FILENO, 0, SEEK_CUR) == 0;
        if (!isWhole || startsCompressed(path)) {
            addSpool(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0), "-", identity, false);
            return;
        }
        CaptureCheck const check = checkCapture(path);
        found_.files.insert(check.identity);
        if (auto const reason = refusalText(check)) {
            refuse("-", *reason);
        } else {
            take(path, "-", check, identity);
        }
    }

    /// @param descriptor  of what is read; may be -1, when errno says why
    /// @return whether there is a capture, or one that should have been
    bool addSpool(int descriptor, std::string const& name, FileIdentity const& identity,
                  bool isInFolder) {
        TalIec61850Analysis::Descriptor source(descriptor);
        if (!source) {
            refuse(name, std::generic_category().message(errno));
            return true;
        }
        try {
            auto spool = std::make_unique<Spool>(std::move(source));
            spool->copyStart();
            CaptureCheck const start = checkCapture(spool->path());
            if (start.fault && isInFolder && isSomethingElse(start)) {
                return false;
            }
            if (auto const reason = refusalText(start, spool->isCompressed())) {
                refuse(name,
                       spool->damage() && start.size == 0 ? escapeText(*spool->damage()) : *reason);
                return true;
            }
            spool->copyRest();
            if (spool->damage()) {
                refuse(name, escapeText(*spool->damage()));
            }
            take({.path = spool->path(),
                  .name = name,
                  .identity = identity,
                  .size = spool->size(),
                  .format = start.format.value_or(CaptureFormat::classic)});
            found_.spools.push_back(std::move(spool));
        } catch (SpoolError const& error) {
            refuse(name, fmt::format("no copy in {}: {}; TMPDIR may name another folder",
                                     escapeText(error.folder()), error.code().message()));
        } catch (std::system_error const& error) {
            refuse(name, error.code().message());
        }
        return true;
    }

    void searchFolder(std::string const& folder) {
        std::size_t const faultsBefore = found_.faults.size();
        bool hasCapture = false;
        FilesBelow const below = filesBelow(folder);
        for (auto const& closed : below.closed) {
            refuse(closed.path, closed.error.message());
        }
        for (auto const& path : below.files) {
            hasCapture = addFile(path, true) || hasCapture;
        }
        if (!hasCapture && found_.faults.size() == faultsBefore) {
            refuse(folder, "no captures in this folder");
        }
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
