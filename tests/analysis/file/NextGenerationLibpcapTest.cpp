// Next-generation captures against what libpcap reads of them. Where it refuses a file, or is
// wrong, the test is named after that, and states what is expected by itself.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "analysis/file/EveryBlock.hpp"
#include "analysis/file/RandomPcapng.hpp"
#include "analysis/file/ReadByLibpcap.hpp"
#include "analysis/file/ReadFile.hpp"
#include "analysis/file/SpeltOutCapture.hpp"
#include "index/Indexing.hpp"
#include "index/RandomPicks.hpp"
#include "support/CaptureFile.hpp"
#include "support/OwnCaptures.hpp"
#include "support/PcapngMaker.hpp"

namespace TalIec61850Analysis::NextGenerationLibpcapTest {
namespace {

using TalTest::Bytes;
using TalTest::concat;
using TalTest::PcapngMaker;
using TalTest::ScratchFile;
using Kind = CaptureDamageKind;
using Texts = std::vector<std::string>;

constexpr std::uint64_t kSecond = 1'700'000'000;
constexpr std::uint8_t kBinary = 0x80;
/// The last second whose nanoseconds all fit into 63 bits.
constexpr std::uint64_t kLastSecond = 9'223'372'035;

/// Expects the same records of both, and that neither finds anything wrong.
/// @param count  how many records there are
void expectSameRecords(Bytes const& capture, std::size_t count) {
    ScratchFile const file(capture);
    ReadCapture const read = readWhole(file.path());
    LibpcapRead const libpcap = readByLibpcap(file.path());
    EXPECT_EQ(recordTexts(read), libpcap.records);
    EXPECT_EQ(read.records.size(), count);
    EXPECT_EQ(libpcap.refusal, std::nullopt);
    EXPECT_TRUE(read.damages.empty());
    for (auto const& each : read.records) {
        EXPECT_EQ(each.record.linkType, libpcap.linkType);
    }
}

/// Expects records that libpcap tells up to where it refuses the file, in which `damages` are
/// found.
void expectRefused(PcapngMaker const& maker, Texts const& records,
                   std::vector<Kind> const& damages = {}) {
    ScratchFile const file(maker.bytes());
    ReadCapture const read = readWhole(file.path());
    EXPECT_EQ(recordTexts(read), records);
    EXPECT_EQ(read.damageKinds(), damages);
    EXPECT_FALSE(read.damage);
    LibpcapRead const libpcap = readByLibpcap(file.path());
    EXPECT_TRUE(libpcap.refusal);
    ASSERT_LE(libpcap.records.size(), records.size());
    EXPECT_TRUE(std::equal(libpcap.records.begin(), libpcap.records.end(), records.begin()));
}

/// The records of a capture by `CaptureFile` and by libpcap.
struct BothReads {
    Texts records;
    Texts byLibpcap;

    explicit BothReads(PcapngMaker const& maker) {
        ScratchFile const file(maker.bytes());
        records = recordTexts(readWhole(file.path()));
        byLibpcap = readByLibpcap(file.path()).records;
    }
};

/// A packet of one octet at a time in microseconds.
void addPacket(PcapngMaker& maker, std::uint8_t octet) {
    maker.packet({.time = kSecond * 1'000'000 + octet, .frame = {octet}});
}

/// What it becomes.
std::string addedText(std::uint8_t octet) { return recordText(kSecond, octet * 1000, {octet}); }

/// Every kind of block and option but simple packets: 5 packets.
void addSection(PcapngMaker& maker, bool isLittleEndian) {
    maker.section(isLittleEndian);
    maker.interface(
        1, 96,
        concat({maker.option(1, TalTest::text("the first")), maker.option(2, TalTest::text("eth0")),
                maker.option(9, {9}), maker.option(13, {4}), maker.numberOption(14, 3600),
                PcapngMaker::endOfOptions()}));
    maker.interface(1, 96);
    maker.packet({.time = kSecond * 1'000'000'000 + 123'456'789,
                  .frame = Bytes(61, 1),
                  .originalSize = 1500,
                  .options = allPacketOptions(maker)});
    addOtherBlocks(maker);
    maker.oldPacket({.interface = 1,
                     .time = kSecond * 1'000'000 + 999'999,
                     .frame = Bytes(62, 2),
                     .dropped = 7,
                     .options = allPacketOptions(maker)});
    maker.interface(1, 96, maker.timeOptions(kBinary | 20U));
    maker.packet({.interface = 2, .time = (kSecond << 20U) + 1, .frame = Bytes(63, 3)});
    maker.packet({.interface = 1, .time = kSecond * 1'000'000, .frame = {}, .originalSize = 64});
    maker.oldPacket({.interface = 0, .time = kSecond, .frame = Bytes(96, 4)});
}
constexpr std::size_t kPacketsOfSection = 5;

class LibpcapByteOrder : public testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(NextGenerationLibpcap, LibpcapByteOrder, testing::Bool(),
                         [](auto const& chosen) { return chosen.param ? "little" : "big"; });

TEST_P(LibpcapByteOrder, ReadsTheSameOfEveryKindOfBlockAndOption) {
    PcapngMaker maker;
    addSection(maker, GetParam());
    expectSameRecords(maker.bytes(), kPacketsOfSection);
}

TEST_P(LibpcapByteOrder, ReadsTheSameOfSeveralSections) {
    PcapngMaker maker;
    addSection(maker, GetParam());
    // Other clocks than those of the interfaces with the same numbers before.
    maker.section(GetParam()).interface(1, 96).interface(1, 96, maker.timeOptions(9));
    maker.packet({.interface = 0, .time = kSecond * 1'000'000 + 1, .frame = {1}});
    maker.packet({.interface = 1, .time = kSecond * 1'000'000'000 + 1, .frame = {2}});
    addSection(maker, GetParam());
    expectSameRecords(maker.bytes(), 2 * kPacketsOfSection + 2);
}

TEST_P(LibpcapByteOrder, ReadsTheSameOfAnotherLinkType) {
    PcapngMaker maker;
    maker.section(GetParam()).interface(113).interface(113);
    addPacket(maker, 1);
    expectSameRecords(maker.bytes(), 1);
}

TEST_P(LibpcapByteOrder, ReadsTheSameTimesInUnitsOfPowersOfTen) {
    PcapngMaker maker;
    maker.section(GetParam());
    std::uint64_t perSecond = 1;
    for (std::uint8_t exponent = 0; exponent <= 19; ++exponent, perSecond *= 10) {
        maker.interface(1, 0, maker.timeOptions(exponent, kSecond));
        for (std::uint64_t const time :
             {std::uint64_t{0}, std::uint64_t{1}, perSecond / 3, perSecond - 1, perSecond}) {
            maker.packet({.interface = exponent, .time = time, .frame = {exponent}});
        }
    }
    expectSameRecords(maker.bytes(), 100);
}

TEST_P(LibpcapByteOrder, ReadsTheSameTimesInUnitsOfPowersOfTwo) {
    PcapngMaker maker;
    maker.section(GetParam());
    for (std::uint8_t exponent = 0; exponent <= 34; ++exponent) {
        maker.interface(1, 0, maker.timeOptions(kBinary | exponent, -5));
        std::uint64_t const perSecond = std::uint64_t{1} << exponent;
        for (std::uint64_t const part :
             {std::uint64_t{0}, std::uint64_t{1}, perSecond / 3, perSecond - 1, perSecond}) {
            maker.packet(
                {.interface = exponent, .time = 5 * perSecond + part, .frame = {exponent}});
        }
    }
    expectSameRecords(maker.bytes(), 175);
}

TEST_P(LibpcapByteOrder, ReadsTheSameOfTheFirstAndTheLastTime) {
    PcapngMaker maker;
    maker.section(GetParam());
    maker.interface(1, 0, maker.timeOptions(9)).interface(1, 0, maker.timeOptions(0, -1));
    maker.packet({.time = 0, .frame = {1}});
    maker.packet({.time = ~std::uint64_t{0} >> 1U, .frame = {2}});
    maker.packet({.interface = 1, .time = 1, .frame = {3}});
    maker.packet({.interface = 1, .time = kLastSecond + 2, .frame = {4}});
    expectSameRecords(maker.bytes(), 4);
}

TEST_P(LibpcapByteOrder, ReadsTheSameOfAFileThatEndsAnywhere) {
    PcapngMaker maker;
    addSection(maker, GetParam());
    addSection(maker, GetParam());
    ScratchFile file;
    std::size_t most = 0;
    for (std::size_t size = 0; size <= maker.bytes().size(); ++size) {
        file.assign(TalTest::prefix(maker.bytes(), size));
        ReadCapture const read = readWhole(file.path());
        LibpcapRead const libpcap = readByLibpcap(file.path());
        EXPECT_EQ(recordTexts(read), libpcap.records) << size;
        // A file without an interface is not opened by libpcap.
        if (libpcap.linkType) {
            EXPECT_EQ(read.damage.has_value(), libpcap.refusal.has_value()) << size;
        }
        most = read.records.size();
    }
    EXPECT_EQ(most, 2 * kPacketsOfSection);
}

TEST_P(LibpcapByteOrder, TellsNoTimeOfASimplePacketWhereLibpcapTellsZero) {
    PcapngMaker maker;
    maker.section(GetParam()).interface(1, 4).interface(1, 4);
    addPacket(maker, 1);
    maker.simplePacket({1, 2, 3}, 3);
    maker.simplePacket({1, 2, 3, 4}, 9);
    maker.section(GetParam()).interface(1, 4, maker.timeOptions(6, 3600));
    maker.simplePacket({5});
    BothReads const reads(maker);
    EXPECT_EQ(reads.records,
              (Texts{addedText(1), recordText({}, 0, {1, 2, 3}),
                     recordText({}, 0, 4, 9, {1, 2, 3, 4}), recordText({}, 0, {5})}));
    EXPECT_EQ(reads.byLibpcap,
              (Texts{addedText(1), recordText(0, 0, {1, 2, 3}),
                     recordText(0, 0, 4, 9, {1, 2, 3, 4}), recordText(3600, 0, {5})}));
}

TEST(NextGenerationLibpcap, ReadsTheSameOfACaptureSpeltOutOctetByOctet) {
    expectSameRecords(speltOutCapture(), 1);
}

TEST(NextGenerationLibpcap, ReadsTheSameOfASectionThatSaysHowLongItIs) {
    PcapngMaker blocks;
    blocks.interface();
    addPacket(blocks, 1);
    PcapngMaker maker;
    maker.section(true, blocks.bytes().size()).raw(blocks.bytes());
    maker.section(true, blocks.bytes().size()).raw(blocks.bytes());
    expectSameRecords(maker.bytes(), 2);
}

TEST(NextGenerationLibpcap, ReadsTheSameOfThousandsOfPackets) {
    PcapngMaker maker;
    maker.section().interface(1, 0, maker.timeOptions(9));
    for (std::size_t i = 0; i < 5000; ++i) {
        maker.packet({.time = i * 250'000, .frame = Bytes(i % 300, static_cast<std::uint8_t>(i))});
    }
    expectSameRecords(maker.bytes(), 5000);
}

TEST(NextGenerationLibpcap, ReadsTheSameOfFramesOfEveryOwnCapture) {
    std::size_t captures = 0;
    for (std::string const& path : TalTest::ownCapturePaths()) {
        ReadCapture const read = readWhole(path);
        std::vector<Bytes> frames;
        for (auto const& each : read.records) {
            frames.push_back(each.frame);
        }
        expectSameRecords(TalTest::nextGenerationCapture(frames), frames.size());
        captures += frames.empty() ? 0 : 1;
    }
    EXPECT_GT(captures, 5U);
}

TEST(NextGenerationLibpcap, CutsUnitsFinerThan34BitsWhereLibpcapOverflows) {
    PcapngMaker maker;
    maker.section();
    Texts expected;
    for (std::uint8_t exponent = 35; exponent <= 63; ++exponent) {
        maker.interface(1, 0, maker.timeOptions(kBinary | exponent, kSecond));
        std::uint64_t const half = std::uint64_t{1} << (exponent - 1U);
        maker.packet({.interface = exponent - 35U, .time = half + half / 2, .frame = {exponent}});
        expected.push_back(recordText(kSecond, 750'000'000, {exponent}));
    }
    BothReads const reads(maker);
    EXPECT_EQ(reads.records, expected);
    ASSERT_EQ(reads.byLibpcap.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NE(reads.byLibpcap[i], expected[i]) << i;
    }
}

TEST(NextGenerationLibpcap, TellsNoTimeBefore1970AndAfter2262WhereLibpcapTellsSeconds) {
    PcapngMaker maker;
    maker.section().interface(1, 0, maker.timeOptions(0, -10));
    maker.packet({.time = 9, .frame = {1}});
    maker.packet({.time = 10, .frame = {2}});
    maker.packet({.time = 20'000'000'000, .frame = {3}});
    BothReads const reads(maker);
    EXPECT_EQ(reads.records,
              (Texts{recordText({}, 0, {1}), recordText(0, 0, {2}), recordText({}, 0, {3})}));
    EXPECT_EQ(reads.byLibpcap, (Texts{recordText(-1, 0, {1}), recordText(0, 0, {2}),
                                      recordText(19'999'999'990, 0, {3})}));
}

TEST(NextGenerationLibpcap, ReadsUnitsThatLibpcapRefusesWithoutTimes) {
    for (std::uint8_t const resolution : Bytes{20, 127, kBinary | 64U, kBinary | 127U}) {
        PcapngMaker maker;
        maker.section().interface();
        addPacket(maker, 1);
        maker.interface(1, 0, maker.timeOptions(resolution));
        maker.packet({.interface = 1, .time = 5, .frame = {2}});
        addPacket(maker, 3);
        expectRefused(maker, {addedText(1), recordText({}, 0, {2}), addedText(3)},
                      {Kind::timeResolution});
    }
}

/// Two packets with something between at which libpcap ends.
void expectReadOn(std::function<void(PcapngMaker&)> const& between,
                  std::vector<Kind> const& damages = {}) {
    PcapngMaker maker;
    maker.section().interface(1, 64);
    addPacket(maker, 1);
    between(maker);
    addPacket(maker, 2);
    expectRefused(maker, {addedText(1), addedText(2)}, damages);
    ScratchFile const file(maker.bytes());
    EXPECT_EQ(readByLibpcap(file.path()).records, Texts{addedText(1)});
}

TEST(NextGenerationLibpcap, LeavesCanFramesAsTheyAreWhereLibpcapTurnsTheirNumber) {
    Bytes frame(20);
    frame[15] = 12;  // CAN, in a cooked frame
    frame[19] = 1;
    Bytes turned = frame;
    std::reverse(turned.end() - 4, turned.end());
    PcapngMaker maker;
    maker.section(false).interface(113, 64);
    maker.packet({.frame = frame});
    BothReads const both(maker);
    EXPECT_EQ(both.records, Texts{recordText(0, 0, frame)});
    EXPECT_EQ(both.byLibpcap, Texts{recordText(0, 0, turned)});
}

TEST(NextGenerationLibpcap, ReadsDifferentSnapLengthsThatLibpcapRefuses) {
    expectReadOn([](PcapngMaker& maker) { maker.interface(1, 65); });
    expectReadOn([](PcapngMaker& maker) { maker.section().interface(1, 65); });
}

TEST(NextGenerationLibpcap, ReadsDifferentLinkTypesThatLibpcapRefuses) {
    expectReadOn([](PcapngMaker& maker) { maker.interface(113, 64); });
    expectReadOn([](PcapngMaker& maker) { maker.section().interface(113, 64); });
}

TEST(NextGenerationLibpcap, ReadsAChangedByteOrderThatLibpcapRefuses) {
    expectReadOn([](PcapngMaker& maker) { maker.section(false).interface(1, 64); });
}

TEST(NextGenerationLibpcap, PassesOverPacketsOfUnknownInterfacesThatLibpcapRefuses) {
    expectReadOn([](PcapngMaker& maker) { maker.packet({.interface = 1, .frame = {9}}); },
                 {Kind::unknownInterface});
    expectReadOn([](PcapngMaker& maker) { maker.oldPacket({.interface = 1, .frame = {9}}); },
                 {Kind::unknownInterface});
}

TEST(NextGenerationLibpcap, PassesOverFramesLongerThanTheirBlockThatLibpcapRefuses) {
    expectReadOn([](PcapngMaker& maker) { maker.packet({.frame = {9}, .capturedSize = 50}); },
                 {Kind::frameTooLong});
}

TEST(NextGenerationLibpcap, PassesOverBlocksOf16MiBThatLibpcapRefuses) {
    expectReadOn([](PcapngMaker& maker) { maker.block(0xA, Bytes(std::size_t{16} << 20U)); });
}

TEST(NextGenerationLibpcap, PassesOverBlocksTooShortThatLibpcapRefuses) {
    expectReadOn([](PcapngMaker& maker) { maker.block(6, Bytes(16)); }, {Kind::blockTooShort});
}

TEST(NextGenerationLibpcap, BelievesTheFirstLengthOfABlockWhereLibpcapRefusesTwo) {
    expectReadOn(
        [](PcapngMaker& maker) {
            maker.raw(
                concat({maker.number(0xA, 4), maker.number(16, 4), Bytes(4), maker.number(20, 4)}));
        },
        {Kind::blockLengthsDiffer});
}

TEST(NextGenerationLibpcap, PassesOverASectionOfAnotherVersionThatLibpcapRefuses) {
    expectReadOn(
        [](PcapngMaker& maker) {
            maker.section(true, PcapngMaker::kUnknownLength, 2).interface(1, 64);
            maker.packet({.frame = {9}});
            maker.section().interface(1, 64);
        },
        {Kind::unknownVersion});
}

TEST(NextGenerationLibpcap, ReadsFramesLongerThanTheSnapLengthThatLibpcapRefuses) {
    PcapngMaker maker;
    maker.section().interface(1, 4);
    addPacket(maker, 1);
    maker.packet({.frame = {1, 2, 3, 4, 5}});
    expectRefused(maker, {addedText(1), recordText(0, 0, {1, 2, 3, 4, 5})});
}

TEST(NextGenerationLibpcap, ReadsFramesOfMoreThan256KiBThatLibpcapRefuses) {
    Bytes const longest(262'144, 7);
    Bytes const longer(262'145, 8);
    PcapngMaker maker;
    maker.section().interface(1, 0);
    maker.packet({.frame = longest});
    expectSameRecords(maker.bytes(), 1);
    maker.packet({.frame = longer});
    expectRefused(maker, {recordText(0, 0, longest), recordText(0, 0, longer)});
}

TEST(NextGenerationLibpcap, ReadsOptionsOfOtherLengthsThatLibpcapRefuses) {
    for (bool const isOffset : {false, true}) {
        PcapngMaker maker;
        maker.section().interface();
        addPacket(maker, 1);
        maker.interface(1, 0, maker.option(isOffset ? 14 : 9, {9, 9}));
        maker.packet({.interface = 1, .time = 2, .frame = {2}});
        expectRefused(maker, {addedText(1), recordText(0, 2000, {2})});
    }
}

TEST(NextGenerationLibpcap, WithoutInterfacesIsWholeWhereLibpcapRefuses) {
    expectRefused(PcapngMaker().section(), {});
    PcapngMaker maker;
    maker.section().simplePacket({1});
    expectRefused(maker, {}, {Kind::unknownInterface});
}

// --- Random captures ---------------------------------------------------------------------------

/// What libpcap reads of a file, with no time where there is none in the file.
LibpcapRead readWithoutTimes(std::string const& path, RandomPcapng const& capture) {
    LibpcapRead read = readByLibpcap(path);
    for (auto const& [index, zero] : capture.simplePackets) {
        if (index < read.records.size()) {
            std::string& text = read.records[index];
            std::string const time = std::to_string(zero) + ".000000000,";
            RC_ASSERT(text.starts_with(time));
            text.replace(0, time.size(), "no time,");
        }
    }
    return read;
}

RC_GTEST_PROP(NextGenerationLibpcap, ReadsTheSameOfAnyCapture, ()) {
    RandomPcapng const capture = *anyPcapng();
    ScratchFile const file(capture.octets);
    ReadCapture const read = readWhole(file.path());
    LibpcapRead const libpcap = readWithoutTimes(file.path(), capture);
    RC_ASSERT(libpcap.refusal.value_or("") == "");
    RC_ASSERT(read.damages.empty());
    RC_ASSERT(recordTexts(read) == libpcap.records);
}

RC_GTEST_PROP(NextGenerationLibpcap, ReadsTheSameOfAnyCaptureThatEndsAnywhere, ()) {
    RandomPcapng const capture = *anyPcapng();
    ScratchFile const file(TalTest::prefix(
        capture.octets, TalTest::below(static_cast<unsigned>(capture.octets.size()) + 1)));
    ReadCapture const read = readWhole(file.path());
    LibpcapRead const libpcap = readWithoutTimes(file.path(), capture);
    RC_ASSERT(recordTexts(read) == libpcap.records);
    if (libpcap.linkType) {
        RC_ASSERT(read.damage.has_value() == libpcap.refusal.has_value());
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::NextGenerationLibpcapTest
