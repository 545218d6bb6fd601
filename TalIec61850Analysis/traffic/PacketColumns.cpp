#include <TalIec61850Analysis/packet/Integer.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <algorithm>
#include <tuple>

namespace TalIec61850Analysis {

std::optional<ReadableView<std::uint64_t>> PacketColumns::firstCounter(
    std::size_t packet) const noexcept {
    switch (flags()[packet].firstCounter()) {
        case CounterState::held:
            return std::uint64_t{isGoose() ? stNums()[packet] : smpCnts()[packet]};
        case CounterState::wide:
            return readUnsigned(*findWide(packet, false));
        default:
            return std::nullopt;
    }
}

std::optional<ReadableView<std::uint64_t>> PacketColumns::secondCounter(
    std::size_t packet) const noexcept {
    switch (flags()[packet].secondCounter()) {
        case CounterState::held:
            return std::uint64_t{isGoose() ? sqNums()[packet] : smpSynchs()[packet]};
        case CounterState::wide:
            return readUnsigned(*findWide(packet, true));
        default:
            return std::nullopt;
    }
}

OctetString const* PacketColumns::findWide(std::size_t packet, bool isSecond) const noexcept {
    auto const found =
        std::partition_point(wide_.begin(), wide_.end(), [&](WideCounter const& each) {
            return std::pair(std::size_t{each.packet}, each.isSecond) < std::pair(packet, isSecond);
        });
    return &found->octets;
}

std::pair<std::size_t, std::size_t> PacketColumns::placesIn(
    TimeWindow const& window) const noexcept {
    auto const all = times();
    /// The first place whose time is not before what `isBefore` says.
    auto const search = [&](auto const& isBefore) {
        std::size_t first = 0;
        std::size_t count = timedSize();
        while (count > 0) {
            std::size_t const half = count / 2;
            if (isBefore(all[inTimeOrder(first + half)])) {
                first += half + 1;
                count -= half + 1;
            } else {
                count = half;
            }
        }
        return first;
    };
    std::size_t const first =
        window.from
            ? search([from = nanosecondsOf(*window.from)](auto time) { return time < from; })
            : 0;
    std::size_t const last =
        window.to ? search([to = nanosecondsOf(*window.to)](auto time) { return time <= to; })
                  : timedSize();
    return {first, std::max(first, last)};
}

bool operator==(PacketColumns const& a, PacketColumns const& b) noexcept {
    auto const columns = [](PacketColumns const& each) {
        return std::tuple(each.times(), each.frameOffsets(), each.pduOffsets(),
                          each.redundancySequences(), each.flags(), each.stNums(), each.sqNums(),
                          each.smpCnts(), each.smpSynchs(), each.asdus());
    };
    auto const areEqual = [](auto const& first, auto const& second) {
        return std::equal(first.begin(), first.end(), second.begin(), second.end());
    };
    return a.protocol_ == b.protocol_ && a.wide_ == b.wide_ && a.order_ == b.order_ &&
           std::apply(
               [&](auto const&... first) {
                   return std::apply(
                       [&](auto const&... second) { return (areEqual(first, second) && ...); },
                       columns(b));
               },
               columns(a));
}

}  // namespace TalIec61850Analysis
