#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <algorithm>

namespace TalIec61850Parser::wire {

namespace {

/// The rest of the size after the octet with the path, and the sequence number.
constexpr std::size_t kHsrUnreadSize = kHsrTagSize - 1;

}  // namespace

std::optional<LinkLayer> decodeLinkLayer(Octets buffer, std::size_t index) {
    if (index > buffer.size() || buffer.size() - index < kUntaggedSize) {
        return std::nullopt;
    }
    Octets const frame = buffer.subspan(index);
    LinkLayer link;
    std::copy_n(frame.begin() + kDestinationOffset, kMacSize, link.destination.begin());
    std::copy_n(frame.begin() + kSourceOffset, kMacSize, link.source.begin());
    link.etherType = readUint16(frame, kEtherTypeOffset);
    std::size_t size = kUntaggedSize;

    if (link.etherType == kEtherTypeVlan && isLongBuffer(buffer)) {
        if (frame.size() - size < kVlanTagSize + kEtherTypeSize) {
            return std::nullopt;
        }
        link.vlanId = toVlanTag(readUint16(frame, size)).id;
        link.etherType = readUint16(frame, size + kVlanTagSize);
        size += kVlanTagSize + kEtherTypeSize;
    }
    if (link.etherType == kEtherTypeHsr && isLongBuffer(buffer)) {
        if (frame.size() - size < kHsrTagSize + kEtherTypeSize) {
            return std::nullopt;
        }
        link.hsrLan = readHsrTag(frame.subspan(size)).letter();
        link.unread = frame.subspan(size + 1, kHsrUnreadSize);
        link.etherType = readUint16(frame, size + kHsrTagSize);
        size += kHsrTagSize + kEtherTypeSize;
    }
    link.prpLan = readPrpLan(buffer);
    link.payloadIndex = index + size;
    return link;
}

}  // namespace TalIec61850Parser::wire
