#include "tools/input/Spool.hpp"

#include <archive.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <span>
#include <string_view>
#include <utility>

namespace TalIec61850Tools {

using TalIec61850Analysis::Descriptor;

namespace {

constexpr std::size_t kBlockSize = std::size_t{1} << 18U;
/// As many octets as the longest start of a capture that is looked at.
constexpr std::uint64_t kStartSize = 64;

std::string temporaryFolder() {
    char const* const folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

[[noreturn]] void failToCopy() {
    throw SpoolError(temporaryFolder(), {errno, std::generic_category()});
}

/// Copies stay open, each by a descriptor; a folder may hold more compressed captures than a
/// program may open at first. Others must still find room.
/// @param newest  the highest that is in use
void keepDescriptorsFree(int newest) {
    constexpr rlim_t spare = 64;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 &&
        limit.rlim_cur < static_cast<rlim_t>(newest) + spare) {
        limit.rlim_cur = limit.rlim_max;
        static_cast<void>(::setrlimit(RLIMIT_NOFILE, &limit));
    }
}

/// A file without a name: whatever becomes of the program, nothing is left of it.
Descriptor makeNamelessFile() {
    std::string path = temporaryFolder() + "/tal-iec61850-XXXXXX";
    Descriptor file(::mkostemp(path.data(), O_CLOEXEC));
    if (!file || ::unlink(path.c_str()) != 0) {
        failToCopy();
    }
    keepDescriptorsFree(file.number());
    return file;
}

void writeAll(int file, std::span<char const> octets) {
    while (!octets.empty()) {
        ssize_t const count = ::write(file, octets.data(), octets.size());
        if (count >= 0) {
            octets = octets.subspan(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            failToCopy();
        }
    }
}

}  // namespace

void Spool::Close::operator()(archive* reader) const { archive_read_free(reader); }

Spool::Spool(Descriptor source)
    : source_(std::move(source)), copy_(makeNamelessFile()), reader_(archive_read_new()) {
    if (!reader_) {
        throw std::bad_alloc();
    }
    archive_read_support_filter_gzip(reader_.get());
    archive_read_support_filter_bzip2(reader_.get());
    archive_read_support_filter_xz(reader_.get());
    archive_read_support_filter_lz4(reader_.get());
    archive_read_support_filter_zstd(reader_.get());
    archive_read_support_format_raw(reader_.get());
    archive_read_support_format_empty(reader_.get());
    path_ = fmt::format("/proc/self/fd/{}", copy_.number());
}

void Spool::copyStart() {
    archive_entry* entry = nullptr;
    if (archive_read_open_fd(reader_.get(), source_.number(), kBlockSize) != ARCHIVE_OK) {
        failOrEnd();
        return;
    }
    int const status = archive_read_next_header(reader_.get(), &entry);
    if (status == ARCHIVE_EOF) {
        isAtEnd_ = true;
    } else if (status < ARCHIVE_WARN) {
        failOrEnd();
    }
    while (size_ < kStartSize && copyBlock()) {
    }
}

void Spool::copyRest() {
    while (copyBlock()) {
    }
}

bool Spool::isCompressed() const {
    return archive_filter_count(reader_.get()) > 1;  // one is the file itself
}

bool Spool::copyBlock() {
    if (isAtEnd_) {
        return false;
    }
    void const* octets = nullptr;
    std::size_t size = 0;
    std::int64_t offset = 0;
    int const status = archive_read_data_block(reader_.get(), &octets, &size, &offset);
    if (status == ARCHIVE_EOF) {
        isAtEnd_ = true;
        return false;
    }
    if (status < ARCHIVE_WARN) {
        failOrEnd();
        return false;
    }
    writeAll(copy_.number(), std::span(static_cast<char const*>(octets), size));
    size_ += size;
    return true;
}

void Spool::failOrEnd() {
    isAtEnd_ = true;
    if (!isCompressed()) {
        int const error = archive_errno(reader_.get());
        throw std::system_error(error > 0 ? error : EIO, std::generic_category());
    }
    char const* const text = archive_error_string(reader_.get());
    damage_ = text == nullptr ? "it cannot be unpacked" : text;
}

bool startsCompressed(std::string const& path) {
    using namespace std::string_view_literals;
    constexpr std::array<std::string_view, 5> starts = {"\x1f\x8b"sv, "BZh"sv,
                                                        "\xfd"
                                                        "7zXZ\0"sv,
                                                        "\x04\"M\x18"sv, "\x28\xb5\x2f\xfd"sv};
    Descriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 6> octets{};
    ssize_t const count = file ? ::read(file.number(), octets.data(), octets.size()) : -1;
    std::string_view const start(octets.data(),
                                 static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return std::any_of(starts.begin(), starts.end(),
                       [&](std::string_view known) { return start.starts_with(known); });
}

}  // namespace TalIec61850Tools
