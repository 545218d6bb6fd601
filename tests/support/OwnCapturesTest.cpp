#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"

namespace TalTest::OwnCapturesTest {
namespace {

class OwnCapturesTest : public testing::TestWithParam<OwnCapture> {};

INSTANTIATE_TEST_SUITE_P(Captures, OwnCapturesTest, testing::ValuesIn(ownCaptures()),
                         [](auto const& instance) { return captureTestName(instance.param.name); });

TEST_P(OwnCapturesTest, HoldsWhatIsStatedOfIt) {
    MadeCapture const made = GetParam().make();
    EXPECT_EQ(made.gooseFrames(), GetParam().gooseFrames);
    EXPECT_EQ(made.svFrames(), GetParam().svFrames);
    EXPECT_EQ(made.streams(), GetParam().streams);
    EXPECT_EQ(made.withoutPosition(), GetParam().withoutPosition);
}

TEST_P(OwnCapturesTest, IsSmallAndTheSameEachTime) {
    Bytes const octets = GetParam().make().octets;
    EXPECT_EQ(octets, GetParam().make().octets);
    EXPECT_LT(octets.size(), 100'000U);
    EXPECT_EQ(readFile(ownCapture(GetParam().name)), octets);
}

TEST_P(OwnCapturesTest, PutsItsPacketsAtTheirElements) {
    MadeCapture const made = GetParam().make();
    for (MadePacket const& packet : made.packets) {
        if (packet.position == 0) continue;
        EXPECT_EQ(made.octets.at(packet.position), packet.stream.starts_with("sv") ? 0xA2 : 0x61);
    }
}

TEST_P(OwnCapturesTest, SaysWhyItIsNotComparedInFull) {
    bool const isCompared = GetParam().dissected <= Dissected::repeated;
    EXPECT_EQ(GetParam().whyDissected.empty(), isCompared);
    EXPECT_EQ(GetParam().dissectedFrames.has_value(), GetParam().dissected == Dissected::otherwise);
}

TEST(OwnCaptureList, HasNoNameTwice) {
    std::set<std::string> names;
    for (OwnCapture const& capture : ownCaptures()) {
        EXPECT_TRUE(capture.name.starts_with("own-") && capture.name.ends_with(".pcap"));
        EXPECT_TRUE(names.insert(capture.name).second) << capture.name;
    }
    EXPECT_EQ(ownCapturePaths().size(), names.size());
}

TEST(OwnCaptureList, HasOneFileOfEachName) {
    std::string const name = ownCaptures().front().name;
    EXPECT_EQ(ownCapture(name), ownCapture(name));
    EXPECT_THROW((void)ownCapture("own-nothing.pcap"), std::invalid_argument);
}

/// The frames of a capture's records.
std::vector<Bytes> framesOf(std::string const& name) {
    std::vector<Bytes> frames;
    for (CaptureRecord const& record : readCapture(ownCapture(name)))
        frames.push_back(record.frame);
    return frames;
}

TEST(OwnMixedCaptures, HoldTheSameFramesInEachVariant) {
    auto const frames = framesOf("own-mixed-le-us.pcap");
    for (auto const* name :
         {"own-mixed-be-us.pcap", "own-mixed-le-ns.pcap", "own-mixed-be-ns.pcap"})
        EXPECT_EQ(framesOf(name), frames) << name;
    std::set<Bytes> magics;
    for (auto const* name : {"own-mixed-le-us.pcap", "own-mixed-be-us.pcap", "own-mixed-le-ns.pcap",
                             "own-mixed-be-ns.pcap"})
        magics.insert(prefix(readFile(ownCapture(name)), 4));
    EXPECT_EQ(magics.size(), 4U);
}

TEST(OwnTimesBackwards, GoBackwards) {
    auto const records = readCapture(ownCapture("own-times-backwards.pcap"));
    auto const before = [](CaptureRecord const& a, CaptureRecord const& b) {
        return std::pair(a.seconds, a.nanoseconds) < std::pair(b.seconds, b.nanoseconds);
    };
    EXPECT_FALSE(std::is_sorted(records.begin(), records.end(), before));
}

TEST(OwnRetransmissions, HoldTwoChangesOfStateOfEachRelay) {
    std::map<Bytes, std::set<std::size_t>> statesOf;
    for (Bytes const& frame : framesOf("own-goose-retransmissions.pcap"))
        for (auto const state : std::vector<std::uint8_t>{1, 2, 3})
            if (find(frame, {0x85, 1, state, 0x86})) statesOf[prefix(frame, 12)].insert(state);
    ASSERT_EQ(statesOf.size(), 3U);
    for (auto const& [addresses, states] : statesOf) EXPECT_EQ(states.size(), 3U);
}

TEST(OwnCutCaptures, EndInsideARecord) {
    for (auto const* name : {"own-goose-cut-last-record.pcap", "own-times-backwards.pcap"}) {
        Bytes const octets = readFile(ownCapture(name));
        EXPECT_GT(completedCapture(octets).size(), octets.size()) << name;
        EXPECT_EQ(readCapture(completedCapture(octets)).size(), readCapture(octets).size() + 1);
    }
}

}  // namespace
}  // namespace TalTest::OwnCapturesTest
