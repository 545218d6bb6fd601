#include <TalIec61850Parser/capture/lane/FastLane.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <algorithm>
#include <limits>
#include <utility>

namespace TalIec61850Parser::detail {

namespace {

using FrameMemory = wire::FrameMemory<WalkResult>;

static_assert(FrameMemory::kMaxFrameSize <= std::numeric_limits<std::uint16_t>::max(),
              "the indices of a result are 16 bits wide");

/// Whether the plain walk would pass over what follows the PDU, as in the frame that the result is
/// from.
bool passesOver(Octets tail, WalkResult const& result) {
    return result.place.sv != nullptr ? walkSavPduPassesOver(tail) : walkGoosePduPassesOver(tail);
}

/// What the streams that are kept take at most, in octets.
constexpr std::size_t kMaxStreams = std::size_t{2} << 20U;

static_assert(kMaxStreams / sizeof(KnownStream) <= std::numeric_limits<std::uint16_t>::max(),
              "the number of a stream is 16 bits wide");

/// What a frame's stream takes at most: each octet of a name may be three of text.
constexpr std::size_t streamSize(Octets frame) { return sizeof(KnownStream) + 3 * frame.size(); }

}  // namespace

void FastLane::afterProgress() {
    ++storeAge_;
    if (!filterImage_.shows(target_.filter)) {
        filterImage_ = FilterImage(target_.filter);
        memory_ = FrameMemory();
    }
}

void FastLane::indexUnexpected(WalkResult* known, Octets record, std::uint64_t fileOffset,
                               std::uint8_t prpLan) {
    Octets const frame = record.subspan(wire::RecordHeader::kSize);
    if (known == nullptr) {
        known = memory_.find(frame, prpLan);
    }
    if (known == nullptr) {
        learn(record, fileOffset, prpLan);
        return;
    }
    if (known->tailIndex != 0 && !wire::isPlainlyUnreadable(tailOf(*known, frame)) &&
        !passesOver(tailOf(*known, frame), *known)) {
        walk(record, fileOffset, nullptr);
        return;
    }
    bool const isStale = known->place.file != nullptr && known->storeAge != storeAge_;
    known->storeAge = storeAge_;
    if (isStale) {
        indexStale(*known, record, fileOffset);
    } else {
        indexKnown(*known, record, fileOffset);
    }
}

void FastLane::indexStale(WalkResult& known, Octets record, std::uint64_t fileOffset) {
    if (known.streamNumber == 0) {
        known.place = walk(record, fileOffset, nullptr).place;
        return;
    }
    KnownStream& stream = streams_[known.streamNumber - 1U];
    known.place = stream.findQuickly(target_.db, target_.fileName);
    if (known.place.file != nullptr) {
        indexKnown(known, record, fileOffset);
        return;
    }
    addToSeenStream(stream.record(), target_, [&](StreamPlace const& place) {
        known.place = place;
        indexKnown(known, record, fileOffset);
    });
    stream.noteBucket(target_.db);
}

WalkResult FastLane::resultOf(IndexedFrame const& indexed, WalkTrace const& trace,
                              std::uint64_t recordOffset) const {
    auto const narrow = [](std::uint64_t index) { return static_cast<std::uint16_t>(index); };
    WalkResult result;
    result.place = indexed.place;
    result.storeAge = storeAge_;
    if (indexed.fileOffset != 0) {
        result.packetIndex = narrow(indexed.fileOffset - recordOffset - wire::RecordHeader::kSize);
    }
    result.smpCntIndex = narrow(trace.number().index);
    result.smpCntSize =
        static_cast<std::uint8_t>(std::min(trace.number().size, sizeof(std::uint16_t)));
    result.tailIndex = narrow(trace.tail().index);
    result.smpRate = indexed.figures.smpRate;
    result.noASDU = static_cast<std::uint8_t>(indexed.figures.noASDU);
    return result;
}

void FastLane::learn(Octets record, std::uint64_t fileOffset, std::uint8_t prpLan) {
    bool const fits = record.size() - wire::RecordHeader::kSize <= FrameMemory::kMaxFrameSize;
    if (!fits || !memory_.wantsMore()) {
        walk(record, fileOffset, nullptr);
        return;
    }
    WalkTrace& trace = traced_.trace;
    trace.reset();
    IndexedFrame const indexed = walk(record, fileOffset, &traced_);
    if (trace.frame().empty()) {
        return;  // Neither GOOSE nor SV: rejecting it is as cheap as looking it up.
    }
    WalkResult const result = resultOf(indexed, trace, fileOffset);
    if (memory_.isEmpty()) {
        streams_.clear();
        streamsSize_ = 0;
    }
    WalkResult* const remembered = memory_.remember(trace.frame(), trace.mask(), prpLan, result);
    if (remembered != nullptr && result.place.file != nullptr &&
        streamsSize_ + streamSize(trace.frame()) <= kMaxStreams) {
        streamsSize_ += streamSize(trace.frame());
        streams_.emplace_back(std::move(traced_.stream));
        remembered->streamNumber = static_cast<std::uint16_t>(streams_.size());
    }
}

}  // namespace TalIec61850Parser::detail
