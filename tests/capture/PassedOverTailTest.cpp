// What is after a PDU and passed over changes nothing: it is as good as a tail that nobody reads.

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/codec/BerWalk.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>

#include "index/BerGenerator.hpp"
#include "index/IndexImage.hpp"
#include "index/RandomPicks.hpp"
#include "index/TrafficGenerators.hpp"
#include "support/Ber.hpp"
#include "support/Bytes.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest::PassedOverTailTest {
namespace {

using namespace TalIec61850Parser;
using namespace TalIec61850Parser::detail;

std::string placeOf(Package const& package) {
    return " at " + std::to_string(package.time.seconds) + ", " + std::to_string(package.position) +
           ": ";
}

/// What the walk makes of a PDU and of what is after it, in words.
std::string gooseOf(Bytes const& pdu, Filter const& filter = {}) {
    Goose goose;
    Package package;
    bool const accepted = walkGoosePdu(pdu, {},
                                       {.record = goose,
                                        .filters = filter.gooseFilters,
                                        .package = package,
                                        .time = {9, 0},
                                        .fileOffset = 100});
    return (accepted ? "yes" : "no") + placeOf(package) + identityText(goose);
}

std::string svOf(Bytes const& pdu, Filter const& filter = {}) {
    Sv sv;
    Package package;
    bool const accepted = walkSavPdu(pdu, {},
                                     {.record = sv,
                                      .filters = filter.svFilters,
                                      .package = package,
                                      .time = {9, 0},
                                      .fileOffset = 100});
    std::ostringstream text;
    text << (accepted ? "yes" : "no") << placeOf(package) << identityText(sv) << ' ' << sv.maxSmpCnt
         << ' ' << sv.smpRate << ' ' << sv.maxNoASDU;
    return text.str();
}

/// No element begins with this length octet.
Bytes unreadable(std::size_t size) { return repeat(0xFF, size); }

Bytes anyTail() {
    Bytes tail = oneIn(3) ? anyOctets(kMaxTailSize) : randomElements(2);
    if (oneIn(4)) append(tail, anyOctets(8));
    if (oneIn(8)) tail = concat({Bytes(2 * below(49)), tail});
    if (tail.size() > kMaxTailSize) tail.resize(kMaxTailSize);
    return tail;
}

Bytes anyGoosePdu() {
    GooseMessage message;
    if (oneIn(2)) message.gocbRef = std::string("B");
    if (oneIn(2)) message.allData = randomElements(2);
    return oneIn(4) ? ber(oneIn(2) ? 0x30 : 0x60, randomElements(3)) : goosePdu(message);
}

Bytes anySavPdu() {
    SvMessage message;
    message.asdus[0].extraLast = randomElements(2);
    if (oneIn(2)) message.extraFirst = randomElements(2);
    return oneIn(4) ? ber(oneIn(2) ? 0x61 : 0xA2, randomElements(3)) : savPdu(message);
}

TEST(PassedOverTail, BehindAGoosePduChangesNothing) {
    std::size_t passed = 0;
    EXPECT_TRUE(rc::check([&] {
        Filter const filter = *anyFilter();
        for (int i = 0; i < 40; ++i) {
            Bytes const tail = anyTail();
            if (!walkGoosePduPassesOver(tail)) continue;
            ++passed;
            Bytes const pdu = anyGoosePdu();
            Bytes const bare = concat({pdu, unreadable(tail.size())});
            RC_ASSERT(gooseOf(concat({pdu, tail})) == gooseOf(bare));
            RC_ASSERT(gooseOf(concat({pdu, tail}), filter) == gooseOf(bare, filter));
        }
    }));
    EXPECT_GT(passed, 200U);
}

TEST(PassedOverTail, BehindASavPduChangesNothing) {
    std::size_t passed = 0;
    EXPECT_TRUE(rc::check([&] {
        Filter const filter = *anyFilter();
        for (int i = 0; i < 40; ++i) {
            Bytes const tail = anyTail();
            if (!walkSavPduPassesOver(tail)) continue;
            ++passed;
            Bytes const pdu = anySavPdu();
            Bytes const bare = concat({pdu, unreadable(tail.size())});
            RC_ASSERT(svOf(concat({pdu, tail})) == svOf(bare));
            RC_ASSERT(svOf(concat({pdu, tail}), filter) == svOf(bare, filter));
        }
    }));
    EXPECT_GT(passed, 200U);
}

TEST(PassedOverTail, OfUnreadableOctetsIsPassedOver) {
    for (std::size_t size = 0; size <= kMaxTailSize; ++size) {
        EXPECT_TRUE(walkGoosePduPassesOver(unreadable(size)));
        EXPECT_TRUE(walkSavPduPassesOver(unreadable(size)));
    }
}

TEST(PassedOverTail, OfElementsThatMeanNothingIsPassedOver) {
    for (Bytes const& tail :
         {ber(0x04, "abcd"), concat({ber(0x04, {}), ber(0x85, {1})}), Bytes(98),
          concat({ber(0x04, {}), {0x05, 0x7F, 0x00}}), Bytes{0x00, 0x80, 0x00, 0x00}}) {
        EXPECT_TRUE(walkGoosePduPassesOver(tail));
        EXPECT_TRUE(walkSavPduPassesOver(tail));
    }
    EXPECT_TRUE(walkSavPduPassesOver(ber(0x82, {0x12, 0x34}))) << "smpCnt outside of an ASDU";
    EXPECT_TRUE(walkSavPduPassesOver(ber(0x61, ber(0x80, {1}))));
    EXPECT_TRUE(walkGoosePduPassesOver(ber(0x60, ber(0x80, {1}))));
}

TEST(PassedOverTail, OfAnythingLookedAtIsNot) {
    for (Bytes const& tail : {ber(0x61, {}), ber(0x30, ber(0x80, {1})), ber(0xAB, {1, 2}),
                              concat({Bytes(40), ber(0x61, {1, 2})})}) {
        EXPECT_FALSE(walkGoosePduPassesOver(tail));
    }
    for (Bytes const& tail :
         {ber(0x80, {1}), ber(0xA2, {}), ber(0x30, {}), ber(0x60, {1, 2}), ber(0xA0, {}),
          concat({Bytes(40), ber(0x80, {})}), concat({ber(0x30, {}), ber(0x80, "MU")})}) {
        EXPECT_FALSE(walkSavPduPassesOver(tail));
    }
}

// --- The trailer -------------------------------------------------------------------------------

TEST(PrpLan, IsNamedFourOctetsBeforeTheEnd) {
    Bytes frame(60, 0x00);
    EXPECT_EQ(wire::readPrpLan(frame), std::nullopt);
    frame[58] = 0x88;
    frame[59] = 0xFB;
    for (unsigned octet = 0; octet < 256; ++octet) {
        frame[56] = static_cast<std::uint8_t>(octet);
        EXPECT_EQ(wire::readPrpLan(frame), (octet & 0x10U) != 0 ? 'B' : 'A') << octet;
    }
    for (std::size_t i = 0; i < 56; ++i) frame[i] = 0xFF;
    frame[57] = 0x77;
    EXPECT_EQ(wire::readPrpLan(frame), 'B');
    frame[59] = 0xFA;
    EXPECT_EQ(wire::readPrpLan(frame), std::nullopt);
    frame[59] = 0xFB;
    frame[58] = 0x89;
    EXPECT_EQ(wire::readPrpLan(frame), std::nullopt);
}

TEST(PrpLan, IsLookedForInMoreThanSeventeenOctets) {
    for (std::size_t size = 0; size < 30; ++size) {
        Bytes const frame = concat({Bytes(size), {0x10, 0x00, 0x88, 0xFB}});
        EXPECT_EQ(wire::readPrpLan(frame).has_value(), frame.size() > 17) << frame.size();
    }
    EXPECT_EQ(wire::readPrpLan({}), std::nullopt);
}

TEST(PrpLan, IsWhatTheLinkLayerSays) {
    EXPECT_TRUE(rc::check([] {
        for (int i = 0; i < 20; ++i) {
            Bytes frame = *anyFrame();
            if (oneIn(2)) append(frame, {anyOctet(), anyOctet(), 0x88, 0xFB});
            auto const link = wire::decodeLinkLayer(frame, 0);
            if (!link) continue;
            RC_ASSERT(link->prpLan == wire::readPrpLan(frame));
        }
    }));
}

}  // namespace
}  // namespace TalTest::PassedOverTailTest
