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
    return conclusion.sv != nullptr ? walkSavPduPassesOver(tail) : walkGoosePduPassesOver(tail);
}

void takePlace(IndexedFrame const& indexed, std::uint32_t storeAge, FrameConclusion& conclusion) {
    conclusion.file = indexed.file;
    conclusion.packetCount = indexed.packetCount;
    conclusion.sv = indexed.sv;
    conclusion.storeAge = storeAge;
}

/// A stream's record takes about half a kilobyte, its texts included.
constexpr std::size_t kMaxStreams = 4096;

}  // namespace

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
    if (known->tailPosition != 0 && !isPlainlyUnreadable(tailOf(*known, frame)) &&
        !passesOver(tailOf(*known, frame), *known)) {
        indexPlainly(record, position, nullptr);
        return;
    }
    bool const isCurrent = known->file == nullptr || known->storeAge == storeAge_;
    if (!isCurrent && known->record == 0) {
        takePlace(indexPlainly(record, position, nullptr), storeAge_, *known);
        return;
    }
    if (!isCurrent) {
        takePlace(findOrAddStream(streams_[known->record - 1U], target_), storeAge_, *known);
    }
    indexLike(*known, record, position);
}

IndexedFrame FastLane::indexPlainly(Octets record, std::uint64_t position, FrameLesson* lesson) {
    ++plainCount_;
    return indexRecord(record, position, isLittleEndian_, target_, lesson);
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
    auto const narrow = [](std::uint64_t octets) { return static_cast<std::uint16_t>(octets); };
    FrameConclusion conclusion;
    takePlace(indexed, storeAge_, conclusion);
    if (indexed.position != 0) {
        conclusion.packetPosition = narrow(indexed.position - position - RecordHeader::kSize);
    }
    conclusion.smpCntPosition = narrow(trace.number().position);
    conclusion.smpCntSize =
        static_cast<std::uint8_t>(std::min(trace.number().size, sizeof(std::uint16_t)));
    conclusion.tailPosition = narrow(trace.tail().position);
    conclusion.smpRate = indexed.smpRate;
    conclusion.noASDU = static_cast<std::uint8_t>(indexed.noASDU);
    conclusion.record = keep(std::move(lesson_.stream));
    memory_.remember(trace.frame(), trace.mask(), kind, conclusion);
}

/// @return what FrameConclusion says of its record
std::uint16_t FastLane::keep(StreamRecord&& stream) {
    if (memory_.isEmpty()) {
        streams_.clear();
    }
    if (std::holds_alternative<std::monostate>(stream) || streams_.size() == kMaxStreams) {
        return 0;
    }
    streams_.push_back(std::move(stream));
    return static_cast<std::uint16_t>(streams_.size());
}

}  // namespace TalIec61850Parser::detail
