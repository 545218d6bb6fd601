#include <TalIec61850Analysis/traffic/PacketRow.hpp>
#include <cstring>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

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

PacketColumns ColumnsWriter::make(StreamProtocol protocol, PacketRows& rows,
                                  std::vector<WideRow> wide) {
    constexpr std::size_t kGooseSize = 30;
    constexpr std::size_t kSvSize = 29;
    PacketColumns columns;
    columns.protocol_ = protocol;
    std::size_t const size = rows.size();
    columns.size_ = size;
    bool const isGoose = protocol == StreamProtocol::goose;
    columns.block_ =
        std::make_unique_for_overwrite<std::byte[]>(size * (isGoose ? kGooseSize : kSvSize));
    std::byte* const block = columns.block_.get();
    auto const at = [&](std::size_t before) { return block + before * size; };
    std::size_t first = 0;
    std::uint16_t redundancy = 0;
    std::int64_t last = kNoTime;
    bool isSorted = true;
    rows.consume([&](std::span<PacketRow const> chunk) {
        fillColumn<std::int64_t>(at(0), first, chunk, &PacketRow::time);
        fillColumn<std::uint64_t>(at(8), first, chunk, &PacketRow::frameOffset);
        fillColumn<std::uint32_t>(at(16), first, chunk, &PacketRow::first);
        if (isGoose) {
            fillColumn<std::uint32_t>(at(20), first, chunk, &PacketRow::second);
        } else {
            fillColumn<std::uint16_t>(at(26), first, chunk, &PacketRow::asdu);
            fillColumn<std::uint8_t>(at(28), first, chunk, &PacketRow::second);
        }
        std::size_t const before = columns.secondEnd();
        fillColumn<std::uint16_t>(at(before), first, chunk, &PacketRow::pduOffset);
        fillColumn<std::uint16_t>(at(before + 2), first, chunk, &PacketRow::sequence);
        fillColumn<std::uint16_t>(at(before + 4), first, chunk, &PacketRow::flags);
        for (PacketRow const& row : chunk) {
            redundancy |= row.flags;
            isSorted = isSorted && row.time >= last && row.time != kNoTime;
            last = row.time;
        }
        first += chunk.size();
    });
    columns.hasRedundancy_ = PacketFlags{redundancy}.redundancy() != Redundancy::none;
    columns.hasTimes_ = isSorted;
    if (!isSorted) {
        sort(columns);
    }
    columns.wide_.reserve(wide.size());
    for (WideRow& each : wide) {
        columns.wide_.push_back({each.packet, each.isSecond, std::move(each.octets)});
    }
    return columns;
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
