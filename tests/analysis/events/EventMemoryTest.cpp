// Events take memory by streams and events, not by packets.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/events/FindEvents.hpp>

#include "support/FaultyStation.hpp"
#include "support/TempFile.hpp"
#include "support/WatchedHeap.hpp"

namespace TalTest::EventMemoryTest {
namespace {

using namespace TalIec61850Analysis;

/// How often memory is taken for a stream of two events.
std::size_t allocationsOf(std::size_t heartbeats) {
    FaultyStation station;
    station.add(GoosePlan{.states = {10, heartbeats, 70}});
    TempFile const file(station.captures().at(0));
    TrafficIndex const index = indexCapture(file.path());
    std::size_t events = 0;
    std::size_t const before = heapAllocations();
    findEvents(index, {}, [&](GooseEvent const&) { ++events; });
    std::size_t const taken = heapAllocations() - before;
    EXPECT_EQ(events, 2U);
    return taken;
}

TEST(EventMemory, DoesNotGrowWithHeartbeats) { EXPECT_EQ(allocationsOf(300), allocationsOf(3000)); }

TEST(EventMemory, IsGivenBack) {
    FaultyStation station;
    station.add(GoosePlan{.states = {10, 10, 10}});
    TempFile const file(station.captures().at(0));
    TrafficIndex const index = indexCapture(file.path());
    std::size_t const before = liveAllocations();
    findEvents(index, {}, [](GooseEvent const&) {});
    EXPECT_EQ(liveAllocations(), before);
}

}  // namespace
}  // namespace TalTest::EventMemoryTest
