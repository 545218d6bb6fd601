#pragma once

// Internal: who lost what is missing.

#include <TalIec61850Analysis/supervision/CaptureDrops.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Asks all that came between the packet before a gap and the one after it.
class LossWitnesses {
public:
    /// Both must outlive this.
    LossWitnesses(TrafficIndex const& index, std::vector<CaptureDrop> const& drops)
        : index_(index), drops_(drops) {}

    /// Sets cause and witness of a gap of a stream.
    /// @param finding  with both packets, and their files
    void judge(Finding& finding) const;

private:
    /// The time between the two packets, and where it is looked at.
    struct Hole {
        std::size_t stream = 0;
        std::int64_t from = 0;
        std::int64_t until = 0;
        /// In their order of time.
        std::vector<std::uint32_t> files;
        /// Frames that are missing, at least.
        std::uint64_t lost = 1;
        /// When the first and the last of them should have come.
        std::int64_t firstLost = 0;
        std::int64_t lastLost = 0;

        [[nodiscard]] bool isIn(std::uint32_t file) const;
    };
    /// What one stream did meanwhile.
    struct Meanwhile {
        /// Packets that go on from the one before.
        std::uint64_t inSequence = 0;
        /// Those of them that came while frames were lost.
        std::uint64_t inLoss = 0;
        bool hasLost = false;
        /// Whether it should have sent, and may be asked.
        bool isDue = false;
    };
    class Look;
    /// The same of all other streams.
    struct Others {
        /// Streams that should have sent.
        std::size_t due = 0;
        /// Those of them that lost packets.
        std::size_t lost = 0;
        std::uint64_t inSequence = 0;
        /// Of these, frames of other sources than the hole's.
        std::uint64_t inSequenceOfOtherSources = 0;
        /// Of streams that lost nothing, what came while frames were lost.
        std::uint64_t ranOn = 0;
    };

    /// The files from one to another; not set where it is not clear which are between them.
    [[nodiscard]] std::optional<std::vector<std::uint32_t>> filesOf(
        FindingPlace const& before, FindingPlace const& after) const;
    [[nodiscard]] Others lookAtOthers(Hole const& hole) const;
    [[nodiscard]] Meanwhile lookAt(std::size_t stream, Hole const& hole) const;
    [[nodiscard]] std::vector<StreamPart const*> partsOf(std::size_t stream,
                                                         Hole const& hole) const;
    [[nodiscard]] Hole holeOf(Finding const& finding, std::vector<std::uint32_t> files) const;
    [[nodiscard]] std::uint64_t samplesInFrame(std::size_t stream, PacketRef packet) const;
    /// Counted at records; 0 where they may be of another interface.
    [[nodiscard]] std::uint64_t dropsIn(Hole const& hole) const;
    /// How many redundancy numbers of the source are missing; not set where it has none.
    [[nodiscard]] std::optional<std::uint64_t> missingNumbers(Finding const& finding,
                                                              Hole const& hole,
                                                              std::uint64_t& seen) const;

    TrafficIndex const& index_;
    std::vector<CaptureDrop> const& drops_;
};

/// Whether any count of drops is one of an interface: packets that were dropped in some time.
[[nodiscard]] bool haveStatistics(std::vector<CaptureDrop> const& drops);

/// Gives losses of which nothing else tells the cause to the capture, where the interface of their
/// file dropped packets in a time that all of the loss is in: only where it dropped at least as
/// many as are missing in that time, of all streams together, no matter what lost them.
/// @param findings  of all streams, those of a capture itself not among them
void judgeByStatistics(TrafficIndex const& index, std::vector<CaptureDrop> const& drops,
                       std::vector<Finding>& findings);

}  // namespace TalIec61850Analysis::detail
