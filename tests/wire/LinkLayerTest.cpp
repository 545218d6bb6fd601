// The link layer around GOOSE and SV: tags, trailer, application header.

#include <gtest/gtest.h>

#include <TalIec61850Parser/wire/ApplicationHeader.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <TalIec61850Parser/wire/Hex.hpp>
#include <cstddef>
#include <optional>
#include <string>

#include "support/Bytes.hpp"

namespace TalTest::LinkLayerTest {
namespace {

namespace wire = TalIec61850Parser::wire;

Bytes addresses() {
    return {0x01, 0x0C, 0xCD, 0x01, 0x00, 0x02, 0xA0, 0xB1, 0xC2, 0xD3, 0xE4, 0xF5};
}

std::string letter(std::optional<char> lan) { return lan ? std::string(1, *lan) : "-"; }

/// EtherType, VLAN, lanes, index of the payload and size of the unread octets; "none" for none.
std::string linkOf(Bytes const& buffer, std::size_t index = 0) {
    auto const link = wire::decodeLinkLayer(buffer, index);
    if (!link) {
        return "none";
    }
    return std::to_string(link->etherType) + " vlan " +
           (link->vlanId ? std::to_string(*link->vlanId) : "-") + " hsr " + letter(link->hsrLan) +
           " prp " + letter(link->prpLan) + " at " + std::to_string(link->payloadIndex) +
           " unread " + std::to_string(link->unread.size());
}

TEST(LinkLayer, IsReadBehindAnIndex) {
    Bytes const frame = concat({addresses(), {0x88, 0xB8, 1, 2}});
    EXPECT_EQ(linkOf(frame), "35000 vlan - hsr - prp - at 14 unread 0");
    EXPECT_EQ(linkOf(concat({repeat(9, 16), frame}), 16),
              "35000 vlan - hsr - prp - at 30 unread 0");
    auto const link = wire::decodeLinkLayer(frame, 0);
    EXPECT_EQ(wire::toColonHex(link->destination), "01:0c:cd:01:00:02");
    EXPECT_EQ(wire::toColonHex(link->source), "a0:b1:c2:d3:e4:f5");
}

TEST(LinkLayer, TakesOneVlanTagThenAnHsrTag) {
    Bytes const vlan = {0x81, 0x00, 0xF0, 0x05};
    Bytes const hsr = {0x89, 0x2F, 0x10, 0x34, 0x00, 0x07};
    Bytes const sv = {0x88, 0xBA, 1, 2, 3, 4};
    EXPECT_EQ(linkOf(concat({addresses(), vlan, sv})), "35002 vlan 5 hsr - prp - at 18 unread 0");
    EXPECT_EQ(linkOf(concat({addresses(), hsr, sv})), "35002 vlan - hsr B prp - at 20 unread 3");
    EXPECT_EQ(linkOf(concat({addresses(), vlan, hsr, sv})),
              "35002 vlan 5 hsr B prp - at 24 unread 3");
    EXPECT_EQ(linkOf(concat({addresses(), hsr, vlan, sv})),
              "33024 vlan - hsr B prp - at 20 unread 3");
}

TEST(LinkLayer, IsNoneWhereTheBufferEndsInsideIt) {
    Bytes const whole =
        concat({addresses(), {0x81, 0x00, 0, 1, 0x89, 0x2F, 0, 0, 0, 0, 0x88, 0xB8}});
    for (std::size_t size = 18; size < whole.size(); ++size) {
        EXPECT_EQ(linkOf(prefix(whole, size)), "none") << size;
    }
    EXPECT_EQ(linkOf(whole), "35000 vlan 1 hsr A prp - at 24 unread 3");
    EXPECT_EQ(linkOf(prefix(whole, 13)), "none");
    // Too short for tags to be looked for.
    EXPECT_EQ(linkOf(prefix(whole, 17)), "33024 vlan - hsr - prp - at 14 unread 0");
    EXPECT_EQ(linkOf(whole, whole.size() + 1), "none");
}

TEST(LinkLayer, FindsThePrpTrailerAtTheEndOfALongBufferOnly) {
    Bytes const trailer = {0x12, 0x34, 0xB0, 0x20, 0x88, 0xFB};
    Bytes const frame = concat({addresses(), {0x88, 0xB8}, trailer});
    EXPECT_EQ(linkOf(frame), "35000 vlan - hsr - prp B at 14 unread 0");
    EXPECT_EQ(wire::readPrpLan(frame), 'B');
    EXPECT_EQ(wire::readPrpLan(Bytes(frame.end() - 18, frame.end())), 'B');
    EXPECT_EQ(wire::readPrpLan(Bytes(frame.end() - 17, frame.end())), std::nullopt);
    EXPECT_EQ(wire::readPrpLan(prefix(frame, 19)), std::nullopt);
}

TEST(RedundancyTag, HasLaneSizeAndSequence) {
    auto const hsr = wire::readHsrTag(Bytes{0x1A, 0xBC, 0x01, 0x02});
    EXPECT_EQ(hsr, (wire::RedundancyTag{.path = 1, .lsduSize = 0xABC, .sequence = 0x0102}));
    EXPECT_EQ(hsr.letter(), 'B');
    auto const prp = wire::readPrpTrailer(Bytes{9, 0x12, 0x34, 0xA0, 0x2E, 0x88, 0xFB});
    ASSERT_TRUE(prp);
    EXPECT_EQ(*prp, (wire::RedundancyTag{.path = 10, .lsduSize = 0x02E, .sequence = 0x1234}));
    EXPECT_EQ(prp->letter(), 'A');
    EXPECT_FALSE(wire::readPrpTrailer(Bytes{0x34, 0xA0, 0x2E, 0x88, 0xFB}));
    EXPECT_FALSE(wire::readPrpTrailer(Bytes{0x12, 0x34, 0xA0, 0x2E, 0x88, 0xFA}));
}

TEST(VlanTag, HasPriorityDropEligibilityAndIdentifier) {
    EXPECT_EQ(wire::toVlanTag(0x9FFE), (wire::VlanTag{.priority = 4, .dei = true, .id = 0xFFE}));
    EXPECT_EQ(wire::toVlanTag(0xE001), (wire::VlanTag{.priority = 7, .dei = false, .id = 1}));
}

TEST(ApplicationHeader, HasFourWordsAndWhatFollows) {
    Bytes const data = {0xEE, 0x30, 0x01, 0x00, 0x99, 0x80, 0x01, 0x00, 0x04, 0x61, 0x00};
    auto const header = wire::readApplicationHeader(data, 1);
    ASSERT_TRUE(header);
    EXPECT_EQ(header->appId(), 0x3001);
    EXPECT_EQ(header->length(), 0x99);
    EXPECT_EQ(header->reserved1(), 0x8001);
    EXPECT_EQ(header->reserved2(), 4);
    EXPECT_EQ(header->reserved1Bit0(), 1);
    EXPECT_TRUE(header->isSimulated());
    EXPECT_EQ(header->pdu().size(), 2U);
    EXPECT_EQ(header->pdu().data(), data.data() + 9);
}

TEST(ApplicationHeader, TakesNineOctets) {
    EXPECT_TRUE(wire::readApplicationHeader(Bytes(9), 0));
    EXPECT_FALSE(wire::readApplicationHeader(Bytes(8), 0));
    EXPECT_FALSE(wire::readApplicationHeader(Bytes(9), 1));
    EXPECT_FALSE(wire::readApplicationHeader(Bytes(9), 10));
    EXPECT_FALSE(wire::readApplicationHeader({}, 0));
}

TEST(Hex, IsLowerCaseWithAndWithoutColons) {
    EXPECT_EQ(wire::toHex(Bytes{0x00, 0x9A, 0xFF}), "009aff");
    EXPECT_EQ(wire::toColonHex(Bytes{0x00, 0x9A, 0xFF}), "00:9a:ff");
    EXPECT_EQ(wire::toHex({}), "");
    EXPECT_EQ(wire::toColonHex({}), "");
}

}  // namespace
}  // namespace TalTest::LinkLayerTest
