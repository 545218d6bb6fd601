// A view takes nothing from the heap, whatever the frame holds, faults and unknown elements
// included.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <cstddef>

#include "analysis/packet/PacketFrames.hpp"
#include "analysis/packet/WalkViews.hpp"
#include "support/Ber.hpp"
#include "support/Data.hpp"
#include "support/WatchedHeap.hpp"

namespace TalTest::ViewAllocationTest {
namespace {

using namespace TalIec61850Analysis;

struct Walked {
    ViewWalk walk;
    std::size_t allocations = 0;
};

template <typename View>
Walked walked(View const& view) {
    Walked result;
    std::size_t const before = heapAllocations();
    result.walk.add(view());
    result.allocations = heapAllocations() - before;
    return result;
}

Walked walkedGoose(PlacedFrame const& goose) {
    return walked([&] { return viewGoose(goose.frame, goose.offset); });
}

Walked walkedSv(PlacedFrame const& sv) {
    return walked([&] { return viewSv(sv.frame, sv.offset); });
}

SvMessage messageOf(std::size_t asdus) {
    SvMessage message;
    message.asdus.resize(asdus);
    return message;
}

TEST(ViewAllocations, OfTheOwningFormsAreCounted) {
    PlacedFrame const goose = richGoose();
    std::size_t const before = heapAllocations();
    GoosePacket const packet = decodeGoose(goose.frame, goose.offset);
    EXPECT_GT(heapAllocations(), before) << packet.faults.size();
}

TEST(ViewAllocations, AreNotMadeForNestedData) {
    auto const [walk, allocations] = walkedGoose(richGoose());
    EXPECT_EQ(allocations, 0U);
    // One of every kind, and five in the structure with one more level.
    EXPECT_EQ(walk.values, everyKind().size() + 6);
    EXPECT_EQ(walk.others, 1U);
    EXPECT_EQ(walk.faults, 0U);
}

TEST(ViewAllocations, AreNotMadeForDataOfAnyDepth) {
    GooseMessage message;
    message.allData = nested(0xA2, 1000, dataBoolean(true));
    auto const [walk, allocations] = walkedGoose(placed(message));
    EXPECT_EQ(allocations, 0U);
    EXPECT_EQ(walk.values, kMaxDataDepth);
    EXPECT_EQ(walk.faults, 1U);
}

TEST(ViewAllocations, AreNotMadeForAnyNumberOfAsdus) {
    for (std::size_t const count : {0U, 1U, 13U}) {
        auto const [walk, allocations] = walkedSv(placed(messageOf(count)));
        EXPECT_EQ(allocations, 0U);
        EXPECT_EQ(walk.asdus, count);
        EXPECT_EQ(walk.values, 8 * count);
        EXPECT_EQ(walk.faults, 0U);
    }
    auto const [walk, allocations] = walkedSv(richSv());
    EXPECT_EQ(allocations, 0U);
    EXPECT_EQ(walk.others, 2U);
}

TEST(ViewAllocations, AreNotMadeForAFrameCutAnywhere) {
    for (PlacedFrame const& whole : {richGoose(), richSv()}) {
        for (std::size_t size = 0; size < whole.frame.size(); ++size) {
            PlacedFrame const cut = {prefix(whole.frame, size), whole.offset};
            EXPECT_EQ(walkedGoose(cut).allocations, 0U) << size;
            EXPECT_EQ(walkedSv(cut).allocations, 0U) << size;
            EXPECT_GT(walkedGoose(cut).walk.faults + walkedSv(cut).walk.faults, 0U) << size;
        }
    }
}

TEST(ViewAllocations, AreNotMadeForADamagedFrame) {
    for (PlacedFrame damaged : {richGoose(), richSv()}) {
        for (std::uint8_t& octet : damaged.frame) {
            std::uint8_t const sound = octet;
            for (std::uint8_t const other : Bytes{0x00, 0x1F, 0x80, 0x85, 0xFF}) {
                octet = other;
                EXPECT_EQ(walkedGoose(damaged).allocations, 0U);
                EXPECT_EQ(walkedSv(damaged).allocations, 0U);
            }
            octet = sound;
        }
    }
}

}  // namespace
}  // namespace TalTest::ViewAllocationTest
