// Next-generation captures: every kind of block and option, in either byte order.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/file/CaptureSurvey.hpp>
#include <optional>
#include <vector>

#include "analysis/file/ReadFile.hpp"
#include "analysis/file/SpeltOutCapture.hpp"
#include "support/CaptureFile.hpp"
#include "support/PcapngMaker.hpp"
#include "support/TempFile.hpp"

namespace TalIec61850Analysis::NextGenerationTest {
namespace {

using TalTest::Bytes;
using TalTest::concat;
using TalTest::PcapngMaker;
using TalTest::TempFile;

constexpr std::uint64_t kSecond = 1'700'000'000;

ReadCapture readWhole(PcapngMaker const& maker) {
    TempFile const file(maker.bytes(), "capture.pcapng");
    return TalIec61850Analysis::readWhole(file.path());
}

/// Expects a file without damage.
ReadCapture readSound(PcapngMaker const& maker) {
    ReadCapture read = readWhole(maker);
    EXPECT_TRUE(read.damages.empty());
    EXPECT_FALSE(read.damage);
    EXPECT_FALSE(read.cut);
    return read;
}

CaptureTime timeAt(std::uint64_t nanoseconds) {
    return captureTimeOf(static_cast<std::int64_t>(nanoseconds));
}

std::vector<std::optional<CaptureTime>> timesOf(ReadCapture const& read) {
    std::vector<std::optional<CaptureTime>> times;
    for (auto const& each : read.records) {
        times.push_back(each.record.time);
    }
    return times;
}

class ByteOrder : public testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(NextGeneration, ByteOrder, testing::Bool(),
                         [](auto const& chosen) { return chosen.param ? "little" : "big"; });

TEST_P(ByteOrder, HasPacketsOfEveryKindOfBlock) {
    PcapngMaker maker;
    maker.section(GetParam()).interface(113, 3);
    std::uint64_t const first = maker.position();
    maker.packet({.time = kSecond * 1'000'000 + 1, .frame = {1, 2, 3, 4, 5}, .originalSize = 70});
    std::uint64_t const second = maker.position();
    maker.oldPacket({.time = kSecond * 1'000'000 + 2, .frame = {6, 7}, .dropped = 7});
    std::uint64_t const third = maker.position();
    maker.simplePacket({8, 9, 10}, 100);
    ReadCapture const read = readSound(maker);
    ASSERT_EQ(read.records.size(), 3U);
    EXPECT_EQ(read.records[0].frame, (Bytes{1, 2, 3, 4, 5}));
    EXPECT_EQ(read.records[0].record, (CaptureRecord{.fileOffset = first,
                                                     .frameOffset = first + 28,
                                                     .time = timeAt(kSecond * 1'000'000'000 + 1000),
                                                     .capturedSize = 5,
                                                     .originalSize = 70,
                                                     .linkType = 113,
                                                     .interface = 0,
                                                     .dropped = std::nullopt}));
    EXPECT_EQ(read.records[1].frame, (Bytes{6, 7}));
    EXPECT_EQ(read.records[1].record, (CaptureRecord{.fileOffset = second,
                                                     .frameOffset = second + 28,
                                                     .time = timeAt(kSecond * 1'000'000'000 + 2000),
                                                     .capturedSize = 2,
                                                     .originalSize = 2,
                                                     .linkType = 113,
                                                     .interface = 0,
                                                     .dropped = 7}));
    EXPECT_EQ(read.records[2].frame, (Bytes{8, 9, 10}));
    EXPECT_EQ(read.records[2].record, (CaptureRecord{.fileOffset = third,
                                                     .frameOffset = third + 12,
                                                     .time = std::nullopt,
                                                     .capturedSize = 3,
                                                     .originalSize = 100,
                                                     .linkType = 113,
                                                     .interface = 0,
                                                     .dropped = std::nullopt}));
}

TEST_P(ByteOrder, HasInterfacesEachWithItsOwnClock) {
    PcapngMaker maker;
    maker.section(GetParam());
    std::uint64_t const first = maker.position();
    maker.interface(1, 262144);
    maker.interface(276, 96, maker.timeOptions(9, 0, "eth1"));
    maker.interface(1, 0, maker.timeOptions(0x80 | 30));
    maker.interface(1, 0, maker.timeOptions(12, static_cast<std::int64_t>(kSecond), "ps"));
    maker.packet({.interface = 3, .time = 123'456'789'012, .frame = {4}});
    maker.packet({.interface = 2, .time = (kSecond << 30U) + (1U << 28U), .frame = {3}});
    maker.packet({.interface = 1, .time = kSecond * 1'000'000'000 + 5, .frame = {2}});
    maker.packet({.interface = 0, .time = kSecond * 1'000'000 + 5, .frame = {1}});
    ReadCapture const read = readSound(maker);
    std::uint64_t const second = kSecond * 1'000'000'000;
    EXPECT_EQ(timesOf(read), (std::vector<std::optional<CaptureTime>>{
                                 timeAt(second + 123'456'789), timeAt(second + 250'000'000),
                                 timeAt(second + 5), timeAt(second + 5000)}));
    ASSERT_EQ(read.records.size(), 4U);
    EXPECT_EQ(read.records[2].record.linkType, 276U);
    EXPECT_EQ(read.records[2].record.interface, 1U);
    ASSERT_EQ(read.interfaces.size(), 4U);
    EXPECT_EQ(read.interfaces[0], (CaptureInterface{.fileOffset = first,
                                                    .linkType = 1,
                                                    .snapLength = 262144,
                                                    .isBinaryUnit = false,
                                                    .unitExponent = 6,
                                                    .timeOffset = 0,
                                                    .name = "",
                                                    .received = {},
                                                    .dropped = {},
                                                    .droppedBySystem = {},
                                                    .records = 1}));
    EXPECT_EQ(read.interfaces[1].name, "eth1");
    EXPECT_EQ(read.interfaces[1].unitExponent, 9U);
    EXPECT_TRUE(read.interfaces[2].isBinaryUnit);
    EXPECT_EQ(read.interfaces[2].unitExponent, 30U);
    EXPECT_EQ(read.interfaces[3].timeOffset, static_cast<std::int64_t>(kSecond));
}

TEST_P(ByteOrder, TellsHowManyPacketsWereDropped) {
    PcapngMaker maker;
    maker.section(GetParam()).interface().interface();
    auto const dropped = [&](std::uint64_t count) {
        // Among options that are not read, with the mark at the end and without.
        return concat({maker.option(2, {1, 0, 0, 0}), maker.numberOption(4, count),
                       maker.option(1, TalTest::text("a comment")),
                       count == 0 ? Bytes() : PcapngMaker::endOfOptions()});
    };
    maker.packet({.frame = {1, 2, 3}, .options = dropped(0)});
    maker.packet({.frame = {1}, .options = dropped(5'000'000'000)});
    maker.packet({.frame = {1}});
    maker.oldPacket({.frame = {1}, .dropped = 0});
    maker.oldPacket({.frame = {1}, .dropped = 0xFFFF});
    maker.statistics(1, concat({maker.numberOption(4, 10), maker.numberOption(5, 3)}));
    maker.statistics(
        1, concat({maker.option(1, TalTest::text("Counters")), maker.numberOption(2, 1),
                   maker.numberOption(3, 2), maker.numberOption(4, 90), maker.numberOption(5, 4),
                   maker.numberOption(6, 3), maker.numberOption(7, 2), maker.numberOption(8, 1),
                   PcapngMaker::endOfOptions()}));
    ReadCapture const read = readSound(maker);
    std::vector<std::optional<std::uint64_t>> counts;
    for (auto const& each : read.records) {
        counts.push_back(each.record.dropped);
    }
    EXPECT_EQ(counts, (std::vector<std::optional<std::uint64_t>>{0, 5'000'000'000, std::nullopt, 0,
                                                                 std::nullopt}));
    ASSERT_EQ(read.interfaces.size(), 2U);
    EXPECT_EQ(read.interfaces[0].received, std::nullopt);
    EXPECT_EQ(read.interfaces[0].dropped, std::nullopt);
    EXPECT_EQ(read.interfaces[1].received, 90U);
    EXPECT_EQ(read.interfaces[1].dropped, 4U);
    EXPECT_EQ(read.interfaces[1].droppedBySystem, 2U);
    EXPECT_EQ(read.interfaces[0].records, 5U);
    EXPECT_EQ(read.interfaces[1].records, 0U);
}

TEST_P(ByteOrder, HasOfEachOfManyPacketsNothingThatIsOfAnotherOne) {
    constexpr std::size_t kPackets = 1000;
    PcapngMaker maker;
    // The second interface counts so coarsely that late times cannot be told.
    maker.section(GetParam())
        .interface(1, 0, maker.timeOptions(9))
        .interface(113, 0, maker.timeOptions(0));
    constexpr std::uint64_t kLate = std::uint64_t{1} << 60U;
    Bytes const dropped = concat({maker.numberOption(4, 11), PcapngMaker::endOfOptions()});
    for (std::size_t i = 0; i < kPackets; ++i) {
        Bytes const frame(i % 7, static_cast<std::uint8_t>(i));
        // Each kind takes the places of all others in turn.
        switch ((i + i / 64) % 5) {
            case 0:
                maker.packet({.time = i, .frame = frame, .options = dropped});
                break;
            case 1:
                maker.simplePacket(frame);
                break;
            case 2:
                maker.packet({.interface = 1, .time = kLate, .frame = frame});
                break;
            default:
                maker.packet({.time = i, .frame = frame});
        }
    }
    ReadCapture const read = readWhole(maker);
    ASSERT_EQ(read.records.size(), kPackets);
    for (std::size_t i = 0; i < kPackets; ++i) {
        std::size_t const kind = (i + i / 64) % 5;
        CaptureRecord const& record = read.records[i].record;
        EXPECT_EQ(read.records[i].frame, Bytes(i % 7, static_cast<std::uint8_t>(i)));
        EXPECT_EQ(record.dropped.has_value(), kind == 0) << i;
        bool const hasTime = kind != 1 && kind != 2;
        EXPECT_EQ(record.time, hasTime ? std::optional(timeAt(i)) : std::nullopt) << i;
        EXPECT_EQ(record.interface, kind == 2 ? 1U : 0U);
        EXPECT_EQ(record.linkType, kind == 2 ? 113 : 1);
        EXPECT_EQ(record.originalSize, i % 7);
    }
    EXPECT_EQ(read.interfaces.at(0).records + read.interfaces.at(1).records, kPackets);
}

TEST_P(ByteOrder, PassesOverBlocksOfOtherTypes) {
    PcapngMaker maker;
    maker.section(GetParam()).interface();
    for (std::uint32_t const type : {0U, 4U, 7U, 0xAU, 0xBADU, 0x40000BADU, 0xFFFF'FFFFU}) {
        maker.block(type, Bytes(type % 50));
        maker.packet({.frame = {static_cast<std::uint8_t>(type)}});
    }
    EXPECT_EQ(readSound(maker).records.size(), 7U);
}

TEST(NextGeneration, ReadsACaptureSpeltOutOctetByOctet) {
    TempFile const file(speltOutCapture());
    ReadCapture const read = TalIec61850Analysis::readWhole(file.path());
    EXPECT_TRUE(read.damages.empty());
    ASSERT_EQ(read.records.size(), 1U);
    EXPECT_EQ(read.records[0].frame, speltOutFrame());
    EXPECT_EQ(read.records[0].record, (CaptureRecord{.fileOffset = 60,
                                                     .frameOffset = 88,
                                                     .time = timeAt(kSecond * 1'000'000'000 + 5),
                                                     .capturedSize = 14,
                                                     .originalSize = 14,
                                                     .linkType = 1,
                                                     .interface = 0,
                                                     .dropped = 3}));
}

TEST(NextGeneration, SectionsHaveTheirOwnByteOrderAndInterfaces) {
    PcapngMaker maker;
    maker.section(true).interface(1).interface(113);
    maker.packet({.interface = 1, .time = 1, .frame = {1}});
    maker.section(false).interface(276, 0, maker.timeOptions(9));
    maker.packet({.interface = 0, .time = 2, .frame = {2}});
    maker.section(true).interface(1);
    maker.packet({.interface = 0, .time = 3, .frame = {3}});
    ReadCapture const read = readSound(maker);
    ASSERT_EQ(read.records.size(), 3U);
    EXPECT_EQ(read.records[0].record.interface, 1U);
    EXPECT_EQ(read.records[0].record.linkType, 113U);
    EXPECT_EQ(read.records[0].record.time, timeAt(1000));
    EXPECT_EQ(read.records[1].record.interface, 2U);
    EXPECT_EQ(read.records[1].record.linkType, 276U);
    EXPECT_EQ(read.records[1].record.time, timeAt(2));
    EXPECT_EQ(read.records[2].record.interface, 3U);
    EXPECT_EQ(read.records[2].record.time, timeAt(3000));
    EXPECT_EQ(read.interfaces.size(), 4U);
}

TEST(NextGeneration, ASectionMaySayHowLongItIs) {
    PcapngMaker blocks;
    blocks.interface();
    blocks.packet({.frame = {1, 2, 3}});
    PcapngMaker maker;
    for (int i = 0; i < 3; ++i) {
        maker.section(true, blocks.bytes().size()).raw(blocks.bytes());
    }
    EXPECT_EQ(readSound(maker).records.size(), 3U);
}

TEST(NextGeneration, ASimplePacketIsCutByTheSnapLengthOfInterface0) {
    PcapngMaker maker;
    maker.section().interface(1, 4).interface(1, 2);
    maker.simplePacket({1, 2, 3, 4}, 9);
    maker.simplePacket({1, 2}, 2);
    maker.section().interface(1, 0);
    maker.simplePacket({1, 2, 3, 4, 5}, 5);
    ReadCapture const read = readSound(maker);
    ASSERT_EQ(read.records.size(), 3U);
    EXPECT_EQ(read.records[0].frame, (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(read.records[1].frame, (Bytes{1, 2}));
    EXPECT_EQ(read.records[2].frame, (Bytes{1, 2, 3, 4, 5}));
}

TEST(NextGeneration, FramesAreFoundAcrossBlocksOfTheFile) {
    PcapngMaker maker;
    maker.section().interface();
    for (std::uint8_t i = 0; i < 200; ++i) {
        maker.packet({.time = i, .frame = Bytes(7'000U + i, i)});
    }
    maker.packet({.time = 200, .frame = Bytes(900'001, 200)});
    ReadCapture const read = readSound(maker);
    ASSERT_EQ(read.records.size(), 201U);
    for (std::size_t i = 0; i < 201; ++i) {
        EXPECT_EQ(read.records[i].record.time, timeAt(i * 1000));
        EXPECT_EQ(read.records[i].frame,
                  Bytes(i == 200 ? 900'001 : 7'000 + i, static_cast<std::uint8_t>(i)));
    }
}

TEST(NextGeneration, ALongBlockOfAnotherTypeIsNotReadIntoMemory) {
    PcapngMaker maker;
    maker.section().interface();
    maker.packet({.frame = {1}});
    maker.block(0xA, Bytes(std::size_t{20} << 20U));
    maker.packet({.frame = {2}});
    ReadCapture const read = readSound(maker);
    ASSERT_EQ(read.records.size(), 2U);
    EXPECT_EQ(read.records[0].frame, Bytes{1});
    EXPECT_EQ(read.records[1].frame, Bytes{2});
}

TEST(NextGeneration, AClassicMagicWhereTheByteOrderShouldBeMakesNoClassicCapture) {
    Bytes const capture = concat(
        {{0x0A, 0x0D, 0x0D, 0x0A, 0x1C, 0, 0, 0, 0xD4, 0xC3, 0xB2, 0xA1}, Bytes(12), Bytes(16)});
    TempFile const file(capture);
    CaptureFile read(file.path());
    EXPECT_EQ(read.format(), CaptureFormat::nextGeneration);
    EXPECT_FALSE(read.next());
    EXPECT_EQ(read.damage(), (CaptureDamage{.kind = CaptureDamageKind::byteOrder}));
}

TEST(NextGeneration, IsSurveyed) {
    PcapngMaker maker;
    maker.section().interface();
    maker.simplePacket({1});
    maker.packet({.time = 9, .frame = {2}});
    TempFile const file(maker.bytes());
    CaptureSurvey const survey = surveyCapture(file.path());
    EXPECT_EQ(survey.start, timeAt(9000));
    EXPECT_FALSE(survey.damage);
}

TEST(NextGeneration, WithoutPacketsIsWhole) {
    EXPECT_TRUE(readSound(PcapngMaker().section()).records.empty());
    EXPECT_TRUE(readSound(PcapngMaker().section().interface()).records.empty());
}

}  // namespace
}  // namespace TalIec61850Analysis::NextGenerationTest
