// What the road of a frame into the store teaches about frames like it.

#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/FrameIndex.hpp>
#include <cstddef>
#include <string>
#include <variant>

#include "codec/TraceText.hpp"
#include "support/Bytes.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest {
namespace {

using namespace TalIec61850Parser;
using namespace TalIec61850Parser::detail;

/// Frames that go into one store, and what the last of them taught.
struct Lessons {
    Db db;
    Filter filter;
    FrameLesson last;
    std::string const fileName = "lessons.pcap";

    /// @return what was looked at of the frame, X for each octet
    std::string mask(Bytes const& frame) {
        IndexTarget const target{
            .fileName = fileName, .isNanosecond = false, .filter = filter, .db = db};
        last.trace.reset();
        indexFrame(frame, 0, 0, {}, target, &last);
        return last.trace.frame().empty() ? "none" : lookedAt(last.trace);
    }
};

std::string looked(std::size_t octets) { return std::string(octets, 'X'); }
std::string passedOver(std::size_t octets) { return std::string(octets, '.'); }

TEST(FrameLesson, HoldsTheStreamOfTheLastFrameAlone) {
    Lessons lessons;
    EXPECT_NE(lessons.mask(gooseFrame(Ethernet(), {})), "none");
    ASSERT_TRUE(std::holds_alternative<Goose>(lessons.last.stream));
    EXPECT_EQ(std::get<Goose>(lessons.last.stream).gocbRef, GooseMessage().gocbRef);
    EXPECT_NE(lessons.mask(svFrame(svEthernet(), {})), "none");
    ASSERT_TRUE(std::holds_alternative<Sv>(lessons.last.stream));
    EXPECT_EQ(std::get<Sv>(lessons.last.stream).svID, "MU01");
    lessons.filter.svFilters.emplace_back().svID = "MU02";
    EXPECT_NE(lessons.mask(svFrame(svEthernet(), {})), "none");
    EXPECT_TRUE(std::holds_alternative<std::monostate>(lessons.last.stream));
}

TEST(FrameLesson, HoldsAStreamWithoutItsStatistics) {
    SvMessage message;
    message.asdus[0].smpCnt = 7;
    message.asdus[0].smpRate = 80;
    Lessons lessons;
    EXPECT_NE(lessons.mask(svFrame(svEthernet(), message)), "none");
    Sv const& stream = std::get<Sv>(lessons.last.stream);
    EXPECT_EQ(stream.maxSmpCnt, 0U);
    EXPECT_EQ(stream.smpRate, 0U);
    EXPECT_EQ(stream.maxNoASDU, 0U);
    Sv const& stored = *lessons.db.svProto.streams.begin();
    EXPECT_EQ(stored.maxSmpCnt, 7U);
    EXPECT_EQ(stored.smpRate, 80U);
    EXPECT_EQ(stored.maxNoASDU, 1U);
}

TEST(FrameLesson, PassesOverSizeAndSequenceOfAnHsrTag) {
    Lessons lessons;
    std::string const mask = lessons.mask(gooseFrame(Ethernet().withHsr('A', 5), {}));
    EXPECT_EQ(mask.substr(0, 20), looked(15) + passedOver(3) + looked(2));
    EXPECT_EQ(lessons.mask(gooseFrame(Ethernet().withVlan(5), {})).substr(0, 18), looked(18));
}

TEST(FrameLesson, PassesOverAllBehindALinkLayerThatIsRejected) {
    Lessons lessons;
    lessons.filter.gooseFilters.emplace_back().srcMac = "02:00:00:00:00:99";
    Bytes const frame = gooseFrame(Ethernet().withVlan(5), {});
    EXPECT_EQ(lessons.mask(frame), looked(18) + passedOver(frame.size() - 18));
}

TEST(FrameLesson, IsNoneOfOtherFramesAndOfProtocolsSwitchedOff) {
    Lessons lessons;
    EXPECT_EQ(lessons.mask(ethernetFrame(Ethernet(), 0x0800, Bytes(60))), "none");
    EXPECT_EQ(lessons.mask(Bytes(13)), "none");
    lessons.filter.parseGoose = false;
    EXPECT_EQ(lessons.mask(gooseFrame(Ethernet(), {})), "none");
    EXPECT_NE(lessons.mask(svFrame(svEthernet(), {})), "none");
    lessons.filter.parseSv = false;
    EXPECT_EQ(lessons.mask(svFrame(svEthernet(), {})), "none");
}

}  // namespace
}  // namespace TalTest
