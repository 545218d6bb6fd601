#pragma once

// Internal: puts copies together and judges them.

#include <TalIec61850Analysis/redundancy/CopyGroup.hpp>
#include <TalIec61850Analysis/redundancy/CopyTally.hpp>
#include <TalIec61850Analysis/redundancy/FaultRuns.hpp>
#include <TalIec61850Analysis/redundancy/IndexedFrames.hpp>
#include <TalIec61850Analysis/redundancy/PairCopies.hpp>
#include <TalIec61850Analysis/redundancy/RedundantSources.hpp>
#include <TalIec61850Analysis/redundancy/TapClock.hpp>
#include <TalIec61850Analysis/redundancy/WatchedTime.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Is given frames in the order of a FrameCourse. What is held is what came within 400 ms.
class CopyPairer {
public:
    /// All must outlive this.
    CopyPairer(TrafficIndex const& index, RedundantSources const& sources,
               std::span<TapClock const> clocks, TimeWindow const& window);

    /// Takes a frame.
    /// @throws std::system_error  it cannot be read again
    void add(CourseFrame const& frame, RedundancyFaultSink sink);
    /// There are no more frames.
    void finish(RedundancyFaultSink sink);
    /// To be called last.
    [[nodiscard]] TrafficRedundancy result();

private:
    /// A group, in the order in which they were opened.
    struct Opened {
        CopyKey key;
        std::uint64_t number = 0;
        std::int64_t time = 0;
    };
    using Groups = std::unordered_map<CopyKey, CopyGroup, CopyKeyHash>;

    void settleOld(std::int64_t now, RedundancyFaultSink sink);
    [[nodiscard]] CopyGroup& groupOf(CourseFrame const& frame, CopyKey key, std::int64_t now,
                                     RedundancyFaultSink sink);
    void takeMisfit(CourseFrame const& frame, std::int64_t now, RedundancyFaultSink sink);
    void reportMisfit(CourseFrame const& frame, FramePacket const& packet);
    void judge(CopyGroup const& group, RedundancyFaultSink sink);
    [[nodiscard]] JudgedFrame judgedOf(CopyGroup const& group) const;
    void setDifference(CopyGroup const& group, JudgedFrame& judged) const;
    void reportFaults(CopyGroup const& group, JudgedFrame const& judged, std::size_t stream,
                      RedundancyFaultSink sink);

    TrafficIndex const& index_;
    RedundantSources const& sources_;
    std::span<TapClock const> clocks_;
    TimeWindow window_;
    WatchedTime watched_;
    IndexedFrames frames_;
    FaultRuns runs_;
    Groups groups_;
    std::deque<Opened> opened_;
    std::uint64_t nextNumber_ = 0;
    /// By source and way: when it was heard last, or kNoTime.
    std::vector<std::array<std::int64_t, 2>> heard_;
    /// By stream: the packet that came last.
    std::vector<std::optional<PacketRef>> last_;
    /// By stream: where its tally is, or kNone.
    std::vector<std::uint32_t> tallyOf_;
    std::vector<CopyTally> tallies_;
    /// By source.
    std::vector<CopyTally> sourceTallies_;
};

}  // namespace TalIec61850Analysis::detail
