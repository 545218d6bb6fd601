// Captures of both formats that end after any octet: what is left of the traffic, and nothing else.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "analysis/traffic/IndexContent.hpp"
#include "analysis/traffic/TrafficCaptures.hpp"
#include "index/Indexing.hpp"
#include "support/PcapngMaker.hpp"

namespace TalIec61850Analysis::CutCapturesTest {
namespace {

using namespace TalTest;

/// A frame of each kind, all twice.
std::vector<Bytes> framesOfAllKinds() {
    GooseMessage goose;
    goose.trailing = Bytes(20, 0x61);
    SvMessage sv;
    sv.asdus = {Asdu(), Asdu()};
    sv.asdus[1].svID = "MU02";
    std::vector<Bytes> frames;
    for (std::uint16_t i = 0; i < 2; ++i) {
        frames.push_back(gooseFrame(Ethernet().withVlan(5), goose));
        frames.push_back(svFrame(svEthernet(), sv));
        frames.push_back(gooseFrame(Ethernet().withHsr('A', i), GooseMessage()));
        frames.push_back(gooseFrame(Ethernet().withPrp('A', i), GooseMessage()));
        frames.push_back(gooseFrame(Ethernet().withPrp('B', i), GooseMessage()));
        frames.emplace_back(60, 0x02);
    }
    return frames;
}

/// A capture, and where each of its records or blocks ends.
struct WholeCapture {
    Bytes octets;
    std::vector<std::size_t> ends;
};

WholeCapture classicOf(std::vector<Bytes> const& frames) {
    TrafficCapture capture;
    WholeCapture whole;
    for (Bytes const& frame : frames) {
        capture.add(frame);
        whole.ends.push_back(capture.bytes().size());
    }
    whole.octets = capture.bytes();
    return whole;
}

WholeCapture nextGenerationOf(std::vector<Bytes> const& frames) {
    PcapngMaker maker;
    maker.section().interface();
    WholeCapture whole;
    for (Bytes const& frame : frames) {
        maker.packet({.time = 1000 * whole.ends.size(), .frame = frame});
        whole.ends.push_back(maker.position());
    }
    whole.octets = maker.bytes();
    return whole;
}

/// Expects that a stream of a cut capture is the start of one that the whole capture has.
void expectStartOf(IndexContent::Stream const& whole, IndexContent::Stream const& cut) {
    auto const& all = whole.parts.begin()->second.packets;
    auto const& some = cut.parts.begin()->second.packets;
    ASSERT_LE(some.size(), all.size());
    EXPECT_TRUE(std::equal(some.begin(), some.end(), all.begin()));
    EXPECT_LE(cut.copies, whole.copies);
}

void expectStartsOf(WholeCapture const& capture) {
    ScratchFile file(capture.octets);
    IndexContent const whole = contentOf(indexCapture(file.path()));
    ASSERT_EQ(whole.streams.size(), 4U);
    std::size_t lastStreams = 0;
    for (std::size_t size = 0; size < capture.octets.size(); ++size) {
        SCOPED_TRACE(size);
        file.assign(prefix(capture.octets, size));
        TrafficIndex const index = indexCapture(file.path());
        CaptureSummary const& summary = index.files()[0].summary;
        auto const records = static_cast<std::uint64_t>(
            std::upper_bound(capture.ends.begin(), capture.ends.end(), size) -
            capture.ends.begin());
        EXPECT_EQ(summary.records, records);
        EXPECT_TRUE(summary.unread.empty());
        EXPECT_FALSE(summary.error);
        EXPECT_GE(index.streams().size(), lastStreams);
        lastStreams = index.streams().size();
        IndexContent const content = contentOf(index);
        for (auto const& [key, stream] : content.streams) {
            auto const found = whole.streams.find(key);
            ASSERT_NE(found, whole.streams.end()) << key.name;
            expectStartOf(found->second, stream);
        }
    }
    EXPECT_EQ(lastStreams, whole.streams.size());
}

TEST(CutCaptures, HaveNoStreamAndNoPacketThatTheWholeOneDoesNotHave) {
    expectStartsOf(classicOf(framesOfAllKinds()));
}

TEST(CutNextGenerationCaptures, HaveNoStreamAndNoPacketThatTheWholeOneDoesNotHave) {
    expectStartsOf(nextGenerationOf(framesOfAllKinds()));
}

}  // namespace
}  // namespace TalIec61850Analysis::CutCapturesTest
