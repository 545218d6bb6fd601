#pragma once

// Internal: one capture record on its way into the store, on octets in place.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/index/StreamPlace.hpp>
#include <TalIec61850Parser/codec/WalkTrace.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <TalIec61850Parser/store/Timest.hpp>
#include <TalIec61850Parser/wire/CaptureFormat.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>
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
    wire::CaptureVariant variant;
    Filter const& filter;
    Db& db;
};

/// A frame in a buffer, and where both come from.
struct CapturedFrame {
    Octets buffer;
    /// In `buffer`, of the frame's first octet; the frame reaches to the buffer's end.
    std::size_t index = 0;
    /// Of `buffer[0]` in the capture file.
    std::uint64_t fileOffset = 0;
    std::uint32_t tsSec = 0;
    /// In the file's own unit.
    std::uint32_t tsUsec = 0;
};

/// The time of a packet as the store keeps it, from a record of the target's file.
inline Timest packetTime(std::uint32_t tsSec, std::uint32_t tsUsec, bool isNanosecond) {
    return {tsSec, wire::toNanoseconds(tsUsec, isNanosecond)};
}

/// What one frame of an SV stream adds to its statistics.
struct SvFigures {
    std::uint16_t smpCnt = 0;
    std::uint16_t smpRate = 0;
    std::uint32_t noASDU = 0;
};

inline void follow(Sv const& stream, SvFigures const& figures) {
    stream.maxSmpCnt = std::max(stream.maxSmpCnt, figures.smpCnt);
    stream.smpRate = figures.smpRate;
    stream.maxNoASDU = std::max(stream.maxNoASDU, figures.noASDU);
}

/// A stream as one frame states it, without packets and statistics; none when it is not wanted.
using StreamRecord = std::variant<std::monostate, Goose, Sv>;

/// What the outcome of a frame depended on, and the stream that it was found to be of.
struct TracedFrame {
    WalkTrace trace;
    StreamRecord stream;
};

/// What became of a frame: where its packet went, and what of it went there.
struct IndexedFrame {
    /// None when the frame is not wanted.
    StreamPlace place;
    /// Of the packet in the capture file; 0 when the frame has no element to decode it from.
    std::uint64_t fileOffset = 0;
    /// Of an SV frame.
    SvFigures figures;
};

/// PcapPacketParser::parsePacket.
/// @param fileOffset  of `record[0]`
/// @param traced      given for a GOOSE or SV frame that the filter does not switch off, unless
///                    null: its trace is begun for no other frame
IndexedFrame indexRecord(Octets record, std::uint64_t fileOffset, IndexTarget const& target,
                         TracedFrame* traced = nullptr);

/// EthernetParser::parsePacket.
IndexedFrame indexFrame(CapturedFrame const& frame, IndexTarget const& target,
                        TracedFrame* traced = nullptr);

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
