#pragma once

// Internal: packets as they are collected, before they become columns.

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
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

/// A counter that no column holds.
struct WideRow {
    std::uint32_t packet = 0;
    bool isSecond = false;
    OctetString octets;
};

/// Grows without a copy of what it holds, and takes memory as packets come.
class PacketRows {
public:
    /// Room for one more, not initialised.
    [[nodiscard]] PacketRow& add() {
        if (next_ == end_) [[unlikely]] {
            grow();
        }
        return *next_++;
    }
    [[nodiscard]] std::size_t size() const {
        return full_ + (chunks_.empty() ? 0 : static_cast<std::size_t>(next_ - start()));
    }

    /// Shows each chunk of rows, and gives its memory back.
    /// @param use  void use(std::span<PacketRow const>)
    template <typename Use>
    void consume(Use const& use) {
        for (Chunk& chunk : chunks_) {
            bool const isLast = &chunk == &chunks_.back();
            use(std::span<PacketRow const>(
                chunk.rows.get(), isLast ? static_cast<std::size_t>(next_ - start()) : chunk.size));
            chunk.rows.reset();
        }
        *this = PacketRows();
    }

private:
    struct Chunk {
        std::unique_ptr<PacketRow[]> rows;
        std::size_t size = 0;
    };

    [[nodiscard]] PacketRow const* start() const { return chunks_.back().rows.get(); }

    void grow() {
        constexpr std::size_t kFirstSize = 2;
        constexpr std::size_t kMaxSize = 2048;
        std::size_t const last = chunks_.empty() ? 0 : chunks_.back().size;
        if (full_ + last > std::numeric_limits<std::uint32_t>::max() - kMaxSize) {
            throw std::bad_alloc();  // packets have numbers of 32 bits
        }
        std::size_t const size = std::clamp(2 * last, kFirstSize, kMaxSize);
        chunks_.push_back({std::make_unique_for_overwrite<PacketRow[]>(size), size});
        full_ += last;
        next_ = chunks_.back().rows.get();
        end_ = next_ + size;
    }

    PacketRow* next_ = nullptr;
    PacketRow* end_ = nullptr;
    /// Rows in all chunks but the last.
    std::size_t full_ = 0;
    std::vector<Chunk> chunks_;
};

/// Makes columns, and changes their flags.
class ColumnsWriter {
public:
    /// @param rows  empty afterwards
    [[nodiscard]] static PacketColumns make(StreamProtocol protocol, PacketRows& rows,
                                            std::vector<WideRow> wide);

    static std::span<PacketFlags> flags(PacketColumns& columns) {
        auto const all = columns.flags();
        return {const_cast<PacketFlags*>(all.data()), all.size()};
    }

private:
    static void sort(PacketColumns& columns);
};

}  // namespace TalIec61850Analysis::detail
