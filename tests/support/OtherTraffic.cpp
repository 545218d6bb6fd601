#include "support/OtherTraffic.hpp"

#include <string>
#include <utility>

#include "support/Ethernet.hpp"

namespace TalTest {
namespace {

constexpr std::uint16_t etherTypeIpv4 = 0x0800;
constexpr std::uint16_t etherTypeArp = 0x0806;
constexpr std::uint16_t etherTypePtp = 0x88F7;

Bytes const clientIp = {10, 1, 0, 20};
Bytes const serverIp = {10, 1, 0, 11};

Ethernet between(char const* destination, char const* source) {
    return Ethernet().to(destination).from(source).withPadding();
}

// The ones' complement sum of RFC 1071, of an even number of octets.
std::uint64_t checksum(Bytes const& octets) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i + 1 < octets.size(); i += 2) {
        sum += static_cast<std::uint64_t>(octets[i] << 8 | octets[i + 1]);
    }
    while (sum >> 16) {
        sum = (sum & 0xFFFF) + (sum >> 16);
    }
    return ~sum & 0xFFFF;
}

constexpr std::uint8_t protocolTcp = 6;
constexpr std::uint8_t protocolUdp = 17;

Bytes ipv4Header(std::uint8_t protocol, std::uint32_t number, std::size_t payloadSize,
                 std::uint64_t sum) {
    return concat({{0x45, 0x00},
                   bigEndian(20 + payloadSize, 2),
                   bigEndian(number, 2),
                   {0x40, 0x00, 64, protocol},
                   bigEndian(sum, 2),
                   clientIp,
                   serverIp});
}

Bytes tcpHeader(std::uint64_t sequence, std::uint64_t sum) {
    constexpr std::uint16_t clientPort = 49'200;
    constexpr std::uint16_t serverPort = 49'300;
    return concat({bigEndian(clientPort, 2),
                   bigEndian(serverPort, 2),
                   bigEndian(sequence, 4),
                   bigEndian(1, 4),
                   {0x50, 0x18, 0x20, 0x00},
                   bigEndian(sum, 2),
                   {0x00, 0x00}});
}

}  // namespace

OtherTraffic::OtherTraffic(std::uint64_t phase, std::uint64_t interval,
                           std::function<Bytes(std::uint32_t)> build)
    : StationDevice(phase), interval_(interval), build_(std::move(build)) {
    time_ = interval_;
}

Bytes const& OtherTraffic::send() {
    frame_ = build_(numFrames_++);
    time_ += interval_;
    return frame_;
}

Bytes ptpSync(std::uint32_t number) {
    Bytes const clock = {0x02, 0x00, 0x00, 0xFF, 0xFE, 0x00, 0x00, 0xC1};
    Bytes const header = concat({{0x00, 0x02},
                                 bigEndian(44, 2),
                                 repeat(0, 16),
                                 clock,
                                 bigEndian(1, 2),
                                 bigEndian(number, 2),
                                 {0x00, 0x00}});
    Bytes const originTimestamp = concat({bigEndian(stationStart + number, 6), bigEndian(0, 4)});
    return ethernetFrame(between("01:1b:19:00:00:00", "02:00:00:00:00:c1"), etherTypePtp,
                         concat({header, originTimestamp}));
}

Bytes arpRequest(std::uint32_t number) {
    char const* const client = "02:00:00:00:00:d0";
    Bytes const request = concat({{0x00, 0x01, 0x08, 0x00, 6, 4, 0x00, 0x01},
                                  macAddress(client),
                                  clientIp,
                                  repeat(0, 6),
                                  {10, 1, 0, static_cast<std::uint8_t>(11 + number % 8)}});
    return ethernetFrame(between("ff:ff:ff:ff:ff:ff", client), etherTypeArp, request);
}

Bytes tcpSegment(std::uint32_t number) {
    Bytes const payload = text("measurement " + std::to_string(10'000'000 + number));
    std::uint64_t const sequence = 1 + std::uint64_t{number} * payload.size();
    std::size_t const size = tcpHeader(0, 0).size() + payload.size();
    Bytes const pseudoHeader = concat({clientIp, serverIp, {0, protocolTcp}, bigEndian(size, 2)});
    std::uint64_t const tcpSum = checksum(concat({pseudoHeader, tcpHeader(sequence, 0), payload}));
    std::uint64_t const ipSum = checksum(ipv4Header(protocolTcp, number, size, 0));
    return ethernetFrame(between("02:00:00:00:00:11", "02:00:00:00:00:d0"), etherTypeIpv4,
                         concat({ipv4Header(protocolTcp, number, size, ipSum),
                                 tcpHeader(sequence, tcpSum), payload}));
}

Bytes udpDatagram(std::uint32_t number) {
    constexpr std::uint16_t port = 49'400;
    constexpr std::size_t headerSize = 8;
    Bytes const payload = text("log line " + std::to_string(number));
    std::size_t const size = headerSize + payload.size();
    std::uint64_t const ipSum = checksum(ipv4Header(protocolUdp, number, size, 0));
    // A checksum of 0 says that there is none.
    return ethernetFrame(
        between("02:00:00:00:00:11", "02:00:00:00:00:d0"), etherTypeIpv4,
        concat({ipv4Header(protocolUdp, number, size, ipSum), bigEndian(port, 2),
                bigEndian(port, 2), bigEndian(size, 2), bigEndian(0, 2), payload}));
}

Bytes spanningTreeHello() {
    Bytes const bridge = concat({{0x80, 0x00}, macAddress("02:00:00:00:00:b1")});
    Bytes const message = concat({{0x42, 0x42, 0x03},
                                  {0x00, 0x00, 0x00, 0x00, 0x00},
                                  bridge,
                                  bigEndian(0, 4),
                                  bridge,
                                  {0x80, 0x01},
                                  {0x00, 0x00, 0x14, 0x00, 0x02, 0x00, 0x0F, 0x00}});
    return ethernetFrame(between("01:80:c2:00:00:00", "02:00:00:00:00:b1"),
                         static_cast<std::uint16_t>(message.size()), message);
}

}  // namespace TalTest
