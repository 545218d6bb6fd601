#pragma once

// What an index holds, whatever the order of its files.

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace TalTest {

/// Equal for indexes of the same files. Which one of equal packets is the copy or the duplicate
/// depends on the order of the files; how many there are does not.
struct IndexContent {
    using Packet = std::tuple<std::int64_t, std::uint64_t, std::uint16_t, std::uint16_t,
                              std::uint16_t, std::uint64_t, std::uint16_t>;
    /// What a file has of a stream.
    struct Part {
        std::vector<Packet> packets;
        std::vector<TalIec61850Analysis::AttributeChange> changes;

        friend bool operator==(Part const&, Part const&) = default;
    };
    /// All packets of a stream.
    struct Stream {
        /// By the paths of the files.
        std::map<std::string, Part> parts;
        std::uint64_t packets = 0;
        std::uint64_t copies = 0;
        std::uint64_t duplicates = 0;

        friend bool operator==(Stream const&, Stream const&) = default;
    };

    /// By path.
    std::map<std::string, TalIec61850Analysis::IndexedFile> files;
    std::map<TalIec61850Analysis::StreamKey, Stream> streams;

    friend bool operator==(IndexContent const&, IndexContent const&) = default;
};

/// The packets of one part.
[[nodiscard]] inline std::vector<IndexContent::Packet> packetsIn(
    TalIec61850Analysis::PacketColumns const& columns) {
    using TalIec61850Analysis::PacketFlags;
    constexpr unsigned kMarks = PacketFlags::kCopy | PacketFlags::kDuplicate;
    bool const isGoose = columns.protocol() == TalIec61850Analysis::StreamProtocol::goose;
    std::vector<IndexContent::Packet> packets;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        std::uint64_t const first = isGoose ? columns.stNums()[i] : columns.smpCnts()[i];
        std::uint64_t const second = isGoose ? columns.sqNums()[i] : columns.smpSynchs()[i];
        packets.emplace_back(columns.times()[i], columns.frameOffsets()[i], columns.pduOffsets()[i],
                             columns.redundancySequences()[i],
                             static_cast<std::uint16_t>(columns.flags()[i].bits & ~kMarks),
                             first << 32U | second, isGoose ? 0 : columns.asdus()[i]);
    }
    return packets;
}

/// What an index holds.
/// @param index  of files with different paths
[[nodiscard]] inline IndexContent contentOf(TalIec61850Analysis::TrafficIndex const& index) {
    IndexContent content;
    for (auto const& file : index.files()) content.files[file.summary.path] = file;
    for (auto const& stream : index.streams()) {
        IndexContent::Stream& all = content.streams[stream.key];
        all.packets = stream.packets;
        all.copies = stream.copies;
        all.duplicates = stream.duplicates;
        for (auto const& part : stream.parts)
            all.parts[index.files()[part.file].summary.path] = {packetsIn(part.packets),
                                                                part.changes};
    }
    return content;
}

}  // namespace TalTest
