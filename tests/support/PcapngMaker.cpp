#include "support/PcapngMaker.hpp"

#include <algorithm>
#include <utility>

namespace TalTest {
namespace {

constexpr std::uint32_t sectionBlock = 0x0A0D0D0A;
constexpr std::uint32_t interfaceBlock = 1;
constexpr std::uint32_t oldPacketBlock = 2;
constexpr std::uint32_t simplePacketBlock = 3;
constexpr std::uint32_t statisticsBlock = 5;
constexpr std::uint32_t enhancedPacketBlock = 6;

Bytes filledUp(Bytes octets) {
    octets.resize((octets.size() + 3) / 4 * 4);
    return octets;
}

}  // namespace

PcapngMaker& PcapngMaker::section(bool isLittleEndian, std::uint64_t length, std::uint16_t major) {
    isLittleEndian_ = isLittleEndian;
    return block(sectionBlock, concat({number(0x1A2B3C4D, 4), number(major, 2), number(0, 2),
                                       number(length, 8)}));
}

PcapngMaker& PcapngMaker::interface(std::uint16_t linkType, std::uint32_t snapLength,
                                    Bytes const& options) {
    return block(interfaceBlock,
                 concat({number(linkType, 2), number(0, 2), number(snapLength, 4), options}));
}

PcapngMaker& PcapngMaker::packet(Packet const& packet) {
    return block(enhancedPacketBlock, concat({number(packet.interface, 4), timeAndSizes(packet),
                                              filledUp(packet.frame), packet.options}));
}

PcapngMaker& PcapngMaker::oldPacket(Packet const& packet) {
    return block(oldPacketBlock,
                 concat({number(packet.interface, 2), number(packet.dropped, 2),
                         timeAndSizes(packet), filledUp(packet.frame), packet.options}));
}

PcapngMaker& PcapngMaker::simplePacket(Bytes const& frame,
                                       std::optional<std::uint32_t> originalSize) {
    std::uint64_t const size = originalSize ? *originalSize : frame.size();
    return block(simplePacketBlock, concat({number(size, 4), frame}));
}

PcapngMaker& PcapngMaker::statistics(std::uint32_t interface, Bytes const& options) {
    return block(statisticsBlock, concat({number(interface, 4), number(0, 8), options}));
}

PcapngMaker& PcapngMaker::block(std::uint32_t type, Bytes body) {
    body = filledUp(std::move(body));
    Bytes const length = number(body.size() + 12, 4);
    return raw(concat({number(type, 4), length, body, length}));
}

PcapngMaker& PcapngMaker::raw(Bytes const& octets) {
    append(bytes_, octets);
    return *this;
}

Bytes PcapngMaker::option(std::uint16_t code, Bytes const& value) const {
    return concat({number(code, 2), number(value.size(), 2), filledUp(value)});
}

Bytes PcapngMaker::numberOption(std::uint16_t code, std::uint64_t value) const {
    return option(code, number(value, 8));
}

Bytes PcapngMaker::timeOptions(std::uint8_t resolution, std::int64_t offset,
                               std::string_view name) const {
    Bytes options = option(9, {resolution});
    if (offset != 0) {
        append(options, numberOption(14, static_cast<std::uint64_t>(offset)));
    }
    if (!name.empty()) {
        append(options, option(2, text(name)));
    }
    return concat({options, endOfOptions()});
}

Bytes PcapngMaker::number(std::uint64_t value, std::size_t octets) const {
    Bytes out = bigEndian(value, octets);
    if (isLittleEndian_) {
        std::reverse(out.begin(), out.end());
    }
    return out;
}

/// The upper half of the time comes first in either byte order.
Bytes PcapngMaker::timeAndSizes(Packet const& packet) const {
    auto const size = static_cast<std::uint32_t>(packet.frame.size());
    std::uint32_t const captured = packet.capturedSize.value_or(size);
    return concat({number(packet.time >> 32U, 4), number(packet.time & 0xFFFFFFFFU, 4),
                   number(captured, 4), number(packet.originalSize.value_or(captured), 4)});
}

}  // namespace TalTest
