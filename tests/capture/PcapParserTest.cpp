#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <ios>
#include <string>
#include <vector>

#include "capture/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest::PcapParserTest {
namespace {

using namespace TalIec61850Parser;

constexpr char const* kNotACapture = "Invalid PCAP file format\n";

Bytes magicOf(CaptureVariant variant) { return prefix(captureHeader(variant), 4); }

/// A capture with one GOOSE and one SV frame.
Bytes smallCapture(CaptureVariant variant = CaptureVariant::microLittle) {
    return CaptureBuilder(variant)
        .add(5, 250'000'000, gooseFrame({}, {}))
        .add(6, 1'000, svFrame(svEthernet(), {}))
        .bytes();
}

void replace(Bytes& whole, std::size_t position, Bytes const& part) {
    std::copy(part.begin(), part.end(), whole.begin() + static_cast<std::ptrdiff_t>(position));
}

/// Expects a file to be taken for something else than a capture.
void expectRefused(Bytes const& content) {
    Indexed const result = indexCapture(content);
    EXPECT_EQ(result.errors, kNotACapture);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(isEmpty(result.db));
    EXPECT_TRUE(result.progress.empty());
}

TEST(PcapParserParseFile, EveryVariantIsRecognisedByItsMagic) {
    for (CaptureVariant const variant : captureVariants) {
        SCOPED_TRACE(name(variant));
        Indexed const result = indexCapture(smallCapture(variant));
        EXPECT_EQ(result.errors, "");
        EXPECT_EQ(result.output, "");
        ASSERT_EQ(result.db.gooseProto.getGooseCount(), 1U);
        ASSERT_EQ(result.db.svProto.getSvCount(), 1U);
        auto const& package = packagesOf(only(result.db.gooseProto.streams)).front();
        EXPECT_EQ(package.time, (Timest{5, 250'000'000}));
        EXPECT_EQ(package.position, 24U + 16U + 14U + 8U);
    }
}

TEST(PcapParserParseFile, TheVariantDoesNotChangeTheIndex) {
    Indexed const first = indexCapture(smallCapture(CaptureVariant::microLittle));
    for (CaptureVariant const variant : captureVariants) {
        SCOPED_TRACE(name(variant));
        Indexed const other = indexCapture(smallCapture(variant));
        EXPECT_EQ(streamLines(other.db), streamLines(first.db));
        EXPECT_EQ(packetLines(other.db), packetLines(first.db));
        EXPECT_EQ(other.progress, first.progress);
    }
}

TEST(PcapParserParseFile, AnyOtherMagicIsRefused) {
    Bytes capture = smallCapture();
    for (CaptureVariant const variant : captureVariants) {
        for (std::size_t octet = 0; octet < 4; ++octet) {
            for (std::uint8_t const change : Bytes{0x01, 0x20, 0x80, 0xFF}) {
                Bytes magic = magicOf(variant);
                magic[octet] = static_cast<std::uint8_t>(magic[octet] ^ change);
                replace(capture, 0, magic);
                SCOPED_TRACE(testing::PrintToString(magic));
                expectRefused(capture);
            }
        }
    }
}

TEST(PcapParserParseFile, MagicOfZerosIsRefused) { expectRefused(repeat(0, 200)); }

TEST(PcapParserParseFile, EmptyFileIsRefused) { expectRefused({}); }

TEST(PcapParserParseFile, FileShorterThanAMagicIsRefused) {
    for (CaptureVariant const variant : captureVariants) {
        for (std::size_t size = 1; size < 4; ++size) expectRefused(prefix(magicOf(variant), size));
    }
}

TEST(PcapParserParseFile, FileThatEndsInItsHeaderHoldsNothing) {
    for (CaptureVariant const variant : captureVariants) {
        for (std::size_t size = 4; size <= captureHeaderSize; ++size) {
            SCOPED_TRACE(name(variant) + " of " + std::to_string(size) + " octets");
            Indexed const result = indexCapture(prefix(captureHeader(variant), size));
            EXPECT_EQ(result.errors, "");
            EXPECT_TRUE(isEmpty(result.db));
            EXPECT_EQ(result.progress, std::vector<double>{1.0});
        }
    }
}

TEST(PcapParserParseFile, RestOfTheHeaderIsNotLookedAt) {
    Bytes capture = smallCapture();
    Indexed const expected = indexCapture(capture);
    for (std::uint8_t const filler : Bytes{0x00, 0x01, 0x7F, 0xFF}) {
        replace(capture, 4, repeat(filler, captureHeaderSize - 4));
        Indexed const result = indexCapture(capture);
        EXPECT_EQ(result.errors, "");
        EXPECT_EQ(packetLines(result.db), packetLines(expected.db));
    }
}

TEST(PcapParserParseFile, EveryLinkTypeIsTakenForEthernet) {
    for (std::uint32_t const linkType : {0U, 101U, 113U, 250U}) {
        CaptureBuilder capture(CaptureVariant::nanoBig, linkType);
        Indexed const result = indexCapture(capture.add(1, 2, gooseFrame({}, {})).bytes());
        EXPECT_EQ(result.db.gooseProto.getGooseCount(), 1U) << "link type " << linkType;
    }
}

TEST(PcapParserParseFile, NextGenerationCaptureIsRefused) {
    // A section header block in either byte order, its length twice, then zeros.
    Bytes const blockType = {0x0A, 0x0D, 0x0D, 0x0A};
    for (Bytes const& byteOrderMark :
         {Bytes{0x4D, 0x3C, 0x2B, 0x1A}, Bytes{0x1A, 0x2B, 0x3C, 0x4D}}) {
        Bytes const block = concat({blockType,
                                    {0x1C, 0, 0, 0},
                                    byteOrderMark,
                                    {1, 0, 0, 0},
                                    repeat(0xFF, 8),
                                    {0x1C, 0, 0, 0}});
        expectRefused(block);
        expectRefused(concat({block, smallCapture()}));
    }
}

TEST(PcapParserParseFile, BlockTypeWithoutAMarkIsRefused) {
    for (CaptureVariant const variant : captureVariants) {
        Bytes const whole = concat({{0x0A, 0x0D, 0x0D, 0x0A, 0, 0, 0, 0}, magicOf(variant)});
        for (std::size_t size = 4; size < whole.size(); ++size) expectRefused(prefix(whole, size));
    }
}

TEST(PcapParserParseFile, ClassicMagicBehindABlockTypeOpensACapture) {
    for (CaptureVariant const variant : captureVariants) {
        SCOPED_TRACE(name(variant));
        Bytes capture = smallCapture(variant);
        Indexed const expected = indexCapture(capture);
        replace(capture, 0, {0x0A, 0x0D, 0x0D, 0x0A, 0x55, 0x55, 0x55, 0x55});
        replace(capture, 8, magicOf(variant));
        Indexed const result = indexCapture(capture);
        EXPECT_EQ(result.errors, "");
        EXPECT_EQ(packetLines(result.db), packetLines(expected.db));
        EXPECT_EQ(result.progress, expected.progress);
    }
}

TEST(PcapParserParseFile, MagicAtOffsetEightCountsBehindTheBlockTypeOnly) {
    Bytes capture = smallCapture();
    replace(capture, 8, magicOf(CaptureVariant::microLittle));
    replace(capture, 0, {0x0A, 0x0D, 0x0D, 0x0B});
    expectRefused(capture);
}

TEST(PcapParserParseFile, RecordTimeIsThatOfTheFile) {
    for (CaptureVariant const variant : captureVariants) {
        // The fraction as it is in the file, which no unit changes: 999999.
        bool const little = isLittleEndian(variant);
        Bytes const frame = gooseFrame({}, {});
        Bytes header = concat({bigEndian(0xFEDCBA98, 4), bigEndian(999'999, 4),
                               bigEndian(frame.size(), 4), bigEndian(frame.size(), 4)});
        for (std::size_t field = 0; little && field < 16; field += 4) {
            auto const begin = header.begin() + static_cast<std::ptrdiff_t>(field);
            std::reverse(begin, begin + 4);
        }
        Indexed const result =
            indexCapture(CaptureBuilder(variant).addRaw(header).addRaw(frame).bytes());
        auto const& package = packagesOf(only(result.db.gooseProto.streams)).front();
        EXPECT_EQ(package.time.seconds, 0xFEDCBA98U) << name(variant);
        EXPECT_EQ(package.time.nanoseconds, isNanosecond(variant) ? 999'999U : 999'999'000U);
    }
}

TEST(PcapParserParseFile, OriginalLengthIsNotLookedAt) {
    Bytes const frame = gooseFrame({}, {});
    auto const size = static_cast<std::uint32_t>(frame.size());
    Indexed const expected = indexCapture(CaptureBuilder().add(1, 0, frame).bytes());
    for (std::uint32_t const origLen : {0U, 1U, 0xFFFFFFFFU}) {
        auto const header = recordHeader(CaptureVariant::microLittle, 1, 0, size, origLen);
        Indexed const result = indexCapture(
            CaptureBuilder().addRaw({header.begin(), header.end()}).addRaw(frame).bytes());
        EXPECT_EQ(packetLines(result.db), packetLines(expected.db));
    }
}

TEST(PcapParserParseFile, RecordsWithoutAUsableFrameArePassedOver) {
    CaptureBuilder capture;
    for (std::size_t size = 0; size < 40; ++size) {
        capture.add(1, 0, prefix(gooseFrame({}, {}), std::min<std::size_t>(size, 22)));
        capture.add(1, 0, repeat(0xFF, size));
    }
    std::uint64_t const position = capture.nextRecordPosition();
    capture.add(2, 0, gooseFrame({}, {}));
    Indexed const result = indexCapture(capture.bytes());
    auto const& packages = packagesOf(only(result.db.gooseProto.streams));
    ASSERT_EQ(packages.size(), 1U);
    EXPECT_EQ(packages.front().position, position + 16 + 14 + 8);
    EXPECT_EQ(result.errors, "");
}

TEST(PcapParserParseFile, RecordLargerThanTheSnapshotLengthIsRead) {
    Bytes capture = smallCapture();
    replace(capture, 16, {1, 0, 0, 0});
    EXPECT_EQ(indexCapture(capture).db.gooseProto.getGooseCount(), 1U);
}

TEST(PcapParserParseFile, PathIsTheKeyExactlyAsGiven) {
    TempDir const directory;
    directory.write("bay.pcap", smallCapture());
    Indexed const result = indexFile(directory.path() + "/././bay.pcap");
    EXPECT_EQ(only(only(result.db.gooseProto.streams).files).fileName, result.path);
    EXPECT_EQ(only(only(result.db.svProto.streams).files).fileName, result.path);
}

TEST(PcapParserParseFile, SecondFileAddsToTheStore) {
    TempDir const directory;
    std::atomic<bool> const stop = false;
    Db db;
    for (char const* const file : {"a.pcap", "b.pcap"}) {
        PcapParser::parseFile(directory.write(file, smallCapture()), db, {}, stop, {});
    }
    EXPECT_EQ(only(db.gooseProto.streams).packetCount, 2U);
    EXPECT_EQ(only(db.gooseProto.streams).files.size(), 2U);
    EXPECT_EQ(only(db.svProto.streams).packetCount, 2U);
    EXPECT_EQ(only(db.svProto.streams).files.size(), 2U);
}

TEST(PcapParserParseFile, SameFileTwiceIsIndexedTwice) {
    TempFile const file(smallCapture());
    std::atomic<bool> const stop = false;
    Db db;
    PcapParser::parseFile(file.path(), db, {}, stop, {});
    PcapParser::parseFile(file.path(), db, {}, stop, {});
    EXPECT_EQ(only(db.gooseProto.streams).packetCount, 2U);
    auto const& packages = packagesOf(only(db.gooseProto.streams));
    ASSERT_EQ(packages.size(), 2U);
    EXPECT_EQ(packages.front(), packages.back());
}

TEST(PcapParserParseFile, DisabledProtocolIsNotIndexed) {
    Filter filter;
    filter.parseSv = false;
    Indexed const gooseOnly = indexCapture(smallCapture(), filter);
    EXPECT_EQ(gooseOnly.db.gooseProto.getGooseCount(), 1U);
    EXPECT_EQ(gooseOnly.db.svProto.getSvCount(), 0U);
    filter.parseGoose = false;
    EXPECT_TRUE(isEmpty(indexCapture(smallCapture(), filter).db));
    filter.parseSv = true;
    Indexed const svOnly = indexCapture(smallCapture(), filter);
    EXPECT_EQ(svOnly.db.gooseProto.getGooseCount(), 0U);
    EXPECT_EQ(svOnly.db.svProto.getSvCount(), 1U);
}

TEST(PcapParserParseFilePcap, BeginsAtTheStartWhereverTheFileStands) {
    TempFile const capture(smallCapture());
    for (std::streamoff const offset : {0, 3, 24, 100}) {
        PcapFile file(capture.path());
        file.seekg(offset);
        Db db;
        PcapParser::_parseFilePcap(file, false, true, db, {}, std::atomic<bool>{false}, 0, {});
        EXPECT_EQ(packetLines(db), packetLines(indexFile(capture.path()).db));
    }
}

TEST(PcapParserParseFilePcap, BeginsAtTheStartOfAFileReadToItsEnd) {
    TempFile const capture(smallCapture());
    PcapFile file(capture.path());
    file.seekg(0, std::ios::end);
    EXPECT_EQ(file.peek(), PcapFile::traits_type::eof());
    Db db;
    PcapParser::_parseFilePcap(file, false, true, db, {}, std::atomic<bool>{false}, 0, {});
    EXPECT_EQ(db.gooseProto.getGooseCount(), 1U);
    EXPECT_EQ(db.svProto.getSvCount(), 1U);
}

TEST(PcapParserParseFilePcap, SameFileCanBeWalkedAgain) {
    TempFile const capture(smallCapture());
    PcapFile file(capture.path());
    for (std::uint32_t walk = 1; walk <= 3; ++walk) {
        Db db;
        PcapParser::_parseFilePcap(file, false, true, db, {}, std::atomic<bool>{false}, 0, {});
        EXPECT_EQ(db.gooseProto.getGooseCount(), 1U) << "walk " << walk;
        EXPECT_EQ(db.svProto.getSvCount(), 1U) << "walk " << walk;
    }
}

TEST(PcapParserParseFilePcap, StoppedWalkCanBeStartedAnew) {
    TempFile const capture(smallCapture());
    PcapFile file(capture.path());
    Db db;
    PcapParser::_parseFilePcap(file, false, true, db, {}, std::atomic<bool>{true}, 0, {});
    EXPECT_TRUE(isEmpty(db));
    PcapParser::_parseFilePcap(file, false, true, db, {}, std::atomic<bool>{false}, 0, {});
    EXPECT_EQ(db.gooseProto.getGooseCount(), 1U);
    EXPECT_EQ(db.svProto.getSvCount(), 1U);
}

TEST(PcapParserParseFilePcap, TheArgumentsTellTheVariantNotTheFile) {
    Bytes capture = smallCapture(CaptureVariant::nanoBig);
    replace(capture, 0, repeat(0, captureHeaderSize));
    TempFile const onDisk(capture);
    PcapFile file(onDisk.path());
    Db db;
    PcapParser::_parseFilePcap(file, true, false, db, {}, std::atomic<bool>{false}, 0, {});
    EXPECT_EQ(packagesOf(only(db.gooseProto.streams)).front().time, (Timest{5, 250'000'000}));
}

TEST(PcapParserParseFilePcap, FileThatDidNotOpenIsAtItsEnd) {
    TempDir const directory;
    PcapFile file(directory.file("missing.pcap"));
    std::vector<double> progress;
    Db db;
    PcapParser::_parseFilePcap(file, false, true, db, {}, std::atomic<bool>{false}, 100,
                               [&](double fraction) { progress.push_back(fraction); });
    EXPECT_EQ(progress, std::vector<double>{1.0});
    EXPECT_TRUE(isEmpty(db));
}

TEST(PcapParserParseFilePcap, RecordPositionIsLeftAtTheLastRecord) {
    CaptureBuilder capture;
    capture.add(1, 0, gooseFrame({}, {}));
    std::uint64_t const last = capture.nextRecordPosition();
    capture.add(2, 0, gooseFrame({}, {}));
    TempFile const onDisk(capture.bytes());
    PcapFile file(onDisk.path());
    EXPECT_EQ(file.recordPosition, 0U);
    EXPECT_EQ(file.fileName, onDisk.path());
    Db db;
    PcapParser::_parseFilePcap(file, false, true, db, {}, std::atomic<bool>{false}, 0, {});
    EXPECT_EQ(file.recordPosition, last);
}

TEST(PcapParserParseFilePcapNg, SaysThatItIsNotImplementedAndDoesNothing) {
    TempFile const capture(smallCapture());
    PcapFile file(capture.path());
    file.seekg(7);
    Db db;
    std::vector<double> progress;
    StreamCapture const output(std::cout);
    StreamCapture const errors(std::cerr);
    PcapParser::_parseFilePcapNg(file, false, true, db, {}, std::atomic<bool>{false}, 1000,
                                 [&](double fraction) { progress.push_back(fraction); });
    EXPECT_EQ(output.text(), "PcapNg not implemented\n");
    EXPECT_EQ(errors.text(), "");
    EXPECT_TRUE(progress.empty());
    EXPECT_TRUE(isEmpty(db));
    EXPECT_EQ(file.tellg(), 7);
    EXPECT_EQ(file.recordPosition, 0U);
}

}  // namespace
}  // namespace TalTest::PcapParserTest
