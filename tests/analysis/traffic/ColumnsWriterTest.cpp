// How packets are collected: any number of them, in room that follows their number.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/PacketRow.hpp>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Analysis::ColumnsWriterTest {
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

/// Which columns hold a value for each packet.
struct Held {
    bool pduOffsets = false;
    bool sequences = false;
    bool flags = false;
    bool asdus = false;
    bool smpSynchs = false;

    explicit Held(PacketColumns const& columns)
        : pduOffsets(columns.pduOffsets().values() != nullptr),
          sequences(columns.redundancySequences().values() != nullptr),
          flags(columns.flags().values() != nullptr),
          asdus(columns.asdus().values() != nullptr),
          smpSynchs(columns.smpSynchs().values() != nullptr) {}

    [[nodiscard]] int count() const {
        return int{pduOffsets} + int{sequences} + int{flags} + int{asdus} + int{smpSynchs};
    }
};

/// Rows alike in all but time, place and the first counter.
PacketRow alikeRow(std::uint32_t number) {
    PacketRow row = rowOf(7);
    row.time = number;
    row.frameOffset = number;
    row.first = number;
    return row;
}

TEST(ColumnsWriter, HoldsOnceWhatAllPacketsHave) {
    for (StreamProtocol const protocol : {StreamProtocol::goose, StreamProtocol::sv}) {
        for (std::uint32_t const count : {1U, 15U, 16U, 17U, 1000U}) {
            ColumnsWriter writer(protocol);
            for (std::uint32_t i = 0; i < count; ++i) writer.add(0, 0) = alikeRow(i);
            PacketColumns const columns = writer.take();
            EXPECT_EQ(Held(columns).count(), 0);
            for (std::uint32_t i = 0; i < count; ++i) {
                ASSERT_EQ(columns.pduOffsets()[i], 8U);
                ASSERT_EQ(columns.redundancySequences()[i], 9U);
                ASSERT_EQ(columns.flags()[i].bits, 7U);
                if (protocol == StreamProtocol::sv) {
                    ASSERT_EQ(columns.asdus()[i], 10U);
                    ASSERT_EQ(columns.smpSynchs()[i], 7U);
                }
            }
        }
    }
}

TEST(ColumnsWriter, HoldsEachValueOfAColumnInWhichAnyPacketDiffers) {
    constexpr std::uint32_t kCount = 70;
    for (std::uint32_t other = 0; other < kCount; ++other) {
        for (int column = 0; column < 5; ++column) {
            ColumnsWriter writer(StreamProtocol::sv);
            for (std::uint32_t i = 0; i < kCount; ++i) {
                PacketRow row = alikeRow(i);
                if (i == other) {
                    row.pduOffset = column == 0 ? 100 : row.pduOffset;
                    row.sequence = column == 1 ? 100 : row.sequence;
                    row.flags = column == 2 ? std::uint16_t{1} : row.flags;
                    row.asdu = column == 3 ? 100 : row.asdu;
                    row.second = column == 4 ? 100 : row.second;
                }
                writer.add(0, 0) = row;
            }
            PacketColumns const columns = writer.take();
            SCOPED_TRACE(testing::Message() << "packet " << other << ", column " << column);
            Held const held(columns);
            EXPECT_EQ(held.count(), 1);
            EXPECT_TRUE(column == 0   ? held.pduOffsets
                        : column == 1 ? held.sequences
                        : column == 2 ? held.flags
                        : column == 3 ? held.asdus
                                      : held.smpSynchs);
            for (std::uint32_t i = 0; i < kCount; ++i) {
                bool const isOther = i == other;
                ASSERT_EQ(columns.pduOffsets()[i], isOther && column == 0 ? 100U : 8U);
                ASSERT_EQ(columns.redundancySequences()[i], isOther && column == 1 ? 100U : 9U);
                ASSERT_EQ(columns.flags()[i].bits, isOther && column == 2 ? 1U : 7U);
                ASSERT_EQ(columns.asdus()[i], isOther && column == 3 ? 100U : 10U);
                ASSERT_EQ(columns.smpSynchs()[i], isOther && column == 4 ? 100U : 7U);
            }
        }
    }
}

TEST(ColumnsWriter, SetsAndTakesFlagsOfPacketsThatHadThemInCommon) {
    ColumnsWriter writer(StreamProtocol::goose);
    for (std::uint32_t i = 0; i < 100; ++i) {
        PacketRow row = alikeRow(i);
        row.flags = PacketFlags::kCopy | PacketFlags::kSimulated;
        writer.add(0, 0) = row;
    }
    PacketColumns columns = writer.take();
    ColumnsWriter::clearFlag(columns, PacketFlags::kCopy);
    EXPECT_EQ(columns.flags().values(), nullptr);
    EXPECT_EQ(columns.flags()[42].bits, PacketFlags::kSimulated);
    ColumnsWriter::flags(columns)[42].bits |= PacketFlags::kDuplicate;
    for (std::size_t i = 0; i < 100; ++i) {
        EXPECT_EQ(columns.flags()[i].isDuplicate(), i == 42);
        EXPECT_TRUE(columns.flags()[i].isSimulated());
    }
    ColumnsWriter::clearFlag(columns, PacketFlags::kDuplicate);
    for (PacketFlags const flags : columns.flags()) EXPECT_FALSE(flags.isDuplicate());
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
}  // namespace TalIec61850Analysis::ColumnsWriterTest
