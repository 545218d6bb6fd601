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

/// Fills one column from packet `first` on.
template <typename Value, typename Member>
void fillColumn(std::byte* block, std::size_t first, std::span<PacketRow const> rows,
                Member const& member) {
    auto* const values = reinterpret_cast<Value*>(block) + first;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        values[i] = static_cast<Value>(rows[i].*member);
    }
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
    std::span<PacketRow const> const rows(stage_.get(), staged_);
    std::size_t const first = columns_.size_;
    auto const at = [&](std::size_t before) {
        return columns_.block_.get() + before * columns_.capacity_;
    };
    fillColumn<std::int64_t>(at(0), first, rows, &PacketRow::time);
    fillColumn<std::uint64_t>(at(8), first, rows, &PacketRow::frameOffset);
    fillColumn<std::uint32_t>(at(16), first, rows, &PacketRow::first);
    if (columns_.isGoose()) {
        fillColumn<std::uint32_t>(at(20), first, rows, &PacketRow::second);
    } else {
        fillColumn<std::uint16_t>(at(26), first, rows, &PacketRow::asdu);
        fillColumn<std::uint8_t>(at(28), first, rows, &PacketRow::second);
    }
    std::size_t const before = columns_.secondEnd();
    fillColumn<std::uint16_t>(at(before), first, rows, &PacketRow::pduOffset);
    fillColumn<std::uint16_t>(at(before + 2), first, rows, &PacketRow::sequence);
    fillColumn<std::uint16_t>(at(before + 4), first, rows, &PacketRow::flags);
    for (PacketRow const& row : rows) {
        allFlags_ |= row.flags;
        isSorted_ = isSorted_ && row.time >= lastTime_ && row.time != kNoTime;
        lastTime_ = row.time;
    }
    columns_.size_ += staged_;
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
