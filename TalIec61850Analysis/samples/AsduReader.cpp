#include <TalIec61850Analysis/samples/AsduReader.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace TalIec61850Analysis::detail {

std::shared_ptr<CaptureWindow> windowOf(TrafficIndex const& index) {
    return std::make_shared<CaptureWindow>(index);
}

AsduReader::AsduReader(TrafficIndex const& index, TrafficStream const& stream)
    : AsduReader(index, stream, windowOf(index)) {}

AsduReader::AsduReader(TrafficIndex const& index, TrafficStream const& stream,
                       std::shared_ptr<CaptureWindow> window)
    : index_(index), stream_(stream), window_(std::move(window)) {}

ReadAsdu AsduReader::readAt(Octets sequence, AsduPlaces const& places, std::uint64_t offset) {
    ReadAsdu read{.fileOffset = offset + places.asdu,
                  .data = sequence.subspan(places.data, places.dataSize)};
    if (places.refrTm != 0) {
        if (auto const time = readUtcTime(sequence.subspan(places.refrTm, kUtcTimeSize))) {
            // A publisher whose clock does not run, or is not set yet, knows no time.
            bool const isKnown = time->seconds != 0 && !time->clockFailure();
            read.refrTm = isKnown ? time->nanosecondsSince1970() : kNoTime;
            read.timeQuality = time->quality;
            read.hasTimeQuality = true;
        }
    }
    if (places.gmIdentity != 0) {
        read.gmIdentity = sequence.subspan(places.gmIdentity, kGmIdentitySize);
    }
    return read;
}

/// Finds the sequences of ASDU of packets that follow each other, as long as they were read already
/// and have an ASDU of the shape that was met last.
/// @param sequences  set to where each is
/// @return how many
std::size_t AsduReader::findAlike(PacketRef first, std::span<std::uint8_t const*> sequences) const {
    // Compared together; where shapes take turns, few are compared in vain.
    constexpr std::size_t kTogether = 8;
    std::size_t alike = 0;
    while (alike < sequences.size()) {
        PacketRef const next{.part = first.part,
                             .packet = first.packet + static_cast<std::uint32_t>(alike)};
        auto const some = sequences.subspan(alike, std::min(kTogether, sequences.size() - alike));
        std::size_t const count = shapes_.countLast(some.first(findHeld(next, some)));
        alike += count;
        if (count < some.size()) {
            break;
        }
    }
    return alike;
}

/// The same for those that may have one, by the columns.
std::size_t AsduReader::findHeld(PacketRef first, std::span<std::uint8_t const*> sequences) const {
    StreamPart const& part = stream_.parts[first.part];
    PacketColumns const& packets = part.packets;
    std::uint64_t const* const frames = packets.frameOffsets().data() + first.packet;
    ColumnView<std::uint16_t> const pdus = packets.pduOffsets();
    ColumnView<std::uint16_t> const asdus = packets.asdus();
    ColumnView<PacketFlags> const flags = packets.flags();
    std::size_t const number = shapes_.lastNumber();
    std::size_t const reach = shapes_.reach();
    CaptureWindow::Held const held = window_->held(part.file);
    for (std::size_t i = 0; i < sequences.size(); ++i) {
        std::size_t const packet = first.packet + i;
        sequences[i] = held.at(frames[i] + pdus[packet], reach);
        if (sequences[i] == nullptr || flags[packet].isCut() || asdus[packet] != number)
            [[unlikely]] {
            return i;
        }
    }
    return sequences.size();
}

/// Octets that were captured from the sequence of ASDU on, of a frame that was cut.
std::size_t AsduReader::capturedAfter(PacketRef ref) {
    StreamPart const& part = stream_.parts[ref.part];
    if (!cutFrames_ || cutFile_ != part.file) {
        cutFrames_.emplace(index_.files()[part.file].summary.path);
        cutFile_ = part.file;
    }
    auto const record = cutFrames_->recordAt(part.packets.frameOffsets()[ref.packet]);
    std::size_t const before = part.packets.pduOffsets()[ref.packet];
    return record && record->capturedSize > before ? record->capturedSize - before : 0;
}

ReadAsdu AsduReader::readPlainly(PacketRef ref, std::uint64_t offset, std::size_t number) {
    StreamPart const& part = stream_.parts[ref.part];
    PacketFlags const flags = part.packets.flags()[ref.packet];
    std::size_t const size =
        flags.isCut() ? std::min(capturedAfter(ref), kLongestSequence) : kLongestSequence;
    Octets const sequence = window_->at(part.file, offset, size);
    auto const places = findAsdu(sequence, number, &mask_);
    if (!places) {
        throw std::system_error(ESTALE, std::generic_category());
    }
    if (!flags.isCut() && !flags.isDamaged()) {
        shapes_.learn(sequence, number, *places, mask_);
    }
    return readAt(sequence, *places, offset);
}

}  // namespace TalIec61850Analysis::detail
