#pragma once

// Internal: packets as they are collected, before they become columns.

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace TalIec61850Analysis::detail {

/// All that is kept of a packet: half a cache line, written at once.
struct PacketRow {
    std::int64_t time;
    std::uint64_t frameOffset;
    std::uint32_t first;
    std::uint32_t second;
    std::uint16_t pduOffset;
    std::uint16_t sequence;
    std::uint16_t flags;
    std::uint16_t asdu;
};
static_assert(sizeof(PacketRow) == 32);

/// Collects the packets of one stream. Each is written as a row; full rows become columns a few at
/// a time, since a packet's place in every column would be another page.
class ColumnsWriter {
public:
    /// A stream that has few packets takes little room.
    explicit ColumnsWriter(StreamProtocol protocol) { columns_.protocol_ = protocol; }

    /// Room for one more packet, not initialised.
    /// @param fileSize    octets of the file; 0 where that is not known
    /// @param fileOffset  of the packet: how much of the file has been read
    [[nodiscard]] PacketRow& add(std::uint64_t fileSize, std::uint64_t fileOffset) {
        if (staged_ == stageSize_) [[unlikely]] {
            makeRoom(fileSize, fileOffset);
        }
        return stage_[staged_++];
    }
    /// Adds the packets that columns have from one on.
    void addAll(PacketColumns const& columns, std::size_t from);

    /// How many packets were added.
    [[nodiscard]] std::size_t size() const { return columns_.size_ + staged_; }

    /// Keeps a counter that no column holds, of the packet that was added last: the first one
    /// before the second.
    void addWide(bool isSecond, Octets octets) {
        columns_.wide_.push_back(
            {static_cast<std::uint32_t>(size() - 1), isSecond, toOwned(octets)});
    }

    /// To be called last.
    [[nodiscard]] PacketColumns take();

    /// Flags that are found only when all packets are known can be set, of some packets.
    static std::span<PacketFlags> flags(PacketColumns& columns);
    /// Takes a flag from all packets.
    /// @param bit  of PacketFlags
    static void clearFlag(PacketColumns& columns, std::uint16_t bit);
    /// Takes a length from all times, in nanoseconds; their order stays.
    static void takeFromTimes(PacketColumns& columns, std::int64_t length);

private:
    static constexpr std::size_t kMaxStageSize = 16;

    void makeRoom(std::uint64_t fileSize, std::uint64_t fileOffset);
    /// Puts the staged rows into the columns, which have room for them.
    void flush();
    template <StreamProtocol Protocol>
    void flushAs();
    void flushMarks(std::uint32_t together);
    void noteOrderAndFlags();
    void noteCommon();
    void spreadWhatDiffers();
    template <typename Value>
    static void spread(PacketColumns& columns, PacketColumns::CommonValue<Value>& common,
                       std::size_t place);
    void reserve(std::size_t capacity);
    static void sort(PacketColumns& columns);

    // What each packet needs, together.
    std::unique_ptr<PacketRow[]> stage_;
    std::uint32_t staged_ = 0;
    std::uint32_t stageSize_ = 0;
    PacketColumns columns_;
    bool isSorted_ = true;
    std::uint16_t allFlags_ = 0;
    std::int64_t lastTime_ = kNoTime;
};

}  // namespace TalIec61850Analysis::detail
