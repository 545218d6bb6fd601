#pragma once

// Internal: the index of one capture, frame by frame.

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/traffic/AttributeTable.hpp>
#include <TalIec61850Analysis/traffic/CaptureSummary.hpp>
#include <TalIec61850Analysis/traffic/PacketRow.hpp>
#include <TalIec61850Analysis/traffic/RecordCounter.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <TalIec61850Analysis/traffic/WalkFrame.hpp>
#include <TalIec61850Parser/wire/pattern/FrameMemory.hpp>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <optional>
#include <unordered_map>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Whether results of walks are used again for frames of the same pattern. The index is the same.
enum class WalkMemory : std::uint8_t { on, off };

/// Indexes the frames of one file. Frames are walked by the plain rules, walkFrame; the result of a
/// walk is used again for each frame that agrees in all that the walk says is significant. What
/// differs per packet is read from the frame: counters, time and place, HSR tag and PRP trailer.
class FileIndexer {
public:
    /// @param keeps  as TrafficOptions::keeps; must outlive the indexer
    explicit FileIndexer(std::function<bool(StreamKey const&)> const& keeps,
                         WalkMemory memory = WalkMemory::on)
        : keeps_(keeps), memoryUse_(memory) {}
    explicit FileIndexer(std::function<bool(StreamKey const&)>&& keeps,
                         WalkMemory memory = WalkMemory::on) = delete;
    FileIndexer(FileIndexer const&) = delete;
    FileIndexer& operator=(FileIndexer const&) = delete;

    /// Adds a frame.
    void add(RecordView const& view);

    /// What is counted; path, size and the end of the file are for the caller to set.
    [[nodiscard]] CaptureSummary& summary() { return file_.summary; }

    /// The streams in the order of their keys.
    /// @param number  of the file
    [[nodiscard]] std::vector<TrafficStream> takeStreams(std::uint32_t number);
    /// To be taken last.
    [[nodiscard]] IndexedFile takeFile();

private:
    /// A stream as it is collected. What each packet needs is in its first cache line.
    struct alignas(64) Collected {
        explicit Collected(StreamProtocol of) : protocol(of), packets(of) {}

        std::uint32_t attributes = std::numeric_limits<std::uint32_t>::max();
        StreamProtocol protocol;
        bool isKept = true;
        ColumnsWriter packets;
        StreamKey const* key = nullptr;
        std::vector<AttributeChange> changes;
    };
    /// Where a packet of a frame goes, and its counters.
    struct Target {
        /// Null where the stream is not wanted.
        Collected* stream = nullptr;
        CounterPlace first;
        CounterPlace second;
        std::uint32_t attributes = 0;
        std::uint16_t asdu = 0;
        std::uint16_t flags = 0;
    };
    /// What the walk of a frame resulted in: a cache line, of which there are as many as patterns.
    struct alignas(64) Result {
        Target target;
        /// Index in the frame.
        std::uint64_t pduEnd = 0;
        /// Among the targets that are kept apart; the first of the frame is above.
        std::uint32_t firstOther = 0;
        std::uint32_t otherCount = 0;
        std::uint16_t lsduOffset = 0;
        std::uint16_t pduOffset = 0;
        StreamProtocol protocol = StreamProtocol::goose;
        bool hasHsr = false;
        bool hasTarget = false;
        /// Whether there is room for a PRP trailer after the PDU, and no HSR tag.
        bool mayHaveTrailer = false;
        /// Whether octets are after the PDU, and the frame's end was captured.
        bool hasTail = false;
        /// A frame with one packet that is wanted, with plain counters, and without an HSR tag.
        bool isUsual = false;
        std::optional<UnreadReason> unread = {};
    };
    static_assert(sizeof(Result) == 64);
    /// What an HSR tag or a PRP trailer adds to a packet.
    struct RedundancyMark {
        std::uint16_t sequence = 0;
        std::uint16_t flags = 0;
        /// Index in the frame of the PRP trailer; the size of the frame without one.
        std::size_t tailEnd = 0;
    };
    /// Both counters, where columns hold them whatever their octets are.
    struct PlainCounters {
        std::uint32_t first = 0;
        std::uint32_t second = 0;
        std::uint16_t flags = 0;
    };
    using Memory = TalIec61850Parser::wire::FrameMemory<Result>;

    [[nodiscard]] bool walk(RecordView const& view, std::uint8_t variety);
    [[nodiscard]] Result resultOf(RecordView const& view, std::vector<Target>& others);
    [[nodiscard]] Target targetOf(WalkedPacket const& packet);
    [[nodiscard]] Collected& streamOf(StreamKey key);
    [[nodiscard]] static RedundancyMark trailerOf(Result const& result, Octets frame);
    [[nodiscard]] static RedundancyMark hsrTagOf(Result const& result, RecordView const& view);
    [[nodiscard]] static RedundancyMark markOf(Result const& result, RecordView const& view);
    [[nodiscard]] static bool hasPlainCounters(Target const& target);
    [[nodiscard]] static PlainCounters plainCounters(Target const& target, StreamProtocol protocol,
                                                     Octets frame);
    void countFrame(StreamProtocol protocol);
    void countTail(Result const& result, Octets frame, std::size_t tailEnd);
    void addUsual(Result const& result, RecordView const& view);
    void addFrame(Result const& result, Target const* others, RecordView const& view);
    void addPacket(Target const& target, PacketRow row, Octets frame) const;
    [[nodiscard]] PacketRow& addRow(Target const& target, std::uint64_t frameOffset) const;
    static void readOddCounters(Target const& target, Octets frame, PacketRow& row);

    // The aligned one first, the small one last: less of the class is padding.
    Result walked_;
    std::function<bool(StreamKey const&)> const& keeps_;
    IndexedFile file_;
    RecordCounter counter_{file_.summary};
    AttributeTable attributes_;
    std::unordered_map<StreamKey, Collected*, StreamKeyHash> byKey_;
    std::deque<Collected> streams_;

    Memory memory_;
    /// Of frames with several packets that are remembered.
    std::vector<Target> otherTargets_;
    FrameWalk walk_;
    std::vector<Target> walkedTargets_;
    WalkMemory memoryUse_;
};

}  // namespace TalIec61850Analysis::detail
