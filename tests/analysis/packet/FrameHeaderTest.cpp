#include <gtest/gtest.h>

#include <TalIec61850Analysis/packet/FrameHeader.hpp>

#include "analysis/packet/PacketFrames.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Analysis {
namespace {

using namespace TalIec61850Tools;
using namespace TalTest;

TEST(FrameHeaders, OfAnUntaggedFrame) {
    GooseMessage message;
    message.appId = 0x3FFF;
    message.length = 0x0123;
    message.reserved1 = 0x7FFF;
    message.reserved2 = 0xABCD;
    FrameHeader const header = readFrameHeader(placed(message).frame);
    EXPECT_EQ(toText(header.destination.value()), "01:0c:cd:01:00:01");
    EXPECT_EQ(toText(header.source.value()), "02:00:00:00:00:01");
    EXPECT_EQ(header.etherType, 0x88B8);
    EXPECT_EQ(header.appId, 0x3FFF);
    EXPECT_EQ(header.length, 0x0123);
    EXPECT_EQ(header.reserved1, 0x7FFF);
    EXPECT_EQ(header.reserved2, 0xABCD);
    EXPECT_FALSE(header.simulated());
    EXPECT_FALSE(header.vlan || header.hsr || header.prp);
    EXPECT_EQ(header.size, 22U);
}

TEST(FrameHeaders, HaveASimulatedBit) {
    GooseMessage message;
    message.reserved1 = 0x8000;
    EXPECT_TRUE(readFrameHeader(placed(message).frame).simulated());
    EXPECT_FALSE(FrameHeader().simulated());
}

TEST(FrameHeaders, HaveTagsAndATrailer) {
    auto const ethernet = Ethernet().withVlan(4095, 5, true).withHsr('B', 0x1234).withPrp('A', 7);
    FrameHeader const header = readFrameHeader(placed(GooseMessage(), ethernet).frame);
    EXPECT_EQ(header.vlan, (VlanTag{.priority = 5, .dei = true, .id = 4095}));
    ASSERT_TRUE(header.hsr);
    EXPECT_EQ(header.hsr->lane(), 'B');
    EXPECT_EQ(header.hsr->sequence, 0x1234);
    ASSERT_TRUE(header.prp);
    EXPECT_EQ(header.prp->lan(), 'A');
    EXPECT_EQ(header.prp->lanId, 10);
    EXPECT_EQ(header.prp->sequence, 7);
    EXPECT_EQ(header.etherType, 0x88B8);
    EXPECT_EQ(header.size, 32U);
}

TEST(FrameHeaders, HaveFourBitsOfPathAndTwelveOfSize) {
    Bytes const addresses(12, 0x02);
    Bytes const tag = {0x89, 0x2F, 0xF1, 0x23, 0xFF, 0xFE, 0x88, 0xBA};
    FrameHeader const header = readFrameHeader(concat({addresses, tag}));
    EXPECT_EQ(header.hsr, (HsrTag{.path = 15, .lsduSize = 0x123, .sequence = 0xFFFE}));
    EXPECT_EQ(header.etherType, 0x88BA);
    EXPECT_EQ(header.appId, std::nullopt);
}

TEST(FrameHeaders, TakeOneVlanTagAlone) {
    Bytes const addresses(12, 0x02);
    Bytes const tags = {0x81, 0x00, 0x00, 0x05, 0x81, 0x00, 0x00, 0x06, 0x88, 0xB8};
    FrameHeader const header = readFrameHeader(concat({addresses, tags, Bytes(20, 0x00)}));
    EXPECT_EQ(header.vlan, (VlanTag{.priority = 0, .dei = false, .id = 5}));
    EXPECT_EQ(header.etherType, 0x8100);
    EXPECT_EQ(header.appId, std::nullopt);
    EXPECT_EQ(header.size, 18U);
}

TEST(FrameHeaders, HoldWhatIsWholeInACutFrame) {
    Bytes const frame = placed(GooseMessage(), Ethernet().withVlan(5).withHsr('A')).frame;
    for (std::size_t size = 0; size < 32; ++size) {
        FrameHeader const header = readFrameHeader(prefix(frame, size));
        SCOPED_TRACE(size);
        EXPECT_EQ(header.destination.has_value(), size >= 6);
        EXPECT_EQ(header.source.has_value(), size >= 12);
        EXPECT_EQ(header.vlan.has_value(), size >= 16);
        EXPECT_EQ(header.hsr.has_value(), size >= 22);
        EXPECT_EQ(header.appId.has_value(), size >= 26);
        EXPECT_EQ(header.length.has_value(), size >= 28);
        EXPECT_EQ(header.reserved1.has_value(), size >= 30);
        EXPECT_EQ(header.reserved2.has_value(), size >= 32);
        EXPECT_EQ(header.size, size);
        EXPECT_EQ(header.etherType.has_value(), size >= 24);
    }
}

TEST(FrameHeaders, TakeATrailerOnlyFromBehindThem) {
    Bytes const addresses(12, 0x02);
    Bytes const trailer = {0x00, 0x01, 0xB0, 0x20, 0x88, 0xFB};
    Bytes const header = concat({addresses, {0x88, 0xB8}, Bytes(8, 0x00)});
    EXPECT_EQ(readFrameHeader(concat({header, trailer})).prp,
              (PrpTrailer{.sequence = 1, .lanId = 11, .lsduSize = 0x020}));
    EXPECT_EQ(readFrameHeader(concat({header, prefix(trailer, 5)})).prp, std::nullopt);
    EXPECT_EQ(readFrameHeader(concat({prefix(header, 20), {0x88, 0xFB}})).prp, std::nullopt);
}

}  // namespace
}  // namespace TalIec61850Analysis
