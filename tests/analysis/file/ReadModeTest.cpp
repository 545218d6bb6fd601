// Captures that are read ahead by a second thread, against plain reading.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "analysis/file/ReadFile.hpp"
#include "index/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/OctetsRead.hpp"
#include "support/OwnCaptures.hpp"
#include "support/PcapngMaker.hpp"

namespace TalIec61850Analysis::ReadModeTest {
namespace {

using TalTest::Bytes;
using TalTest::PcapngMaker;
using TalTest::ScratchFile;

/// Frames of any size up to a little more than a block that is read at once: some megabytes.
std::vector<Bytes> framesOfAnySize(unsigned seed) {
    std::mt19937 random(seed);
    std::vector<Bytes> frames;
    for (std::uint8_t i = 0; i < 60; ++i) {
        std::size_t const most = i % 3 == 0 ? 270'000 : 2000;
        frames.emplace_back(random() % most, i);
    }
    return frames;
}

Bytes classicOf(std::vector<Bytes> const& frames) {
    TalTest::CaptureBuilder builder;
    for (Bytes const& frame : frames) {
        builder.add(1'700'000'000, 5000, frame);
    }
    return builder.bytes();
}

Bytes nextGenerationOf(std::vector<Bytes> const& frames) {
    PcapngMaker maker;
    maker.section().interface();
    for (Bytes const& frame : frames) {
        maker.packet({.time = 7, .frame = frame});
    }
    return maker.bytes();
}

TEST(ReadMode, DoesNotChangeWhatIsReadOfAnyCapture) {
    auto paths = TalTest::ownCapturePaths();
    auto const recorded = TalTest::recordedCapturePaths();
    paths.insert(paths.end(), recorded.begin(), recorded.end());
    for (std::string const& path : paths) {
        EXPECT_TRUE(readWhole(path, ReadMode::ahead) == readWhole(path)) << path;
    }
}

TEST(ReadMode, DoesNotChangeWhatIsReadOfALargeCapture) {
    for (unsigned seed = 1; seed <= 4; ++seed) {
        auto const frames = framesOfAnySize(seed);
        for (Bytes const& capture : {classicOf(frames), nextGenerationOf(frames)}) {
            // Whole, and cut inside a header or a frame.
            for (std::size_t const missing :
                 {std::size_t{0}, std::size_t{1}, std::size_t{300'000}}) {
                ScratchFile const file(TalTest::prefix(capture, capture.size() - missing));
                ReadCapture const plain = readWhole(file.path());
                EXPECT_GT(plain.records.size(), frames.size() / 2) << "seed " << seed;
                EXPECT_EQ(plain.damage.has_value(), missing != 0) << "seed " << seed;
                EXPECT_TRUE(readWhole(file.path(), ReadMode::ahead) == plain)
                    << "seed " << seed << ", without the last " << missing;
            }
        }
    }
}

TEST(ReadMode, SaysWhichThreadReads) {
    ScratchFile const file(classicOf(framesOfAnySize(1)));
    auto const readHere = [&](ReadMode mode) {
        std::uint64_t const before = TalTest::octetsReadHere();
        static_cast<void>(readWhole(file.path(), mode));
        return TalTest::octetsReadHere() - before;
    };
    std::uint64_t const size = CaptureFile(file.path()).size();
    EXPECT_GE(readHere(ReadMode::plain), size);
    EXPECT_LT(readHere(ReadMode::ahead), std::uint64_t{100'000});
}

TEST(ReadMode, AheadAllowsToMoveSeekAndStopAnywhere) {
    ScratchFile const file(nextGenerationOf(framesOfAnySize(2)));
    ReadCapture const plain = readWhole(file.path());
    for (std::size_t count = 0; count < plain.records.size(); count += 7) {
        CaptureFile from(file.path(), ReadMode::ahead);
        for (std::size_t i = 0; i < count; ++i) {
            RecordView const* const view = from.next();
            ASSERT_TRUE(view);
            auto const& other = plain.records[(i * 37) % plain.records.size()];
            ASSERT_EQ(from.recordAt(other.record.fileOffset), other.record);
            ASSERT_EQ(Bytes(view->frame.begin(), view->frame.end()), plain.records[i].frame);
        }
        CaptureFile to = std::move(from);
        RecordView const* const view = to.next();
        ASSERT_TRUE(view);
        EXPECT_EQ(view->record, plain.records[count].record);
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::ReadModeTest
