#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "capture/FrameWalk.hpp"
#include "support/Bytes.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/WatchedHeap.hpp"

namespace TalTest::AllocationTest {
namespace {

using namespace TalIec61850Parser;

/// How often judging the frame takes memory from the heap.
std::size_t allocationsFor(Bytes const& frame, Filter const& filter = {}) {
    std::size_t const before = heapAllocations();
    bool volatile const verdict = EthernetParser::parsePacketSimple(frame, filter);
    std::size_t const after = heapAllocations();
    static_cast<void>(verdict);
    return after - before;
}

TEST(Allocations, OfTheLibraryAreCounted) {
    // An address as text is longer than what a string holds without the heap.
    std::array<std::uint8_t, 6> const address = {};
    std::size_t const before = heapAllocations();
    std::string const text = EthernetParser::_macToString(address.data());
    EXPECT_GT(heapAllocations(), before) << text;
}

TEST(Allocations, AreNotMadeForAGooseFrame) {
    GooseMessage names;
    names.gocbRef = std::string(65, 'r');
    names.datSet = std::string(65, 's');
    names.goID = std::string("\0not printable, and longer than what a string holds", 51);
    GooseMessage data;
    data.setData({dataBoolean(true), dataStructure({dataFloat(1), dataArray({dataUtcTime(1)})}),
                  dataVisibleString(std::string(100, 'x'))});
    for (Ethernet const& link : linkLayers()) {
        for (GooseMessage const& message : {GooseMessage(), names, data}) {
            EXPECT_EQ(allocationsFor(gooseFrame(link, message)), 0U);
        }
    }
}

TEST(Allocations, AreNotMadeForAnSvFrame) {
    SvMessage several;
    several.asdus.resize(8);
    several.asdus[0].svID = std::string(65, 's');
    several.asdus[1].svID = std::string("\0not printable, and longer than what a string holds", 51);
    several.asdus[2].datSet = std::string(65, 'd');
    several.security = Bytes(64);
    for (Ethernet const& link : linkLayers()) {
        for (SvMessage const& message : {SvMessage(), several, message92le("MU01", 1)}) {
            EXPECT_EQ(allocationsFor(svFrame(link, message)), 0U);
        }
    }
}

TEST(Allocations, AreNotMadeForAFrameCutShort) {
    for (Ethernet const& link : linkLayers()) {
        for (Bytes const& frame : {gooseFrame(link, {}), svFrame(link, {})}) {
            for (std::size_t size = 0; size < frame.size(); ++size) {
                EXPECT_EQ(allocationsFor(prefix(frame, size)), 0U) << size;
            }
        }
    }
}

TEST(Allocations, AreNotMadeForOtherTrafficNorForASwitchedOffProtocol) {
    EXPECT_EQ(allocationsFor(ethernetFrame({}, 0x0800, Bytes(100))), 0U);
    Filter filter;
    filter.parseGoose = false;
    filter.parseSv = false;
    EXPECT_EQ(allocationsFor(gooseFrame({}, {}), filter), 0U);
    EXPECT_EQ(allocationsFor(svFrame({}, {}), filter), 0U);
}

}  // namespace
}  // namespace TalTest::AllocationTest
