#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "capture/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

// However records lie in a file, and however large they are, they index alike: nothing shows of
// the blocks in which a file may be read.

namespace TalTest::PcapParserBlocksTest {
namespace {

using namespace TalIec61850Parser;

constexpr std::size_t kFirstBlock = 16UL * 1024UL;
constexpr std::size_t kBlock = 256UL * 1024UL;
constexpr std::size_t kFirstRecord = captureHeaderSize;

/// A GOOSE frame whose identity is after `size` octets that nobody reads.
Bytes lateGoose(std::size_t size) {
    GooseMessage message;
    message.extraFirst = ber(0x81, repeat(0x81, size));
    message.length = 0;
    return gooseFrame({}, message);
}

/// An SV frame whose ASDUs are after `size` octets that nobody reads.
Bytes lateSv(std::size_t size) {
    SvMessage message;
    message.security = repeat(0xA2, size);
    message.length = 0;
    return svFrame(svEthernet(), message);
}

/// A record of `size` octets, its header included, whose frame is of no interest.
Bytes fillerFrame(std::size_t size) {
    Bytes frame = repeat(0xFF, size - recordHeaderSize);
    return frame;
}

TEST(PcapParserRecordSize, LargeFramesIndexLikeSmallOnes) {
    Indexed const small =
        indexCapture(CaptureBuilder().add(1, 0, lateGoose(3)).add(2, 0, lateSv(3)).bytes());
    for (std::size_t const size :
         {65'535UL, kBlock - 150, kBlock, 300'000UL, 1'000'000UL, 3'000'000UL}) {
        SCOPED_TRACE(size);
        CaptureBuilder capture;
        Bytes const goose = lateGoose(size);
        Bytes const sv = lateSv(size);
        std::vector<std::uint64_t> positions;
        for (Bytes const* const frame : {&goose, &sv, &goose, &sv}) {
            positions.push_back(capture.nextRecordPosition() + recordHeaderSize);
            capture.add(1, 0, *frame);
        }
        Indexed const result = indexCapture(capture.bytes());
        Goose const& stream = only(result.db.gooseProto.streams);
        EXPECT_EQ(listing::identity(stream), listing::identity(only(small.db.gooseProto.streams)));
        ASSERT_EQ(packagesOf(stream).size(), 2U);
        EXPECT_EQ(packagesOf(stream)[0].position, positions[0] + 14 + 8);
        EXPECT_EQ(packagesOf(stream)[1].position, positions[2] + 14 + 8);

        Sv const& sampled = only(result.db.svProto.streams);
        EXPECT_EQ(listing::identity(sampled), listing::identity(only(small.db.svProto.streams)));
        ASSERT_EQ(packagesOf(sampled).size(), 2U);
        std::size_t const sequence = sv.size() - asduElement({}).size() - 2;
        EXPECT_EQ(packagesOf(sampled)[0].position, positions[1] + sequence);
        EXPECT_EQ(packagesOf(sampled)[1].position, positions[3] + sequence);
    }
}

TEST(PcapParserRecordSize, PduBehindALargeElementIsFound) {
    for (std::size_t const size : {300'000UL, 1'000'000UL, 3'000'000UL}) {
        Bytes const filler = ber(0x04, repeat(0x61, size));
        Bytes const frame =
            ethernetFrame({}, etherTypeGoose, apdu({.length = 0}, concat({filler, goosePdu({})})));
        Indexed const result = indexCapture(CaptureBuilder().add(1, 0, frame).bytes());
        EXPECT_EQ(packagesOf(only(result.db.gooseProto.streams)).front().position,
                  kFirstRecord + recordHeaderSize + 14 + 8 + filler.size());
    }
}

TEST(PcapParserRecordSize, TrailerOfALargeFrameIsSeen) {
    GooseMessage message;
    message.extraFirst = ber(0x81, repeat(0, 1'000'000));
    message.length = 0;
    Bytes frame = gooseFrame({}, message);
    append(frame, {0x00, 0x00, 0xB0, 0x00, 0x88, 0xFB});
    Indexed const result = indexCapture(CaptureBuilder().add(1, 0, frame).bytes());
    EXPECT_EQ(only(result.db.gooseProto.streams).prp->lanId, 'B');
}

TEST(PcapParserRecordSize, LargeFrameCutShortIsCompleted) {
    Bytes const frame = lateGoose(1'000'000);
    Bytes capture = CaptureBuilder().add(1, 0, frame).bytes();
    std::size_t const goID = find(capture, ber(0x83, "RELAY1_gcb1")).value();
    Indexed const result = indexCapture(prefix(capture, goID));
    EXPECT_EQ(only(result.db.gooseProto.streams).datSet, GooseMessage{}.datSet);
    EXPECT_FALSE(only(result.db.gooseProto.streams).goID.has_value());
}

TEST(PcapParserRecordBoundary, EveryPlaceRelativeToABlockIsAlike) {
    // The record's first octet is before, on and after the boundary, which may be counted
    // from the start of the file or from its first record.
    Bytes const frame = svFrame(svEthernet().withVlan(5), {});
    std::size_t const recordSize = recordHeaderSize + frame.size();
    TempDir const directory;
    for (std::size_t shift = 0; shift <= 2 * (recordSize + 2 * kFirstRecord) + 1; ++shift) {
        std::size_t const boundary = shift % 2 == 0 ? kBlock : kFirstBlock;
        std::size_t const start = boundary + kFirstRecord + 8 - shift / 2;
        CaptureBuilder capture;
        capture.add(0, 0, fillerFrame(start - kFirstRecord));
        ASSERT_EQ(capture.nextRecordPosition(), start);
        capture.add(1, 0, frame).add(2, 0, frame);
        Indexed const result = indexFile(directory.write("shifted.pcap", capture.bytes()));
        auto const& packages = packagesOf(only(result.db.svProto.streams));
        ASSERT_EQ(packages.size(), 2U) << "record at " << start;
        std::uint64_t const sequence =
            start + recordHeaderSize + 18 + 8 + sequenceOffset(SvMessage{});
        EXPECT_EQ(packages[0], (Package{{1, 0}, sequence})) << "record at " << start;
        EXPECT_EQ(packages[1], (Package{{2, 0}, sequence + recordSize})) << "record at " << start;
    }
}

TEST(PcapParserRecordBoundary, ThousandsOfRecordsOfVaryingSizeKeepTheirPositions) {
    CaptureBuilder capture(CaptureVariant::nanoBig);
    std::vector<std::uint64_t> goosePositions;
    std::vector<std::uint64_t> svPositions;
    for (std::uint32_t i = 0; i < 20'000; ++i) {
        std::uint64_t const frame = capture.nextRecordPosition() + recordHeaderSize;
        if (i % 3 == 0) {
            capture.add(i, i, fillerFrame(recordHeaderSize + i % 257));
        } else if (i % 3 == 1) {
            GooseMessage message;
            message.trailing = repeat(0x00, i % 101);
            capture.add(i, i, gooseFrame({}, message));
            goosePositions.push_back(frame + 14 + 8);
        } else {
            SvMessage message;
            message.asdus.front().seqData = repeat(0x00, 1 + i % 97);
            message.sequenceLengthForm = LengthForm::twoOctets;
            message.pduLengthForm = LengthForm::threeOctets;
            capture.add(i, i, svFrame(svEthernet(), message));
            svPositions.push_back(frame + 14 + 8 + 5 + 3);
        }
    }
    ASSERT_GT(capture.bytes().size(), 10 * kBlock);
    Indexed const result = indexCapture(capture.bytes());
    std::vector<std::uint64_t> found;
    for (Package const& package : packagesOf(only(result.db.gooseProto.streams))) {
        found.push_back(package.position);
    }
    EXPECT_EQ(found, goosePositions);
    found.clear();
    for (Package const& package : packagesOf(only(result.db.svProto.streams))) {
        found.push_back(package.position);
    }
    EXPECT_EQ(found, svPositions);
}

TEST(PcapParserRecordBoundary, CutRecordIsNotCompletedWithWhatStoodInEarlierBlocks) {
    // Behind the PDU, octets of the records before would read as further PDUs.
    Bytes const frame = gooseFrame({}, {});
    for (std::size_t const before : {kBlock, 2 * kBlock, 2 * kBlock + 5000, 5 * kBlock / 2}) {
        CaptureBuilder capture;
        capture.add(1, 0, repeat(0x61, before / 2)).add(2, 0, repeat(0x61, before / 2));
        std::uint64_t const start = capture.nextRecordPosition();
        capture.addClaiming(3, 0, 5000, frame);
        Indexed const result = indexCapture(capture.bytes());
        EXPECT_EQ(packagesOf(only(result.db.gooseProto.streams)).front().position,
                  start + recordHeaderSize + 14 + 8)
            << before;
    }
}

TEST(PcapParserManyStreams, InterleavedStreamsAreKeptApart) {
    constexpr std::uint16_t kStreams = 3000;
    CaptureBuilder capture;
    for (std::uint32_t round = 0; round < 4; ++round) {
        for (std::uint16_t i = 0; i < kStreams; ++i) {
            GooseMessage message;
            message.appId = i;
            capture.add(round, 0, gooseFrame({}, message));
        }
    }
    Indexed const result = indexCapture(capture.bytes());
    ASSERT_EQ(result.db.gooseProto.getGooseCount(), kStreams);
    for (Goose const& stream : result.db.gooseProto.streams) {
        EXPECT_EQ(stream.packetCount, 4U);
        ASSERT_EQ(packagesOf(stream).size(), 4U);
        for (std::uint32_t round = 0; round < 4; ++round) {
            EXPECT_EQ(packagesOf(stream)[round].time.seconds, round);
        }
    }
}

}  // namespace
}  // namespace TalTest::PcapParserBlocksTest
