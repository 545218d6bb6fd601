#include <TalIec61850Analysis/traffic/PacketRow.hpp>
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

// The compiler's own vectors: its code for plain loops from rows to columns takes longer.
using TwoTimes [[gnu::vector_size(16)]] = std::uint64_t;
using FourWords [[gnu::vector_size(16)]] = std::uint32_t;
using EightShorts [[gnu::vector_size(16)]] = std::uint16_t;

template <typename Vector>
Vector load(void const* from) {
    Vector vector{};
    std::memcpy(&vector, from, sizeof vector);
    return vector;
}

/// Writes one vector, or several that follow one another.
template <typename Vectors>
void store(void* to, Vectors const& vectors) {
    std::memcpy(to, &vectors, sizeof vectors);
}

/// Rows that become columns together.
constexpr std::uint32_t kRowsAtOnce = 8;

/// What so many rows have of each column.
struct RowsAsColumns {
    explicit RowsAsColumns(PacketRow const* rows) {
        for (std::size_t i = 0; i < kRowsAtOnce / 2; ++i) {
            auto const a = load<TwoTimes>(&rows[2 * i].time);
            auto const b = load<TwoTimes>(&rows[2 * i + 1].time);
            times[i] = __builtin_shufflevector(a, b, 0, 2);
            frameOffsets[i] = __builtin_shufflevector(a, b, 1, 3);
        }
        // Of four rows each: pduOffset and sequence, flags and asdu.
        EightShorts places[2];
        EightShorts marks[2];
        for (std::size_t i = 0; i < 2; ++i) {
            PacketRow const* const four = rows + 4 * i;
            auto const a = load<FourWords>(&four[0].first);
            auto const b = load<FourWords>(&four[1].first);
            auto const c = load<FourWords>(&four[2].first);
            auto const d = load<FourWords>(&four[3].first);
            auto const ab = __builtin_shufflevector(a, b, 0, 4, 1, 5);
            auto const cd = __builtin_shufflevector(c, d, 0, 4, 1, 5);
            firsts[i] = __builtin_shufflevector(ab, cd, 0, 1, 4, 5);
            seconds[i] = __builtin_shufflevector(ab, cd, 2, 3, 6, 7);
            auto const abRest = __builtin_shufflevector(a, b, 2, 6, 3, 7);
            auto const cdRest = __builtin_shufflevector(c, d, 2, 6, 3, 7);
            FourWords const place = __builtin_shufflevector(abRest, cdRest, 0, 1, 4, 5);
            FourWords const mark = __builtin_shufflevector(abRest, cdRest, 2, 3, 6, 7);
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

    TwoTimes times[kRowsAtOnce / 2];
    TwoTimes frameOffsets[kRowsAtOnce / 2];
    FourWords firsts[kRowsAtOnce / 4];
    FourWords seconds[kRowsAtOnce / 4];
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

template <StreamProtocol Protocol>
void ColumnsWriter::flushAs() {
    constexpr bool isGoose = Protocol == StreamProtocol::goose;
    std::size_t const first = columns_.size_;
    // Copies of what would be read again after each store.
    PacketRow const* const rows = stage_.get();
    std::uint32_t const count = staged_;
    auto const& places = columns_.places();
    auto* const times = columns_.columnStart<std::int64_t>(places.times) + first;
    auto* const frameOffsets = columns_.columnStart<std::uint64_t>(places.frameOffsets) + first;
    auto* const firsts = columns_.columnStart<std::uint32_t>(places.firstCounters) + first;
    using SecondCounter = std::conditional_t<isGoose, std::uint32_t, std::uint8_t>;
    auto* const seconds = columns_.columnStart<SecondCounter>(places.secondCounters) + first;
    auto* const pduOffsets = columns_.columnStart<std::uint16_t>(places.pduOffsets) + first;
    auto* const sequences = columns_.columnStart<std::uint16_t>(places.sequences) + first;
    auto* const flags = columns_.columnStart<std::uint16_t>(places.flags) + first;
    [[maybe_unused]] auto* const asdus = columns_.columnStart<std::uint16_t>(places.asdus) + first;
    std::uint16_t allFlags = allFlags_;
    bool isSorted = isSorted_;
    std::int64_t lastTime = lastTime_;
    // All of them but for the last flush.
    std::uint32_t const together = count / kRowsAtOnce * kRowsAtOnce;
    for (std::uint32_t i = 0; i < together; i += kRowsAtOnce) {
        RowsAsColumns const eight(rows + i);
        store(times + i, eight.times);
        store(frameOffsets + i, eight.frameOffsets);
        store(firsts + i, eight.firsts);
        store(pduOffsets + i, eight.pduOffsets);
        store(sequences + i, eight.sequences);
        store(flags + i, eight.flags);
        if constexpr (isGoose) {
            store(seconds + i, eight.seconds);
        } else {
            store(asdus + i, eight.asdus);
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
        seconds[i] = static_cast<SecondCounter>(row.second);
        pduOffsets[i] = row.pduOffset;
        sequences[i] = row.sequence;
        flags[i] = row.flags;
        if constexpr (!isGoose) {
            asdus[i] = row.asdu;
        }
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        PacketRow const& row = rows[i];
        isSorted &= row.time >= lastTime && row.time != kNoTime;
        lastTime = row.time;
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
    copy(places.pduOffsets, sizeof(std::uint16_t));
    copy(places.sequences, sizeof(std::uint16_t));
    copy(places.flags, sizeof(std::uint16_t));
    if (columns_.isGoose()) {
        copy(places.secondCounters, sizeof(std::uint32_t));
    } else {
        copy(places.asdus, sizeof(std::uint16_t));
        copy(places.secondCounters, sizeof(std::uint8_t));
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
    // Of small blocks, room that is not used lies among what is. A little is not worth a copy.
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
