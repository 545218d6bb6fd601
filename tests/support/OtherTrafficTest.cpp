#include <gtest/gtest.h>

#include <cstddef>

#include "support/Ethernet.hpp"
#include "support/OtherTraffic.hpp"

namespace TalTest::OtherTrafficTest {
namespace {

unsigned twoOctets(Bytes const& frame, std::size_t at) {
    return frame.at(at) * 256U + frame.at(at + 1);
}

TEST(UdpDatagram, HasLengthsThatCountWhatFollows) {
    Bytes const frame = udpDatagram(7);
    constexpr std::size_t ip = 14;
    constexpr std::size_t udp = ip + 20;
    EXPECT_EQ(twoOctets(frame, 12), 0x0800U);
    EXPECT_EQ(frame.at(ip + 9), 17);
    std::size_t const size = twoOctets(frame, udp + 4);
    EXPECT_EQ(size, 8U + text("log line 7").size());
    EXPECT_EQ(twoOctets(frame, ip + 2), 20U + size);
    EXPECT_EQ(find(frame, text("log line 7")), udp + 8);
    EXPECT_EQ(frame.size(), 60U) << "padded";
}

TEST(UdpDatagram, HasAnIpHeaderThatSumsToOnes) {
    Bytes const frame = udpDatagram(1);
    unsigned sum = 0;
    for (std::size_t at = 14; at < 34; at += 2) sum += twoOctets(frame, at);
    EXPECT_EQ((sum & 0xFFFFU) + (sum >> 16U), 0xFFFFU);
}

TEST(SpanningTreeHello, HasALengthInPlaceOfAnEtherType) {
    Bytes const frame = spanningTreeHello();
    EXPECT_EQ(prefix(frame, 6), macAddress("01:80:c2:00:00:00"));
    EXPECT_EQ(twoOctets(frame, 12), 3U + 35U) << "LLC and the message";
    EXPECT_EQ(find(frame, {0x42, 0x42, 0x03}), 14U);
    EXPECT_EQ(frame.size(), 60U) << "padded";
}

}  // namespace
}  // namespace TalTest::OtherTrafficTest
