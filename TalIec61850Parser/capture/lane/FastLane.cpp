#include <TalIec61850Parser/capture/FastLane.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <algorithm>
#include <limits>
#include <utility>

namespace TalIec61850Parser::detail {

namespace {

static_assert(FrameMemory::kMaxFrameSize <= std::numeric_limits<std::uint16_t>::max(),
              "a conclusion's positions are 16 bits wide");
/// Whether the plain walk would pass over what follows the PDU, as in the frame that the
/// conclusion is from.
bool passesOver(Octets tail, FrameConclusion const& conclusion) {
    return conclusion.place.sv != nullptr ? walkSavPduPassesOver(tail)
                                          : walkGoosePduPassesOver(tail);
}

/// What the records that are kept take at most, in octets.
constexpr std::size_t kMaxRecords = std::size_t{2} << 20U;

static_assert(kMaxRecords / sizeof(StreamRecord) <= std::numeric_limits<std::uint16_t>::max(),
              "a conclusion's number of its record is 16 bits wide");

/// What a frame's record takes at most: each octet of a name may be three of text.
constexpr std::size_t recordSize(Octets frame) { return sizeof(StreamRecord) + 3 * frame.size(); }

}  // namespace

void FastLane::afterProgress() {
    ++storeAge_;
    if (!filterImage_.shows(target_.filter)) {
        filterImage_ = FilterImage(target_.filter);
        memory_ = FrameMemory();
    }
}

void FastLane::indexUnexpected(FrameConclusion* known, Octets record, std::uint64_t position,
                               std::uint8_t kind) {
    Octets const frame = record.subspan(RecordHeader::kSize);
    if (known == nullptr) {
        known = memory_.find(frame, kind);
    }
    if (known == nullptr) {
        learn(record, position, kind);
        return;
    }
    if (known->tailPosition != 0 && !wire::isPlainlyUnreadable(tailOf(*known, frame)) &&
        !passesOver(tailOf(*known, frame), *known)) {
        indexPlainly(record, position, nullptr);
        return;
    }
    bool const isStale = known->place.file != nullptr && known->storeAge != storeAge_;
    known->storeAge = storeAge_;
    if (isStale && known->record == 0) {
        known->place = indexPlainly(record, position, nullptr).place;
        return;
    }
    auto const addPacket = [&](StreamPlace const& place) {
        known->place = place;
        indexLike(*known, record, position);
    };
    if (isStale) {
        addToSeenStream(records_[known->record - 1U], target_, addPacket);
    } else {
        addPacket(known->place);
    }
}

IndexedFrame FastLane::indexPlainly(Octets record, std::uint64_t position, FrameLesson* lesson) {
    ++plainCount_;
    return indexRecord(record, position, isLittleEndian_, target_, lesson);
}

FrameConclusion FastLane::conclude(IndexedFrame const& indexed, WalkTrace const& trace,
                                   std::uint64_t recordPosition) const {
    auto const narrow = [](std::uint64_t octets) { return static_cast<std::uint16_t>(octets); };
    FrameConclusion conclusion;
    conclusion.place = indexed.place;
    conclusion.storeAge = storeAge_;
    if (indexed.position != 0) {
        conclusion.packetPosition = narrow(indexed.position - recordPosition - RecordHeader::kSize);
    }
    conclusion.smpCntPosition = narrow(trace.number().position);
    conclusion.smpCntSize =
        static_cast<std::uint8_t>(std::min(trace.number().size, sizeof(std::uint16_t)));
    conclusion.tailPosition = narrow(trace.tail().position);
    conclusion.smpRate = indexed.smpRate;
    conclusion.noASDU = static_cast<std::uint8_t>(indexed.noASDU);
    return conclusion;
}

void FastLane::learn(Octets record, std::uint64_t position, std::uint8_t kind) {
    if (record.size() > FrameMemory::kMaxFrameSize || !memory_.wantsMore()) {
        indexPlainly(record, position, nullptr);
        return;
    }
    WalkTrace& trace = lesson_.trace;
    trace.reset();
    IndexedFrame const indexed = indexPlainly(record, position, &lesson_);
    if (trace.frame().empty()) {
        return;  // neither GOOSE nor SV: seen as fast as remembered
    }
    FrameConclusion const conclusion = conclude(indexed, trace, position);
    if (memory_.isEmpty()) {
        records_.clear();
        recordsSize_ = 0;
    }
    FrameConclusion* const remembered =
        memory_.remember(trace.frame(), trace.mask(), kind, conclusion);
    if (remembered != nullptr && conclusion.place.file != nullptr &&
        recordsSize_ + recordSize(trace.frame()) <= kMaxRecords) {
        recordsSize_ += recordSize(trace.frame());
        records_.push_back(std::move(lesson_.stream));
        remembered->record = static_cast<std::uint16_t>(records_.size());
    }
}

}  // namespace TalIec61850Parser::detail
