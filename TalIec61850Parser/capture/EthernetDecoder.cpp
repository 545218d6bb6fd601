#include <TalIec61850Parser/capture/EthernetDecoder.hpp>
#include <algorithm>
#include <iterator>
#include <string_view>

namespace TalIec61850Parser::detail {

namespace {

constexpr std::uint16_t kEtherTypeVlan = 0x8100;
constexpr std::uint16_t kEtherTypeHsr = 0x892F;
constexpr std::uint16_t kPrpSuffix = 0x88FB;

constexpr std::size_t kMacSize = 6;
constexpr std::size_t kEtherTypeOffset = 2 * kMacSize;
constexpr std::size_t kUntaggedSize = kEtherTypeOffset + 2;
// Tags as they lie behind the EtherType that announces them, the next EtherType included.
constexpr std::size_t kVlanTagSize = 4;
constexpr std::size_t kHsrTagSize = 6;
// The trailer, from its end: suffix, then LAN identifier and size, then sequence number.
constexpr std::size_t kPrpSuffixFromEnd = 2;
constexpr std::size_t kPrpLanFromEnd = 4;
/// A buffer must hold more octets than this for tags or a trailer to be looked for.
constexpr std::size_t kLargestShortBuffer = 17;

std::uint16_t readUint16(Octets octets, std::size_t position) {
    return static_cast<std::uint16_t>(octets[position] << 8U | octets[position + 1]);
}

/// HSR and PRP both tell their two networks apart by this bit.
char lanLetter(std::uint8_t octet) { return (octet & 0x10U) != 0 ? 'B' : 'A'; }

}  // namespace

std::optional<LinkLayer> decodeLinkLayer(Octets buffer, std::size_t offset) {
    if (offset > buffer.size() || buffer.size() - offset < kUntaggedSize) {
        return std::nullopt;
    }
    Octets const frame = buffer.subspan(offset);
    bool const isLong = buffer.size() > kLargestShortBuffer;
    EthernetHeader header;
    std::copy_n(frame.begin(), kMacSize, std::begin(header.dstMac));
    std::copy_n(frame.begin() + kMacSize, kMacSize, std::begin(header.srcMac));
    header.etherType = readUint16(frame, kEtherTypeOffset);
    std::size_t position = kUntaggedSize;

    if (header.etherType == kEtherTypeVlan && isLong) {
        if (frame.size() - position < kVlanTagSize) {
            return std::nullopt;
        }
        header.hasVlan = true;
        header.vlanId = readUint16(frame, position) & 0x0FFFU;
        header.etherType = readUint16(frame, position + 2);
        position += kVlanTagSize;
    }
    if (header.etherType == kEtherTypeHsr && isLong) {
        if (frame.size() - position < kHsrTagSize) {
            return std::nullopt;
        }
        header.hasHsr = true;
        header.hsrLan = lanLetter(frame[position]);
        header.etherType = readUint16(frame, position + 4);
        position += kHsrTagSize;
    }
    if (isLong && readUint16(buffer, buffer.size() - kPrpSuffixFromEnd) == kPrpSuffix) {
        header.hasPrp = true;
        header.prpLan = lanLetter(buffer[buffer.size() - kPrpLanFromEnd]);
    }
    return LinkLayer{.header = header, .payloadPosition = offset + position};
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
