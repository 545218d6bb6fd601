// How packets are collected: any number of them, in room that follows their number.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/PacketRow.hpp>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Analysis {
namespace {

using detail::ColumnsWriter;
using detail::PacketRow;

/// A row of which each member has a value of its own.
PacketRow rowOf(std::uint32_t number) {
    auto const low = static_cast<std::uint16_t>(number);
    return {.time = std::int64_t{number} * 1000,
            .frameOffset = std::uint64_t{number} << 33U,
            .first = number * 3,
            .second = number & 0xFFU,
            .pduOffset = static_cast<std::uint16_t>(low + 1),
            .sequence = static_cast<std::uint16_t>(low + 2),
            .flags = static_cast<std::uint16_t>(low & 0x3FU),
            .asdu = static_cast<std::uint16_t>(low + 3)};
}

PacketColumns columnsOf(StreamProtocol protocol, std::uint32_t count, std::uint64_t fileSize) {
    ColumnsWriter writer(protocol);
    for (std::uint32_t i = 0; i < count; ++i) writer.add(fileSize, 100 + i) = rowOf(i);
    return writer.take();
}

TEST(ColumnsWriter, KeepsEveryMemberOfAnyNumberOfRows) {
    for (StreamProtocol const protocol : {StreamProtocol::goose, StreamProtocol::sv}) {
        bool const isGoose = protocol == StreamProtocol::goose;
        for (std::uint32_t count = 1; count < 2000; count += count < 70 ? 1 : 61) {
            SCOPED_TRACE(count);
            PacketColumns const columns = columnsOf(protocol, count, 5000);
            ASSERT_EQ(columns.size(), count);
            EXPECT_TRUE(columns.timeOrder().empty());
            for (std::uint32_t i = 0; i < count; ++i) {
                PacketRow const row = rowOf(i);
                ASSERT_EQ(columns.times()[i], row.time);
                ASSERT_EQ(columns.frameOffsets()[i], row.frameOffset);
                ASSERT_EQ((isGoose ? columns.stNums() : columns.smpCnts())[i], row.first);
                ASSERT_EQ(isGoose ? columns.sqNums()[i] : columns.smpSynchs()[i], row.second);
                ASSERT_EQ(columns.pduOffsets()[i], row.pduOffset);
                ASSERT_EQ(columns.redundancySequences()[i], row.sequence);
                ASSERT_EQ(columns.flags()[i].bits, row.flags);
                if (!isGoose) {
                    ASSERT_EQ(columns.asdus()[i], row.asdu);
                }
            }
        }
    }
}

TEST(ColumnsWriter, OrdersPacketsByTimeWhereAnyOneIsEarlier) {
    constexpr std::uint32_t kCount = 100;
    for (std::uint32_t early = 1; early < kCount; ++early) {
        ColumnsWriter writer(StreamProtocol::sv);
        for (std::uint32_t i = 0; i < kCount; ++i) {
            PacketRow row = rowOf(i);
            if (i == early) row.time = -1;
            writer.add(0, i) = row;
        }
        PacketColumns const columns = writer.take();
        ASSERT_EQ(columns.timeOrder().size(), kCount);
        EXPECT_EQ(columns.timeOrder().front(), early);
    }
}

TEST(ColumnsWriter, LeavesPacketsWithoutATimeOutOfTheirOrder) {
    constexpr std::uint32_t kCount = 40;
    for (std::uint32_t untimed = 0; untimed < kCount; ++untimed) {
        ColumnsWriter writer(StreamProtocol::goose);
        for (std::uint32_t i = 0; i < kCount; ++i) {
            PacketRow row = rowOf(i);
            if (i == untimed) row.time = kNoTime;
            writer.add(0, i) = row;
        }
        PacketColumns const columns = writer.take();
        EXPECT_EQ(columns.timeOrder().size(), kCount - 1);
        EXPECT_EQ(columns.timedSize(), kCount - 1);
    }
}

TEST(ColumnsWriter, TakesNoRoomForWhatAHugeFileMayHoldYet) {
    // By their share of such a file, there would be 10^13 more of these packets.
    constexpr std::uint64_t kHuge = std::uint64_t{1} << 50U;
    EXPECT_EQ(columnsOf(StreamProtocol::goose, 1000, kHuge).size(), 1000U);
}

}  // namespace
}  // namespace TalIec61850Analysis
