#include <TalIec61850Analysis/packet/LinkStart.hpp>
#include <TalIec61850Analysis/traffic/RecordCounter.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>

namespace TalIec61850Analysis::detail {

namespace {

namespace wire = TalIec61850Parser::wire;

/// The UDP payload to or from the port that session messages have; empty for anything else.
Octets sessionOf(std::uint16_t etherType, Octets packet) {
    constexpr std::uint16_t kIpv4 = 0x0800;
    constexpr std::uint16_t kIpv6 = 0x86DD;
    constexpr std::uint8_t kUdp = 17;
    constexpr std::uint16_t kSessionPort = 102;
    constexpr std::size_t kIpv4Size = 20;
    constexpr std::size_t kIpv6Size = 40;
    constexpr std::size_t kUdpSize = 8;
    std::size_t size = 0;
    if (etherType == kIpv4) {
        constexpr std::uint16_t kFragmentOffset = 0x1FFF;
        if (packet.size() < kIpv4Size || packet[0] >> 4U != 4 || packet[9] != kUdp ||
            (wire::readUint16(packet, 6) & kFragmentOffset) != 0) {
            return {};
        }
        size = std::max(kIpv4Size, std::size_t{4} * (packet[0] & 0xFU));
    } else if (etherType == kIpv6) {
        if (packet.size() < kIpv6Size || packet[6] != kUdp) {
            return {};
        }
        size = kIpv6Size;
    }
    if (size == 0 || packet.size() < size + kUdpSize) {
        return {};
    }
    bool const isSession = wire::readUint16(packet, size) == kSessionPort ||
                           wire::readUint16(packet, size + 2) == kSessionPort;
    return isSession ? packet.subspan(size + kUdpSize) : Octets();
}

}  // namespace

void RecordCounter::changeLink(std::uint16_t linkType) {
    LinkStart const start = linkStartOf(linkType);
    link_ = {.count = &summary_.linkTypes[linkType],
             .headerSize = start.size,
             .etherTypeOffset = start.etherTypeOffset,
             .type = linkType,
             .isReadable = isReadable(linkType)};
}

void RecordCounter::countOther(std::uint16_t etherType, Octets payload) {
    constexpr std::uint16_t kFirstEtherType = 0x0600;
    std::uint16_t const counted = etherType < kFirstEtherType ? std::uint16_t{0} : etherType;
    if (otherCount_ == nullptr || otherType_ != counted) {
        otherType_ = counted;
        otherCount_ = &summary_.otherFrames[counted];
    }
    ++*otherCount_;
    Octets session = sessionOf(etherType, payload);
    // The connectionless transport has two octets in front.
    if (session.size() > 2 && session[0] == 0x01 && session[1] == 0x40) {
        session = session.subspan(2);
    }
    constexpr std::uint8_t kGooseSession = 0xA1;
    constexpr std::uint8_t kSvSession = 0xA2;
    if (!session.empty()) {
        summary_.routableGooseFrames += session[0] == kGooseSession ? 1 : 0;
        summary_.routableSvFrames += session[0] == kSvSession ? 1 : 0;
    }
}

void RecordCounter::finish() {
    if (first_ <= last_) {
        summary_.first = CaptureTime(std::chrono::nanoseconds(first_));
        summary_.last = CaptureTime(std::chrono::nanoseconds(last_));
    }
}

}  // namespace TalIec61850Analysis::detail
