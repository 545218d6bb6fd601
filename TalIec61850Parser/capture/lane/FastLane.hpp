#pragma once

// Internal: indexes most records without walking them, by the results of earlier walks.

#include <TalIec61850Parser/capture/index/IndexFrame.hpp>
#include <TalIec61850Parser/capture/lane/FilterImage.hpp>
#include <TalIec61850Parser/capture/lane/KnownStream.hpp>
#include <TalIec61850Parser/capture/lane/WalkResult.hpp>
#include <TalIec61850Parser/codec/BerValue.hpp>
#include <TalIec61850Parser/wire/BerReader.hpp>
#include <TalIec61850Parser/wire/CaptureFormat.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <TalIec61850Parser/wire/pattern/FrameMemory.hpp>
#include <cstdint>
#include <vector>

namespace TalIec61850Parser::detail {

/// `indexRecord`, or something that does as much.
using PlainWalk = IndexedFrame (*)(Octets record, std::uint64_t fileOffset,
                                   IndexTarget const& target, TracedFrame* traced);

/// The memory of earlier walks before the plain one, `indexRecord`: same store, whatever the
/// records. docs/fast-lane.md draws it.
///
/// A publisher's next frame mostly differs in counters, times and values that indexing never looks
/// at. The result of the plain walk of a frame (not wanted, or which stream, and where in the frame
/// its packet and its smpCnt are) is a function of
///
/// - the frame's size, since the record's is 16 more;
/// - the LAN that a PRP trailer at its end names, or that there is none: `wire::readPrpLan`;
/// - the octets that the walk looked at, all but those that its WalkTrace says it passed over:
///   values that identify nothing, the rest of a rejected frame, a sequence number of HSR;
/// - that it passes over the octets after the PDU, if it did: a sequence number of PRP is there;
/// - the capture file, which is the same for all records of a lane;
/// - the filter, and the store as far as it holds the stream and its file: see `afterProgress`.
///
/// So a frame that agrees with a remembered one in the first three, and passes the test of the
/// fourth, gets the result of that one. What differs per frame is read from it: time and offset of
/// its record, and smpCnt. The store is only added to as long as nothing else has access to it;
/// after that a result is used again once its stream and file have been found in the store, or
/// added to it, as the plain walk does. When the filter has changed, everything is forgotten. Every
/// other frame takes the plain walk, the only place that knows the rules.
class FastLane {
public:
    /// @param target  what it refers to outlives the lane
    explicit FastLane(IndexTarget const& target, PlainWalk plainWalk = &indexRecord)
        : target_(target), walk_(plainWalk), filterImage_(target.filter) {}

    /// `indexRecord`.
    void index(Octets record, std::uint64_t fileOffset);

    /// Something else had access to the store and to the filter.
    void afterProgress();

private:
    [[nodiscard]] static Octets tailOf(WalkResult const& result, Octets frame) {
        return frame.subspan(result.tailIndex);
    }

    void indexKnown(WalkResult const& result, Octets record, std::uint64_t fileOffset) const;
    void indexUnexpected(WalkResult* known, Octets record, std::uint64_t fileOffset,
                         std::uint8_t prpLan);
    IndexedFrame walk(Octets record, std::uint64_t fileOffset, TracedFrame* traced) {
        return walk_(record, fileOffset, target_, traced);
    }
    [[nodiscard]] WalkResult resultOf(IndexedFrame const& indexed, WalkTrace const& trace,
                                      std::uint64_t recordOffset) const;
    void indexStale(WalkResult& known, Octets record, std::uint64_t fileOffset);
    void learn(Octets record, std::uint64_t fileOffset, std::uint8_t prpLan);

    IndexTarget target_;
    PlainWalk walk_;
    FilterImage filterImage_;
    std::uint32_t storeAge_ = 0;
    wire::FrameMemory<WalkResult> memory_;
    TracedFrame traced_;
    // The streams that results are about, to find them in the store again.
    std::vector<KnownStream> streams_;
    std::size_t streamsSize_ = 0;
};

inline void FastLane::index(Octets record, std::uint64_t fileOffset) {
    Octets const frame = record.subspan(wire::RecordHeader::kSize);
    auto const prpLan = static_cast<std::uint8_t>(wire::readPrpLan(record).value_or(0));
    WalkResult* const known = memory_.findNextInTurn(frame, prpLan);
    if (known != nullptr && known->storeAge == storeAge_ &&
        (known->tailIndex == 0 || wire::isPlainlyUnreadable(tailOf(*known, frame)))) [[likely]] {
        indexKnown(*known, record, fileOffset);
    } else {
        indexUnexpected(known, record, fileOffset, prpLan);
    }
}

inline void FastLane::indexKnown(WalkResult const& result, Octets record,
                                 std::uint64_t fileOffset) const {
    if (result.place.file == nullptr) {
        return;
    }
    // Written in place: copied as a whole, it would have to wait for its parts.
    Package& package = result.place.file->packages.emplace_back();
    if (result.packetIndex != 0) [[likely]] {
        auto const header = wire::RecordHeader::read(record, target_.variant.isLittleEndian);
        package.time = packetTime(header.tsSec, header.tsUsec, target_.variant.isNanosecond);
        package.position = fileOffset + wire::RecordHeader::kSize + result.packetIndex;
    }
    ++*result.place.packetCount;
    if (result.place.sv != nullptr) {
        auto const smpCnt = toUint16(
            record.subspan(wire::RecordHeader::kSize + result.smpCntIndex, result.smpCntSize));
        follow(*result.place.sv,
               {.smpCnt = smpCnt, .smpRate = result.smpRate, .noASDU = result.noASDU});
    }
}

}  // namespace TalIec61850Parser::detail
