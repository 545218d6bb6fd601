#include <TalIec61850Parser/capture/EthernetDecoder.hpp>
#include <algorithm>
#include <iterator>
#include <string_view>

namespace TalIec61850Parser::detail {

namespace {

constexpr std::uint16_t kEtherTypeVlan = 0x8100;
constexpr std::uint16_t kEtherTypeHsr = 0x892F;

constexpr std::size_t kMacSize = 6;
constexpr std::size_t kEtherTypeOffset = 2 * kMacSize;
constexpr std::size_t kUntaggedSize = kEtherTypeOffset + 2;
// Tags as they lie behind the EtherType that announces them, the next EtherType included.
constexpr std::size_t kVlanTagSize = 4;
constexpr std::size_t kHsrTagSize = 6;
/// The rest of the size behind the octet with the LAN, and the sequence number.
constexpr std::size_t kHsrUnreadSize = 3;

}  // namespace

std::optional<LinkLayer> decodeLinkLayer(Octets buffer, std::size_t offset) {
    if (offset > buffer.size() || buffer.size() - offset < kUntaggedSize) {
        return std::nullopt;
    }
    Octets const frame = buffer.subspan(offset);
    EthernetHeader header;
    Octets unread;
    std::copy_n(frame.begin(), kMacSize, std::begin(header.dstMac));
    std::copy_n(frame.begin() + kMacSize, kMacSize, std::begin(header.srcMac));
    header.etherType = wire::readUint16(frame, kEtherTypeOffset);
    std::size_t position = kUntaggedSize;

    if (header.etherType == kEtherTypeVlan && wire::isLong(buffer)) {
        if (frame.size() - position < kVlanTagSize) {
            return std::nullopt;
        }
        header.hasVlan = true;
        header.vlanId = wire::readUint16(frame, position) & 0x0FFFU;
        header.etherType = wire::readUint16(frame, position + 2);
        position += kVlanTagSize;
    }
    if (header.etherType == kEtherTypeHsr && wire::isLong(buffer)) {
        if (frame.size() - position < kHsrTagSize) {
            return std::nullopt;
        }
        header.hasHsr = true;
        header.hsrLan = wire::lanLetter(frame[position]);
        unread = frame.subspan(position + 1, kHsrUnreadSize);
        header.etherType = wire::readUint16(frame, position + 4);
        position += kHsrTagSize;
    }
    if (auto const lan = readPrpLan(buffer)) {
        header.hasPrp = true;
        header.prpLan = *lan;
    }
    return LinkLayer{.header = header, .payloadPosition = offset + position, .unread = unread};
}

std::string macToText(std::uint8_t const* mac) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(3 * kMacSize);
    for (std::size_t i = 0; i < kMacSize; ++i) {
        if (i > 0) {
            text += ':';
        }
        text += digits[mac[i] >> 4U];
        text += digits[mac[i] & 0x0FU];
    }
    return text;
}

}  // namespace TalIec61850Parser::detail
