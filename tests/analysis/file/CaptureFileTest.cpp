// Walks over the records of captures, against the plainest reading of them.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <sys/stat.h>

#include <TalIec61850Analysis/file/CaptureRecords.hpp>
#include <TalIec61850Analysis/file/CaptureSurvey.hpp>
#include <algorithm>
#include <filesystem>

#include "index/Indexing.hpp"
#include "index/RandomPicks.hpp"
#include "index/TrafficGenerators.hpp"
#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"

namespace TalIec61850Analysis {
namespace {

using TalTest::below;
using TalTest::Bytes;
using TalTest::prefix;
using TalTest::ScratchFile;

std::int64_t timeOf(TalTest::CaptureRecord const& record) {
    return std::int64_t{record.seconds} * 1'000'000'000 + record.nanoseconds;
}

/// @param end  where the last whole record ends
void requireDamage(Bytes const& capture, std::uint64_t end,
                   std::optional<CaptureDamage> const& damage) {
    std::uint64_t const rest = capture.size() < end ? 0 : capture.size() - end;
    RC_ASSERT(damage.has_value() == (end != capture.size()));
    if (capture.size() < 24) {
        RC_ASSERT(damage->kind == CaptureDamageKind::fileHeaderCut);
        RC_ASSERT(damage->fileOffset == 0U);
    } else if (damage) {
        bool const isInHeader = rest < 16;
        RC_ASSERT(damage->kind ==
                  (isInHeader ? CaptureDamageKind::recordHeaderCut : CaptureDamageKind::recordCut));
        RC_ASSERT(damage->fileOffset == end);
        RC_ASSERT(damage->claimedSize - damage->missingSize == (isInHeader ? 0 : rest - 16));
    }
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
        RC_ASSERT(record->fileOffset == plain.position);
        RC_ASSERT(record->frameOffset == plain.position + 16);
        RC_ASSERT(record->time.time_since_epoch().count() == timeOf(plain));
        RC_ASSERT(record->capturedSize == plain.inclLen);
        RC_ASSERT(record->originalSize == plain.origLen);
        auto const frame = records.frameOf(*record);
        RC_ASSERT(std::equal(frame.begin(), frame.end(), plain.frame.begin(), plain.frame.end()));
    }
    RC_ASSERT(count == expected.size());
    auto const end = expected.empty() ? std::uint64_t{24}
                                      : expected.back().position + 16 + expected.back().inclLen;
    requireDamage(capture, end, records.damage());
    RC_ASSERT(records.cutRecord().has_value() == (capture.size() >= end + 16));
    RC_ASSERT(!records.next());
    CaptureSurvey const survey = surveyCapture(file.path());
    RC_ASSERT(survey.damage == records.damage());
    if (!expected.empty()) {
        RC_ASSERT(survey.start.value().time_since_epoch().count() == timeOf(expected[0]));
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

TEST(CaptureRecords, TellWhatARecordClaimsAndWhatOfItIsMissing) {
    ScratchFile const file(
        TalTest::CaptureBuilder().add(1, 0, {1, 2}).addClaiming(1, 0, 1000, Bytes(10)).bytes());
    CaptureRecords records(file.path());
    EXPECT_TRUE(records.next());
    EXPECT_FALSE(records.damage());
    EXPECT_FALSE(records.next());
    EXPECT_EQ(records.damage(), (CaptureDamage{.kind = CaptureDamageKind::recordCut,
                                               .fileOffset = 24 + 18,
                                               .claimedSize = 1000,
                                               .missingSize = 990}));
}

TEST(CaptureRecords, OfAFileThatIsNoCaptureAreNone) {
    for (Bytes const& content : {Bytes(), TalTest::text("a text, longer than any header is")}) {
        ScratchFile const file(content);
        CaptureRecords records(file.path());
        EXPECT_FALSE(records.next());
        EXPECT_EQ(records.damage(), CaptureDamage{});
        EXPECT_EQ(records.damage()->kind, CaptureDamageKind::notCapture);
    }
}

TEST(CaptureRecords, OfAFileThatIsGoneCannotBeRead) {
    EXPECT_THROW(CaptureRecords("/nonexistent/a.pcap"), std::system_error);
}

TEST(CaptureRecords, OfAPipeAreRefusedWithoutWaitingForAWriter) {
    TalTest::TempDir const folder;
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    EXPECT_THROW(CaptureRecords(folder.file("pipe")), std::system_error);
}

TEST(CaptureSurvey, TellsWhyAFileCannotBeRead) {
    CaptureSurvey const survey = surveyCapture("/nonexistent/a.pcap");
    EXPECT_EQ(survey.error, std::errc::no_such_file_or_directory);
    EXPECT_FALSE(survey.damage);
    EXPECT_FALSE(survey.start);
}

TEST(CaptureSurvey, OfACaptureWithoutRecordsHasNoStart) {
    ScratchFile const file(TalTest::CaptureBuilder().bytes());
    CaptureSurvey const survey = surveyCapture(file.path());
    EXPECT_FALSE(survey.start);
    EXPECT_FALSE(survey.damage);
    EXPECT_FALSE(survey.error);
}

TEST(CaptureSurvey, StartsWithARecordThatIsCutWhereThereIsNoOther) {
    ScratchFile const file(TalTest::CaptureBuilder().addClaiming(7, 0, 1000, {}).bytes());
    CaptureSurvey const survey = surveyCapture(file.path());
    EXPECT_EQ(survey.start, makeCaptureTime(7, 0));
    ASSERT_TRUE(survey.damage);
    EXPECT_EQ(survey.damage->missingSize, 1000U);
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

}  // namespace
}  // namespace TalIec61850Analysis
