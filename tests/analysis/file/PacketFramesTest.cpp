// The frames of a capture that hold given offsets, against the plainest search.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/file/PacketFrames.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <algorithm>
#include <filesystem>

#include "index/Indexing.hpp"
#include "index/RandomPicks.hpp"
#include "index/TrafficGenerators.hpp"
#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"

namespace TalIec61850Analysis::PacketFramesTest {
namespace {

using TalTest::below;
using TalTest::Bytes;
using TalTest::oneIn;
using TalTest::prefix;
using TalTest::ScratchFile;

/// Nanoseconds after the second that the store has, in 32 bits as there.
std::uint32_t fractionOf(CaptureRecord const& record, TalIec61850Parser::Package const& package) {
    auto const second = makeCaptureTime(package.time.seconds, 0);
    return static_cast<std::uint32_t>((record.time.value() - second).count());
}

RC_GTEST_PROP(AnyPositions, AreFoundInTheRecordsThatHoldThem, ()) {
    Bytes const whole = captureOf(*TalTest::recordsOf(TalTest::anyFrame()), *TalTest::anyVariant());
    Bytes const capture =
        oneIn(3) ? prefix(whole, 24 + below(static_cast<unsigned>(whole.size()) - 23)) : whole;
    std::vector<std::uint64_t> positions(below(20));
    std::generate(positions.begin(), positions.end(),
                  [&] { return below(static_cast<unsigned>(capture.size()) + 20); });
    ScratchFile const file(capture);
    PacketFrames frames(file.path(), positions);
    auto records = TalTest::readCapture(capture);
    CaptureFile walk(file.path());
    while (walk.next() != nullptr) {
    }
    for (std::uint64_t const position : positions) {
        auto const holder = std::find_if(records.begin(), records.end(), [&](auto const& record) {
            return record.position + 16 <= position &&
                   position < record.position + 16 + record.inclLen;
        });
        auto const found = frames.recordAt(position);
        bool const isInCut = walk.cutRecord() != nullptr &&
                             walk.cutRecord()->record.frameOffset <= position &&
                             position < capture.size();
        RC_ASSERT(found.has_value() == (holder != records.end() || isInCut));
        if (holder != records.end()) {
            RC_ASSERT(found->fileOffset == holder->position);
            auto const frame = frames.frameOf(*found);
            RC_ASSERT(
                std::equal(frame.begin(), frame.end(), holder->frame.begin(), holder->frame.end()));
        } else if (isInCut) {
            RC_ASSERT(frames.frameOf(*found).size() ==
                      capture.size() - walk.cutRecord()->record.frameOffset);
        }
    }
}

RC_GTEST_PROP(AnyPositions, OfIndexedPacketsAreFound, ()) {
    Bytes whole = captureOf(*TalTest::recordsOf(TalTest::validFrame()), *TalTest::anyVariant());
    Bytes const capture =
        oneIn(3) ? prefix(whole, 24 + below(static_cast<unsigned>(whole.size()) - 23)) : whole;
    ScratchFile const file(capture);
    TalIec61850Parser::Db db;
    TalTest::indexInto(db, file.path());
    auto const packets = TalTest::packetsByPosition(db);
    std::vector<std::uint64_t> positions;
    for (auto const& [position, packet] : packets) {
        positions.push_back(position);
    }
    std::reverse(positions.begin(), positions.end());
    PacketFrames const frames(file.path(), positions);
    for (auto const& [position, packet] : packets) {
        auto const record = frames.recordAt(position);
        RC_ASSERT(record.has_value());
        RC_ASSERT(fractionOf(*record, packet.package) == packet.package.time.nanoseconds);
    }
}

TEST(PacketFrames, AreReadAgainAfterTheFileWasClosed) {
    TalTest::TempFile const file(
        TalTest::CaptureBuilder().add(1, 0, {1, 2}).add(2, 0, {3}).bytes());
    PacketFrames frames(file.path(), {40, 58});
    CaptureRecord const first = frames.recordAt(40).value();
    CaptureRecord const second = frames.recordAt(58).value();
    EXPECT_EQ(frames.frameOf(first), (Bytes{1, 2}));
    frames.close();
    EXPECT_EQ(frames.frameOf(second), Bytes{3});
    frames.close();
    std::filesystem::remove(file.path());
    EXPECT_THROW(static_cast<void>(frames.frameOf(first)), std::system_error);
}

TEST(PacketFrames, KeepTheFileOpenWhileItIsNotClosed) {
    TalTest::TempFile const file(TalTest::CaptureBuilder().add(1, 0, {1, 2}).bytes());
    PacketFrames frames(file.path(), {40});
    CaptureRecord const record = frames.recordAt(40).value();
    EXPECT_EQ(frames.frameOf(record), (Bytes{1, 2}));
    std::filesystem::remove(file.path());
    EXPECT_EQ(frames.frameOf(record), (Bytes{1, 2}));
}

}  // namespace
}  // namespace TalIec61850Analysis::PacketFramesTest
