#pragma once

// Internal: the road of one capture record into the store, on octets in place.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/PcapPacketHeader.hpp>
#include <TalIec61850Parser/capture/StreamPlace.hpp>
#include <TalIec61850Parser/codec/WalkTrace.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <TalIec61850Parser/store/Timest.hpp>
#include <TalIec61850Parser/wire/CaptureFormat.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

namespace TalIec61850Parser::detail {

/// The capture file that records come from, and where their packets go. Refers to what its
/// maker owns.
struct IndexTarget {
    std::string const& fileName;
    bool isNanosecond = false;
    Filter const& filter;
    Db& db;
};

/// The time of a packet as the store keeps it, from a record of the target's file.
inline Timest packetTime(std::uint32_t tsSec, std::uint32_t tsUsec, bool isNanosecond) {
    return {tsSec, wire::toNanoseconds(tsUsec, isNanosecond)};
}

/// What one frame of an SV stream does to its statistics.
inline void follow(Sv const& stream, std::uint16_t smpCnt, std::uint16_t smpRate,
                   std::uint32_t noASDU) {
    stream.maxSmpCnt = std::max(stream.maxSmpCnt, smpCnt);
    stream.smpRate = smpRate;
    stream.maxNoASDU = std::max(stream.maxNoASDU, noASDU);
}

/// A stream as one frame states it, without packets and statistics; none when it is not wanted.
using StreamRecord = std::variant<std::monostate, Goose, Sv>;

/// What a frame teaches about frames like it.
struct FrameLesson {
    WalkTrace trace;
    StreamRecord stream;
};

/// What became of a frame: where its packet went, and what of it went there.
struct IndexedFrame {
    /// None when the frame is not wanted.
    StreamPlace place;
    /// Of the packet in the capture file.
    std::uint64_t position = 0;
    std::uint16_t smpRate = 0;
    std::uint32_t noASDU = 0;
};

/// PcapPacketParser::parsePacket.
/// @param recordPosition  offset in the capture file of `record[0]`
/// @param lesson          given for a GOOSE or SV frame that the filter does not switch off, unless
///                        null: its trace is begun for no other frame
IndexedFrame indexRecord(Octets record, std::uint64_t recordPosition, bool isLittleEndian,
                         IndexTarget const& target, FrameLesson* lesson = nullptr);

/// EthernetParser::parsePacket.
/// @param bufferPosition  offset in the capture file of `buffer[0]`
IndexedFrame indexFrame(Octets buffer, std::size_t offset, std::uint64_t bufferPosition,
                        PcapPacketHeader const& header, IndexTarget const& target,
                        FrameLesson* lesson = nullptr);

/// `addToStream` for a stream that has been seen before; does nothing for none.
template <typename AddPacket>
void addToSeenStream(StreamRecord const& stream, IndexTarget const& target,
                     AddPacket const& addPacket) {
    if (auto const* const goose = std::get_if<Goose>(&stream)) {
        addToStream(target.db.gooseProto.streams, *goose, target.fileName, addPacket);
    } else if (auto const* const sv = std::get_if<Sv>(&stream)) {
        addToStream(target.db.svProto.streams, *sv, target.fileName, addPacket);
    }
}

}  // namespace TalIec61850Parser::detail
