#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <random>
#include <system_error>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/selection/FrameReader.hpp"

namespace TalIec61850Tools::FrameReaderTest {
namespace {

using TalIec61850Analysis::RecordView;
using TalTest::Bytes;
using TalTest::CaptureBuilder;
using TalTest::oneSv;
using TalTest::TempDir;
using TalTest::TempFile;

/// A frame by its place, and what it must be.
struct Frame {
    std::uint64_t offset = 0;
    Bytes octets;
};

/// Records with a large one now and then, so that places are far apart.
Bytes captureOfFrames(int count) {
    CaptureBuilder capture;
    for (int i = 0; i < count; ++i) {
        Bytes frame = oneSv("MU" + std::to_string(i));
        if (i % 40 == 39) {
            frame.resize(900'000);
        }
        capture.add(static_cast<std::uint32_t>(i), 0, frame);
    }
    return capture.bytes();
}

std::vector<Frame> framesIn(Bytes const& capture) {
    std::vector<Frame> frames;
    for (auto const& record : TalTest::readCapture(capture)) {
        frames.push_back({.offset = record.position + 16, .octets = record.frame});
    }
    return frames;
}

void expectRead(FrameReader& reader, std::vector<Frame> const& frames) {
    for (Frame const& frame : frames) {
        RecordView const& view = reader.read(0, frame.offset);
        EXPECT_EQ(view.record.frameOffset, frame.offset);
        EXPECT_TRUE(std::equal(view.frame.begin(), view.frame.end(), frame.octets.begin(),
                               frame.octets.end()));
    }
}

TEST(FrameReader, ReadsFramesInWhateverOrder) {
    Bytes const capture = captureOfFrames(200);
    TempFile const file(capture);
    auto frames = framesIn(capture);
    FrameReader reader({file.path()});
    expectRead(reader, frames);
    std::reverse(frames.begin(), frames.end());
    expectRead(reader, frames);
    std::mt19937 random(4711);
    std::shuffle(frames.begin(), frames.end(), random);
    expectRead(reader, frames);
    FrameReader another({file.path()});
    expectRead(another, {frames.front(), frames.front(), frames.back()});
}

TEST(FrameReader, ReadsMoreCapturesThanItKeepsOpen) {
    TempDir const folder;
    std::vector<std::string> paths;
    for (int i = 0; i < 40; ++i) {
        paths.push_back(
            folder.write(std::to_string(i),
                         CaptureBuilder().add(1, 0, oneSv("MU" + std::to_string(i))).bytes()));
    }
    FrameReader reader(paths);
    for (int round = 0; round < 2; ++round) {
        for (std::uint32_t i = 0; i < 40; ++i) {
            RecordView const& view = reader.read(i, 40);
            Bytes const expected = oneSv("MU" + std::to_string(i));
            EXPECT_TRUE(
                std::equal(view.frame.begin(), view.frame.end(), expected.begin(), expected.end()));
        }
    }
}

/// What reading the frame at an offset throws.
std::error_code errorOf(FrameReader& reader, std::uint64_t offset) {
    try {
        static_cast<void>(reader.read(0, offset));
    } catch (std::system_error const& error) {
        return error.code();
    }
    return {};
}

TEST(FrameReader, SaysThatAFileHasChanged) {
    Bytes const capture = captureOfFrames(100);
    TempFile const file(capture);
    auto const frames = framesIn(capture);
    FrameReader reader({file.path()});
    expectRead(reader, {frames.front()});
    std::filesystem::resize_file(file.path(), 1000);
    EXPECT_EQ(errorOf(reader, frames.back().offset),
              std::error_code(ESTALE, std::generic_category()));
    EXPECT_EQ(errorOf(reader, frames.front().offset + 1),
              std::error_code(ESTALE, std::generic_category()));
    EXPECT_EQ(faultText(std::error_code(ESTALE, std::generic_category())),
              "the file was changed while it was read");
    EXPECT_EQ(faultText(std::error_code(ENOENT, std::generic_category())),
              "No such file or directory");
}

TEST(FrameReader, SaysThatAFileEndsInsideAFrameThatItHeld) {
    Bytes const capture = captureOfFrames(100);
    TempFile const file(capture);
    auto const frames = framesIn(capture);
    FrameReader reader({file.path()});
    // Where each record is, is known from here on.
    expectRead(reader, frames);
    Frame const& middle = frames[50];
    std::filesystem::resize_file(file.path(), middle.offset + 10);
    EXPECT_EQ(errorOf(reader, middle.offset), std::error_code(ESTALE, std::generic_category()));
    expectRead(reader, {frames[49]});
}

TEST(FrameReader, SaysThatAFileIsGone) {
    FrameReader reader({"/nonexistent"});
    EXPECT_EQ(errorOf(reader, 40), std::error_code(ENOENT, std::generic_category()));
}

}  // namespace
}  // namespace TalIec61850Tools::FrameReaderTest
