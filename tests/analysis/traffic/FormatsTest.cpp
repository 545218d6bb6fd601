// The same frames in captures of both formats: one index, but for the places.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "analysis/traffic/TrafficCaptures.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"
#include "support/PcapngMaker.hpp"

namespace TalIec61850Analysis::FormatsTest {
namespace {

using namespace TalTest;

constexpr std::uint8_t kNanoseconds = 9;

/// The whole records of a classic capture as a next-generation one.
Bytes asNextGeneration(CaptureFile& capture, bool isLittleEndian) {
    PcapngMaker maker;
    maker.section(isLittleEndian)
        .interface(capture.interfaces().front().linkType, 0, maker.timeOptions(kNanoseconds));
    while (RecordView const* const view = capture.next()) {
        auto const time = view->record.time.value_or(CaptureTime()).time_since_epoch().count();
        maker.packet({.time = static_cast<std::uint64_t>(time),
                      .frame = Bytes(view->frame.begin(), view->frame.end()),
                      .originalSize = view->record.originalSize});
    }
    return maker.bytes();
}

template <typename Column>
bool isEqual(Column const& a, Column const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

void expectSamePackets(PacketColumns const& a, PacketColumns const& b) {
    EXPECT_TRUE(isEqual(a.times(), b.times()));
    EXPECT_TRUE(isEqual(a.redundancySequences(), b.redundancySequences()));
    EXPECT_TRUE(isEqual(a.flags(), b.flags()));
    if (a.protocol() == StreamProtocol::goose) {
        EXPECT_TRUE(isEqual(a.stNums(), b.stNums()));
        EXPECT_TRUE(isEqual(a.sqNums(), b.sqNums()));
    } else {
        EXPECT_TRUE(isEqual(a.smpCnts(), b.smpCnts()));
        EXPECT_TRUE(isEqual(a.smpSynchs(), b.smpSynchs()));
        EXPECT_TRUE(isEqual(a.asdus(), b.asdus()));
    }
}

class TrafficOfBothFormats : public testing::TestWithParam<bool> {};

TEST_P(TrafficOfBothFormats, IsTheSame) {
    constexpr std::uint64_t kMaxSize = 4'000'000;
    auto paths = recordedCapturePaths();
    auto const own = ownCapturePaths();
    paths.insert(paths.end(), own.begin(), own.end());
    std::size_t compared = 0;
    for (std::string const& path : paths) {
        SCOPED_TRACE(path);
        CaptureFile capture(path);
        if (capture.size() > kMaxSize || capture.format() != CaptureFormat::classic ||
            capture.interfaces().empty())
            continue;
        ++compared;
        TempFile const converted(asNextGeneration(capture, GetParam()));
        TrafficIndex const classic = indexCapture(path);
        TrafficIndex const next = indexCapture(converted.path());
        EXPECT_EQ(next.files().front().summary.format, CaptureFormat::nextGeneration);
        EXPECT_EQ(next.files().front().summary.records, classic.files().front().summary.records);
        EXPECT_EQ(next.files().front().summary.otherFrames,
                  classic.files().front().summary.otherFrames);
        EXPECT_EQ(next.files().front().attributes, classic.files().front().attributes);
        ASSERT_EQ(next.streams().size(), classic.streams().size());
        for (std::size_t i = 0; i < classic.streams().size(); ++i) {
            EXPECT_EQ(next.streams()[i].key, classic.streams()[i].key);
            expectSamePackets(classic.streams()[i].parts.front().packets,
                              next.streams()[i].parts.front().packets);
        }
    }
    EXPECT_GT(compared, 20U);
}

INSTANTIATE_TEST_SUITE_P(ByteOrders, TrafficOfBothFormats, testing::Bool(),
                         [](auto const& order) { return order.param ? "Little" : "Big"; });

TEST(TrafficWithoutTimes, HasPacketsThatAreInNoWindow) {
    PcapngMaker maker;
    maker.section().interface().simplePacket(gooseFrame({}, {})).simplePacket(gooseFrame({}, {}));
    TempFile const file(maker.bytes());
    TrafficIndex const index = indexCapture(file.path());
    ASSERT_EQ(index.streams().size(), 1U);
    EXPECT_EQ(index.streams().front().parts.front().packets.size(), 2U);
    std::size_t inWindow = 0;
    index.streams().front().visit({}, [&](PacketRef const&) { ++inWindow; });
    EXPECT_EQ(inWindow, 0U);
    EXPECT_FALSE(index.files().front().summary.first.has_value());
}

}  // namespace
}  // namespace TalIec61850Analysis::FormatsTest
