// The record at an offset, found by seeking, against the walk from the start of the file.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <algorithm>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "analysis/file/ReadFile.hpp"
#include "index/Indexing.hpp"
#include "index/RandomPicks.hpp"
#include "index/TrafficGenerators.hpp"
#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"
#include "support/PcapngMaker.hpp"

namespace TalIec61850Analysis::RecordAtTest {
namespace {

using TalTest::below;
using TalTest::Bytes;
using TalTest::PcapngMaker;
using TalTest::ScratchFile;

/// The record that holds an offset, by the plainest search.
std::optional<CaptureRecord> plainRecordAt(ReadCapture const& read, std::uint64_t fileOffset) {
    auto const isIt = [&](CaptureRecord const& record) {
        return record.fileOffset <= fileOffset &&
               fileOffset < record.frameOffset + record.capturedSize;
    };
    auto const found = std::find_if(read.records.begin(), read.records.end(),
                                    [&](auto const& each) { return isIt(each.record); });
    if (found != read.records.end()) {
        return found->record;
    }
    return read.cut && isIt(read.cut->record) ? std::optional(read.cut->record) : std::nullopt;
}

/// Offsets in every record: its header, its frame, inside both, and after the frame.
std::vector<std::uint64_t> offsetsIn(ReadCapture const& read) {
    std::vector<std::uint64_t> offsets;
    for (auto const& [record, frame] : read.records) {
        for (std::uint64_t const offset :
             {record.fileOffset, record.fileOffset + 7, record.frameOffset,
              record.frameOffset + record.capturedSize / 2,
              record.frameOffset + record.capturedSize}) {
            offsets.push_back(offset);
        }
    }
    return offsets;
}

/// Asks for each in an order of its own.
void expectFound(std::string const& path, ReadCapture const& read,
                 std::vector<std::uint64_t> const& offsets) {
    CaptureFile file(path);
    for (std::uint64_t const offset : offsets) {
        ASSERT_EQ(file.recordAt(offset), plainRecordAt(read, offset)) << offset;
    }
}

void expectFoundInAnyOrder(std::string const& path) {
    SCOPED_TRACE(path);
    ReadCapture const read = readWhole(path);
    auto offsets = offsetsIn(read);
    std::mt19937 random(1);  // NOLINT(cert-msc51-cpp): the same at each run
    std::shuffle(offsets.begin(), offsets.end(), random);
    offsets.resize(std::min<std::size_t>(offsets.size(), 1000));
    expectFound(path, read, offsets);
}

TEST(RecordAt, IsThatOfTheWalkInEveryCapture) {
    auto paths = TalTest::ownCapturePaths();
    auto const recorded = TalTest::recordedCapturePaths();
    paths.insert(paths.end(), recorded.begin(), recorded.end());
    for (std::string const& path : paths) {
        expectFoundInAnyOrder(path);
    }
}

/// The frames of all own captures, as often as it takes to fill more than what is walked anyhow.
std::vector<Bytes> manyFrames(std::size_t octets) {
    std::vector<Bytes> frames;
    std::size_t size = 0;
    while (size < octets) {
        for (std::string const& path : TalTest::ownCapturePaths()) {
            for (auto const& each : readWhole(path).records) {
                frames.push_back(each.frame);
                size += each.frame.size() + 32;
            }
        }
    }
    return frames;
}

TEST(RecordAt, IsThatOfTheWalkFarIntoALargeClassicCapture) {
    auto const frames = manyFrames(5'000'000);
    for (auto const variant : TalTest::captureVariants) {
        TalTest::CaptureBuilder builder(variant);
        std::uint32_t second = 1'700'000'000;
        for (Bytes const& frame : frames) {
            builder.add(++second, 5000, frame);
        }
        ScratchFile const file(builder.bytes());
        ReadCapture const read = readWhole(file.path());
        ASSERT_EQ(read.records.size(), frames.size());
        // A new object for each: nothing has been walked.
        for (std::size_t i = frames.size() / 2; i < frames.size(); i += frames.size() / 40 + 1) {
            CaptureRecord const& record = read.records[i].record;
            for (std::uint64_t const offset : {record.fileOffset, record.frameOffset - 1,
                                               record.frameOffset + record.capturedSize - 1}) {
                CaptureFile fresh(file.path());
                ASSERT_EQ(fresh.recordAt(offset), plainRecordAt(read, offset)) << offset;
            }
        }
        CaptureRecord const& last = read.records.back().record;
        CaptureFile fresh(file.path());
        ASSERT_EQ(fresh.recordAt(last.fileOffset), last);
    }
}

/// A capture of these frames, in sections of a known length or not.
Bytes nextGenerationOf(std::vector<Bytes> const& frames, bool isLittleEndian, bool hasLength,
                       std::size_t sections) {
    PcapngMaker maker;
    for (std::size_t section = 0; section < sections; ++section) {
        PcapngMaker blocks;
        blocks.section(isLittleEndian);
        std::uint64_t const start = blocks.position();
        std::uint64_t time = 1'700'000'000'000'000;
        blocks.interface(1, 0, blocks.timeOptions(section % 2 == 0 ? 6 : 9));
        for (Bytes const& frame : frames) {
            blocks.packet({.time = ++time, .frame = frame});
        }
        maker.section(isLittleEndian,
                      hasLength ? blocks.position() - start : PcapngMaker::kUnknownLength);
        maker.raw(
            {blocks.bytes().begin() + static_cast<std::ptrdiff_t>(start), blocks.bytes().end()});
    }
    return maker.bytes();
}

TEST(RecordAt, IsThatOfTheWalkFarIntoALargeNextGenerationCapture) {
    auto const frames = manyFrames(3'000'000);
    for (bool const isLittleEndian : {true, false}) {
        for (bool const hasLength : {true, false}) {
            for (std::size_t const sections : {std::size_t{1}, std::size_t{2}}) {
                ScratchFile const file(
                    nextGenerationOf(frames, isLittleEndian, hasLength, sections));
                ReadCapture const read = readWhole(file.path());
                ASSERT_EQ(read.records.size(), frames.size() * sections);
                ASSERT_TRUE(read.damages.empty());
                for (std::size_t i = read.records.size() / 2; i < read.records.size();
                     i += read.records.size() / 10 + 1) {
                    CaptureRecord const& record = read.records[i].record;
                    for (std::uint64_t const offset : {record.fileOffset, record.frameOffset,
                                                       record.frameOffset + record.capturedSize}) {
                        CaptureFile fresh(file.path());
                        ASSERT_EQ(fresh.recordAt(offset), plainRecordAt(read, offset)) << offset;
                    }
                }
            }
        }
    }
}

/// Octets that this process has read from files so far.
std::uint64_t octetsRead() {
    std::ifstream status("/proc/self/io");
    std::string name;
    std::uint64_t count = 0;
    while (status >> name >> count && name != "rchar:") {
    }
    return count;
}

TEST(RecordAt, IsFoundWithoutReadingTheCapture) {
    auto const frames = manyFrames(8'000'000);
    TalTest::CaptureBuilder classic;
    for (Bytes const& frame : frames) {
        classic.add(1'700'000'000, 5000, frame);
    }
    for (Bytes const& capture : {classic.bytes(), nextGenerationOf(frames, true, true, 1)}) {
        ScratchFile const file(capture);
        std::uint64_t const middle = capture.size() / 2;
        CaptureFile fresh(file.path());
        std::uint64_t const before = octetsRead();
        ASSERT_TRUE(fresh.recordAt(middle));
        EXPECT_LT(octetsRead() - before, capture.size() / 8);
    }
}

TEST(RecordAt, IsFoundWithoutReadingMuchAfterAWalk) {
    ScratchFile const file(nextGenerationOf(manyFrames(4'000'000), false, false, 2));
    CaptureFile capture(file.path());
    std::vector<std::uint64_t> offsets;
    while (auto const* const view = capture.next()) {
        offsets.push_back(view->record.fileOffset);
    }
    for (std::size_t i = 0; i < offsets.size(); i += offsets.size() / 10) {
        std::uint64_t const before = octetsRead();
        auto const record = capture.recordAt(offsets[i]);
        ASSERT_TRUE(record);
        EXPECT_EQ(record->fileOffset, offsets[i]);
        EXPECT_LT(octetsRead() - before, std::uint64_t{3} << 19U);
    }
    // What is read again is not counted again.
    std::uint64_t counted = 0;
    for (CaptureInterface const& interface : capture.interfaces()) {
        counted += interface.records;
    }
    EXPECT_EQ(counted, offsets.size());
}

TEST(RecordAt, IsNotThatOfACaptureInsideAFrame) {
    // A frame that carries a capture, as a file transfer does, and one of zeros.
    TalTest::CaptureBuilder inner;
    for (std::uint32_t i = 0; i < 400; ++i) {
        inner.add(i, 0, Bytes(100, 0x61));
    }
    TalTest::CaptureBuilder outer;
    while (outer.bytes().size() < 3'000'000) {
        outer.add(1, 0, inner.bytes()).add(2, 0, Bytes(5000));
    }
    ScratchFile const file(outer.bytes());
    ReadCapture const read = readWhole(file.path());
    for (std::size_t i = read.records.size() - 4; i < read.records.size(); ++i) {
        CaptureRecord const& record = read.records[i].record;
        CaptureFile fresh(file.path());
        EXPECT_EQ(fresh.recordAt(record.frameOffset + 3000), record);
    }
}

TEST(RecordAt, IsTheCutOne) {
    TalTest::CaptureBuilder builder;
    while (builder.bytes().size() < 3'000'000) {
        builder.add(1, 0, Bytes(1000, 7));
    }
    std::uint64_t const offset = builder.bytes().size();
    builder.addClaiming(2, 0, 5000, Bytes(1000, 8));
    ScratchFile const file(builder.bytes());
    for (std::uint64_t const at : {offset, offset + 16, offset + 1015}) {
        CaptureFile fresh(file.path());
        auto const record = fresh.recordAt(at);
        ASSERT_TRUE(record);
        EXPECT_EQ(record->fileOffset, offset);
        EXPECT_EQ(record->capturedSize, 1000U);
    }
    CaptureFile fresh(file.path());
    EXPECT_EQ(fresh.recordAt(offset - 1)->fileOffset, offset - 1016);
}

TEST(RecordAt, IsNoneOutsideOfTheRecords) {
    ScratchFile const file(TalTest::CaptureBuilder().add(1, 0, {1, 2}).bytes());
    CaptureFile capture(file.path());
    EXPECT_FALSE(capture.recordAt(0));
    EXPECT_FALSE(capture.recordAt(23));
    EXPECT_TRUE(capture.recordAt(24));
    EXPECT_TRUE(capture.recordAt(41));
    EXPECT_FALSE(capture.recordAt(42));
    EXPECT_FALSE(capture.recordAt(~std::uint64_t{0}));
    ScratchFile const other(TalTest::text("no capture, and no records"));
    EXPECT_FALSE(CaptureFile(other.path()).recordAt(24));
    ScratchFile const none(PcapngMaker().section().interface().bytes());
    EXPECT_FALSE(CaptureFile(none.path()).recordAt(30));
}

TEST(RecordAt, DoesNotDisturbTheSequence) {
    PcapngMaker maker;
    maker.section().interface();
    for (std::uint8_t i = 0; i < 200; ++i) {
        maker.packet({.time = i, .frame = Bytes(5000, i)});
    }
    maker.statistics(0, maker.numberOption(5, 3));
    ScratchFile const file(maker.bytes());
    ReadCapture const plain = readWhole(file.path());
    CaptureFile capture(file.path());
    for (std::size_t i = 0; auto const* const view = capture.next(); ++i) {
        ASSERT_EQ(view->record, plain.records[i].record);
        auto const& other = plain.records[(i * 37) % 200];
        ASSERT_EQ(capture.recordAt(other.record.frameOffset + 100), other.record);
        ASSERT_EQ(Bytes(view->frame.begin(), view->frame.end()), plain.records[i].frame);
        auto const frame = capture.frameOf(other.record);
        ASSERT_EQ(Bytes(frame.begin(), frame.end()), other.frame);
    }
    EXPECT_EQ(capture.interfaces()[0], plain.interfaces[0]);
    EXPECT_EQ(capture.interfaces()[0].records, 200U);
}

RC_GTEST_PROP(AnyRecordAt, IsThatOfTheWalk, ()) {
    Bytes const whole = captureOf(*TalTest::recordsOf(TalTest::anyFrame()), *TalTest::anyVariant());
    Bytes capture = TalTest::prefix(whole, 24 + below(static_cast<unsigned>(whole.size()) - 23));
    for (unsigned changes = below(3); changes > 0 && capture.size() > 24; --changes) {
        capture[24 + below(static_cast<unsigned>(capture.size()) - 24)] = TalTest::anyOctet();
    }
    ScratchFile const file(capture);
    ReadCapture const read = readWhole(file.path());
    CaptureFile asked(file.path());
    for (unsigned i = 0; i < 20; ++i) {
        std::uint64_t const offset = below(static_cast<unsigned>(capture.size()) + 10);
        RC_ASSERT(asked.recordAt(offset) == plainRecordAt(read, offset));
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::RecordAtTest
