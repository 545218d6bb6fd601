#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

#include "capture/Indexing.hpp"
#include "capture/SmallStack.hpp"
#include "support/Ber.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/Sanitized.hpp"

// How deep a frame nests is up to its sender; neither stack nor time may depend on it beyond
// the frame's size.

namespace TalTest::DeepNestingTest {
namespace {

using namespace TalIec61850Parser;

constexpr std::size_t kMillion = 1'000'000;
constexpr std::uint64_t kFirstPayload = 24 + 16 + 14;

Bytes gooseNested(Bytes const& pdu) {
    return ethernetFrame({}, etherTypeGoose, apdu({.length = 0}, pdu));
}

Bytes svNested(Bytes const& pdu) {
    return ethernetFrame(svEthernet(), etherTypeSampledValues, apdu({.length = 0}, pdu));
}

Indexed indexFrame(Bytes const& frame) {
    return indexCapture(CaptureBuilder().add(1, 0, frame).bytes());
}

TEST(DeepNesting, OfAGooseFrameIsWalkedToItsEnd) {
    for (std::uint8_t const tag : Bytes{0x30, 0xA2, 0x61}) {
        Bytes const pdu = nested(tag, kMillion, ber(0x61, {}));
        Indexed const result = indexFrame(gooseNested(pdu));
        EXPECT_EQ(packagesOf(only(result.db.gooseProto.streams)).front().position,
                  kFirstPayload + 8 + pdu.size() - 2);
    }
}

TEST(DeepNesting, OfGooseDataIsWalkedToItsEnd) {
    GooseMessage message;
    message.allData = nested(0xA2, kMillion, ber(0x82, ber(0x61, {})));
    message.length = 0;
    Bytes const frame = gooseFrame({}, message);
    Indexed const result = indexFrame(frame);
    Goose const& stream = only(result.db.gooseProto.streams);
    EXPECT_EQ(stream.goID, message.goID);
    EXPECT_EQ(packagesOf(stream).front().position, 24 + 16 + frame.size() - 2);
}

TEST(DeepNesting, OfAnSvFrameIsWalkedToItsEnd) {
    for (std::uint8_t const tag : Bytes{0x30, 0xA2, 0x60}) {
        Bytes const pdu = nested(tag, kMillion, ber(0xA2, ber(0x30, ber(0x80, "MU01"))));
        Indexed const result = indexFrame(svNested(pdu));
        Sv const& stream = only(result.db.svProto.streams);
        EXPECT_EQ(stream.svID, "MU01");
        EXPECT_EQ(packagesOf(stream).front().position, kFirstPayload + 8 + pdu.size() - 10);
    }
}

TEST(DeepNesting, IsComeBackFromLevelByLevel) {
    for (std::size_t const levels : {1UL, 7UL, 8UL, 9UL, 1000UL, kMillion}) {
        Bytes const pdu = nestedAmong(0xA2, levels, {0x61, 0x00});
        EXPECT_EQ(
            packagesOf(only(indexFrame(gooseNested(pdu)).db.gooseProto.streams)).front().position,
            kFirstPayload + 8 + pdu.size() - 2)
            << levels << " levels";
    }
    // The mark of an ASDU is taken back with the level that it was set on.
    Bytes const sequence = ber(0x60, ber(0x30, nestedAmong(0xA2, kMillion, {0x61, 0x00})));
    Indexed const result = indexFrame(svNested(concat({sequence, ber(0x80, {0x07})})));
    EXPECT_EQ(only(result.db.svProto.streams).maxNoASDU, 7U);
}

TEST(DeepNesting, ThatEndsBrokenIsPassedOver) {
    for (Bytes const& end : {Bytes{0xA2}, Bytes{0xA2, 0x7F}, Bytes{0xA2, 0x85, 0, 0, 0, 0, 0}}) {
        EXPECT_EQ(
            indexFrame(gooseNested(nested(0xA2, kMillion, end))).db.gooseProto.getGooseCount(), 1U);
        EXPECT_EQ(indexFrame(svNested(nested(0x30, kMillion, end))).db.svProto.getSvCount(), 1U);
    }
}

TEST(DeepNesting, NeedsNoStack) {
    if (isSanitized) GTEST_SKIP() << "a sanitizer needs the stack itself";
    for (std::uint8_t const tag : Bytes{0x30, 0xA2}) {
        Bytes const frame = gooseNested(nested(tag, kMillion, ber(0x61, {})));
        Bytes const sampled = svNested(nested(tag, kMillion, ber(0xA2, {})));
        bool gooseAccepted = false;
        bool svAccepted = false;
        Package goosePackage;
        Package svPackage;
        runOnSmallStack([&] {
            Goose goose;
            gooseAccepted = GooseParser::parsePacket(frame, 14, {}, 0, goose, goosePackage, {});
            Sv sv;
            svAccepted = SvParser::parsePacket(sampled, 14, {}, 0, sv, svPackage, {});
        });
        EXPECT_TRUE(gooseAccepted);
        EXPECT_TRUE(svAccepted);
        EXPECT_EQ(goosePackage.position, frame.size() - 2);
        EXPECT_EQ(svPackage.position, sampled.size() - 2);
    }
}

TEST(DeepNesting, NeedsNoStackToIndexAFile) {
    if (isSanitized) GTEST_SKIP() << "a sanitizer needs the stack itself";
    TempFile const file(CaptureBuilder()
                            .add(1, 0, gooseNested(nested(0x30, kMillion)))
                            .add(2, 0, svNested(nested(0xA2, kMillion)))
                            .bytes());
    Db db;
    runOnSmallStack([&] {
        std::atomic<bool> const stop = false;
        PcapParser::parseFile(file.path(), db, {}, stop, {});
    });
    EXPECT_EQ(db.gooseProto.getGooseCount(), 1U);
    EXPECT_EQ(db.svProto.getSvCount(), 1U);
}

}  // namespace
}  // namespace TalTest::DeepNestingTest
