#include <gtest/gtest.h>

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <utility>
#include <vector>

#include "analysis/packet/PacketFrames.hpp"
#include "support/Ber.hpp"
#include "support/Bytes.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Analysis::FrameHeaderTest {
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
    EXPECT_TRUE(header.vlanTags.empty());
    EXPECT_FALSE(header.hsr || header.prp);
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
    EXPECT_EQ(header.vlanTags.innermost(), (VlanTag{.priority = 5, .dei = true, .id = 4095}));
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

/// The tags one after the other, each with its TPID in front.
Bytes stack(std::vector<VlanTag> const& tags) {
    Bytes octets;
    for (VlanTag const& tag : tags) {
        unsigned const control = unsigned{tag.priority} << 13U | (tag.dei ? 0x1000U : 0U) | tag.id;
        append(octets, concat({bigEndian(tag.tpid, 2), bigEndian(control, 2)}));
    }
    return octets;
}

TEST(FrameHeaders, HaveEveryTagOfAStack) {
    Bytes const apdu = gooseApdu(GooseMessage());
    std::vector<VlanTag> tags;
    for (std::size_t count = 0; count <= kMaxVlanTags; ++count) {
        SCOPED_TRACE(count);
        Bytes const frame = concat({Bytes(12, 0x02), stack(tags), {0x88, 0xB8}, apdu});
        FrameHeader const header = readFrameHeader(frame);
        EXPECT_EQ(std::vector(header.vlanTags.begin(), header.vlanTags.end()), tags);
        EXPECT_EQ(header.etherType, 0x88B8);
        EXPECT_EQ(header.size, 22 + 4 * count);
        EXPECT_TRUE(decodeGoose(frame).faults.empty());
        std::uint16_t const tpid = count % 3 == 0 ? 0x88A8 : count % 3 == 1 ? 0x9100 : 0x8100;
        tags.push_back({.tpid = tpid,
                        .priority = static_cast<std::uint8_t>(count % 8),
                        .dei = count % 2 == 0,
                        .id = static_cast<std::uint16_t>(4095 - count)});
    }
}

TEST(FrameHeaders, HaveNoMoreTagsThanAreRead) {
    std::vector<VlanTag> const tags(kMaxVlanTags + 1);
    Bytes const frame =
        concat({Bytes(12, 0x02), stack(tags), {0x88, 0xB8}, gooseApdu(GooseMessage())});
    GoosePacket const packet = decodeGoose(frame);
    EXPECT_EQ(packet.header.vlanTags.size(), kMaxVlanTags);
    EXPECT_EQ(packet.header.etherType, 0x8100);
    EXPECT_EQ(packet.header.appId, std::nullopt);
    ASSERT_FALSE(packet.faults.empty());
    EXPECT_EQ(packet.faults.front(), (Fault{.offset = 44, .kind = FaultKind::tooDeep}));
}

TEST(FrameHeaders, OfCookedCapturesHaveASourceAlone) {
    Bytes const source = {0x02, 0, 0, 0, 0, 9};
    Bytes const apdu = gooseApdu(GooseMessage());
    Bytes const cooked =
        concat({{0x00, 0x03, 0x00, 0x01, 0x00, 0x06}, source, {0, 0}, {0x88, 0xB8}});
    Bytes const cooked2 =
        concat({{0x88, 0xB8, 0, 0, 0, 0, 0, 7, 0x00, 0x01, 0x03, 0x06}, source, {0, 0}});
    for (auto const& [linkType, start] :
         {std::pair(kLinkTypeCooked, cooked), std::pair(kLinkTypeCooked2, cooked2)}) {
        SCOPED_TRACE(linkType);
        Bytes const frame = concat({start, apdu});
        FrameHeader const header = readFrameHeader(frame, {.linkType = linkType});
        EXPECT_EQ(header.destination, std::nullopt);
        EXPECT_EQ(toText(header.source.value()), "02:00:00:00:00:09");
        EXPECT_EQ(header.etherType, 0x88B8);
        EXPECT_EQ(header.size, start.size() + 8);
        GoosePacket const packet = decodeGoose(frame, {.linkType = linkType});
        EXPECT_EQ(packet.gocbRef, GooseMessage().gocbRef);
        EXPECT_TRUE(packet.faults.empty());
        for (std::size_t size = 0; size < start.size(); ++size) {
            FrameHeader const cut = readFrameHeader(prefix(frame, size), {.linkType = linkType});
            EXPECT_FALSE(cut.source || cut.etherType);
        }
    }
    Bytes const tagged = concat({prefix(cooked, 14), {0x81, 0x00, 0x00, 0x05, 0x88, 0xB8}, apdu});
    FrameHeader const header = readFrameHeader(tagged, {.linkType = kLinkTypeCooked});
    EXPECT_EQ(header.vlanTags.innermost(), (VlanTag{.tpid = 0x8100, .priority = 0, .id = 5}));
    EXPECT_EQ(header.etherType, 0x88B8);
}

TEST(FrameHeaders, OfCookedCapturesHaveNoSourceOfAnotherSize) {
    Bytes frame(40, 0x00);
    frame[5] = 4;
    EXPECT_EQ(readFrameHeader(frame, {.linkType = kLinkTypeCooked}).source, std::nullopt);
    frame[11] = 7;
    EXPECT_EQ(readFrameHeader(frame, {.linkType = kLinkTypeCooked2}).source, std::nullopt);
}

TEST(FrameHeaders, OfAnUnknownLinkTypeHaveNothing) {
    EXPECT_EQ(readFrameHeader(placed(GooseMessage()).frame, {.linkType = 250}), FrameHeader());
}

TEST(FrameHeaders, HaveAnHsrTagWhoseSizeFitsOrAFault) {
    Bytes frame = placed(GooseMessage(), Ethernet().withVlan(5).withHsr('A', 3)).frame;
    EXPECT_TRUE(decodeGoose(frame).faults.empty());
    // The LSDU may end before what is after the PDU, but not within the PDU, and not after the
    // frame.
    append(frame, Bytes(4, 0x00));
    EXPECT_TRUE(decodeGoose(frame).faults.empty());
    for (int const change : {-1, 5}) {
        Bytes wrong = frame;
        wrong[19] = static_cast<std::uint8_t>(wrong[19] + change);
        EXPECT_EQ(decodeGoose(wrong).faults,
                  (Faults{{.offset = 16, .kind = FaultKind::wrongLength}}))
            << change;
    }
    EXPECT_TRUE(decodeGoose(frame, {.originalSize = 2000}).faults.empty());
}

TEST(FrameHeaders, HoldWhatIsWholeInACutFrame) {
    Bytes const frame = placed(GooseMessage(), Ethernet().withVlan(5).withHsr('A')).frame;
    for (std::size_t size = 0; size < 32; ++size) {
        FrameHeader const header = readFrameHeader(prefix(frame, size));
        SCOPED_TRACE(size);
        EXPECT_EQ(header.destination.has_value(), size >= 6);
        EXPECT_EQ(header.source.has_value(), size >= 12);
        EXPECT_EQ(header.vlanTags.size() == 1, size >= 16);
        EXPECT_EQ(header.hsr.has_value(), size >= 22);
        EXPECT_EQ(header.appId.has_value(), size >= 26);
        EXPECT_EQ(header.length.has_value(), size >= 28);
        EXPECT_EQ(header.reserved1.has_value(), size >= 30);
        EXPECT_EQ(header.reserved2.has_value(), size >= 32);
        EXPECT_EQ(header.size, size);
        EXPECT_EQ(header.etherType.has_value(), size >= 24);
    }
}

TEST(FrameHeaders, TakeATrailerOnlyFromAfterThem) {
    Bytes const addresses(12, 0x02);
    Bytes const trailer = {0x00, 0x01, 0xB0, 0x0E, 0x88, 0xFB};
    Bytes const header = concat({addresses, {0x88, 0xB8}, Bytes(8, 0x00)});
    EXPECT_EQ(readFrameHeader(concat({header, trailer})).prp,
              (PrpTrailer{.sequence = 1, .lanId = 11, .lsduSize = 0x00E}));
    EXPECT_EQ(readFrameHeader(concat({header, prefix(trailer, 5)})).prp, std::nullopt);
    EXPECT_EQ(readFrameHeader(concat({prefix(header, 20), {0x88, 0xFB}})).prp, std::nullopt);
}

TEST(FrameHeaders, TakeATrailerOfAFittingSizeAndLanAlone) {
    Bytes const frame = placed(GooseMessage(), Ethernet().withVlan(5).withPrp('B', 0xFFFF)).frame;
    PrpTrailer const trailer = readFrameHeader(frame).prp.value();
    EXPECT_EQ(trailer.lsduSize, frame.size() - 18);
    std::size_t const lan = frame.size() - 4;
    for (unsigned word = 0; word <= 0xFFFF; ++word) {
        Bytes other = frame;
        other[lan] = static_cast<std::uint8_t>(word >> 8U);
        other[lan + 1] = static_cast<std::uint8_t>(word & 0xFFU);
        bool const fits =
            (word >> 12U == 0xA || word >> 12U == 0xB) && (word & 0xFFFU) == frame.size() - 18;
        ASSERT_EQ(readFrameHeader(other).prp.has_value(), fits) << word;
    }
}

TEST(FrameHeaders, TakeATrailerBeforePadding) {
    Bytes const frame = placed(GooseMessage(), Ethernet().withPrp('A', 0x88FB)).frame;
    PrpTrailer const trailer = readFrameHeader(frame).prp.value();
    for (Bytes const& padding : {Bytes(1, 0), Bytes(46, 0), Bytes(20, 0x88), Bytes{0x88, 0xFB}}) {
        Bytes const padded = concat({frame, padding});
        EXPECT_EQ(readFrameHeader(padded).prp, trailer);
        EXPECT_EQ(decodeGoose(padded).header.prp, trailer);
        EXPECT_TRUE(decodeGoose(padded).trailing.empty());
    }
}

TEST(FrameHeaders, HaveNoTrailerWhereTheEndWasNotCaptured) {
    Bytes const frame = placed(GooseMessage(), Ethernet().withPrp('A')).frame;
    EXPECT_TRUE(readFrameHeader(frame, {.originalSize = frame.size()}).prp);
    EXPECT_FALSE(readFrameHeader(frame, {.originalSize = frame.size() + 1}).prp);
    GoosePacket const packet = decodeGoose(frame, {.originalSize = frame.size() + 1});
    EXPECT_FALSE(packet.header.prp);
    EXPECT_EQ(packet.trailing.size(), 6U);
}

TEST(FrameHeaders, HaveNoTrailerWithinThePdu) {
    GooseMessage message;
    Bytes const frame = placed(message).frame;
    Bytes const trailer =
        concat({{0x12, 0x34}, bigEndian(0xA000U | (frame.size() + 8 - 14), 2), {0x88, 0xFB}});
    message.extraLast = ber(0x8C, trailer);
    Bytes const longer = placed(message).frame;
    ASSERT_EQ(longer.size(), frame.size() + 8);
    EXPECT_EQ(readFrameHeader(longer).prp, std::nullopt);
    EXPECT_EQ(decodeGoose(longer).header.prp, std::nullopt);
}

}  // namespace
}  // namespace TalIec61850Analysis::FrameHeaderTest
