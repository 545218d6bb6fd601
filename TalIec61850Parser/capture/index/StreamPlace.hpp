#pragma once

// Internal: where in the store the packets of a stream go.

#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/PackageFile.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace TalIec61850Parser::detail {

/// A stream in the store, and its packets in one capture file. Valid until either is erased.
struct StreamPlace {
    /// The packets; null for no place.
    PackageFile const* file = nullptr;
    std::uint32_t* packetCount = nullptr;
    /// The stream, if it is one of SV.
    Sv const* sv = nullptr;
};

inline StreamPlace findOrAddPlace(Goose const& stream, std::string const& fileName) {
    return {.file = stream.addFile(fileName), .packetCount = &stream.packetCount, .sv = nullptr};
}

inline StreamPlace findOrAddPlace(Sv const& stream, std::string const& fileName) {
    return {.file = stream.addFile(fileName), .packetCount = &stream.packetCount, .sv = &stream};
}

/// Finds or adds a stream, and its packets in a capture file, to have a packet added there. When
/// memory ends on the way, what is new of the two is taken back: indexing leaves no stream without
/// a file, and no file without a packet. What was there before stays.
/// @param streams    all streams of the store that are of this protocol
/// @param addPacket  `void addPacket(StreamPlace const&)`; throws only if it has added none
template <typename Streams, typename Stream, typename AddPacket>
void addToStream(Streams& streams, Stream&& stream, std::string const& fileName,
                 AddPacket const& addPacket) {
    auto const [stored, isNewStream] = streams.insert(std::forward<Stream>(stream));
    std::size_t const fileCount = stored->files.size();
    try {
        addPacket(findOrAddPlace(*stored, fileName));
    } catch (...) {
        if (isNewStream) {
            streams.erase(stored);
        } else if (stored->files.size() != fileCount) {
            stored->files.erase(stored->files.find(fileName));
        }
        throw;
    }
}

}  // namespace TalIec61850Parser::detail
