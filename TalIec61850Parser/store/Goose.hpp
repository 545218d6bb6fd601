#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/store/FilteredPackagesResult.hpp>
#include <TalIec61850Parser/store/GooseIdentifer.hpp>
#include <TalIec61850Parser/store/PackageFile.hpp>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#ifndef __GLIBCXX__
#error "libstdc++ is needed: its cached hashes keep GOOSE streams of different VLANs apart"
#endif

namespace TalIec61850Parser {

/// One GOOSE stream: its identity, and its packets per capture file.
///
/// A stored record is an element of a set, so it is constant and its identity never changes; the
/// mutable members are what indexing adds to.
struct TALIEC61850PARSER_EXPORT Goose : TalIec61850::GooseIdentifer {
    /// Packets indexed for this stream, over all files; not reduced when a file is cleared.
    mutable std::uint32_t packetCount = 0;
    /// The packets, by capture file. Indexing adds to it; clearing takes from it.
    mutable PackageFileSet files;

    /// Finds the packet index of a capture file in this stream, or adds an empty one.
    /// @param fileName  the file's path; compared octet for octet
    /// @return never null; valid until that file is cleared or the stream is erased
    [[nodiscard]] PackageFile const* addFile(std::string const& fileName) const;

    /// The packets of a time window, per capture file, with the packets on either side of it.
    ///
    /// Needs every file's packets in time order; where they are not, the result is that of a binary
    /// search. A window that ends before it starts holds no packets.
    /// @param from  start of the window, itself inside
    /// @param to    end of the window, itself inside
    /// @return an entry for every file that has packets at all; the pointers stay valid until the
    ///         file is cleared
    [[nodiscard]] std::map<PackageFile const*, FilteredPackagesResult> getfilteredPackages(
        Timest const& from, Timest const& to) const;

    /// The last packet of one file before a time.
    ///
    /// Needs the file's packets in time order, as `getfilteredPackages` does.
    /// @param file  one of this stream's files; not null
    /// @param time  packets of this very time do not count
    /// @return the end of the file's list when no packet is before `time`; valid until the next
    ///         packet is added to that file
    [[nodiscard]] PackageIterator findFileNearestPackageIterator(PackageFile const* file,
                                                                 Timest const& time) const;

    /// The last packet before a time in every file.
    /// @param time  packets of this very time do not count
    /// @return an entry for every file that has such a packet; its iterator is valid until the next
    ///         packet is added to that file
    [[nodiscard]] std::map<PackageFile const*, PackageIterator> findFilesNearestPackageIterator(
        Timest const& time) const;
};

/// The hash by which GOOSE streams are found. Deliberate: it takes in the VLAN, which GooseEqual
/// leaves out, so streams that differ in VLAN alone stay apart by their hash. That holds only while
/// the set compares whole cached hashes: libstdc++ does so unless the call is noexcept.
///
/// Equal terms cancel (it is an exclusive-or): a capture can be made that gives any number of
/// streams one hash, and then each lookup compares with all of them. A stop flag ends that.
struct TALIEC61850PARSER_EXPORT GooseHash {
    /// The hash of a record; its packets and statistics are no part of it.
    [[nodiscard]] std::size_t operator()(Goose const& goose) const;
};

/// The identity of GOOSE streams. A member that is not set compares as zero or empty. Deliberate:
/// VLAN, HSR and PRP are left out; `reserved1Bit0` counts here and not in GooseHash.
struct TALIEC61850PARSER_EXPORT GooseEqual {
    /// Whether two records compare as one stream.
    [[nodiscard]] bool operator()(Goose const& a, Goose const& b) const;
};

}  // namespace TalIec61850Parser
