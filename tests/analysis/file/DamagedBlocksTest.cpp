// Next-generation captures with something wrong in them.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "analysis/file/ReadFile.hpp"
#include "index/Indexing.hpp"
#include "support/PcapngMaker.hpp"

namespace TalIec61850Analysis::DamagedBlocksTest {
namespace {

using TalTest::Bytes;
using TalTest::concat;
using TalTest::PcapngMaker;
using TalTest::ScratchFile;
using Kind = CaptureDamageKind;

ReadCapture readWhole(Bytes const& capture) {
    ScratchFile const file(capture);
    return TalIec61850Analysis::readWhole(file.path());
}

PcapngMaker oneInterface() {
    PcapngMaker maker;
    maker.section().interface();
    return maker;
}

/// Two packets with damage between, which is passed over.
void expectPassedOver(std::vector<CaptureDamage> const& damages,
                      std::function<void(PcapngMaker&)> const& damage) {
    PcapngMaker maker = oneInterface();
    maker.packet({.frame = {1}});
    damage(maker);
    maker.packet({.frame = {2}});
    ReadCapture const read = readWhole(maker.bytes());
    EXPECT_EQ(read.damages, damages);
    EXPECT_FALSE(read.damage);
    ASSERT_GE(read.records.size(), 2U);
    EXPECT_EQ(read.records.front().frame, Bytes{1});
    EXPECT_EQ(read.records.back().frame, Bytes{2});
}

/// Where the first of those two packets ends.
std::uint64_t damagedAt() {
    PcapngMaker maker = oneInterface();
    maker.packet({.frame = {1}});
    return maker.position();
}

/// A packet, and damage after it at which reading ends.
void expectEnd(Kind kind, Bytes const& octets) {
    PcapngMaker maker = oneInterface();
    maker.packet({.frame = {1}});
    std::uint64_t const offset = maker.position();
    maker.raw(octets).packet({.frame = {2}});
    ReadCapture const read = readWhole(maker.bytes());
    ASSERT_TRUE(read.damage);
    EXPECT_EQ(read.damage->kind, kind);
    EXPECT_EQ(read.damage->fileOffset, offset);
    EXPECT_EQ(read.damages, std::vector{*read.damage});
    EXPECT_EQ(read.records.size(), 1U);
}

Bytes blockStart(std::uint32_t type, std::uint32_t length) {
    PcapngMaker const maker;
    return concat({maker.number(type, 4), maker.number(length, 4)});
}

TEST(DamagedBlocks, LengthsThatNoBlockHasEndTheFile) {
    for (std::uint32_t const length : {0U, 4U, 8U, 11U, 13U, 30U, 0xFFFF'FFFFU}) {
        expectEnd(Kind::blockLength, concat({blockStart(6, length), Bytes(24)}));
    }
    for (std::uint32_t const length : {12U, 24U}) {
        expectEnd(Kind::blockLength,
                  concat({blockStart(0x0A0D0D0A, length), {0x4D, 0x3C, 0x2B, 0x1A}, Bytes(12)}));
    }
    expectEnd(Kind::blockLength, Bytes(40));
}

TEST(DamagedBlocks, ASectionWithoutAByteOrderEndsTheFile) {
    expectEnd(Kind::byteOrder, concat({blockStart(0x0A0D0D0A, 28), Bytes(20)}));
}

TEST(DamagedBlocks, ALengthBeyondTheEndIsACutBlock) {
    PcapngMaker maker = oneInterface();
    maker.packet({.frame = {1}});
    std::uint64_t const offset = maker.position();
    maker.raw(concat({blockStart(6, 0xFFFF'FFFC),
                      Bytes(12),
                      maker.number(1000, 4),
                      maker.number(1500, 4),
                      {7, 8}}));
    ReadCapture const read = readWhole(maker.bytes());
    EXPECT_EQ(read.damage, (CaptureDamage{.kind = Kind::recordCut,
                                          .fileOffset = offset,
                                          .claimedSize = 0xFFFF'FFFC,
                                          .missingSize = 0xFFFF'FFFC - 30}));
    EXPECT_EQ(read.records.size(), 1U);
    ASSERT_TRUE(read.cut);
    EXPECT_EQ(read.cut->frame, (Bytes{7, 8}));
    EXPECT_EQ(read.cut->record.capturedSize, 2U);
    EXPECT_EQ(read.cut->record.originalSize, 1500U);
}

TEST(DamagedBlocks, OfTwoLengthsTheFirstIsBelieved) {
    expectPassedOver(
        {{.kind = Kind::blockLengthsDiffer, .fileOffset = damagedAt(), .claimedSize = 36}},
        [](PcapngMaker& maker) {
            PcapngMaker block;
            block.packet({.frame = {9}});
            Bytes octets = block.bytes();
            octets.back() = 1;
            maker.raw(octets);
        });
}

TEST(DamagedBlocks, PacketsOfUnknownInterfacesArePassedOver) {
    expectPassedOver({{.kind = Kind::unknownInterface, .fileOffset = damagedAt()}},
                     [](PcapngMaker& maker) { maker.packet({.interface = 1, .frame = {9}}); });
    expectPassedOver(
        {{.kind = Kind::unknownInterface, .fileOffset = damagedAt()}},
        [](PcapngMaker& maker) { maker.packet({.interface = 0xFFFF'FFFF, .frame = {9}}); });
    expectPassedOver({{.kind = Kind::unknownInterface, .fileOffset = damagedAt()}},
                     [](PcapngMaker& maker) { maker.oldPacket({.interface = 1, .frame = {9}}); });
    expectPassedOver({{.kind = Kind::unknownInterface, .fileOffset = damagedAt()}},
                     [](PcapngMaker& maker) { maker.statistics(7, {}); });
}

TEST(DamagedBlocks, ASimplePacketTakesAnInterface) {
    PcapngMaker maker;
    maker.section();
    maker.simplePacket({1});
    EXPECT_EQ(readWhole(maker.bytes()).damageKinds(), std::vector{Kind::unknownInterface});
}

TEST(DamagedBlocks, FramesLongerThanTheirBlockArePassedOver) {
    CaptureDamage const damage{
        .kind = Kind::frameTooLong, .fileOffset = damagedAt(), .claimedSize = 5};
    expectPassedOver({damage}, [](PcapngMaker& maker) {
        maker.packet({.frame = {1, 2}, .capturedSize = 5});
    });
    expectPassedOver({damage}, [](PcapngMaker& maker) {
        maker.oldPacket({.frame = {1, 2}, .capturedSize = 5});
    });
    expectPassedOver({damage}, [](PcapngMaker& maker) { maker.simplePacket({1, 2}, 5); });
}

TEST(DamagedBlocks, BlocksTooShortForTheirTypeArePassedOver) {
    for (std::uint32_t const type : {2U, 3U, 5U, 6U}) {
        expectPassedOver({{.kind = Kind::blockTooShort, .fileOffset = damagedAt()}},
                         [&](PcapngMaker& maker) {
                             maker.block(type, Bytes(type == 3 ? 0U : type == 5 ? 8U : 16U));
                         });
    }
}

TEST(DamagedBlocks, AnIllegibleInterfaceKeepsItsNumber) {
    PcapngMaker maker;
    maker.section().interface(1).block(1, Bytes(4));
    maker.interface(113);
    for (std::uint32_t const interface : {0U, 1U, 2U}) {
        maker.packet({.interface = interface, .frame = {1}});
    }
    ReadCapture const read = readWhole(maker.bytes());
    EXPECT_EQ(read.damageKinds(), (std::vector{Kind::blockTooShort, Kind::unknownInterface}));
    ASSERT_EQ(read.records.size(), 2U);
    EXPECT_EQ(read.records[0].record.linkType, 1U);
    EXPECT_EQ(read.records[1].record.linkType, 113U);
}

TEST(DamagedBlocks, OptionsThatAreCutAreToldAndThoseBeforeKept) {
    CaptureDamage const damage{.kind = Kind::optionCut, .fileOffset = damagedAt()};
    expectPassedOver({damage}, [](PcapngMaker& maker) {
        maker.packet({.frame = {9},
                      .options = concat({maker.numberOption(4, 3), maker.number(1, 2),
                                         maker.number(5, 2), Bytes(4)})});
    });
    expectPassedOver({damage}, [](PcapngMaker& maker) {
        maker.statistics(
            0, concat({maker.numberOption(5, 3), maker.number(1, 2), maker.number(0xFFFF, 2)}));
    });
    PcapngMaker maker;
    maker.section().interface(
        1, 0, concat({maker.option(9, {9}), maker.number(2, 2), maker.number(100, 2)}));
    maker.packet({.time = 5, .frame = {1}, .options = maker.numberOption(4, 3)});
    ReadCapture const read = readWhole(maker.bytes());
    EXPECT_EQ(read.damageKinds(), std::vector{Kind::optionCut});
    ASSERT_EQ(read.records.size(), 1U);
    EXPECT_EQ(read.records[0].record.time, captureTimeOf(5));
    EXPECT_EQ(read.records[0].record.dropped, 3U);
}

TEST(DamagedBlocks, OptionsOfAnotherSizeAreNotRead) {
    PcapngMaker maker;
    maker.section().interface(1, 0, concat({maker.option(9, {9, 9}), maker.option(14, {1})}));
    maker.packet({.time = 5, .frame = {1}, .options = maker.option(4, {1, 2, 3, 4})});
    maker.statistics(0, maker.option(5, {1, 2}));
    ReadCapture const read = readWhole(maker.bytes());
    EXPECT_TRUE(read.damages.empty());
    ASSERT_EQ(read.records.size(), 1U);
    EXPECT_EQ(read.records[0].record.time, CaptureTime(std::chrono::microseconds(5)));
    EXPECT_EQ(read.records[0].record.dropped, std::nullopt);
    EXPECT_EQ(read.interfaces[0].dropped, std::nullopt);
}

TEST(DamagedBlocks, UnitsOfTimeThatCannotBeCountedLeaveNoTime) {
    for (std::uint8_t const resolution : Bytes{20, 127, 0x80 | 64, 255}) {
        PcapngMaker maker;
        maker.section().interface(1, 0, maker.timeOptions(resolution));
        maker.packet({.time = 5, .frame = {1}});
        ReadCapture const read = readWhole(maker.bytes());
        EXPECT_EQ(read.damageKinds(), std::vector{Kind::timeResolution});
        ASSERT_EQ(read.records.size(), 1U);
        EXPECT_EQ(read.records[0].record.time, std::nullopt);
    }
}

TEST(DamagedBlocks, TimesThatDoNotFitAreToldAndTheirRecordsKept) {
    PcapngMaker maker;
    maker.section().interface().interface(1, 0, maker.timeOptions(6, -10));
    maker.packet({.time = ~std::uint64_t{0}, .frame = {1}});
    maker.packet({.interface = 1, .time = 9'999'999, .frame = {2}});
    maker.packet({.interface = 1, .time = 10'000'000, .frame = {3}});
    ReadCapture const read = readWhole(maker.bytes());
    EXPECT_EQ(read.damageKinds(), (std::vector{Kind::timeOutOfRange, Kind::timeOutOfRange}));
    ASSERT_EQ(read.records.size(), 3U);
    EXPECT_EQ(read.records[0].record.time, std::nullopt);
    EXPECT_EQ(read.records[1].record.time, std::nullopt);
    EXPECT_EQ(read.records[2].record.time, CaptureTime());
}

TEST(DamagedBlocks, ASectionOfAnotherVersionIsPassedOver) {
    PcapngMaker maker = oneInterface();
    maker.packet({.frame = {1}});
    std::uint64_t const offset = maker.position();
    maker.section(false, PcapngMaker::kUnknownLength, 2).interface().packet({.frame = {9}});
    maker.section().interface().packet({.frame = {2}});
    ReadCapture const read = readWhole(maker.bytes());
    EXPECT_EQ(read.damages,
              (std::vector<CaptureDamage>{{.kind = Kind::unknownVersion, .fileOffset = offset}}));
    ASSERT_EQ(read.records.size(), 2U);
    EXPECT_EQ(read.records[1].frame, Bytes{2});
}

TEST(DamagedBlocks, ASectionThatIsCutIsTold) {
    PcapngMaker maker;
    maker.section(true, 1000).interface().packet({.frame = {1}});
    std::uint64_t const size = maker.position();
    EXPECT_EQ(readWhole(maker.bytes()).damages,
              (std::vector<CaptureDamage>{{.kind = Kind::sectionCut,
                                           .fileOffset = 0,
                                           .claimedSize = 1028,
                                           .missingSize = 1028 - size}}));
    // By another section.
    maker.section().interface();
    while (maker.position() < 1200) {
        maker.packet({.frame = Bytes(50)});
    }
    ReadCapture const read = readWhole(maker.bytes());
    EXPECT_EQ(read.damages, (std::vector<CaptureDamage>{{.kind = Kind::sectionCut,
                                                         .fileOffset = 0,
                                                         .claimedSize = 1028,
                                                         .missingSize = 1028 - size}}));
    EXPECT_GT(read.records.size(), 1U);
}

TEST(DamagedBlocks, OfManyDamagesAHundredAreKeptAndAllCounted) {
    PcapngMaker maker = oneInterface();
    for (int i = 0; i < 250; ++i) {
        maker.packet({.interface = 5, .frame = {1}});
    }
    maker.packet({.frame = {1}});
    ScratchFile const file(maker.bytes());
    CaptureFile read(file.path());
    EXPECT_TRUE(read.next());
    EXPECT_FALSE(read.next());
    EXPECT_EQ(read.damages().size(), 100U);
    EXPECT_EQ(read.damageCount(), 250U);
}

TEST(DamagedBlocks, InterfacesAreKeptUpToALimit) {
    PcapngMaker maker;
    maker.section();
    for (int i = 0; i < 16385; ++i) {
        maker.interface();
    }
    maker.packet({.interface = 16383, .frame = {1}}).packet({.interface = 16384, .frame = {2}});
    ReadCapture const read = readWhole(maker.bytes());
    EXPECT_EQ(read.damageKinds(), (std::vector{Kind::tooManyInterfaces, Kind::unknownInterface}));
    EXPECT_EQ(read.interfaces.size(), 16384U);
    EXPECT_EQ(read.records.size(), 1U);
}

TEST(DamagedBlocks, APacketOfMoreThanAnyFrameIsPassedOver) {
    PcapngMaker maker = oneInterface();
    std::uint64_t const first = maker.position();
    maker.packet({.frame = Bytes((std::size_t{2} << 20U) + 1)});
    std::uint64_t const second = maker.position();
    maker.packet({.frame = Bytes(std::size_t{6} << 20U)});
    maker.packet({.frame = Bytes(std::size_t{2} << 20U)});
    ReadCapture const read = readWhole(maker.bytes());
    EXPECT_EQ(
        read.damages,
        (std::vector<CaptureDamage>{
            {.kind = Kind::recordTooLong, .fileOffset = first, .claimedSize = second - first},
            {.kind = Kind::recordTooLong, .fileOffset = second, .claimedSize = (6U << 20U) + 32}}));
    ASSERT_EQ(read.records.size(), 1U);
    EXPECT_EQ(read.records[0].frame.size(), std::size_t{2} << 20U);
}

/// A small capture with a block of every kind, in both byte orders.
Bytes everyBlock() {
    PcapngMaker maker;
    for (bool const isLittleEndian : {true, false}) {
        maker.section(isLittleEndian).interface(1, 3, maker.timeOptions(9, 100, "a"));
        maker.packet({.time = 5, .frame = {1, 2, 3, 4, 5}, .options = maker.numberOption(4, 2)});
        maker.simplePacket({1, 2, 3}).oldPacket({.frame = {7}, .dropped = 3});
        maker.block(4, Bytes(5)).statistics(0, maker.numberOption(5, 1));
    }
    return maker.bytes();
}

/// Every record is where the file holds it.
void expectHeld(Bytes const& capture, ReadCapture const& read) {
    std::uint64_t end = 0;
    auto records = read.records;
    if (read.cut) {
        records.push_back(*read.cut);
    }
    for (auto const& [record, frame] : records) {
        ASSERT_GE(record.fileOffset, end);
        ASSERT_GT(record.frameOffset, record.fileOffset);
        end = record.frameOffset + record.capturedSize;
        ASSERT_LE(end, capture.size());
        auto const held = capture.begin() + static_cast<std::ptrdiff_t>(record.frameOffset);
        ASSERT_EQ(frame, Bytes(held, held + record.capturedSize));
        ASSERT_LT(record.interface, read.interfaces.size());
    }
}

TEST(DamagedBlocks, CutAnywhereHaveTheRecordsBefore) {
    Bytes const whole = everyBlock();
    auto const all = readWhole(whole).records;
    ASSERT_EQ(all.size(), 6U);
    for (std::size_t size = 4; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        Bytes const cut = TalTest::prefix(whole, size);
        ReadCapture const read = readWhole(cut);
        expectHeld(cut, read);
        // A packet's block, unlike its frame, ends after padding, options and a length.
        auto const isBefore = [&](auto const& each) {
            std::size_t const rest = size - std::min<std::size_t>(size, each.record.fileOffset);
            Bytes const length(
                whole.begin() + static_cast<std::ptrdiff_t>(each.record.fileOffset) + 4,
                whole.begin() + static_cast<std::ptrdiff_t>(each.record.fileOffset) + 8);
            return rest >= static_cast<std::size_t>(length[0] + length[3]);
        };
        auto const count = std::count_if(all.begin(), all.end(), isBefore);
        ASSERT_EQ(read.records, std::vector(all.begin(), all.begin() + count));
    }
}

TEST(DamagedBlocks, WithAnyOctetChangedHoldWhatTheyTell) {
    Bytes capture = everyBlock();
    ScratchFile file;
    for (std::size_t i = 0; i < capture.size(); ++i) {
        SCOPED_TRACE(i);
        std::uint8_t const octet = capture[i];
        for (int const change : {0x01, 0x04, 0x80, 0xFF}) {
            capture[i] = static_cast<std::uint8_t>(octet ^ change);
            file.assign(capture);
            expectHeld(capture, TalIec61850Analysis::readWhole(file.path()));
        }
        capture[i] = octet;
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::DamagedBlocksTest
