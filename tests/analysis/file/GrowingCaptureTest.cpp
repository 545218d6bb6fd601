// Captures that grow while they are read.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "analysis/file/EveryBlock.hpp"
#include "analysis/file/ReadFile.hpp"
#include "index/Indexing.hpp"
#include "index/RandomPicks.hpp"
#include "support/CaptureFile.hpp"
#include "support/GrowingFile.hpp"
#include "support/OctetsRead.hpp"
#include "support/OwnCaptures.hpp"
#include "support/PcapngMaker.hpp"
#include "support/TempFile.hpp"

namespace TalIec61850Analysis::GrowingCaptureTest {
namespace {

using TalTest::below;
using TalTest::Bytes;
using TalTest::GrowingFile;
using TalTest::PcapngMaker;

void readRest(CaptureFile& file, std::vector<ReadCapture::Record>& records) {
    while (auto const* const view = file.next()) {
        records.push_back({view->record, {view->frame.begin(), view->frame.end()}});
    }
}

Bytes smallClassic() {
    TalTest::CaptureBuilder builder(TalTest::CaptureVariant::nanoLittle);
    for (std::uint8_t i = 0; i < 4; ++i) {
        builder.add(1'700'000'000 + i, 5, Bytes(3U * i, i));
    }
    return builder.bytes();
}

Bytes smallNextGeneration() {
    PcapngMaker maker;
    maker.section().interface();
    maker.packet({.time = 7, .frame = Bytes(5, 1)});
    addOtherBlocks(maker);
    maker.interface();
    maker.packet({.interface = 1, .time = 8, .frame = Bytes(9, 2)});
    maker.section().interface();
    maker.packet({.time = 9, .frame = Bytes(2, 3)});
    return maker.bytes();
}

/// Where a capture is no longer less than its own header.
std::size_t headerOf(Bytes const& capture) { return capture[0] == 0x0A ? 28 : 24; }

void expectReadOnAt(Bytes const& capture, std::size_t size, ReadMode mode) {
    GrowingFile growing(capture, size);
    CaptureFile file(growing.path(), mode);
    std::vector<ReadCapture::Record> records;
    readRest(file, records);
    EXPECT_FALSE(file.readOn()) << "nothing was added";
    growing.grow(growing.left());
    EXPECT_EQ(file.readOn(), size < capture.size()) << size;
    readRest(file, records);
    auto const whole = readWhole(growing.path());
    EXPECT_EQ(records, whole.records) << size;
    EXPECT_EQ(file.damage(), std::nullopt) << size;
    EXPECT_EQ(file.cutRecord(), nullptr) << size;
    EXPECT_EQ(file.interfaces().size(), whole.interfaces.size()) << size;
    for (auto const& each : whole.records) {
        auto const found = file.recordAt(each.record.fileOffset);
        ASSERT_TRUE(found) << size;
        EXPECT_EQ(*found, each.record) << size;
    }
}

TEST(GrowingCapture, IsReadOnWhereverItEnded) {
    for (Bytes const& capture : {smallClassic(), smallNextGeneration()}) {
        for (std::size_t size = headerOf(capture); size <= capture.size(); ++size) {
            expectReadOnAt(capture, size, ReadMode::plain);
        }
    }
}

TEST(GrowingCapture, IsReadOnByASecondThread) {
    TalTest::CaptureBuilder builder;
    for (int i = 0; i < 3000; ++i) {
        builder.add(1'700'000'000, 5, Bytes(400, static_cast<std::uint8_t>(i)));
    }
    for (std::size_t const size : {std::size_t{100}, std::size_t{400'007}, std::size_t{900'000}}) {
        expectReadOnAt(builder.bytes(), size, ReadMode::ahead);
    }
}

TEST(GrowingCapture, IsNotReadOnWhereItIsDamaged) {
    Bytes capture = smallNextGeneration();
    PcapngMaker maker;
    maker.section().interface();
    Bytes damaged = maker.bytes();
    // A block that is too short for any.
    TalTest::append(damaged, Bytes{6, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0});
    GrowingFile growing(TalTest::concat({damaged, capture}), damaged.size());
    CaptureFile file(growing.path());
    EXPECT_EQ(file.next(), nullptr);
    ASSERT_TRUE(file.damage());
    EXPECT_EQ(file.damage()->kind, CaptureDamageKind::blockLength);
    growing.grow(growing.left());
    EXPECT_FALSE(file.readOn());
    EXPECT_EQ(file.next(), nullptr);
}

TEST(GrowingCapture, IsNotReadOnBeforeItsEnd) {
    TalTest::TempFile const stored(smallClassic());
    CaptureFile file(stored.path());
    ASSERT_NE(file.next(), nullptr);
    EXPECT_TRUE(file.readOn());
    std::vector<ReadCapture::Record> records;
    readRest(file, records);
    EXPECT_EQ(records.size(), 3U);
}

TEST(GrowingCapture, ThatBecomesShorterIsNotReadOn) {
    TalTest::TempFile const stored(smallClassic());
    CaptureFile file(stored.path());
    std::vector<ReadCapture::Record> records;
    readRest(file, records);
    std::filesystem::resize_file(stored.path(), 30);
    EXPECT_FALSE(file.readOn());
    EXPECT_EQ(file.next(), nullptr);
}

RC_GTEST_PROP(GrowingCaptures, AreReadAsAtOnce, ()) {
    auto const paths = TalTest::ownCapturePaths();
    std::string const& path = paths[below(static_cast<unsigned>(paths.size()))];
    auto const whole = readWhole(path);
    Bytes const content = TalTest::readFile(path);
    RC_PRE(content.size() > 40U);
    GrowingFile growing(content, headerOf(content));
    CaptureFile file(growing.path());
    std::vector<ReadCapture::Record> records;
    readRest(file, records);
    while (growing.left() > 0) {
        auto const most = static_cast<unsigned>(std::min<std::size_t>(growing.left(), 100'000));
        growing.grow(1 + below(most));
        static_cast<void>(file.readOn());
        readRest(file, records);
    }
    RC_ASSERT(records == whole.records);
    RC_ASSERT(file.damage() == whole.damage);
}

}  // namespace
}  // namespace TalIec61850Analysis::GrowingCaptureTest
