#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/store/Package.hpp>
#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_set>

namespace TalIec61850Parser {

/// The packets of one stream in one capture file, in the order in which they were added.
///
/// Lives in a stream's `files`, whose elements are constant; `packages` is mutable so that packets
/// can be appended there. It is a deque so that appending never moves a stored packet: pointers and
/// references to a `Package` stay valid until this PackageFile is erased, iterators until the next
/// packet is added.
struct TALIEC61850PARSER_EXPORT PackageFile {
    /// Has no name and no packets.
    PackageFile() = default;

    /// Names the capture file; no packets yet.
    explicit PackageFile(std::string const& fileName);

    /// The path exactly as it was given to `addFile`; the identity of the PackageFile.
    std::string fileName;
    /// The packets, in the order in which they were added.
    mutable std::deque<Package> packages;

    /// Appends a packet. Neither order nor duplicates are checked: captures are read front to back,
    /// and the time queries rely on the order found there.
    /// @param seconds      capture time, seconds since 1970-01-01 UTC
    /// @param nanoseconds  the part of the capture time below a second, in nanoseconds
    /// @param position     offset in the capture file, in octets (see Package)
    void addPackage(unsigned int seconds, unsigned int nanoseconds, unsigned long position) const;

    /// The time of the first packet; {0, 0} when there is none.
    [[nodiscard]] Timest getBeginTime() const;

    /// The time of the last packet; {0, 0} when there is none.
    [[nodiscard]] Timest getEndTime() const;
};

/// A place in a PackageFile's list; valid until the next packet is added to that list.
using PackageIterator = std::deque<Package>::const_iterator;

/// Hashes a PackageFile by its name alone: the standard string hash, but 0 for the empty name. Not
/// noexcept: libstdc++ then caches the hash in each node of the set.
struct TALIEC61850PARSER_EXPORT PackageFileHash {
    /// Sets are searched by name, without a PackageFile being built.
    using is_transparent = void;

    /// The hash of its name.
    [[nodiscard]] std::size_t operator()(PackageFile const& file) const;
    /// The hash of a name.
    [[nodiscard]] std::size_t operator()(std::string_view fileName) const;
};

/// Tells PackageFiles apart by name alone, octet for octet.
struct PackageFileEqual {
    /// Sets are searched by name, without a PackageFile being built.
    using is_transparent = void;

    /// Whether two have one name.
    [[nodiscard]] bool operator()(PackageFile const& a, PackageFile const& b) const {
        return a.fileName == b.fileName;
    }
    /// Whether it has this name.
    [[nodiscard]] bool operator()(PackageFile const& file, std::string_view fileName) const {
        return file.fileName == fileName;
    }
    /// Whether it has this name.
    [[nodiscard]] bool operator()(std::string_view fileName, PackageFile const& file) const {
        return file.fileName == fileName;
    }
};

/// One packet index per capture file, found by file name. Node-based: a pointer to a PackageFile
/// stays valid until that element is erased.
using PackageFileSet = std::unordered_set<PackageFile, PackageFileHash, PackageFileEqual>;

}  // namespace TalIec61850Parser
