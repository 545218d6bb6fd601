#pragma once

// Internal: ASDUs of indexed packets, read again from their captures.

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/samples/AsduShapes.hpp>
#include <TalIec61850Analysis/traffic/CaptureWindow.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace TalIec61850Analysis::detail {

/// What was read of an ASDU; valid until the next one is read.
struct ReadAsdu {
    /// Of its octet 30, in the file.
    std::uint64_t fileOffset = 0;
    /// Empty where there is none, or where it was cut.
    Octets data;
    /// In nanoseconds since 1970; kNoTime without refrTm, and where it says that it is no time: it
    /// is of 1970, or its clock failed.
    std::int64_t refrTm = kNoTime;
    /// The quality octet of refrTm; 0 without it.
    std::uint8_t timeQuality = 0;
    bool hasTimeQuality = false;
    /// Of the clock; empty where there is none.
    Octets gmIdentity = {};
};

/// The captures of an index.
[[nodiscard]] std::shared_ptr<CaptureWindow> windowOf(TrafficIndex const& index);

/// Reads the ASDUs of one stream.
class AsduReader {
public:
    /// @param index, stream  must outlive the reader
    AsduReader(TrafficIndex const& index, TrafficStream const& stream);
    /// Readers of streams that are gone through together share what is read at once.
    /// @param index, stream  must outlive the reader
    /// @param window         of the captures of the index
    AsduReader(TrafficIndex const& index, TrafficStream const& stream,
               std::shared_ptr<CaptureWindow> window);

    /// @throws std::system_error  the capture cannot be read, or no longer has the ASDU (ESTALE)
    [[nodiscard]] ReadAsdu read(PacketRef ref) {
        StreamPart const& part = stream_.parts[ref.part];
        PacketColumns const& packets = part.packets;
        std::uint64_t const offset =
            packets.frameOffsets()[ref.packet] + packets.pduOffsets()[ref.packet];
        std::size_t const number = packets.asdus()[ref.packet];
        if (!packets.flags()[ref.packet].isCut() && shapes_.reach() != 0) [[likely]] {
            Octets const sequence = window_->at(part.file, offset, shapes_.reach());
            if (AsduPlaces const* const places = shapes_.find(sequence, number)) [[likely]] {
                return readAt(sequence, *places, offset);
            }
        }
        return readPlainly(ref, offset, number);
    }

    /// Whether an ASDU of the shape that was met last tells the time, or the clock.
    [[nodiscard]] bool tellsClock() const {
        AsduPlaces const* const places = shapes_.last();
        return places != nullptr && (places->refrTm != 0 || places->gmIdentity != 0);
    }

    /// Reads ASDUs of packets that follow each other, as long as they are of the shape that was met
    /// last, without refrTm, and were read already.
    /// @param size        of the data that is wanted
    /// @param data        set to the octets of each; they stay until something else is read
    /// @param takeOffset  called with the number of each, from 0, and its place as of ReadAsdu
    /// @return how many; at most as many as `data` has room for
    template <typename TakeOffset>
    [[nodiscard]] std::size_t readAlike(PacketRef first, std::size_t size,
                                        std::span<std::uint8_t const*> data,
                                        TakeOffset const& takeOffset) const {
        AsduPlaces const* const places = shapes_.last();
        if (places == nullptr || places->refrTm != 0 || places->dataSize != size) {
            return 0;
        }
        std::size_t const toData = places->data;
        std::size_t const toAsdu = places->asdu;
        PacketColumns const& packets = stream_.parts[first.part].packets;
        std::uint64_t const* const frames = packets.frameOffsets().data() + first.packet;
        ColumnView<std::uint16_t> const pdus = packets.pduOffsets();
        std::size_t const alike = findAlike(first, data);
        for (std::size_t i = 0; i < alike; ++i) {
            data[i] += toData;
            takeOffset(i, frames[i] + pdus[first.packet + i] + toAsdu);
        }
        return alike;
    }

private:
    [[nodiscard]] static ReadAsdu readAt(Octets sequence, AsduPlaces const& places,
                                         std::uint64_t offset);
    [[nodiscard]] std::size_t findAlike(PacketRef first,
                                        std::span<std::uint8_t const*> sequences) const;
    [[nodiscard]] std::size_t findHeld(PacketRef first,
                                       std::span<std::uint8_t const*> sequences) const;
    [[nodiscard]] ReadAsdu readPlainly(PacketRef ref, std::uint64_t offset, std::size_t number);
    [[nodiscard]] std::size_t capturedAfter(PacketRef ref);

    TrafficIndex const& index_;
    TrafficStream const& stream_;
    std::shared_ptr<CaptureWindow> window_;
    AsduShapes shapes_;
    std::vector<std::uint8_t> mask_;
    /// Tells how much was captured of frames that were cut; not open before the first of them.
    std::optional<CaptureFile> cutFrames_;
    std::uint32_t cutFile_ = 0;
};

}  // namespace TalIec61850Analysis::detail
