// Captures as a whole: counts, agreement with the plain index, positions and times.

#include <TalIec61850Parser/store/Db.hpp>
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "index/IndexImage.hpp"
#include "index/Indexing.hpp"
#include "index/KnownCaptures.hpp"
#include "support/CaptureFile.hpp"

namespace TalTest::CapturesTest {
namespace {

using namespace TalIec61850Parser;

using CaptureIndex = KnownCaptureTest;

INSTANTIATE_TEST_SUITE_P(Captures, CaptureIndex, testing::ValuesIn(knownCaptures()), testName);

template <typename Streams>
std::size_t packetsCounted(Streams const& streams) {
    std::size_t count = 0;
    for (auto const& stream : streams) count += stream.packetCount;
    return count;
}

template <typename Streams>
std::vector<Package> allPackages(Streams const& streams) {
    std::vector<Package> packages;
    for (auto const& stream : streams)
        for (PackageFile const& file : stream.files)
            packages.insert(packages.end(), file.packages.begin(), file.packages.end());
    return packages;
}

Db indexed(std::string const& path) {
    Db db;
    indexInto(db, path);
    return db;
}

/// The record that holds the octet at this offset of the file; null when none does.
CaptureRecord const* recordAt(std::vector<CaptureRecord> const& records, std::uint64_t position) {
    auto const behind = std::upper_bound(
        records.begin(), records.end(), position,
        [](std::uint64_t offset, CaptureRecord const& record) { return offset < record.position; });
    if (behind == records.begin()) return nullptr;
    CaptureRecord const& record = *std::prev(behind);
    return position < record.position + recordHeaderSize + record.inclLen ? &record : nullptr;
}

TEST_P(CaptureIndex, CountsPacketsAsAPlainCountDoes) {
    Db const db = indexed(path());
    EXPECT_EQ(packetsCounted(db.gooseProto.streams), GetParam().gooseFrames);
    EXPECT_EQ(packetsCounted(db.svProto.streams), GetParam().svFrames);
}

TEST_P(CaptureIndex, CountsStreamsByIdentity) {
    Db const db = indexed(path());
    EXPECT_EQ(db.gooseProto.getGooseCount() + db.svProto.getSvCount(), GetParam().streams);
}

TEST_P(CaptureIndex, IndexesEveryCountedPacket) {
    Db const db = indexed(path());
    EXPECT_EQ(allPackages(db.gooseProto.streams).size(), GetParam().gooseFrames);
    EXPECT_EQ(allPackages(db.svProto.streams).size(), GetParam().svFrames);
}

TEST_P(CaptureIndex, EqualsPlainIndex) { EXPECT_EQ(disagreement({path()}), ""); }

TEST_P(CaptureIndex, EqualsPlainIndexWithoutGoose) {
    Filter filter;
    filter.parseGoose = false;
    EXPECT_EQ(disagreement({path()}, filter), "");
    EXPECT_EQ(libraryImage({path()}, filter).streams.empty(), GetParam().svFrames == 0);
}

TEST_P(CaptureIndex, EqualsPlainIndexWithoutSv) {
    Filter filter;
    filter.parseSv = false;
    EXPECT_EQ(disagreement({path()}, filter), "");
    EXPECT_EQ(libraryImage({path()}, filter).streams.empty(), GetParam().gooseFrames == 0);
}

TEST_P(CaptureIndex, HoldsNothingWithBothProtocolsOff) {
    Filter filter;
    filter.parseGoose = filter.parseSv = false;
    EXPECT_TRUE(libraryImage({path()}, filter).streams.empty());
}

void expectTagAtPositions(std::vector<Package> const& packages, Bytes const& file,
                          std::uint8_t tag) {
    for (Package const& package : packages) {
        if (package.position == 0) {
            EXPECT_EQ(package.time, Timest()) << "a packet without its element has no time";
            continue;
        }
        ASSERT_LT(package.position, file.size());
        ASSERT_EQ(file[package.position], tag) << "at " << package.position;
    }
}

TEST_P(CaptureIndex, PlacesPacketsAtTheirElement) {
    Db const db = indexed(path());
    Bytes const file = readFile(path());
    expectTagAtPositions(allPackages(db.gooseProto.streams), file, 0x61);
    expectTagAtPositions(allPackages(db.svProto.streams), file, 0xA2);
}

TEST_P(CaptureIndex, TimesPacketsAsTheirRecords) {
    Db const db = indexed(path());
    if (packetsByPosition(db).empty()) return;
    std::vector<CaptureRecord> const records = readCapture(wholePath());
    for (auto const& [position, packet] : packetsByPosition(db)) {
        CaptureRecord const* const record = recordAt(records, position);
        ASSERT_NE(record, nullptr) << "at " << position;
        ASSERT_EQ(packet.package.time, (Timest{record->seconds, record->nanoseconds}))
            << "at " << position;
    }
}

TEST_P(CaptureIndex, KeepsTheOrderOfTheFile) {
    for (StreamImage const& stream : libraryImage({path()}).streams) {
        std::vector<PacketImage> const packets = packetsOf(stream);
        EXPECT_TRUE(std::is_sorted(
            packets.begin(), packets.end(),
            [](PacketImage const& a, PacketImage const& b) { return a.position < b.position; }))
            << stream;
    }
}

TEST_P(CaptureIndex, IsTheSameWhenTheCaptureIsIndexedTwiceUnderTwoNames) {
    ScratchFile const copy(readFile(path()));
    EXPECT_EQ(disagreement({path(), copy.path()}), "");
}

}  // namespace
}  // namespace TalTest::CapturesTest
