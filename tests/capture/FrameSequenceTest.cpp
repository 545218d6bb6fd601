#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/PcapPacketParser.hpp>
#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "capture/Criteria.hpp"
#include "capture/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

// A frame is judged by itself, whatever came before it: a capture indexes like its records taken
// one at a time.

namespace TalTest::FrameSequenceTest {
namespace {

using namespace TalIec61850Parser;

std::vector<Bytes> sampleFrames() {
    SvMessage several;
    Asdu asdu;
    asdu.smpRate = 4800;
    several.asdus = {asdu, asdu, asdu};
    several.asdus.back().smpCnt = 17;
    several.asdus.back().svID = "MU02";
    for (Asdu& each : several.asdus) each.seqData = Bytes(8);
    GooseMessage structured;
    structured.setData({dataStructure({dataBoolean(true), dataInteger(-5)}), dataQuality()});
    return {
        gooseFrame({}, {}),
        gooseFrame(Ethernet().withVlan(5).withHsr('B'), structured),
        gooseFrame(Ethernet().withPadding().withPrp('A'), {}),
        svFrame(svEthernet(), message92le("MU01", 1234)),
        svFrame(svEthernet().withVlan(7).withPrp('B'), several),
        svFrame(svEthernet().withHsr('A'), several),
    };
}

std::vector<Filter> sampleFilters() {
    Filter named = gooseFilter(
        {wanted(&GooseIdentifer::goID, "RELAY1_gcb1"), wanted(&GooseIdentifer::goID, "other")});
    named.svFilters = {wanted(&SvIdentifer::svID, "MU01"), wanted(&SvIdentifer::svID, "MU02")};
    return {{}, named};
}

/// Expects a capture to give the same store as its records handed over one by one.
void expectAsOneByOne(CaptureBuilder const& capture, Filter const& filter) {
    TempFile const onDisk(capture.bytes());
    Indexed const indexed = indexFile(onDisk.path(), filter);
    PcapFile file(onDisk.path());
    Db db;
    for (CaptureRecord const& record : readCapture(capture.bytes())) {
        file.recordPosition = record.position;
        auto const header = recordHeader(CaptureVariant::nanoLittle, record.seconds,
                                         record.nanoseconds, record.inclLen, record.origLen);
        Bytes const whole = concat({Bytes(header.begin(), header.end()), record.frame});
        PcapPacketParser::parsePacket(whole, file, true, true, filter, db);
    }
    EXPECT_EQ(streamLines(indexed.db), streamLines(db));
    EXPECT_EQ(packetLines(indexed.db), packetLines(db));
}

TEST(PcapParserSequence, OctetsChangedOneAtATime) {
    for (Bytes const& frame : sampleFrames()) {
        CaptureBuilder capture;
        std::uint32_t seconds = 0;
        for (std::size_t i = 0; i < frame.size(); ++i) {
            for (std::uint8_t const change : Bytes{0x01, 0x10, 0x80, 0xFF}) {
                Bytes changed = frame;
                changed[i] = static_cast<std::uint8_t>(changed[i] ^ change);
                capture.add(seconds, 0, frame).add(seconds, 1000, changed);
                capture.add(seconds++, 2000, changed);
            }
        }
        for (Filter const& filter : sampleFilters()) expectAsOneByOne(capture, filter);
    }
}

TEST(PcapParserSequence, FramesCutAndGrown) {
    for (Bytes const& frame : sampleFrames()) {
        CaptureBuilder capture;
        for (std::size_t size = 0; size <= frame.size(); ++size) {
            capture.add(1, 0, frame).add(2, 0, prefix(frame, size)).add(3, 0, prefix(frame, size));
        }
        for (std::size_t more = 1; more < 70; ++more) {
            capture.add(4, 0, frame).add(5, 0, concat({frame, repeat(0, more)}));
            capture.add(6, 0, concat({frame, repeat(0x61, more)}));
            capture.add(7, 0, concat({frame, repeat(0xA2, more)}));
            capture.add(8, 0, concat({frame, repeat(0x10, more), {0x88, 0xFB}}));
        }
        for (Filter const& filter : sampleFilters()) expectAsOneByOne(capture, filter);
    }
}

TEST(PcapParserSequence, RandomChangesOfRandomFrames) {
    std::mt19937 random(1);
    auto const below = [&random](std::size_t limit) { return random() % limit; };
    std::vector<Bytes> frames = sampleFrames();
    for (int run = 0; run < 4; ++run) {
        CaptureBuilder capture;
        for (std::uint32_t i = 0; i < 5000; ++i) {
            Bytes& frame = frames[below(frames.size())];
            capture.add(i, 0, frame);
            Bytes changed = frame;
            for (std::size_t changes = below(4); changes > 0; --changes) {
                changed[below(changed.size())] = static_cast<std::uint8_t>(random());
            }
            capture.add(i, 1000, changed);
            if (below(16) == 0) frame = changed;
        }
        for (Filter const& filter : sampleFilters()) expectAsOneByOne(capture, filter);
        frames = sampleFrames();
    }
}

}  // namespace
}  // namespace TalTest::FrameSequenceTest
