#include "tools/output/Output.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

namespace {

namespace fs = std::filesystem;

/// What is handed over at once: as much as a pipe holds.
constexpr std::size_t kHandedOver = std::size_t{1} << 16U;
constexpr mode_t kAnybody = 0666;
constexpr mode_t kPermissions = 07777;

/// The permissions of a new file: all but those that the user's mask forbids.
mode_t newFileMode() {
    mode_t const mask = ::umask(0);
    ::umask(mask);
    return kAnybody & ~mask;
}

/// The target of a link, which need not exist, so that the link stays; the path itself if it is no
/// link; empty if links lead to each other.
fs::path followLinks(fs::path path) {
    constexpr int mostLinks = 40;  // as many as the kernel follows
    for (int link = 0; link < mostLinks; ++link) {
        std::error_code error;
        fs::path const target = fs::read_symlink(path, error);
        if (error) {
            return path;
        }
        path = path.parent_path() / target;
    }
    errno = ELOOP;
    return {};
}

}  // namespace

Output::Output() : Output(std::string()) {}

Output::Output(std::string const& path) {
    if (path.empty()) {
        isTerminal_ = ::isatty(STDOUT_FILENO) == 1;
        return;
    }
    name_ = escapeText(path);
    struct stat status {};
    bool const isThere = ::stat(path.c_str(), &status) == 0;
    if (isThere && !S_ISREG(status.st_mode)) {
        file_.reset(std::fopen(path.c_str(), "we"));
        stream_ = file_ ? file_.get() : nullptr;
    } else {
        path_ = followLinks(path);
        if (path_.empty()) {
            fail();
        }
        openUnfinished(isThere ? status.st_mode & kPermissions : newFileMode());
    }
    if (stream_ == nullptr) {
        fail();
    }
}

void Output::openUnfinished(mode_t mode) {
    // A name of its own length: that of the file may be as long as names can be.
    std::string path = fs::path(path_).parent_path() / ".tal-iec61850-XXXXXX";
    int const descriptor = ::mkostemp(path.data(), O_CLOEXEC);
    if (descriptor < 0) {
        fail();
    }
    unfinished_.emplace(std::move(path));
    bool const hasMode = ::fchmod(descriptor, mode) == 0;
    file_.reset(hasMode ? ::fdopen(descriptor, "w") : nullptr);
    stream_ = file_.get();
    if (stream_ == nullptr) {
        int const error = errno;
        ::close(descriptor);
        throw OutputError(name_, error);
    }
}

Output::~Output() {
    if (!unfinished_ && stream_ != nullptr) {
        std::fwrite(pending_.data(), 1, pending_.size(), stream_);
    }
}

void Output::fail() const { throw OutputError(name_, errno); }

void Output::write(std::string_view text) {
    if (text.size() >= kHandedOver) {
        // It is not copied first.
        writePending();
        if (std::fwrite(text.data(), 1, text.size(), stream_) != text.size()) {
            fail();
        }
        return;
    }
    pending_ += text;
    if (pending_.size() >= kHandedOver || isTerminal_) {
        writePending();
    }
}

void Output::writePending() {
    bool const isWritten =
        std::fwrite(pending_.data(), 1, pending_.size(), stream_) == pending_.size();
    pending_.clear();
    if (!isWritten) {
        fail();
    }
}

void Output::finish() {
    complete();
    takeName();
}

void Output::flush() {
    writePending();
    if (std::fflush(stream_) != 0) {
        fail();
    }
}

void Output::complete() {
    flush();
    if (file_ && std::fclose(file_.release()) != 0) {
        fail();
    }
}

void Output::takeName() {
    if (unfinished_ && !unfinished_->finishAs(path_)) {
        fail();
    }
}

void Output::removeNamed() {
    if (unfinished_) {
        ::unlink(path_.c_str());
    }
}

}  // namespace TalIec61850Tools
