#include <TalIec61850Analysis/traffic/PacketRow.hpp>
#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

/// Octets of a packet in all columns.
constexpr std::size_t sizeOfPacket(StreamProtocol protocol) {
    return protocol == StreamProtocol::goose ? 30 : 29;
}

}  // namespace

void ColumnsWriter::makeRoom(std::uint64_t fileSize, std::uint64_t fileOffset) {
    if (stageSize_ < kMaxStageSize) {
        constexpr std::uint32_t kFirstStageSize = 2;
        std::uint32_t const size = std::max(2 * stageSize_, kFirstStageSize);
        auto larger = std::make_unique_for_overwrite<PacketRow[]>(size);
        std::copy_n(stage_.get(), staged_, larger.get());
        stage_ = std::move(larger);
        stageSize_ = size;
        return;
    }
    std::size_t const needed = size();
    if (needed > std::numeric_limits<std::uint32_t>::max() - kMaxStageSize) {
        throw std::bad_alloc();  // packets have numbers of 32 bits
    }
    if (needed > columns_.capacity_) {
        std::size_t capacity = 2 * needed;
        constexpr std::size_t kTold = 256;
        if (needed >= kTold && fileOffset != 0 && fileOffset < fileSize) {
            // As the packets so far are in the part of the file that was read, so they are in the
            // rest: mostly the columns need not grow again.
            double const share = static_cast<double>(fileSize) / static_cast<double>(fileOffset);
            constexpr double kReserve = 1.05;
            auto const told =
                static_cast<std::size_t>(static_cast<double>(needed) * share * kReserve);
            capacity = std::max(told, needed + needed / 4);
        }
        reserve(capacity);
    }
    flush();
}

void ColumnsWriter::flush() {
    if (columns_.isGoose()) {
        flushAs<StreamProtocol::goose>();
    } else {
        flushAs<StreamProtocol::sv>();
    }
}

template <StreamProtocol Protocol>
void ColumnsWriter::flushAs() {
    constexpr bool isGoose = Protocol == StreamProtocol::goose;
    std::size_t const first = columns_.size_;
    // Copies of what would be read again after each store.
    PacketRow const* const rows = stage_.get();
    std::uint32_t const count = staged_;
    auto const column = [&]<typename Value>(Value, std::size_t before) {
        return reinterpret_cast<Value*>(columns_.block_.get() + before * columns_.capacity_) +
               first;
    };
    auto* const times = column(std::int64_t{}, 0);
    auto* const frameOffsets = column(std::uint64_t{}, 8);
    auto* const firsts = column(std::uint32_t{}, 16);
    [[maybe_unused]] auto* const sqNums = column(std::uint32_t{}, 20);
    [[maybe_unused]] auto* const asdus = column(std::uint16_t{}, 26);
    [[maybe_unused]] auto* const smpSynchs = column(std::uint8_t{}, 28);
    std::size_t const before = columns_.secondEnd();
    auto* const pduOffsets = column(std::uint16_t{}, before);
    auto* const sequences = column(std::uint16_t{}, before + 2);
    auto* const flags = column(std::uint16_t{}, before + 4);
    std::uint16_t allFlags = allFlags_;
    bool isSorted = isSorted_;
    std::int64_t lastTime = lastTime_;
    // In two loops: for the pointers of all columns there are too few registers.
    for (std::uint32_t i = 0; i < count; ++i) {
        PacketRow const& row = rows[i];
        std::int64_t const time = row.time;
        times[i] = time;
        frameOffsets[i] = row.frameOffset;
        firsts[i] = row.first;
        if constexpr (isGoose) {
            sqNums[i] = row.second;
        }
        isSorted &= time >= lastTime && time != kNoTime;
        lastTime = time;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        PacketRow const& row = rows[i];
        pduOffsets[i] = row.pduOffset;
        sequences[i] = row.sequence;
        flags[i] = row.flags;
        if constexpr (!isGoose) {
            asdus[i] = row.asdu;
            smpSynchs[i] = static_cast<std::uint8_t>(row.second);
        }
        allFlags |= row.flags;
    }
    allFlags_ = allFlags;
    isSorted_ = isSorted;
    lastTime_ = lastTime;
    columns_.size_ += count;
    staged_ = 0;
}

void ColumnsWriter::reserve(std::size_t capacity) {
    // Each column is aligned for the widest.
    constexpr std::size_t kStep = sizeof(std::uint64_t);
    capacity = (capacity + kStep - 1) / kStep * kStep;
    auto block =
        std::make_unique_for_overwrite<std::byte[]>(capacity * sizeOfPacket(columns_.protocol_));
    constexpr std::array<std::size_t, 8> kGooseColumns = {0, 8, 16, 20, 24, 26, 28, 30};
    constexpr std::array<std::size_t, 9> kSvColumns = {0, 8, 16, 20, 22, 24, 26, 28, 29};
    auto const copy = [&](auto const& columns) {
        for (std::size_t i = 0; columns_.size_ != 0 && i + 1 < columns.size(); ++i) {
            std::memcpy(block.get() + columns[i] * capacity,
                        columns_.block_.get() + columns[i] * columns_.capacity_,
                        (columns[i + 1] - columns[i]) * columns_.size_);
        }
    };
    if (columns_.isGoose()) {
        copy(kGooseColumns);
    } else {
        copy(kSvColumns);
    }
    columns_.block_ = std::move(block);
    columns_.capacity_ = capacity;
}

PacketColumns ColumnsWriter::take(std::vector<WideRow> wide) {
    std::size_t const size = this->size();
    // Of small blocks, room that is not used lies among what is.
    constexpr std::size_t kSmallBlock = std::size_t{256} << 10U;
    bool const isSmall = columns_.capacity_ * sizeOfPacket(columns_.protocol_) < kSmallBlock;
    if (size > columns_.capacity_ || isSmall) {
        reserve(size);
    }
    flush();
    stage_.reset();
    stageSize_ = 0;
    columns_.hasRedundancy_ = PacketFlags{allFlags_}.redundancy() != Redundancy::none;
    columns_.hasTimes_ = isSorted_;
    if (!isSorted_) {
        sort(columns_);
    }
    columns_.wide_.reserve(wide.size());
    for (WideRow& each : wide) {
        columns_.wide_.push_back({each.packet, each.isSecond, std::move(each.octets)});
    }
    return std::move(columns_);
}

void ColumnsWriter::sort(PacketColumns& columns) {
    auto const times = columns.times();
    for (std::uint32_t packet = 0; packet < times.size(); ++packet) {
        if (times[packet] != kNoTime) {
            columns.order_.push_back(packet);
        }
    }
    std::stable_sort(columns.order_.begin(), columns.order_.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return times[a] < times[b]; });
    columns.order_.shrink_to_fit();
}

}  // namespace TalIec61850Analysis::detail
