// What the outcome of a frame depends on, and the stream that it is of.

#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/index/IndexFrame.hpp>
#include <cstddef>
#include <string>
#include <variant>

#include "codec/TraceText.hpp"
#include "support/Bytes.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest::TracedFrameTest {
namespace {

using namespace TalIec61850Parser;
using namespace TalIec61850Parser::detail;

/// Frames that go into one store, and what the last of them depended on.
struct Traces {
    Db db;
    Filter filter;
    TracedFrame last;
    std::string const fileName = "traces.pcap";

    /// @return what was looked at of the frame, X for each octet
    std::string mask(Bytes const& frame) {
        IndexTarget const target{.fileName = fileName, .variant = {}, .filter = filter, .db = db};
        last.trace.reset();
        indexFrame({.buffer = frame}, target, &last);
        return last.trace.frame().empty() ? "none" : lookedAt(last.trace);
    }
};

std::string looked(std::size_t octets) { return std::string(octets, 'X'); }
std::string passedOver(std::size_t octets) { return std::string(octets, '.'); }

TEST(TracedFrame, HoldsTheStreamOfTheLastFrameAlone) {
    Traces traces;
    EXPECT_NE(traces.mask(gooseFrame(Ethernet(), {})), "none");
    ASSERT_TRUE(std::holds_alternative<Goose>(traces.last.stream));
    EXPECT_EQ(std::get<Goose>(traces.last.stream).gocbRef, GooseMessage().gocbRef);
    EXPECT_NE(traces.mask(svFrame(svEthernet(), {})), "none");
    ASSERT_TRUE(std::holds_alternative<Sv>(traces.last.stream));
    EXPECT_EQ(std::get<Sv>(traces.last.stream).svID, "MU01");
    traces.filter.svFilters.emplace_back().svID = "MU02";
    EXPECT_NE(traces.mask(svFrame(svEthernet(), {})), "none");
    EXPECT_TRUE(std::holds_alternative<std::monostate>(traces.last.stream));
}

TEST(TracedFrame, HoldsAStreamWithoutItsStatistics) {
    SvMessage message;
    message.asdus[0].smpCnt = 7;
    message.asdus[0].smpRate = 80;
    Traces traces;
    EXPECT_NE(traces.mask(svFrame(svEthernet(), message)), "none");
    Sv const& stream = std::get<Sv>(traces.last.stream);
    EXPECT_EQ(stream.maxSmpCnt, 0U);
    EXPECT_EQ(stream.smpRate, 0U);
    EXPECT_EQ(stream.maxNoASDU, 0U);
    Sv const& stored = *traces.db.svProto.streams.begin();
    EXPECT_EQ(stored.maxSmpCnt, 7U);
    EXPECT_EQ(stored.smpRate, 80U);
    EXPECT_EQ(stored.maxNoASDU, 1U);
}

TEST(TracedFrame, PassesOverSizeAndSequenceOfAnHsrTag) {
    Traces traces;
    std::string const mask = traces.mask(gooseFrame(Ethernet().withHsr('A', 5), {}));
    EXPECT_EQ(mask.substr(0, 20), looked(15) + passedOver(3) + looked(2));
    EXPECT_EQ(traces.mask(gooseFrame(Ethernet().withVlan(5), {})).substr(0, 18), looked(18));
}

TEST(TracedFrame, PassesOverAllBehindALinkLayerThatIsRejected) {
    Traces traces;
    traces.filter.gooseFilters.emplace_back().srcMac = "02:00:00:00:00:99";
    Bytes const frame = gooseFrame(Ethernet().withVlan(5), {});
    EXPECT_EQ(traces.mask(frame), looked(18) + passedOver(frame.size() - 18));
}

TEST(TracedFrame, IsNoneOfOtherFramesAndOfProtocolsSwitchedOff) {
    Traces traces;
    EXPECT_EQ(traces.mask(ethernetFrame(Ethernet(), 0x0800, Bytes(60))), "none");
    EXPECT_EQ(traces.mask(Bytes(13)), "none");
    traces.filter.parseGoose = false;
    EXPECT_EQ(traces.mask(gooseFrame(Ethernet(), {})), "none");
    EXPECT_NE(traces.mask(svFrame(svEthernet(), {})), "none");
    traces.filter.parseSv = false;
    EXPECT_EQ(traces.mask(svFrame(svEthernet(), {})), "none");
}

}  // namespace
}  // namespace TalTest::TracedFrameTest
