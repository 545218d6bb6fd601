#pragma once

// What an index holds, as a plain value: for comparing the library's store with another index.

#include <TalIec61850Parser/store/Db.hpp>
#include <TalIec61850Parser/store/GooseIdentifer.hpp>
#include <TalIec61850Parser/store/SvIdentifer.hpp>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace TalTest {

struct PacketImage {
    std::uint32_t seconds = 0;
    std::uint32_t nanoseconds = 0;
    std::uint64_t position = 0;

    friend bool operator==(PacketImage const&, PacketImage const&) = default;
};

struct FileImage {
    std::string fileName;
    std::vector<PacketImage> packets;

    friend bool operator==(FileImage const&, FileImage const&) = default;
};

struct StreamImage {
    /// Every identity member, with "-" for one that is not set. No two streams share it.
    std::string identity;
    std::uint32_t packetCount = 0;
    std::uint32_t maxSmpCnt = 0;
    std::uint32_t smpRate = 0;
    std::uint32_t maxNoASDU = 0;
    /// Sorted by name.
    std::vector<FileImage> files;

    friend bool operator==(StreamImage const&, StreamImage const&) = default;
};

/// The streams of a store, sorted by identity.
struct IndexImage {
    std::vector<StreamImage> streams;

    friend bool operator==(IndexImage const&, IndexImage const&) = default;
};

std::ostream& operator<<(std::ostream& out, PacketImage const& packet);
std::ostream& operator<<(std::ostream& out, StreamImage const& stream);
std::ostream& operator<<(std::ostream& out, IndexImage const& image);

std::string identityText(TalIec61850::GooseIdentifer const& goose);
std::string identityText(TalIec61850::SvIdentifer const& sv);

/// Puts streams and files into the order in which images are compared.
IndexImage sorted(IndexImage image);

IndexImage imageOf(TalIec61850Parser::Db const& db);

/// The first thing in which two images differ, in words; empty when they are equal.
std::string difference(IndexImage const& actual, IndexImage const& expected);

/// The image with all statistics set to 0: what remains comparable once a file was cleared.
IndexImage withoutStatistics(IndexImage image);

/// The image with every file under this name: for comparing what copies of a capture index to.
IndexImage withFileName(IndexImage image, std::string const& fileName);

/// All packets of a stream, file by file.
std::vector<PacketImage> packetsOf(StreamImage const& stream);

/// The stream of this identity; null when there is none.
StreamImage const* findStream(IndexImage const& image, std::string const& identity);

}  // namespace TalTest
