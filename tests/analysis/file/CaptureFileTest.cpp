// Walks over the records of captures, against the plainest reading of them.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/file/CaptureSurvey.hpp>
#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "index/Indexing.hpp"
#include "index/RandomPicks.hpp"
#include "index/TrafficGenerators.hpp"
#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"

namespace TalIec61850Analysis::CaptureFileTest {
namespace {

using TalTest::below;
using TalTest::Bytes;
using TalTest::prefix;
using TalTest::ScratchFile;

/// Nanoseconds since 1970, from the octets of the file.
std::int64_t timeOf(Bytes const& capture, TalTest::CaptureRecord const& record) {
    bool const isLittle = capture[0] == 0xD4 || capture[0] == 0x4D;
    bool const isNanosecond = capture[0] == 0x4D || capture[2] == 0x3C;
    std::int64_t fraction = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        fraction = fraction << 8 | capture[record.position + 4 + (isLittle ? 3 - i : i)];
    }
    return std::int64_t{record.seconds} * 1'000'000'000 + fraction * (isNanosecond ? 1 : 1000);
}

std::int64_t timeOf(CaptureRecord const& record) {
    return record.time.value().time_since_epoch().count();
}

/// The number that the next file to be opened will have.
int nextNumber() { return Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC)).number(); }

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
    CaptureFile records(file.path());
    auto const expected = TalTest::readCapture(capture);
    std::size_t count = 0;
    while (auto const* const view = records.next()) {
        RC_ASSERT(count < expected.size());
        TalTest::CaptureRecord const& plain = expected[count++];
        CaptureRecord const* const record = &view->record;
        RC_ASSERT(record->fileOffset == plain.position);
        RC_ASSERT(record->frameOffset == plain.position + 16);
        RC_ASSERT(timeOf(*record) == timeOf(capture, plain));
        RC_ASSERT(record->capturedSize == plain.inclLen);
        RC_ASSERT(record->originalSize == plain.origLen);
        auto const again = records.frameOf(*record);
        for (auto const& frame : {view->frame, again}) {
            RC_ASSERT(
                std::equal(frame.begin(), frame.end(), plain.frame.begin(), plain.frame.end()));
        }
    }
    RC_ASSERT(count == expected.size());
    auto const end = expected.empty() ? std::uint64_t{24}
                                      : expected.back().position + 16 + expected.back().inclLen;
    requireDamage(capture, end, records.damage());
    RC_ASSERT((records.cutRecord() != nullptr) ==
              (records.damage() && records.damage()->kind == CaptureDamageKind::recordCut));
    RC_ASSERT(records.next() == nullptr);
    CaptureSurvey const survey = surveyCapture(file.path());
    RC_ASSERT(survey.damage == records.damage());
    if (!expected.empty()) {
        RC_ASSERT(survey.start.value().time_since_epoch().count() == timeOf(capture, expected[0]));
        auto latest = timeOf(capture, expected[0]);
        for (auto const& record : expected) {
            latest = std::max(latest, timeOf(capture, record));
        }
        RC_ASSERT(survey.latest.value().time_since_epoch().count() == latest);
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

TEST(CaptureFile, HasRecordsAcrossBlocksOfTheFile) {
    // Frames of about a third of a block, so that they lie across the ends of blocks.
    TalTest::CaptureBuilder builder(TalTest::CaptureVariant::nanoBig);
    for (std::uint32_t i = 0; i < 12; ++i) {
        builder.add(i, i, Bytes(350'001, static_cast<std::uint8_t>(i)));
    }
    ScratchFile const file(builder.bytes());
    CaptureFile records(file.path());
    std::vector<CaptureRecord> found;
    while (auto const* const view = records.next()) {
        EXPECT_EQ(view->frame.size(), 350'001U);
        EXPECT_EQ(view->frame.front(), found.size());
        EXPECT_EQ(view->frame.back(), found.size());
        found.push_back(view->record);
    }
    ASSERT_EQ(found.size(), 12U);
    EXPECT_EQ(records.frameOf(found[0]).front(), 0U);  // and back again
    EXPECT_EQ(records.frameOf(found[11]).back(), 11U);
    EXPECT_FALSE(records.damage());
}

TEST(CaptureFile, TakesNoMemoryThatAHeaderMerelyClaims) {
    ScratchFile const file(
        TalTest::CaptureBuilder().addClaiming(1, 0, 0xFFFF'FFFF, Bytes(10)).bytes());
    CaptureFile records(file.path());
    EXPECT_FALSE(records.next());
    ASSERT_TRUE(records.cutRecord());
    EXPECT_EQ(records.cutRecord()->record.capturedSize, 10U);
    EXPECT_EQ(records.cutRecord()->frame.size(), 10U);
    EXPECT_EQ(records.frameOf(records.cutRecord()->record).size(), 10U);
}

TEST(CaptureFile, TellsWhatARecordClaimsAndWhatOfItIsMissing) {
    ScratchFile const file(
        TalTest::CaptureBuilder().add(1, 0, {1, 2}).addClaiming(1, 0, 1000, Bytes(10)).bytes());
    CaptureFile records(file.path());
    EXPECT_TRUE(records.next());
    EXPECT_FALSE(records.damage());
    EXPECT_FALSE(records.next());
    EXPECT_EQ(records.damage(), (CaptureDamage{.kind = CaptureDamageKind::recordCut,
                                               .fileOffset = 24 + 18,
                                               .claimedSize = 1000,
                                               .missingSize = 990}));
}

TEST(CaptureFile, ThatIsNoCaptureHasNoRecords) {
    for (Bytes const& content : {Bytes(), TalTest::text("a text, longer than any header is")}) {
        ScratchFile const file(content);
        CaptureFile records(file.path());
        EXPECT_FALSE(records.next());
        EXPECT_EQ(records.damage(), CaptureDamage{});
        EXPECT_EQ(records.damage()->kind, CaptureDamageKind::notCapture);
    }
}

TEST(CaptureFile, ThatIsGoneCannotBeRead) {
    EXPECT_THROW(CaptureFile("/nonexistent/a.pcap"), std::system_error);
}

TEST(CaptureFile, ThatIsAPipeIsRefusedWithoutWaitingForAWriter) {
    TalTest::TempDir const folder;
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    EXPECT_THROW(CaptureFile(folder.file("pipe")), std::system_error);
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
    EXPECT_FALSE(survey.latest);
    EXPECT_FALSE(survey.damage);
    EXPECT_FALSE(survey.error);
}

TEST(CaptureSurvey, StartsWithARecordThatIsCutWhereThereIsNoOther) {
    ScratchFile const file(TalTest::CaptureBuilder().addClaiming(7, 0, 1000, {}).bytes());
    CaptureSurvey const survey = surveyCapture(file.path());
    EXPECT_EQ(survey.start, makeCaptureTime(7, 0));
    EXPECT_FALSE(survey.latest);
    ASSERT_TRUE(survey.damage);
    EXPECT_EQ(survey.damage->missingSize, 1000U);
}

TEST(CaptureFile, ThatBecomesShorterEndsThere) {
    TalTest::CaptureBuilder builder;
    for (std::uint32_t i = 0; i < 100; ++i) {
        builder.add(i, 0, Bytes(10'000, static_cast<std::uint8_t>(i)));
    }
    ScratchFile const file(builder.bytes());
    CaptureFile records(file.path());
    RecordView const* const first = records.next();
    ASSERT_TRUE(first);
    CaptureRecord const record = first->record;
    std::filesystem::resize_file(file.path(), 1000);
    EXPECT_LT(records.frameOf(record).size(), 10'000U);
    std::size_t count = 1;
    while (records.next() != nullptr) {
        ++count;
    }
    EXPECT_LT(count, 100U);
    ASSERT_TRUE(records.damage());
    EXPECT_EQ(records.damage()->kind, CaptureDamageKind::fileShrank);
    EXPECT_LT(records.damage()->fileOffset, builder.bytes().size());
}

TEST(CaptureFile, ThatCannotBeReadOnHasNoNextRecord) {
    TalTest::CaptureBuilder builder;
    for (std::uint32_t i = 0; i < 100; ++i) {
        builder.add(i, 0, Bytes(10'000, static_cast<std::uint8_t>(i)));
    }
    ScratchFile const file(builder.bytes());
    Descriptor const unreadable(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    ASSERT_TRUE(unreadable);
    int const number = nextNumber();
    CaptureFile records(file.path());
    ASSERT_TRUE(records.next());
    ASSERT_EQ(::dup2(unreadable.number(), number), number);
    EXPECT_THROW(while (records.next() != nullptr){}, std::system_error);
    EXPECT_FALSE(records.next());
    EXPECT_FALSE(records.damage());
}

TEST(CaptureFile, ThatGrowsIsReadAsFarAsItWas) {
    TalTest::CaptureBuilder builder;
    builder.add(1, 0, {1, 2, 3});
    TalTest::TempFile const file(builder.bytes());
    CaptureFile records(file.path());
    // A record like the first.
    std::ofstream(file.path(), std::ios::binary | std::ios::app)
        << std::string(builder.bytes().begin() + 24, builder.bytes().end());
    EXPECT_TRUE(records.next());
    EXPECT_FALSE(records.next());
    EXPECT_FALSE(records.damage());
    EXPECT_EQ(records.size(), builder.bytes().size());
}

TEST(CaptureFile, PassesOverARecordLongerThanAnyFrame) {
    Bytes const longest(std::size_t{2} << 20U, 7);
    Bytes longer = longest;
    longer.push_back(7);
    auto const capture = TalTest::CaptureBuilder()
                             .add(1, 0, longer)
                             .add(2, 0, longest)
                             .add(3, 0, longer)
                             .add(4, 0, {1})
                             .bytes();
    ScratchFile const file(capture);
    CaptureFile records(file.path());
    RecordView const* view = records.next();
    ASSERT_TRUE(view);
    EXPECT_EQ(view->record.time, makeCaptureTime(2, 0));
    EXPECT_EQ(view->frame.size(), longest.size());
    view = records.next();
    ASSERT_TRUE(view);
    EXPECT_EQ(view->record.time, makeCaptureTime(4, 0));
    EXPECT_FALSE(records.next());
    EXPECT_FALSE(records.damage());
    EXPECT_EQ(records.damageCount(), 2U);
    ASSERT_EQ(records.damages().size(), 2U);
    EXPECT_EQ(records.damages()[0], (CaptureDamage{.kind = CaptureDamageKind::recordTooLong,
                                                   .fileOffset = 24,
                                                   .claimedSize = longer.size()}));
}

TEST(CaptureFile, CarriesFractionsOfMoreThanASecond) {
    // 4 294 967 295 microseconds, in thousands of which 32 bits would wrap.
    auto capture = TalTest::CaptureBuilder().add(1, 0, {1}).bytes();
    std::fill_n(capture.begin() + 28, 4, std::uint8_t{0xFF});
    ScratchFile const file(capture);
    CaptureFile records(file.path());
    RecordView const* const view = records.next();
    ASSERT_TRUE(view);
    EXPECT_EQ(timeOf(view->record), 1'000'000'000 + std::int64_t{0xFFFF'FFFF} * 1000);
}

TEST(CaptureFile, SaysWhatItIs) {
    TalTest::TempFile const file(
        TalTest::CaptureBuilder(TalTest::CaptureVariant::nanoBig, 113).add(1, 0, {1, 2}).bytes());
    CaptureFile records(file.path());
    EXPECT_EQ(records.format(), CaptureFormat::classic);
    EXPECT_EQ(records.size(), 24U + 18U);
    EXPECT_EQ(records.identity(), checkCapture(file.path()).identity);
    EXPECT_EQ(records.offset(), 24U);
    ASSERT_EQ(records.interfaces().size(), 1U);
    EXPECT_EQ(records.interfaces()[0].linkType, 113U);
    EXPECT_EQ(records.interfaces()[0].unitExponent, 9U);
    RecordView const* const view = records.next();
    ASSERT_TRUE(view);
    EXPECT_EQ(view->record.linkType, 113U);
    EXPECT_EQ(view->record.dropped, std::nullopt);
    EXPECT_EQ(records.offset(), 24U + 18U);
    EXPECT_EQ(records.interfaces()[0].records, 1U);
}

TEST(CaptureFile, CanBeMovedWhileItIsRead) {
    TalTest::TempFile const file(TalTest::CaptureBuilder().add(1, 0, {1}).add(2, 0, {2}).bytes());
    CaptureFile from(file.path());
    EXPECT_TRUE(from.next());
    CaptureFile to = std::move(from);
    RecordView const* const view = to.next();
    ASSERT_TRUE(view);
    EXPECT_EQ(view->frame.front(), 2U);
    EXPECT_EQ(to.recordAt(30)->fileOffset, 24U);
    EXPECT_FALSE(to.next());
}

}  // namespace
}  // namespace TalIec61850Analysis::CaptureFileTest
