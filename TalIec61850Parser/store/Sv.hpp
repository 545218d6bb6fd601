#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/store/PackageFile.hpp>
#include <TalIec61850Parser/store/SvIdentifer.hpp>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace TalIec61850Parser {

/// One Sampled Values stream: its identity, its statistics, and its packets per capture file.
///
/// A stored record is an element of a set, so it is constant and its identity never changes; the
/// mutable members are what indexing adds to. In a record that SvParser has just filled, the
/// statistics are those of the one frame.
struct TALIEC61850PARSER_EXPORT Sv : TalIec61850::SvIdentifer {
    /// The largest smpCnt seen; of a frame with several ASDUs, that of the last one counts.
    mutable std::uint16_t maxSmpCnt = 0;
    /// The smpRate of the last frame, in its last ASDU that carries one; 0 when that frame carried
    /// none.
    mutable std::uint16_t smpRate = 0;
    /// Packets indexed for this stream, over all files; not reduced when a file is cleared.
    mutable std::uint32_t packetCount = 0;
    /// The largest noASDU seen.
    mutable std::uint32_t maxNoASDU = 0;
    /// The packets, by capture file. Indexing adds to it; clearing takes from it.
    mutable PackageFileSet files;

    /// Finds the packet index of a capture file in this stream, or adds an empty one.
    /// @param fileName  the file's path; compared octet for octet
    /// @return never null; valid until that file is cleared or the stream is erased
    [[nodiscard]] PackageFile const* addFile(std::string const& fileName) const;

    /// The packets of a time window, per capture file.
    ///
    /// Needs every file's packets in time order; where they are not, the result is that of a binary
    /// search. A window that ends before it starts holds no packets.
    /// @param from  start of the window, itself inside
    /// @param to    end of the window, itself inside
    /// @return an entry for every file with a packet in the window; the pointers stay valid until
    ///         the file is cleared
    [[nodiscard]] std::map<PackageFile const*, std::vector<Package const*>> getfilteredPackages(
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

/// The hash by which SV streams are found. Deliberate: HSR is left out here and counts in SvEqual.
/// Not noexcept: libstdc++ then caches the hash and compares it before SvEqual.
/// A capture can be made that gives many streams one hash, see GooseHash.
struct TALIEC61850PARSER_EXPORT SvHash {
    /// The hash of a record; its packets and statistics are no part of it.
    [[nodiscard]] std::size_t operator()(Sv const& sv) const;
};

/// The identity of SV streams. A member that is not set compares as zero or empty. VLAN and HSR
/// count with all their members, PRP and `spareText` not at all: the frames of one publisher are
/// two streams over the two directions of an HSR ring, one over the two PRP LANs.
struct TALIEC61850PARSER_EXPORT SvEqual {
    /// Whether two records compare as one stream.
    [[nodiscard]] bool operator()(Sv const& a, Sv const& b) const;
};

}  // namespace TalIec61850Parser
