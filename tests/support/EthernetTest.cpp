#include <gtest/gtest.h>

#include <stdexcept>

#include "support/Ethernet.hpp"

namespace TalTest::EthernetTest {
namespace {

Bytes const payload = {0xDE, 0xAD};

Ethernet plain() { return Ethernet().to("01:0c:cd:01:00:02").from("02:00:00:00:00:0A"); }

Bytes const addresses = {0x01, 0x0C, 0xCD, 0x01, 0x00, 0x02, 0x02, 0x00, 0x00, 0x00, 0x00, 0x0A};

/// A frame of plain()'s addresses and what is expected after them.
Bytes behindAddresses(std::initializer_list<Part> parts) {
    return concat({addresses, concat(parts)});
}

TEST(EthernetBuilder, WritesAddressesEtherTypeAndPayload) {
    EXPECT_EQ(ethernetFrame(plain(), 0x88B8, payload), behindAddresses({{0x88, 0xB8}, payload}));
    EXPECT_EQ(payloadOffset(plain()), 14U);
}

TEST(EthernetBuilder, ReadsAddressesInEitherCase) {
    EXPECT_EQ(macAddress("01:0c:CD:aF:09:90"), (Bytes{0x01, 0x0C, 0xCD, 0xAF, 0x09, 0x90}));
}

TEST(EthernetBuilder, RefusesWhatIsNoAddress) {
    for (auto const* address : {"", "01:0c:cd:01:00", "01-0c-cd-01-00-02", "01:0c:cd:01:00:0g"}) {
        EXPECT_THROW((void)macAddress(address), std::invalid_argument) << address;
    }
}

TEST(EthernetBuilder, WritesVlanTagBeforeTheEtherType) {
    EXPECT_EQ(ethernetFrame(plain().withVlan(0x123), 0x88BA, payload),
              behindAddresses({{0x81, 0x00, 0x81, 0x23, 0x88, 0xBA}, payload}));
    EXPECT_EQ(payloadOffset(plain().withVlan(0x123)), 18U);
}

TEST(EthernetBuilder, WritesPriorityAndDropEligibleBits) {
    EXPECT_EQ(ethernetFrame(plain().withVlan(0xFFF, 7, true), 0x88BA, payload),
              behindAddresses({{0x81, 0x00, 0xFF, 0xFF, 0x88, 0xBA}, payload}));
    EXPECT_EQ(ethernetFrame(plain().withVlan(0, 0), 0x88BA, payload),
              behindAddresses({{0x81, 0x00, 0x00, 0x00, 0x88, 0xBA}, payload}));
}

TEST(EthernetBuilder, WritesHsrTagWithTheSizeBehindItsEtherType) {
    EXPECT_EQ(ethernetFrame(plain().withHsr('A', 0x0102), 0x88B8, payload),
              behindAddresses({{0x89, 0x2F, 0x00, 0x08, 0x01, 0x02, 0x88, 0xB8}, payload}));
    EXPECT_EQ(payloadOffset(plain().withHsr('A')), 20U);
}

TEST(EthernetBuilder, TellsHsrLaneBByBit0x10) {
    EXPECT_EQ(ethernetFrame(plain().withHsr('B'), 0x88B8, payload),
              behindAddresses({{0x89, 0x2F, 0x10, 0x08, 0x00, 0x00, 0x88, 0xB8}, payload}));
}

TEST(EthernetBuilder, WritesPrpTrailerWithTheSizeThatCountsItself) {
    EXPECT_EQ(ethernetFrame(plain().withPrp('A', 0xFFFE), 0x88B8, payload),
              behindAddresses({{0x88, 0xB8}, payload, {0xFF, 0xFE, 0xA0, 0x08, 0x88, 0xFB}}));
    EXPECT_EQ(ethernetFrame(plain().withPrp('B'), 0x88B8, payload),
              behindAddresses({{0x88, 0xB8}, payload, {0x00, 0x00, 0xB0, 0x08, 0x88, 0xFB}}));
}

TEST(EthernetBuilder, WritesVlanThenHsrThenPrp) {
    auto const all = plain().withVlan(5).withHsr('B', 1).withPrp('A', 2);
    EXPECT_EQ(ethernetFrame(all, 0x88B8, payload),
              behindAddresses({{0x81, 0x00, 0x80, 0x05},              // VLAN
                               {0x89, 0x2F, 0x10, 0x08, 0x00, 0x01},  // HSR
                               {0x88, 0xB8},
                               payload,
                               {0x00, 0x02, 0xA0, 0x0E, 0x88, 0xFB}}));  // PRP, the HSR tag in it
    EXPECT_EQ(payloadOffset(all), 24U);
}

TEST(EthernetBuilder, WritesTheLow12BitsOfALargeSize) {
    Bytes const frame = ethernetFrame(plain().withPrp('A'), 0x88B8, Bytes(0x1000));
    EXPECT_EQ(frame[frame.size() - 4], 0xA0);
    EXPECT_EQ(frame[frame.size() - 3], 0x06);
}

TEST(EthernetBuilder, PadsOnlyWhenAskedTo) {
    EXPECT_EQ(ethernetFrame(plain(), 0x88B8, payload).size(), 16U);
    EXPECT_EQ(ethernetFrame(plain().withPadding(), 0x88B8, payload),
              behindAddresses({{0x88, 0xB8}, payload, repeat(0, 44)}));
    EXPECT_EQ(ethernetFrame(plain().withPadding(), 0x88B8, Bytes(50)).size(), 64U);
}

TEST(EthernetBuilder, PadsBeforeThePrpTrailerAndCountsThePadding) {
    EXPECT_EQ(ethernetFrame(plain().withPadding().withPrp('A'), 0x88B8, payload),
              behindAddresses(
                  {{0x88, 0xB8}, payload, repeat(0, 38), {0x00, 0x00, 0xA0, 46, 0x88, 0xFB}}));
}

}  // namespace
}  // namespace TalTest::EthernetTest
