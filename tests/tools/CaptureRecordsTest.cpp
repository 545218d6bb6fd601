// Walks over the records of captures, against the plainest reading of them.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/store/Db.hpp>
#include <algorithm>
#include <filesystem>

#include "index/Indexing.hpp"
#include "index/RandomPicks.hpp"
#include "index/TrafficGenerators.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "tools/input/CaptureRecords.hpp"
#include "tools/input/CaptureSurvey.hpp"
#include "tools/input/PacketFrames.hpp"

namespace TalIec61850Tools {
namespace {

using TalTest::below;
using TalTest::Bytes;
using TalTest::oneIn;
using TalTest::prefix;
using TalTest::ScratchFile;

std::int64_t timeOf(TalTest::CaptureRecord const& record) {
    return std::int64_t{record.seconds} * 1'000'000'000 + record.nanoseconds;
}

/// Walks a file, and expects the records that a plain reading finds.
void requireRecordsOf(Bytes const& capture) {
    ScratchFile const file(capture);
    CaptureRecords records(file.path());
    auto const expected = TalTest::readCapture(capture);
    std::size_t count = 0;
    while (auto const record = records.next()) {
        RC_ASSERT(count < expected.size());
        TalTest::CaptureRecord const& plain = expected[count++];
        RC_ASSERT(record->position == plain.position);
        RC_ASSERT(record->framePosition() == plain.position + 16);
        RC_ASSERT(record->time.time_since_epoch().count() == timeOf(plain));
        RC_ASSERT(record->capturedSize == plain.inclLen);
        RC_ASSERT(record->originalSize == plain.origLen);
        auto const frame = records.frameOf(*record);
        RC_ASSERT(std::equal(frame.begin(), frame.end(), plain.frame.begin(), plain.frame.end()));
    }
    RC_ASSERT(count == expected.size());
    auto const end = expected.empty() ? std::uint64_t{24}
                                      : expected.back().position + 16 + expected.back().inclLen;
    RC_ASSERT(records.damage().has_value() == (end != capture.size()));
    RC_ASSERT(records.cutRecord().has_value() == (capture.size() >= end + 16));
    RC_ASSERT(!records.next());
    CaptureSurvey const survey = surveyCapture(file.path());
    RC_ASSERT(survey.damage == records.damage());
    if (!expected.empty()) {
        RC_ASSERT(survey.begin.value().time_since_epoch().count() == timeOf(expected[0]));
    }
}

Bytes anyCapture() {
    return captureOf(*TalTest::recordsOf(TalTest::anyFrame()), *TalTest::anyVariant());
}

RC_GTEST_PROP(AnyCapture, IsWalkedRecordByRecord, ()) { requireRecordsOf(anyCapture()); }

RC_GTEST_PROP(AnyCapture, IsWalkedUpToWhereverItIsCut, ()) {
    Bytes const whole = anyCapture();
    requireRecordsOf(prefix(whole, 4 + below(static_cast<unsigned>(whole.size()) - 3)));
}

RC_GTEST_PROP(AnyCapture, WithOctetsChangedIsWalkedAsItStands, ()) {
    Bytes capture = anyCapture();
    for (unsigned changes = below(4); changes > 0 && capture.size() > 24; --changes) {
        capture[24 + below(static_cast<unsigned>(capture.size()) - 24)] = TalTest::anyOctet();
    }
    requireRecordsOf(capture);
}

TEST(CaptureRecords, AreFoundAcrossBlocksOfTheFile) {
    // Frames of about a third of a block, so that they lie across the ends of blocks.
    TalTest::CaptureBuilder builder(TalTest::CaptureVariant::nanoBig);
    for (std::uint32_t i = 0; i < 12; ++i) {
        builder.add(i, i, Bytes(350'001, static_cast<std::uint8_t>(i)));
    }
    ScratchFile const file(builder.bytes());
    CaptureRecords records(file.path());
    std::vector<CaptureRecord> found;
    while (auto const record = records.next()) {
        auto const frame = records.frameOf(*record);
        EXPECT_EQ(frame.size(), 350'001U);
        EXPECT_EQ(frame.front(), found.size());
        EXPECT_EQ(frame.back(), found.size());
        found.push_back(*record);
    }
    ASSERT_EQ(found.size(), 12U);
    EXPECT_EQ(records.frameOf(found[0]).front(), 0U);  // and back again
    EXPECT_EQ(records.frameOf(found[11]).back(), 11U);
    EXPECT_FALSE(records.damage());
}

TEST(CaptureRecords, TakeNoMemoryThatAHeaderMerelyClaims) {
    ScratchFile const file(
        TalTest::CaptureBuilder().addClaiming(1, 0, 0xFFFF'FFFF, Bytes(10)).bytes());
    CaptureRecords records(file.path());
    EXPECT_FALSE(records.next());
    ASSERT_TRUE(records.cutRecord());
    EXPECT_EQ(records.cutRecord()->capturedSize, 10U);
    EXPECT_EQ(records.frameOf(*records.cutRecord()).size(), 10U);
}

TEST(CaptureRecords, OfAFileThatIsGoneCannotBeRead) {
    EXPECT_THROW(CaptureRecords("/nonexistent/a.pcap"), std::system_error);
    EXPECT_TRUE(surveyCapture("/nonexistent/a.pcap").damage);
}

TEST(CaptureRecords, OfAFileThatBecomesShorterEndThere) {
    auto const capture =
        TalTest::CaptureBuilder().add(1, 0, Bytes(2'000'000)).add(2, 0, Bytes(10)).bytes();
    ScratchFile const file(capture);
    CaptureRecords records(file.path());
    auto const first = records.next();
    ASSERT_TRUE(first);
    std::filesystem::resize_file(file.path(), 1000);
    EXPECT_LT(records.frameOf(*first).size(), 2'000'000U);
    EXPECT_FALSE(records.next());
    EXPECT_TRUE(records.damage());
}

// --- The frames of packets -----------------------------------------------------------------------

RC_GTEST_PROP(AnyPositions, AreFoundInTheRecordsThatHoldThem, ()) {
    Bytes const whole = anyCapture();
    Bytes const capture =
        oneIn(3) ? prefix(whole, 24 + below(static_cast<unsigned>(whole.size()) - 23)) : whole;
    std::vector<std::uint64_t> positions(below(20));
    std::generate(positions.begin(), positions.end(),
                  [&] { return below(static_cast<unsigned>(capture.size()) + 20); });
    ScratchFile const file(capture);
    PacketFrames frames(file.path(), positions);
    auto records = TalTest::readCapture(capture);
    CaptureRecords walk(file.path());
    while (walk.next()) {
    }
    for (std::uint64_t const position : positions) {
        auto const holder = std::find_if(records.begin(), records.end(), [&](auto const& record) {
            return record.position + 16 <= position &&
                   position < record.position + 16 + record.inclLen;
        });
        auto const found = frames.recordAt(position);
        bool const isInCut = walk.cutRecord() && walk.cutRecord()->framePosition() <= position &&
                             position < capture.size();
        RC_ASSERT(found.has_value() == (holder != records.end() || isInCut));
        if (holder != records.end()) {
            RC_ASSERT(found->position == holder->position);
            auto const frame = frames.frameOf(*found);
            RC_ASSERT(
                std::equal(frame.begin(), frame.end(), holder->frame.begin(), holder->frame.end()));
        } else if (isInCut) {
            RC_ASSERT(frames.frameOf(*found).size() ==
                      capture.size() - walk.cutRecord()->framePosition());
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
        RC_ASSERT(record->time == toCaptureTime(packet.package.time));
    }
}

TEST(PacketFrames, AreFoundBehindAClassicMagicInANextGenerationOne) {
    // The library indexes such a file.
    Bytes capture = TalTest::CaptureBuilder().bytes();
    Bytes const magic = prefix(capture, 4);
    capture = TalTest::concat({{0x0A, 0x0D, 0x0D, 0x0A, 0x1C, 0, 0, 0}, magic, Bytes(12)});
    TalTest::CaptureBuilder records;
    records.add(7, 0, gooseFrame(TalTest::Ethernet(), TalTest::GooseMessage()));
    Bytes const behind(records.bytes().begin() + 24, records.bytes().end());
    TalTest::append(capture, behind);
    ScratchFile const file(capture);
    TalIec61850Parser::Db db;
    TalTest::indexInto(db, file.path());
    auto const packets = TalTest::packetsByPosition(db);
    ASSERT_EQ(packets.size(), 1U);
    PacketFrames const frames(file.path(), {packets.begin()->first});
    ASSERT_TRUE(frames.recordAt(packets.begin()->first));
    EXPECT_EQ(frames.recordAt(packets.begin()->first)->time,
              toCaptureTime(packets.begin()->second.package.time));
}

}  // namespace
}  // namespace TalIec61850Tools
