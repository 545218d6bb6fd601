#include <TalIec61850Parser/capture/FastLane.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <limits>

namespace TalIec61850Parser::detail {

namespace {

static_assert(FrameMemory::kMaxFrameSize <= std::numeric_limits<std::uint16_t>::max(),
              "a conclusion's positions are 16 bits wide");

/// Whether the plain walk would pass over what follows the PDU, as in the frame that the
/// conclusion is from.
bool passesOver(Octets tail, FrameConclusion const& conclusion) {
    return conclusion.sv != nullptr ? walkSavPduPassesOver(tail) : walkGoosePduPassesOver(tail);
}

void takeStream(IndexedFrame const& indexed, std::uint32_t storeAge, FrameConclusion& conclusion) {
    conclusion.file = indexed.file;
    conclusion.packetCount = indexed.packetCount;
    conclusion.sv = indexed.sv;
    conclusion.storeAge = storeAge;
}

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
    if (known->storeAge != storeAge_) {
        takeStream(indexPlainly(record, position, nullptr), storeAge_, *known);
        return;
    }
    indexLike(*known, record, position);
}

IndexedFrame FastLane::indexPlainly(Octets record, std::uint64_t position, WalkTrace* trace) {
    ++plainCount_;
    return indexRecord(record, position, isLittleEndian_, target_, trace);
}

void FastLane::learn(Octets record, std::uint64_t position, std::uint8_t kind) {
    if (record.size() > FrameMemory::kMaxFrameSize || !memory_.wantsMore()) {
        indexPlainly(record, position, nullptr);
        return;
    }
    trace_.reset();
    IndexedFrame const indexed = indexPlainly(record, position, &trace_);
    if (trace_.frame().empty()) {
        return;  // neither GOOSE nor SV: seen as fast as remembered
    }
    auto const narrow = [](std::uint64_t octets) { return static_cast<std::uint16_t>(octets); };
    FrameConclusion conclusion;
    takeStream(indexed, storeAge_, conclusion);
    if (indexed.position != 0) {
        conclusion.packetPosition = narrow(indexed.position - position - RecordHeader::kSize);
    }
    conclusion.smpCntPosition = narrow(trace_.number().position);
    conclusion.smpCntSize = narrow(trace_.number().size);
    conclusion.tailPosition = narrow(trace_.tail().position);
    conclusion.smpRate = indexed.smpRate;
    conclusion.noASDU = static_cast<std::uint8_t>(indexed.noASDU);
    memory_.remember(trace_.frame(), trace_.mask(), kind, conclusion);
}

}  // namespace TalIec61850Parser::detail
