// More than can be remembered: more streams, more layouts, more that tells them apart.

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "lanes/BothLanes.hpp"
#include "lanes/LaneFrames.hpp"
#include "support/Ber.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/Sanitized.hpp"

namespace TalTest::FullMemoryTest {
namespace {

using namespace TalIec61850Parser;

Bytes streamFrame(std::size_t number) {
    std::string const digits = std::to_string(number);
    Asdu asdu;
    asdu.svID = "MU" + std::string(6 - digits.size(), '0') + digits;
    asdu.smpCnt = number % 100;
    asdu.seqData = Bytes(4);
    SvMessage message;
    message.asdus = {asdu};
    return svFrame(svEthernet(), message);
}

TEST(FullMemory, OfAHundredThousandStreamsStartsAfresh) {
    constexpr std::uint32_t streams = 100'000;
    constexpr std::uint32_t regular = 100'000;
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < streams; ++i) capture.add(i, 0, streamFrame(i));
    for (std::uint32_t i = 0; i < regular; ++i)
        capture.add(i, 0, streamFrame(streams - 1 - i % 10));
    LaneOutcome const outcome = indexByBothLanes(capture.bytes());
    EXPECT_EQ(outcome.difference, "");
    EXPECT_GT(outcome.remembered, regular / 4) << outcome;
}

TEST(FullMemory, RemembersWhatItHolds) {
    // Those that filled it stay known among others that do not come back.
    constexpr std::uint32_t known = 1000;
    constexpr std::uint32_t others = isSanitized ? 40'000 : 60'000;
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < known; ++i) capture.add(i, 0, streamFrame(i));
    for (std::uint32_t i = 0; i < others; ++i)
        capture.add(i, 0, streamFrame(known + i)).add(i, 1, streamFrame(i % known));
    LaneOutcome const outcome = indexByBothLanes(capture.bytes());
    EXPECT_EQ(outcome.difference, "");
    EXPECT_GT(outcome.remembered, others - 1000) << outcome;
}

TEST(FullMemory, OfShapesThatCycle) {
    // As many shapes as their length octets make, each with nothing in common but the size.
    constexpr std::size_t room = 220;
    std::vector<Bytes> shapes;
    for (std::size_t a = 0; a < 200; ++a)
        for (std::size_t b = 0; b < 200 - a; ++b) {
            GooseMessage message;
            message.gocbRef = std::string(a, 'a');
            message.datSet = std::string(b, 'b');
            message.goID = std::string(room - a - b, 'c');
            message.pduLengthForm = LengthForm::twoOctets;
            shapes.push_back(gooseFrame({}, message));
        }
    ASSERT_GT(shapes.size(), 20'000U);
    CaptureBuilder capture;
    for (std::uint32_t round = 0; round < 2; ++round)
        for (Bytes const& shape : shapes) capture.add(round, 0, shape);
    for (std::uint32_t i = 0; i < 160'000; ++i) capture.add(i, 0, shapes[i % 4]);
    Filter none;
    none.gooseFilters.emplace_back().srcMac = "none";
    LaneOutcome const rejected =
        indexByBothLanes(capture.bytes(), {.filter = none, .progress = {}});
    EXPECT_EQ(rejected.difference, "");
    EXPECT_GT(rejected.share(), 0.99) << rejected;
    LaneOutcome const outcome = indexByBothLanes(capture.bytes());
    EXPECT_EQ(outcome.difference, "");
    EXPECT_GT(outcome.remembered, 10'000U) << outcome;
}

/// GOOSE frames of one size whose names have other lengths: as many layouts.
std::vector<Bytes> layoutsOfOneSize(std::size_t count) {
    std::vector<Bytes> frames;
    for (std::size_t i = 0; i < count; ++i) {
        GooseMessage message;
        message.gocbRef = std::string(i, 'a');
        message.goID = std::string(count - i, 'b');
        frames.push_back(gooseFrame({}, message));
    }
    return frames;
}

TEST(FullMemory, OfLayoutsOfOneSize) {
    for (std::size_t const count : {7U, 8U, 9U, 16U, 30U}) {
        auto const frames = layoutsOfOneSize(count);
        std::minstd_rand random(1);
        CaptureBuilder inTurn;
        CaptureBuilder atRandom;
        for (std::uint32_t i = 0; i < 4000; ++i) {
            inTurn.add(i, 0, frames[i % count]);
            atRandom.add(i, 0, frames[random() % count]);
        }
        for (CaptureBuilder const& capture : {inTurn, atRandom}) {
            LaneOutcome const outcome = indexByBothLanes(capture.bytes());
            EXPECT_EQ(outcome.difference, "") << count;
            if (count <= 8) {
                EXPECT_GT(outcome.share(), 0.9) << count << ": " << outcome;
            }
        }
    }
}

TEST(FullMemory, OfStreamsThatDifferInMoreWordsThanAreKeys) {
    GooseMessage message;
    message.gocbRef = std::string(200, 'a');
    message.goID = std::string(200, 'b');
    Bytes const frame = gooseFrame({}, message);
    std::size_t const begin = find(frame, text("aaaa")).value();
    std::vector<Bytes> frames = {frame};
    for (std::size_t at = begin; at < begin + 200; at += 5) {
        frames.push_back(frame);
        frames.back()[at] = 'x';
        frames.push_back(frame);
        frames.back()[at] = 'y';
    }
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 4000; ++i) capture.add(i, 0, frames[i % frames.size()]);
    LaneOutcome const outcome = indexByBothLanes(capture.bytes());
    EXPECT_EQ(outcome.difference, "");
    EXPECT_GT(outcome.remembered, 200U) << outcome;
}

TEST(FullMemory, OfStreamsThatDifferInOneOctetAnywhere) {
    for (NamedFrame const& base : {deviceFrames()[1], deviceFrames()[6]}) {
        std::vector<Bytes> frames;
        for (std::size_t at = 0; at < base.octets.size(); ++at)
            for (unsigned value = 0; value < 256; value += 5) {
                frames.push_back(base.octets);
                frames.back()[at] = static_cast<std::uint8_t>(value);
            }
        std::minstd_rand random(1);
        CaptureBuilder capture;
        for (std::uint32_t i = 0; i < 40'000; ++i)
            capture.add(i, 0, frames[random() % frames.size()]);
        LaneOutcome const outcome = indexByBothLanes(capture.bytes());
        EXPECT_EQ(outcome.difference, "") << base.name;
        EXPECT_GT(outcome.share(), 0.04) << base.name << ": " << outcome;
    }
}

TEST(FullMemory, OfLargeFrames) {
    // A thousand of 16 KiB each hold more octets than are remembered.
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 1200; ++i) {
        GooseMessage message;
        message.gocbRef = std::string(16'000, 'a');
        message.goID = std::to_string(10'000 + i % 300);
        capture.add(i, 0, gooseFrame({}, message));
    }
    LaneOutcome const outcome = indexByBothLanes(capture.bytes());
    EXPECT_EQ(outcome.difference, "");
    EXPECT_GT(outcome.remembered, 300U) << outcome;
}

/// Octets that the program has on its heap.
std::size_t heapInUse() {
    auto const heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

/// By how much more the heap grows in the fast lane than in the plain one, in octets.
std::ptrdiff_t extraHeap(Bytes const& capture) {
    // The growth of each lane, the fast one's first.
    std::vector<std::ptrdiff_t> growths;
    std::size_t before = 0;
    auto const look = [&](WatchedStore&, int call) {
        std::size_t const now = heapInUse();
        if (call == 0) {
            before = now;
            growths.push_back(0);
        }
        growths.back() = std::max(growths.back(), static_cast<std::ptrdiff_t>(now - before));
    };
    EXPECT_EQ(indexByBothLanes(capture, {.filter = {}, .progress = look}).difference, "");
    return growths.at(0) - growths.at(1);
}

constexpr std::ptrdiff_t kMiB = std::ptrdiff_t{1} << 20U;

TEST(FullMemory, TakesFewMiBForLargeFramesThatAreNotRecognised) {
    if (isSanitized) GTEST_SKIP() << "the heap is the sanitizer's own";
    // So few streams, so large and so much alike that most of them are never recognised.
    GooseMessage message;
    message.gocbRef = std::string(15'000, 1);
    Bytes const frame = gooseFrame({}, message);
    std::size_t const name = find(frame, repeat(1, 100)).value();
    std::vector<Bytes> frames(20, frame);
    for (std::size_t i = 0; i < frames.size(); ++i) frames[i][name + 100 * i + 50] = 2;
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 2001; ++i) capture.add(i, 0, frames[i % frames.size()]);
    EXPECT_LT(extraHeap(capture.bytes()), 10 * kMiB);
}

TEST(FullMemory, TakesFewMiBForManyStreams) {
    if (isSanitized) GTEST_SKIP() << "the heap is the sanitizer's own";
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 35'000; ++i) capture.add(i, 0, streamFrame(i));
    EXPECT_LT(extraHeap(capture.bytes()), 10 * kMiB);
}

}  // namespace
}  // namespace TalTest::FullMemoryTest
