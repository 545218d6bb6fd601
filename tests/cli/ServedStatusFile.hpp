#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tal::test {

/// Names the file that is in place of /proc/self/status, in a process that ServedStatusFile.cpp is
/// part of: linked into its program, or preloaded as a shared object of its own. Not set or empty:
/// the real file.
inline constexpr char const* kStatusFileVariable = "TAL_STATUS_FILE";

/// Serves a path in place of /proc/self/status, until its end.
class ServedStatusPath {
public:
    explicit ServedStatusPath(std::string const& path) {
        if (char const* const previous = ::getenv(kStatusFileVariable)) {
            previous_ = previous;
        }
        ::setenv(kStatusFileVariable, path.c_str(), 1);
    }
    ServedStatusPath(ServedStatusPath const&) = delete;
    ServedStatusPath& operator=(ServedStatusPath const&) = delete;
    ~ServedStatusPath() {
        if (previous_) {
            ::setenv(kStatusFileVariable, previous_->c_str(), 1);
        } else {
            ::unsetenv(kStatusFileVariable);
        }
    }

private:
    std::optional<std::string> previous_;
};

/// A file of its own with the given octets, removed at its end.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string_view contents) {
        int const descriptor = ::mkstemp(path_.data());
        if (descriptor < 0) {
            throw std::runtime_error("no temporary file");
        }
        bool whole = true;
        while (whole && !contents.empty()) {
            ssize_t const written = ::write(descriptor, contents.data(), contents.size());
            whole = written > 0;
            contents.remove_prefix(whole ? static_cast<std::size_t>(written) : 0);
        }
        ::close(descriptor);
        if (!whole) {
            ::unlink(path_.c_str());
            throw std::runtime_error("temporary file not written");
        }
    }
    TemporaryFile(TemporaryFile const&) = delete;
    TemporaryFile& operator=(TemporaryFile const&) = delete;
    ~TemporaryFile() { ::unlink(path_.c_str()); }

    [[nodiscard]] std::string const& path() const { return path_; }

private:
    std::string path_ = "/tmp/tal-status-XXXXXX";
};

/// Serves the given octets as /proc/self/status, until its end.
class ServedStatusFile {
public:
    explicit ServedStatusFile(std::string_view contents) : file_(contents), served_(file_.path()) {}

private:
    TemporaryFile file_;
    ServedStatusPath served_;
};

}  // namespace tal::test
