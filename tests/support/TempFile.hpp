#pragma once

#include <string>
#include <string_view>

#include "support/Bytes.hpp"

namespace TalTest {

/// A directory of its own under the system's temporary directory, removed with all it holds.
class TempDir {
public:
    /// @throws std::system_error when it cannot be made
    TempDir();
    TempDir(TempDir&& other) noexcept;
    TempDir& operator=(TempDir&& other) noexcept;
    ~TempDir();

    [[nodiscard]] std::string const& path() const { return path_; }

    /// The path of a file of this name in the directory; the file is not made.
    [[nodiscard]] std::string file(std::string_view name) const;

    /// Writes a file of this name into the directory.
    /// @return its path
    /// @throws std::runtime_error when it cannot be written
    std::string write(std::string_view name, Bytes const& content) const;

private:
    std::string path_;
};

/// A file with the given content, removed on destruction.
class TempFile {
public:
    explicit TempFile(Bytes const& content, std::string_view name = "capture.pcap");

    [[nodiscard]] std::string const& path() const { return path_; }

private:
    TempDir directory_;
    std::string path_;
};

}  // namespace TalTest
