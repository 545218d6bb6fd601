#include <TalIec61850Analysis/packet/LinkStart.hpp>
#include <TalIec61850Analysis/traffic/RecordCounter.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

namespace {

namespace wire = TalIec61850Parser::wire;

constexpr std::uint16_t kIpv4 = 0x0800;
constexpr std::uint16_t kIpv6 = 0x86DD;
constexpr std::uint8_t kTcp = 6;
constexpr std::uint8_t kUdp = 17;

/// What an IP packet transports.
struct Transport {
    /// By the registry of IP protocols; 0 for nothing that is known.
    std::uint8_t protocol = 0;
    /// What follows the header of the IP packet.
    Octets octets;

    /// Whether it is to or from the port that session messages and MMS have.
    [[nodiscard]] bool isOfSessions() const {
        constexpr std::uint16_t kSessionPort = 102;
        constexpr std::size_t kPortsSize = 4;
        return octets.size() >= kPortsSize && (wire::readUint16(octets, 0) == kSessionPort ||
                                               wire::readUint16(octets, 2) == kSessionPort);
    }
};

/// @return nothing known for other EtherTypes, and for fragments after the first
Transport transportOf(std::uint16_t etherType, Octets packet) {
    constexpr std::size_t kIpv4Size = 20;
    constexpr std::size_t kIpv6Size = 40;
    if (etherType == kIpv4) {
        constexpr std::uint16_t kFragmentOffset = 0x1FFF;
        if (packet.size() < kIpv4Size || packet[0] >> 4U != 4 ||
            (wire::readUint16(packet, 6) & kFragmentOffset) != 0) {
            return {};
        }
        std::size_t const size = std::max(kIpv4Size, std::size_t{4} * (packet[0] & 0xFU));
        return {.protocol = packet[9], .octets = packet.subspan(std::min(size, packet.size()))};
    }
    if (etherType == kIpv6 && packet.size() >= kIpv6Size) {
        return {.protocol = packet[6], .octets = packet.subspan(kIpv6Size)};
    }
    return {};
}

/// The session message in a UDP datagram; empty for none.
Octets sessionIn(Octets datagram) {
    constexpr std::size_t kUdpSize = 8;
    Octets const session = datagram.subspan(std::min(kUdpSize, datagram.size()));
    // The connectionless transport has two octets in front.
    bool const hasTransport = session.size() > 2 && session[0] == 0x01 && session[1] == 0x40;
    return hasTransport ? session.subspan(2) : session;
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
    Transport const transport = transportOf(etherType, payload);
    if (!transport.isOfSessions()) {
        return;
    }
    std::uint64_t* recognised = nullptr;
    if (transport.protocol == kTcp) {
        recognised = &summary_.mmsFrames;
    } else if (transport.protocol == kUdp) {
        recognised = countOfSession(sessionIn(transport.octets));
    }
    if (recognised != nullptr) {
        ++*recognised;
        summary_.recognisedIpv6Frames += etherType == kIpv6 ? 1 : 0;
    }
}

std::uint64_t* RecordCounter::countOfSession(Octets session) const {
    constexpr std::uint8_t kGooseSession = 0xA1;
    constexpr std::uint8_t kSvSession = 0xA2;
    if (session.empty()) {
        return nullptr;
    }
    switch (session[0]) {
        case kGooseSession:
            return &summary_.routableGooseFrames;
        case kSvSession:
            return &summary_.routableSvFrames;
        default:
            return nullptr;
    }
}

void RecordCounter::finish() {
    if (first_ <= last_) {
        summary_.first = captureTimeOf(first_);
        summary_.last = captureTimeOf(last_);
    }
}

}  // namespace TalIec61850Analysis::detail
