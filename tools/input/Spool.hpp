#pragma once

#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

struct archive;

namespace TalIec61850Tools {

/// The folder for temporary files, and why it takes no copy.
class SpoolError : public std::system_error {
public:
    SpoolError(std::string folder, std::error_code error)
        : std::system_error(error), folder_(std::move(folder)) {}

    [[nodiscard]] std::string const& folder() const { return folder_; }

private:
    std::string folder_;
};

/// A copy on disk of what can be read only once, as a pipe, or is compressed (gzip, zstd, xz, lz4,
/// bzip2), so that it has a path and may be read many times. It has no name and is gone when this
/// object is, or the program. It grows as what is read does, as far as the disk has room.
class Spool {
public:
    /// Makes an empty copy.
    /// @param source  is read from where it is
    /// @throws SpoolError  there is no folder for temporary files, or no room
    explicit Spool(TalIec61850Analysis::Descriptor source);

    /// Leads to the copy as long as this object lives.
    [[nodiscard]] std::string const& path() const { return path_; }

    /// Copies the first octets, enough to tell a capture from something else, if there are so many.
    /// @throws SpoolError         the copy cannot be written
    /// @throws std::system_error  the source cannot be read
    void copyStart();

    /// Copies the rest. To be called after `copyStart`.
    /// @throws SpoolError, std::system_error  as copyStart
    void copyRest();

    /// How many octets are copied.
    [[nodiscard]] std::uint64_t size() const { return size_; }

    /// Whether the source is compressed. Known after `copyStart`.
    [[nodiscard]] bool isCompressed() const;

    /// Why the source could not be unpacked to its end; what was before that is copied.
    [[nodiscard]] std::optional<std::string> const& damage() const { return damage_; }

private:
    struct Close {
        void operator()(archive* reader) const;
    };

    /// @return false at the end
    bool copyBlock();
    void failOrEnd();

    TalIec61850Analysis::Descriptor source_;
    TalIec61850Analysis::Descriptor copy_;
    std::unique_ptr<archive, Close> reader_;
    std::string path_;
    std::uint64_t size_ = 0;
    bool isAtEnd_ = false;
    std::optional<std::string> damage_;
};

/// Whether a regular file starts as compressed files do.
/// @return false also for a file that cannot be read
[[nodiscard]] bool startsCompressed(std::string const& path);

}  // namespace TalIec61850Tools
