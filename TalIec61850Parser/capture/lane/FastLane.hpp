#pragma once

// Internal: indexes most records without walking them, by what was concluded from earlier ones.

#include <TalIec61850Parser/capture/FilterImage.hpp>
#include <TalIec61850Parser/capture/FrameIndex.hpp>
#include <TalIec61850Parser/capture/FrameMemory.hpp>
#include <TalIec61850Parser/capture/RecordReader.hpp>
#include <TalIec61850Parser/codec/BerValue.hpp>
#include <TalIec61850Parser/wire/BerReader.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <cstdint>
#include <vector>

namespace TalIec61850Parser::detail {

/// The remembered walk in front of the plain one, `indexRecord`: same store, whatever the records.
///
/// A publisher's next frame mostly differs in counters, times and values that indexing never looks
/// at. What the plain walk concludes from a frame (not wanted, or which stream, and where in the
/// frame its packet and its smpCnt lie) is a function of
///
/// - the frame's size, since the record's is 16 more;
/// - the LAN that a PRP trailer at its end names, or that there is none: `readPrpLan`;
/// - the octets that the walk looked at, all but those that its WalkTrace says it passed over:
///   values that are nobody's identity, the rest of a rejected frame, a sequence number of HSR;
/// - that it passes over the octets behind the PDU, if it did: a sequence number of PRP is there;
/// - the capture file, which is the same for all records of a lane;
/// - the filter, and the store as far as it holds the stream and its file: see `afterProgress`.
///
/// So a frame that agrees with a remembered one in the first three, and passes the test of the
/// fourth, gets the conclusion drawn from that one. What differs per frame is read from it: time
/// and position of its record, and smpCnt. The store is only added to as long as nobody else gets
/// hold of it; after that a conclusion is used again once its stream and file have been found in
/// the store, or added to it, as the plain walk does. When the filter has changed, all is
/// forgotten. Every other frame takes the plain walk, the only place that knows the rules.
class FastLane {
public:
    /// @param target  what it refers to outlives the lane
    FastLane(IndexTarget const& target, bool isLittleEndian)
        : target_(target), filterImage_(target.filter), isLittleEndian_(isLittleEndian) {}

    /// `indexRecord`.
    void index(Octets record, std::uint64_t position);

    /// Somebody else had hold of the store and of the filter.
    void afterProgress();

    /// How many records took the plain walk.
    [[nodiscard]] std::uint64_t plainCount() const { return plainCount_; }

private:
    [[nodiscard]] static Octets tailOf(FrameConclusion const& conclusion, Octets frame) {
        return frame.subspan(conclusion.tailPosition);
    }

    void indexLike(FrameConclusion const& conclusion, Octets record, std::uint64_t position) const;
    void indexUnexpected(FrameConclusion* known, Octets record, std::uint64_t position,
                         std::uint8_t kind);
    IndexedFrame indexPlainly(Octets record, std::uint64_t position, FrameLesson* lesson);
    [[nodiscard]] FrameConclusion conclude(IndexedFrame const& indexed, WalkTrace const& trace,
                                           std::uint64_t recordPosition) const;
    void learn(Octets record, std::uint64_t position, std::uint8_t kind);

    IndexTarget target_;
    FilterImage filterImage_;
    bool isLittleEndian_;
    std::uint32_t storeAge_ = 0;
    std::uint64_t plainCount_ = 0;
    FrameMemory memory_;
    FrameLesson lesson_;
    // The streams that conclusions are about, to find them in the store again.
    std::vector<StreamRecord> records_;
    std::size_t recordsSize_ = 0;
};

inline void FastLane::index(Octets record, std::uint64_t position) {
    Octets const frame = record.subspan(RecordHeader::kSize);
    auto const kind = static_cast<std::uint8_t>(wire::readPrpLan(record).value_or(0));
    FrameConclusion* const known = memory_.findNextInTurn(frame, kind);
    if (known != nullptr && known->storeAge == storeAge_ &&
        (known->tailPosition == 0 || wire::isPlainlyUnreadable(tailOf(*known, frame)))) [[likely]] {
        indexLike(*known, record, position);
    } else {
        indexUnexpected(known, record, position, kind);
    }
}

inline void FastLane::indexLike(FrameConclusion const& conclusion, Octets record,
                                std::uint64_t position) const {
    if (conclusion.place.file == nullptr) {
        return;
    }
    // Written where it lies: copied as a whole, it would have to wait for its parts.
    Package& package = conclusion.place.file->packages.emplace_back();
    if (conclusion.packetPosition != 0) [[likely]] {
        auto const header = RecordHeader::read(record, isLittleEndian_);
        package.time = packetTime(header.tsSec, header.tsUsec, target_.isNanosecond);
        package.position = position + RecordHeader::kSize + conclusion.packetPosition;
    }
    ++*conclusion.place.packetCount;
    if (conclusion.place.sv != nullptr) {
        auto const smpCnt = toUint16(
            record.subspan(RecordHeader::kSize + conclusion.smpCntPosition, conclusion.smpCntSize));
        follow(*conclusion.place.sv, smpCnt, conclusion.smpRate, conclusion.noASDU);
    }
}

}  // namespace TalIec61850Parser::detail
