#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <TalIec61850Analysis/traffic/PacketRow.hpp>
#include <TalIec61850Analysis/traffic/Vectors.hpp>
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

/// Rows that become columns together.
constexpr std::uint32_t kRowsAtOnce = 8;

/// What so many rows have of the columns that differ from packet to packet.
struct RowsAsNumbers {
    explicit RowsAsNumbers(PacketRow const* rows) {
        for (std::size_t i = 0; i < kRowsAtOnce / 2; ++i) {
            auto const a = load<TwoTimes>(&rows[2 * i].time);
            auto const b = load<TwoTimes>(&rows[2 * i + 1].time);
            times[i] = __builtin_shufflevector(a, b, 0, 2);
            frameOffsets[i] = __builtin_shufflevector(a, b, 1, 3);
        }
        for (std::size_t i = 0; i < kRowsAtOnce / 4; ++i) {
            PacketRow const* const four = rows + 4 * i;
            auto const ab = __builtin_shufflevector(load<FourWords>(&four[0].first),
                                                    load<FourWords>(&four[1].first), 0, 4, 1, 5);
            auto const cd = __builtin_shufflevector(load<FourWords>(&four[2].first),
                                                    load<FourWords>(&four[3].first), 0, 4, 1, 5);
            firsts[i] = __builtin_shufflevector(ab, cd, 0, 1, 4, 5);
            seconds[i] = __builtin_shufflevector(ab, cd, 2, 3, 6, 7);
        }
    }

    TwoTimes times[kRowsAtOnce / 2];
    TwoTimes frameOffsets[kRowsAtOnce / 2];
    FourWords firsts[kRowsAtOnce / 4];
    FourWords seconds[kRowsAtOnce / 4];
};

/// What they have of those that are mostly the same for all packets.
struct RowsAsMarks {
    explicit RowsAsMarks(PacketRow const* rows) {
        // Of four rows each: pduOffset and sequence, flags and asdu.
        EightShorts places[2];
        EightShorts marks[2];
        for (std::size_t i = 0; i < 2; ++i) {
            PacketRow const* const four = rows + 4 * i;
            auto const ab = __builtin_shufflevector(load<FourWords>(&four[0].first),
                                                    load<FourWords>(&four[1].first), 2, 6, 3, 7);
            auto const cd = __builtin_shufflevector(load<FourWords>(&four[2].first),
                                                    load<FourWords>(&four[3].first), 2, 6, 3, 7);
            FourWords const place = __builtin_shufflevector(ab, cd, 0, 1, 4, 5);
            FourWords const mark = __builtin_shufflevector(ab, cd, 2, 3, 6, 7);
            places[i] = load<EightShorts>(&place);
            marks[i] = load<EightShorts>(&mark);
        }
        pduOffsets = evenOf(places[0], places[1]);
        sequences = oddOf(places[0], places[1]);
        flags = evenOf(marks[0], marks[1]);
        asdus = oddOf(marks[0], marks[1]);
    }

    static EightShorts evenOf(EightShorts a, EightShorts b) {
        return __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14);
    }
    static EightShorts oddOf(EightShorts a, EightShorts b) {
        return __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15);
    }

    EightShorts pduOffsets;
    EightShorts sequences;
    EightShorts flags;
    EightShorts asdus;
};
static_assert(offsetof(PacketRow, frameOffset) == offsetof(PacketRow, time) + 8 &&
              offsetof(PacketRow, second) == offsetof(PacketRow, first) + 4 &&
              offsetof(PacketRow, pduOffset) == offsetof(PacketRow, first) + 8 &&
              offsetof(PacketRow, sequence) == offsetof(PacketRow, first) + 10 &&
              offsetof(PacketRow, flags) == offsetof(PacketRow, first) + 12 &&
              offsetof(PacketRow, asdu) == offsetof(PacketRow, first) + 14);

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
            // A file may be large and hold nothing more: room follows the packets that are there.
            constexpr double kMostGrowth = 1024;
            auto const told = static_cast<std::size_t>(static_cast<double>(needed) *
                                                       std::min(share * kReserve, kMostGrowth));
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

/// What the packets may have in common is what the first one has.
void ColumnsWriter::noteCommon() {
    PacketRow const& first = stage_[0];
    columns_.pduOffset_.value = first.pduOffset;
    columns_.sequence_.value = first.sequence;
    columns_.flags_.value = PacketFlags{first.flags};
    columns_.asdu_.value = first.asdu;
    columns_.smpSynch_.value = static_cast<std::uint8_t>(first.second);
}

/// Puts a column into the block, with room for which there is.
template <typename Value>
void ColumnsWriter::spread(PacketColumns& columns, PacketColumns::CommonValue<Value>& common,
                           std::size_t place) {
    if (common.isCommon) {
        std::fill_n(columns.columnStart<Value>(place), columns.size_, common.value);
        common.isCommon = false;
    }
}

/// Before the staged rows become columns.
void ColumnsWriter::spreadWhatDiffers() {
    PacketRow const common{.time = 0,
                           .frameOffset = 0,
                           .first = 0,
                           .second = columns_.smpSynch_.value,
                           .pduOffset = columns_.pduOffset_.value,
                           .sequence = columns_.sequence_.value,
                           .flags = columns_.flags_.value.bits,
                           .asdu = columns_.asdu_.value};
    auto const words = load<FourWords>(&common.first);
    FourWords other{};
    for (std::uint32_t i = 0; i < staged_; ++i) {
        other |= load<FourWords>(&stage_[i].first) ^ words;
    }
    // In the order of PacketRow, from `first` on.
    auto const shorts = load<EightShorts>(&other);
    auto const& places = columns_.places();
    if (shorts[4] != 0) {
        spread(columns_, columns_.pduOffset_, places.pduOffsets);
    }
    if (shorts[5] != 0) {
        spread(columns_, columns_.sequence_, places.sequences);
    }
    if (shorts[6] != 0) {
        spread(columns_, columns_.flags_, places.flags);
    }
    if (!columns_.isGoose() && shorts[7] != 0) {
        spread(columns_, columns_.asdu_, places.asdus);
    }
    if (!columns_.isGoose() && other[1] != 0) {
        spread(columns_, columns_.smpSynch_, places.secondCounters);
    }
}

template <StreamProtocol Protocol>
void ColumnsWriter::flushAs() {
    constexpr bool isGoose = Protocol == StreamProtocol::goose;
    std::size_t const first = columns_.size_;
    if (first == 0 && staged_ != 0) {
        noteCommon();
    }
    spreadWhatDiffers();
    // Copies of what would be read again after each store.
    PacketRow const* const rows = stage_.get();
    std::uint32_t const count = staged_;
    auto const& places = columns_.places();
    auto* const times = columns_.columnStart<std::int64_t>(places.times) + first;
    auto* const frameOffsets = columns_.columnStart<std::uint64_t>(places.frameOffsets) + first;
    auto* const firsts = columns_.columnStart<std::uint32_t>(places.firstCounters) + first;
    using SecondCounter = std::conditional_t<isGoose, std::uint32_t, std::uint8_t>;
    auto* const seconds = columns_.columnStart<SecondCounter>(places.secondCounters) + first;
    bool const areSecondsKept = isGoose || !columns_.smpSynch_.isCommon;
    // All of them but for the last flush.
    std::uint32_t const together = count / kRowsAtOnce * kRowsAtOnce;
    for (std::uint32_t i = 0; i < together; i += kRowsAtOnce) {
        RowsAsNumbers const eight(rows + i);
        store(times + i, eight.times);
        store(frameOffsets + i, eight.frameOffsets);
        store(firsts + i, eight.firsts);
        if constexpr (isGoose) {
            store(seconds + i, eight.seconds);
        } else if (areSecondsKept) {
            for (std::uint32_t k = i; k < i + kRowsAtOnce; ++k) {
                seconds[k] = static_cast<SecondCounter>(rows[k].second);
            }
        }
    }
    for (std::uint32_t i = together; i < count; ++i) {
        PacketRow const& row = rows[i];
        times[i] = row.time;
        frameOffsets[i] = row.frameOffset;
        firsts[i] = row.first;
        if (areSecondsKept) {
            seconds[i] = static_cast<SecondCounter>(row.second);
        }
    }
    flushMarks(together);
    noteOrderAndFlags();
    columns_.size_ += count;
    staged_ = 0;
}

void ColumnsWriter::noteOrderAndFlags() {
    // Copies, likewise.
    std::uint16_t allFlags = allFlags_;
    bool isSorted = isSorted_;
    std::int64_t lastTime = lastTime_;
    for (PacketRow const& row : std::span<PacketRow const>(stage_.get(), staged_)) {
        isSorted &= row.time >= lastTime && row.time != kNoTime;
        lastTime = row.time;
        allFlags |= row.flags;
    }
    allFlags_ = allFlags;
    isSorted_ = isSorted;
    lastTime_ = lastTime;
}

/// The columns that are mostly the same for all packets, where they are not.
/// @param together  rows that can become columns kRowsAtOnce at a time
void ColumnsWriter::flushMarks(std::uint32_t together) {
    bool const hasPduOffsets = !columns_.pduOffset_.isCommon;
    bool const hasSequences = !columns_.sequence_.isCommon;
    bool const hasFlags = !columns_.flags_.isCommon;
    bool const hasAsdus = !columns_.isGoose() && !columns_.asdu_.isCommon;
    if (!hasPduOffsets && !hasSequences && !hasFlags && !hasAsdus) {
        return;
    }
    std::size_t const first = columns_.size_;
    PacketRow const* const rows = stage_.get();
    std::uint32_t const count = staged_;
    auto const& places = columns_.places();
    auto* const pduOffsets = columns_.columnStart<std::uint16_t>(places.pduOffsets) + first;
    auto* const sequences = columns_.columnStart<std::uint16_t>(places.sequences) + first;
    auto* const flags = columns_.columnStart<std::uint16_t>(places.flags) + first;
    auto* const asdus = columns_.columnStart<std::uint16_t>(places.asdus) + first;
    auto const keep = [&](std::uint32_t row, auto const& pduOffset, auto const& sequence,
                          auto const& flag, auto const& asdu) {
        if (hasPduOffsets) {
            store(pduOffsets + row, pduOffset);
        }
        if (hasSequences) {
            store(sequences + row, sequence);
        }
        if (hasFlags) {
            store(flags + row, flag);
        }
        if (hasAsdus) {
            store(asdus + row, asdu);
        }
    };
    for (std::uint32_t i = 0; i < together; i += kRowsAtOnce) {
        RowsAsMarks const eight(rows + i);
        keep(i, eight.pduOffsets, eight.sequences, eight.flags, eight.asdus);
    }
    for (std::uint32_t i = together; i < count; ++i) {
        keep(i, rows[i].pduOffset, rows[i].sequence, rows[i].flags, rows[i].asdu);
    }
}

std::span<PacketFlags> ColumnsWriter::flags(PacketColumns& columns) {
    auto const place = columns.places().flags;
    spread(columns, columns.flags_, place);
    return {columns.columnStart<PacketFlags>(place), columns.size_};
}

void ColumnsWriter::clearFlag(PacketColumns& columns, std::uint16_t bit) {
    auto const without = [&](PacketFlags flags) {
        return PacketFlags{static_cast<std::uint16_t>(flags.bits & ~unsigned{bit})};
    };
    if (columns.flags_.isCommon) {
        columns.flags_.value = without(columns.flags_.value);
        return;
    }
    for (PacketFlags& each : flags(columns)) {
        each = without(each);
    }
}

void ColumnsWriter::takeFromTimes(PacketColumns& columns, std::int64_t length) {
    std::span const times(columns.columnStart<std::int64_t>(columns.places().times), columns.size_);
    for (std::int64_t& time : times) {
        time = time == kNoTime ? kNoTime : shiftedTime(time, -length);
    }
}

void ColumnsWriter::reserve(std::size_t capacity) {
    // Each column is aligned for the widest.
    constexpr std::size_t kStep = sizeof(std::uint64_t);
    capacity = (capacity + kStep - 1) / kStep * kStep;
    auto const& places = columns_.places();
    auto block = std::make_unique_for_overwrite<std::byte[]>(capacity * places.end);
    auto const copy = [&](std::size_t place, std::size_t width) {
        if (columns_.size_ != 0) {
            std::memcpy(block.get() + place * capacity, columns_.columnStart<std::byte>(place),
                        width * columns_.size_);
        }
    };
    copy(places.times, sizeof(std::int64_t));
    copy(places.frameOffsets, sizeof(std::uint64_t));
    copy(places.firstCounters, sizeof(std::uint32_t));
    auto const copyWhatDiffers =
        [&]<typename Value>(PacketColumns::CommonValue<Value> const& common, std::size_t place) {
            if (!common.isCommon) {
                copy(place, sizeof(Value));
            }
        };
    copyWhatDiffers(columns_.pduOffset_, places.pduOffsets);
    copyWhatDiffers(columns_.sequence_, places.sequences);
    copyWhatDiffers(columns_.flags_, places.flags);
    if (columns_.isGoose()) {
        copy(places.secondCounters, sizeof(std::uint32_t));
    } else {
        copyWhatDiffers(columns_.asdu_, places.asdus);
        copyWhatDiffers(columns_.smpSynch_, places.secondCounters);
    }
    columns_.block_ = std::move(block);
    columns_.capacity_ = capacity;
}

void ColumnsWriter::addAll(PacketColumns const& columns, std::size_t from) {
    bool const isGoose = columns.isGoose();
    for (auto const& wide : columns.wide_) {
        if (wide.packet >= from) {
            columns_.wide_.push_back(wide);
            columns_.wide_.back().packet += static_cast<std::uint32_t>(size() - from);
        }
    }
    for (std::size_t i = from; i < columns.size(); ++i) {
        add(0, 0) = {.time = columns.times()[i],
                     .frameOffset = columns.frameOffsets()[i],
                     .first = isGoose ? columns.stNums()[i] : columns.smpCnts()[i],
                     .second = isGoose ? columns.sqNums()[i] : columns.smpSynchs()[i],
                     .pduOffset = columns.pduOffsets()[i],
                     .sequence = columns.redundancySequences()[i],
                     .flags = columns.flags()[i].bits,
                     .asdu = isGoose ? std::uint16_t{0} : columns.asdus()[i]};
    }
}

PacketColumns ColumnsWriter::take() {
    std::size_t const size = this->size();
    // Of small blocks, room that is not used is among what is. A little is not worth a copy.
    constexpr std::size_t kSmallBlock = std::size_t{256} << 10U;
    bool const isSmall = columns_.capacity_ * columns_.places().end < kSmallBlock;
    if (size > columns_.capacity_ || (isSmall && columns_.capacity_ - size > size / 16)) {
        reserve(size);
    }
    flush();
    stage_.reset();
    stageSize_ = 0;
    columns_.hasRedundancy_ = PacketFlags{allFlags_}.redundancy() != Redundancy::none;
    columns_.hasTrailerMisfit_ = PacketFlags{allFlags_}.isTrailerMisfit();
    columns_.hasTimes_ = isSorted_;
    if (!isSorted_) {
        sort(columns_);
    }
    columns_.wide_.shrink_to_fit();
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
