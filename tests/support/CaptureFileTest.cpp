#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"

namespace TalTest::CaptureFileTest {
namespace {

Bytes written(std::ostringstream const& out) { return text(out.str()); }

TEST(CaptureHeader, BeginsWithTheMagicNumberOfItsVariant) {
    EXPECT_EQ(prefix(captureHeader(CaptureVariant::microLittle), 4),
              (Bytes{0xD4, 0xC3, 0xB2, 0xA1}));
    EXPECT_EQ(prefix(captureHeader(CaptureVariant::microBig), 4), (Bytes{0xA1, 0xB2, 0xC3, 0xD4}));
    EXPECT_EQ(prefix(captureHeader(CaptureVariant::nanoLittle), 4),
              (Bytes{0x4D, 0x3C, 0xB2, 0xA1}));
    EXPECT_EQ(prefix(captureHeader(CaptureVariant::nanoBig), 4), (Bytes{0xA1, 0xB2, 0x3C, 0x4D}));
}

TEST(CaptureHeader, TellsVersionSnapshotLengthAndLinkType) {
    EXPECT_EQ(
        captureHeader(CaptureVariant::microLittle),
        concat({{0xD4, 0xC3, 0xB2, 0xA1, 2, 0, 4, 0}, repeat(0, 8), {0, 0, 4, 0, 1, 0, 0, 0}}));
    EXPECT_EQ(
        captureHeader(CaptureVariant::nanoBig, 250),
        concat({{0xA1, 0xB2, 0x3C, 0x4D, 0, 2, 0, 4}, repeat(0, 8), {0, 4, 0, 0, 0, 0, 0, 250}}));
}

TEST(CaptureBuilder, WritesTheTimeInTheUnitAndOrderOfTheFile) {
    EXPECT_EQ(CaptureBuilder(CaptureVariant::microLittle).add(0x01020304, 5'999, {0xEE}).bytes(),
              concat({captureHeader(CaptureVariant::microLittle),
                      {4, 3, 2, 1, 5, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0xEE}}));
    EXPECT_EQ(CaptureBuilder(CaptureVariant::nanoBig).add(0x01020304, 5'999, {0xEE}).bytes(),
              concat({captureHeader(CaptureVariant::nanoBig),
                      {1, 2, 3, 4, 0, 0, 0x17, 0x6F, 0, 0, 0, 1, 0, 0, 0, 1, 0xEE}}));
}

TEST(CaptureBuilder, TellsWhereTheNextRecordWillStand) {
    CaptureBuilder builder;
    EXPECT_EQ(builder.nextRecordPosition(), 24U);
    builder.add(1, 0, Bytes(60));
    EXPECT_EQ(builder.nextRecordPosition(), 24U + 16U + 60U);
}

TEST(CaptureBuilder, ClaimsMoreThanItHolds) {
    Bytes const capture =
        CaptureBuilder(CaptureVariant::microBig).addClaiming(1, 0, 0xFFFFFFFF, {0xEE}).bytes();
    EXPECT_EQ(Bytes(capture.begin() + 32, capture.end()),
              (Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 1, 0xEE}));
}

TEST(CaptureBuilder, SnapsAFrameAndKeepsItsOriginalLength) {
    auto const records = readCapture(CaptureBuilder().addSnapped(1, 0, 2, {7, 8, 9}).bytes());
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].frame, (Bytes{7, 8}));
    EXPECT_EQ(records[0].inclLen, 2U);
    EXPECT_EQ(records[0].origLen, 3U);
}

class CaptureVariants : public testing::TestWithParam<CaptureVariant> {};

TEST_P(CaptureVariants, AreReadBackAsWritten) {
    CaptureBuilder builder(GetParam());
    builder.add(1'700'000'000, 123'456'000, {1, 2, 3}).add(4'294'967'295, 999'999'000, {});
    EXPECT_EQ(readCapture(builder.bytes()),
              (std::vector<CaptureRecord>{{24, 1'700'000'000, 123'456'000, 3, 3, {1, 2, 3}},
                                          {43, 4'294'967'295, 999'999'000, 0, 0, {}}}));
}

TEST_P(CaptureVariants, AreStreamedAsTheyAreBuilt) {
    CaptureBuilder builder(GetParam());
    std::ostringstream out;
    {
        CaptureWriter writer(out, GetParam());
        // More than the writer buffers, in frames of many sizes and one larger than its buffer.
        for (std::uint32_t i = 0; i < 3'000; ++i) {
            Bytes const frame(i == 1'500 ? (std::size_t{1} << 21) : i,
                              static_cast<std::uint8_t>(i));
            builder.add(i, 1'000 * i, frame);
            writer.add(i, 1'000 * i, frame);
            ASSERT_EQ(writer.nextRecordPosition(), builder.nextRecordPosition());
        }
    }
    EXPECT_TRUE(written(out) == builder.bytes());
}

INSTANTIATE_TEST_SUITE_P(All, CaptureVariants, testing::ValuesIn(captureVariants),
                         [](auto const& variant) { return name(variant.param); });

TEST(ReadCapture, StopsAtTheFirstIncompleteRecord) {
    Bytes const whole = CaptureBuilder().add(1, 0, {1}).add(2, 0, {2, 3}).bytes();
    for (std::size_t size = 24; size <= whole.size(); ++size) {
        std::size_t const complete = size < 41 ? 0 : size < whole.size() ? 1 : 2;
        EXPECT_EQ(readCapture(prefix(whole, size)).size(), complete) << size << " octets";
    }
}

TEST(ReadCapture, StopsAtARecordThatClaimsMoreThanThereIs) {
    CaptureBuilder builder;
    builder.addClaiming(1, 0, 0xFFFFFFFF, {1}).add(2, 0, {2});
    EXPECT_TRUE(readCapture(builder.bytes()).empty());
}

TEST(ReadCapture, RefusesWhatIsNoClassicCapture) {
    EXPECT_THROW((void)readCapture(Bytes{}), std::runtime_error);
    EXPECT_THROW((void)readCapture(Bytes{0x0A, 0x0D, 0x0D, 0x0A}), std::runtime_error);
    EXPECT_THROW((void)readCapture(std::string("/nonexistent/file")), std::runtime_error);
}

TEST(ReadCapture, ReadsAFile) {
    TempFile const file(CaptureBuilder().add(1, 0, {0x00, 0x0A, 0x0D, 0xFF}).bytes());
    ASSERT_EQ(readCapture(file.path()).size(), 1U);
    EXPECT_EQ(readCapture(file.path())[0].frame, (Bytes{0x00, 0x0A, 0x0D, 0xFF}));
}

TEST(NextGenerationCapture, HasTheFramesInBlocksThatTellTheirLengthTwice) {
    Bytes const capture = nextGenerationCapture({Bytes(5, 0xEE)});
    EXPECT_EQ(prefix(capture, 4), (Bytes{0x0A, 0x0D, 0x0D, 0x0A}));
    EXPECT_THROW((void)readCapture(capture), std::runtime_error);
    std::size_t blocks = 0;
    for (std::size_t at = 0; at < capture.size(); ++blocks) {
        std::size_t const size = capture.at(at + 4);
        EXPECT_EQ(size % 4, 0U);
        EXPECT_EQ(capture.at(at + size - 4), size);
        at += size;
    }
    EXPECT_EQ(blocks, 3U);
    EXPECT_NE(find(capture, Bytes(5, 0xEE)), std::nullopt);
}

TEST(CompletedCapture, FillsTheRecordThatIsCutAndNothingElse) {
    Bytes const whole = CaptureBuilder().add(1, 2, Bytes(9, 0xEE)).add(3, 4, Bytes(7, 0)).bytes();
    EXPECT_EQ(completedCapture(whole), whole);
    EXPECT_EQ(completedCapture(prefix(whole, whole.size() - 7)), whole);
    EXPECT_EQ(completedCapture(prefix(whole, whole.size() - 8)), prefix(whole, whole.size() - 8))
        << "cut in the record's header";
}

}  // namespace
}  // namespace TalTest::CaptureFileTest
