// PRP trailers whose size does not fit: what they are in the index, and for their copies.

#include <gtest/gtest.h>

#include <algorithm>

#include "analysis/redundancy/RedundantTraffic.hpp"
#include "support/CaptureFile.hpp"
#include "support/SampledValues.hpp"

namespace TalTest::InvalidTrailersTest {
namespace {

using namespace TalIec61850Analysis;

TEST(InvalidTrailers, AreMarkedInTheIndex) {
    WireFrames frames = sendBoth({.frames = 3});
    copyOf(frames, 1, 'B').isMisfit = true;
    auto const paired = pairIn(frames);
    PacketColumns const& packets = paired.index.streams()[0].parts.at(0).packets;
    ASSERT_EQ(packets.size(), 6U);
    EXPECT_TRUE(packets.hasTrailerMisfit());
    for (std::size_t i = 0; i < packets.size(); ++i) {
        PacketFlags const flags = packets.flags()[i];
        EXPECT_EQ(flags.isTrailerMisfit(), i == 3) << i;
        EXPECT_EQ(flags.redundancy(), i == 3 ? Redundancy::none : Redundancy::prp) << i;
        EXPECT_EQ(packets.redundancySequences()[i], 100 + i / 2) << i;
        EXPECT_EQ(flags.claimedLane(), i % 2 == 0 ? 'A' : 'B') << i;
    }
    EXPECT_EQ(packets.flags()[3].lane(), 0);
    EXPECT_FALSE(packets.flags()[3].isCopy());
}

TEST(InvalidTrailers, AreToldAndLeaveNoCopyMissing) {
    WireFrames frames = sendBoth({});
    for (std::size_t number = 1000; number < 1010; ++number) {
        copyOf(frames, number, 'B').isMisfit = true;
    }
    copyOf(frames, 1200, 'A').isMisfit = true;
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().both, 1989U);
    EXPECT_EQ(paired.counts().onlyA, 10U);
    EXPECT_EQ(paired.counts().onlyB, 1U);
    EXPECT_EQ(paired.counts().missingRunsA + paired.counts().missingRunsB, 0U);
    EXPECT_EQ(paired.faultLines(),
              (FaultLines{"trailerInvalid B #1000 count 10", "trailerInvalid A #1200"}));
    // A frame of 128 octets after its addresses and EtherType.
    EXPECT_EQ(paired.faults[0].claimedSize, paired.faults[0].fittingSize ^ 0x55U);
    EXPECT_GT(paired.faults[0].fittingSize, 64U);
}

TEST(InvalidTrailers, OfBothCopiesAreNoFrame) {
    WireFrames frames = sendBoth({});
    copyOf(frames, 1000, 'A').isMisfit = true;
    copyOf(frames, 1000, 'B').isMisfit = true;
    auto const paired = pairIn(frames);
    EXPECT_EQ(paired.counts().both, 1999U);
    EXPECT_EQ(paired.counts().frames(), 1999U);
    EXPECT_EQ(paired.faultLines(),
              (FaultLines{"trailerInvalid A #1000", "trailerInvalid B #1000"}));
}

TEST(InvalidTrailers, OfAllFramesOfASourceAreTold) {
    WireFrames frames = sendBoth({.frames = 10});
    for (WireFrame& frame : frames) {
        frame.isMisfit = true;
    }
    auto const paired = pairIn(frames);
    EXPECT_TRUE(paired.redundancy.streams.empty());
    EXPECT_TRUE(paired.redundancy.sources.empty());
    EXPECT_EQ(paired.faultLines(),
              (FaultLines{"trailerInvalid A #0 count 10", "trailerInvalid B #0 count 10"}));
}

TEST(InvalidTrailers, AreNoneOfASourceWhoseFramesSeldomEndSo) {
    // As a signature may.
    CaptureBuilder builder(CaptureVariant::nanoLittle);
    for (std::uint16_t number = 0; number < 20; ++number) {
        SvMessage message = message92le("MU01", number);
        message.trailing = {1, 2, 3, 4, 5, 6, 0xA0, 1, 0x88, 0xFB};
        message.trailing.back() = number == 7 ? 0xFB : 0xFC;
        builder.add(1, number * 1000U, svFrame(svEthernet(), message));
    }
    auto const paired = pairIn(std::vector<Bytes>{builder.bytes()});
    EXPECT_TRUE(paired.index.streams()[0].parts[0].packets.flags()[7].isTrailerMisfit());
    EXPECT_EQ(paired.faultLines(), FaultLines());
}

TEST(InvalidTrailers, MayHavePaddingAfterThem) {
    WireFrames frames = sendBoth({});
    copyOf(frames, 1000, 'B').isMisfit = true;
    copyOf(frames, 1000, 'B').padding = 12;
    EXPECT_EQ(pairIn(frames).faultLines(), FaultLines{"trailerInvalid B #1000"});
}

}  // namespace
}  // namespace TalTest::InvalidTrailersTest
