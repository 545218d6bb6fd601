#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/PcapPacketParser.hpp>
#include <cstdint>
#include <string>

#include "capture/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"

namespace TalTest::PcapPacketParserTest {
namespace {

using namespace TalIec61850Parser;

/// Only its name and position count, so it need not exist.
constexpr char const* kFileName = "no such capture.pcap";

TEST(PcapPacketParserParsePacket, TimeIsReadInTheByteOrderOfTheFile) {
    for (CaptureVariant const variant : captureVariants) {
        auto const header = recordHeader(variant, 0x01020304, 0x05060708, 0, 0);
        Bytes const record = concat({Bytes(header.begin(), header.end()), gooseFrame({}, {})});
        PcapFile file(kFileName);
        file.recordPosition = 1000;
        Db db;
        PcapPacketParser::parsePacket(record, file, isNanosecond(variant), isLittleEndian(variant),
                                      {}, db);
        std::uint32_t const fraction = isNanosecond(variant) ? 0x05060708U : 84'281'000U;
        EXPECT_EQ(packagesOf(only(db.gooseProto.streams)).front(),
                  (Package{{0x01020304, fraction}, 1000 + 16 + 14 + 8}))
            << name(variant);
    }
}

TEST(PcapPacketParserParsePacket, LengthsInTheRecordHeaderAreNotLookedAt) {
    for (std::uint32_t const length : {0U, 17U, 0xFFFFFFFFU}) {
        auto const header = recordHeader(CaptureVariant::nanoBig, 1, 2, length, length);
        PcapFile file(kFileName);
        Db db;
        PcapPacketParser::parsePacket(
            concat({Bytes(header.begin(), header.end()), gooseFrame({}, {})}), file, true, false,
            {}, db);
        EXPECT_EQ(packagesOf(only(db.gooseProto.streams)).front().time, (Timest{1, 2}));
    }
}

TEST(PcapPacketParserParsePacket, RecordWithoutAWholeFrameIsIgnored) {
    Bytes const record = concat({repeat(0, recordHeaderSize), gooseFrame({}, {})});
    for (std::size_t size = 0; size <= recordHeaderSize + 14 + 8; ++size) {
        PcapFile file(kFileName);
        Db db;
        PcapPacketParser::parsePacket(prefix(record, size), file, true, true, {}, db);
        EXPECT_TRUE(isEmpty(db)) << size;
    }
}

}  // namespace
}  // namespace TalTest::PcapPacketParserTest
