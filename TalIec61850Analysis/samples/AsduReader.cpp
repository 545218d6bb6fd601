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
