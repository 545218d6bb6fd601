// Captures with tags and trailers, packet by packet, against what the octets say at fixed offsets;
// and captures that share their traffic with another one.

#include <gtest/gtest.h>

#include <TalIec61850Parser/store/Db.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "index/IndexImage.hpp"
#include "index/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"

namespace TalTest {
namespace {

using namespace TalIec61850Parser;

/// A recorded capture, indexed, beside its records.
struct Indexed {
    explicit Indexed(std::string const& path) : records(readCapture(path)) {
        indexInto(db, path);
        packets = packetsByPosition(db);
    }

    Db db;
    std::vector<CaptureRecord> records;
    std::map<std::uint64_t, IndexedPacket> packets;
};

unsigned twoOctets(Bytes const& frame, std::size_t at) {
    return frame.at(at) * 256U + frame.at(at + 1);
}

std::string characters(Bytes const& frame, std::size_t at, std::size_t count) {
    auto const first = frame.begin() + static_cast<std::ptrdiff_t>(at);
    return {first, first + static_cast<std::ptrdiff_t>(count)};
}

/// The packet that must stand at this index into the record's frame, with the record's time.
IndexedPacket packetAt(Indexed const& indexed, CaptureRecord const& record, std::size_t index) {
    auto const found = indexed.packets.find(record.position + recordHeaderSize + index);
    if (found == indexed.packets.end()) {
        ADD_FAILURE() << "no packet for the record at " << record.position;
        return {};
    }
    EXPECT_EQ(found->second.package.time, (Timest{record.seconds, record.nanoseconds}));
    return found->second;
}

std::string macAt(Bytes const& frame, std::size_t at) {
    constexpr char const* digits = "0123456789abcdef";
    std::string text;
    for (std::size_t i = at; i < at + 6; ++i) {
        if (i != at) text += ':';
        text += digits[frame.at(i) / 16];
        text += digits[frame.at(i) % 16];
    }
    return text;
}

template <typename Id>
void expectHeader(Id const& id, Bytes const& frame, std::size_t apdu) {
    EXPECT_EQ(id.dstMac, macAt(frame, 0));
    EXPECT_EQ(id.srcMac, macAt(frame, 6));
    EXPECT_EQ(id.appId, std::uint64_t{twoOctets(frame, apdu)});
    EXPECT_EQ(id.reserved1Bit0, frame.at(apdu + 5) & 1);
}

constexpr std::size_t signedRecord = 2;  // the third of three frames in the synthetic captures

TEST(SyntheticGoose, IndexesPlainTaggedAndSignedFramesByTheirOctets) {
    auto const path = capture("goose-synthetic-vlan-signed-trailer.pcap");
    if (!path) GTEST_SKIP() << "no recorded capture of signed GOOSE frames";
    Indexed const indexed(*path);
    ASSERT_EQ(indexed.records.size(), 3U);
    ASSERT_EQ(indexed.packets.size(), 3U);
    for (CaptureRecord const& record : indexed.records) {
        bool const tagged = twoOctets(record.frame, 12) == 0x8100;
        std::size_t const apdu = tagged ? 18 : 14;
        ASSERT_EQ(record.frame.at(apdu + 8), 0x61);
        IndexedPacket const packet = packetAt(indexed, record, apdu + 8);
        ASSERT_NE(packet.goose, nullptr);
        expectHeader(*packet.goose, record.frame, apdu);
        EXPECT_EQ(packet.goose->vlan.has_value(), tagged);
        if (tagged) {
            EXPECT_EQ(packet.goose->vlan->vlanId, twoOctets(record.frame, 14) & 0xFFFU);
        }
        EXPECT_EQ(packet.goose->gocbRef, characters(record.frame, apdu + 12, 21));
        EXPECT_EQ(packet.goose->datSet, characters(record.frame, apdu + 39, 16));
        EXPECT_EQ(packet.goose->goID, characters(record.frame, apdu + 57, 5));
    }
}

TEST(SyntheticGoose, LeavesTheSignatureOutOfTheIdentity) {
    auto const path = capture("goose-synthetic-vlan-signed-trailer.pcap");
    if (!path) GTEST_SKIP() << "no recorded capture of signed GOOSE frames";
    Indexed const indexed(*path);
    CaptureRecord const& record = indexed.records.at(signedRecord);
    ASSERT_EQ(twoOctets(record.frame, 20), 0x0020U) << "Reserved 2: octets of signature";
    ASSERT_EQ(record.frame.size(), 14U + 8U + 2U + record.frame.at(23) + 32U);
    EXPECT_EQ(packetAt(indexed, record, 22).goose,
              packetAt(indexed, indexed.records.at(0), 22).goose);
}

TEST(SyntheticSv, IndexesPlainTaggedAndSignedFramesByTheirOctets) {
    auto const path = capture("sv-synthetic-refrtm-vlan-signed-trailer.pcap");
    if (!path) GTEST_SKIP() << "no recorded capture of signed SV frames";
    Indexed const indexed(*path);
    ASSERT_EQ(indexed.records.size(), 3U);
    ASSERT_EQ(indexed.packets.size(), 3U);
    for (CaptureRecord const& record : indexed.records) {
        bool const tagged = twoOctets(record.frame, 12) == 0x8100;
        std::size_t const apdu = tagged ? 18 : 14;
        ASSERT_EQ(record.frame.at(apdu + 13), 0xA2) << "behind 60, its length and noASDU";
        IndexedPacket const packet = packetAt(indexed, record, apdu + 13);
        ASSERT_NE(packet.sv, nullptr);
        expectHeader(*packet.sv, record.frame, apdu);
        EXPECT_EQ(packet.sv->vlan.has_value(), tagged);
        if (tagged) {
            EXPECT_EQ(packet.sv->vlan->vlanId, twoOctets(record.frame, 14) & 0xFFFU);
        }
        EXPECT_EQ(packet.sv->svID, characters(record.frame, apdu + 19, 4));
        EXPECT_EQ(packet.sv->maxNoASDU, record.frame.at(apdu + 12));
        EXPECT_EQ(packet.sv->smpRate, 4000);
    }
}

TEST(SyntheticSv, LeavesTheSignatureOutOfTheIdentity) {
    auto const path = capture("sv-synthetic-refrtm-vlan-signed-trailer.pcap");
    if (!path) GTEST_SKIP() << "no recorded capture of signed SV frames";
    Indexed const indexed(*path);
    CaptureRecord const& record = indexed.records.at(signedRecord);
    ASSERT_EQ(twoOctets(record.frame, 20), 0x0020U) << "Reserved 2: octets of signature";
    IndexedPacket const packet = packetAt(indexed, record, 27);
    EXPECT_EQ(packet.sv, packetAt(indexed, indexed.records.at(0), 27).sv);
    EXPECT_EQ(packet.sv->maxSmpCnt, twoOctets(record.frame, 14 + 25));
}

TEST(HsrGoose, IndexesEveryFrameOfBothRingDirectionsByItsOctets) {
    auto const path = capture("derived-goose-hsr-both-ring-directions.pcap");
    if (!path) GTEST_SKIP() << "no recorded capture of GOOSE over HSR";
    Indexed const indexed(*path);
    ASSERT_EQ(indexed.records.size(), 120U);
    ASSERT_EQ(indexed.packets.size(), 120U);
    std::map<char, int> framesOfLan;
    for (CaptureRecord const& record : indexed.records) {
        ASSERT_EQ(twoOctets(record.frame, 12), 0x8100U);
        ASSERT_EQ(twoOctets(record.frame, 16), 0x892FU);
        ASSERT_EQ(twoOctets(record.frame, 22), 0x88B8U);
        ++framesOfLan[(record.frame.at(18) & 0x10) != 0 ? 'B' : 'A'];
        IndexedPacket const packet = packetAt(indexed, record, 32);
        ASSERT_NE(packet.goose, nullptr);
        expectHeader(*packet.goose, record.frame, 24);
        EXPECT_EQ(packet.goose->vlan->vlanId, twoOctets(record.frame, 14) & 0xFFFU);
        EXPECT_EQ(packet.goose->gocbRef, characters(record.frame, 37, 27));
        EXPECT_EQ(packet.goose->hsr->lanId, 'A') << "the direction of the stream's first frame";
    }
    EXPECT_EQ(framesOfLan, (std::map<char, int>{{'A', 60}, {'B', 60}}));
}

TEST(HsrGoose, KeepsOnlyTheRingDirectionThatIsAskedFor) {
    auto const path = capture("derived-goose-hsr-both-ring-directions.pcap");
    if (!path) GTEST_SKIP() << "no recorded capture of GOOSE over HSR";
    Filter filter;
    filter.gooseFilters.emplace_back().hsr.emplace().lanId = 'B';
    IndexImage const image = libraryImage({*path}, filter);
    std::size_t packets = 0;
    for (StreamImage const& stream : image.streams) {
        EXPECT_NE(stream.identity.find("lanId=B"), std::string::npos) << stream;
        packets += stream.packetCount;
    }
    EXPECT_EQ(packets, 60U);
}

TEST(PrpSv, IndexesEveryFrameOfBothNetworksByItsOctets) {
    auto const path = capture("derived-sv-prp-both-lans.pcap");
    if (!path) GTEST_SKIP() << "no recorded capture of SV over PRP";
    Indexed const indexed(*path);
    ASSERT_EQ(indexed.records.size(), 400U);
    ASSERT_EQ(indexed.packets.size(), 400U);
    std::map<char, int> framesOfLan;
    unsigned maxSmpCnt = 0;
    for (CaptureRecord const& record : indexed.records) {
        std::size_t const size = record.frame.size();
        ASSERT_EQ(twoOctets(record.frame, size - 2), 0x88FBU);
        ASSERT_EQ(twoOctets(record.frame, 16), 0x88BAU);
        ++framesOfLan[(record.frame.at(size - 4) & 0x10) != 0 ? 'B' : 'A'];
        IndexedPacket const packet = packetAt(indexed, record, 31);
        ASSERT_NE(packet.sv, nullptr);
        expectHeader(*packet.sv, record.frame, 18);
        EXPECT_EQ(packet.sv->svID, characters(record.frame, 37, 16));
        EXPECT_EQ(packet.sv->prp->lanId, 'A') << "the network of the stream's first frame";
        maxSmpCnt = std::max(maxSmpCnt, twoOctets(record.frame, 55));
    }
    EXPECT_EQ(framesOfLan, (std::map<char, int>{{'A', 200}, {'B', 200}}));
    EXPECT_EQ(indexed.packets.begin()->second.sv->maxSmpCnt, maxSmpCnt);
}

// --- Captures that belong together -------------------------------------------------------------

/// Two captures of the same four streams, taken at two nodes.
struct Viewpoints : testing::Test {
    void SetUp() override {
        auto const found = capture("goose-testbed-viewpoint-a.pcap");
        auto const other = capture("goose-testbed-viewpoint-b.pcap");
        if (!found || !other) GTEST_SKIP() << "no recorded captures of two viewpoints";
        a = *found;
        b = *other;
        indexInto(db, a);
        indexInto(db, b);
    }

    std::string a;
    std::string b;
    Db db;
};

TEST_F(Viewpoints, ShareTheirStreams) {
    EXPECT_EQ(db.gooseProto.getGooseCount(), 4U);
    for (Goose const& stream : db.gooseProto.streams) {
        EXPECT_EQ(stream.files.size(), 2U);
        std::size_t packets = 0;
        for (PackageFile const& file : stream.files) packets += file.packages.size();
        EXPECT_EQ(stream.packetCount, packets);
    }
    EXPECT_EQ(difference(imageOf(db), plainImage({a, b})), "");
}

TEST_F(Viewpoints, KeepTheOtherFileWhenOneIsCleared) {
    db.clearByFileName(b);
    EXPECT_EQ(difference(withoutStatistics(imageOf(db)), withoutStatistics(libraryImage({a}))), "");
    db.clearByFileName(a);
    EXPECT_EQ(db.gooseProto.getGooseCount(), 0U);
}

TEST_F(Viewpoints, KeepTheLaterFileWhenTheEarlierIsCleared) {
    db.clearByFileName(a);
    EXPECT_EQ(difference(withoutStatistics(imageOf(db)), withoutStatistics(libraryImage({b}))), "");
}

TEST_F(Viewpoints, AddAFileAgainAfterItWasCleared) {
    IndexImage const before = imageOf(db);
    db.clearByFileName(b);
    indexInto(db, b);
    EXPECT_EQ(difference(withoutStatistics(imageOf(db)), withoutStatistics(before)), "");
}

/// The first records of a capture as a capture of their own.
Bytes firstRecords(std::string const& path, std::size_t count) {
    CaptureRecord const last = readCapture(path).at(count - 1);
    return prefix(readFile(path), last.position + recordHeaderSize + last.inclLen);
}

void expectFirstRecords(std::string const& name, std::string const& source, std::size_t count) {
    auto const copy = capture(name);
    auto const original = capture(source);
    if (!copy || !original) GTEST_SKIP() << "no recorded capture " << name << " or its source";
    ScratchFile const first(firstRecords(*original, count));
    EXPECT_EQ(difference(withFileName(libraryImage({*copy}), "capture"),
                         withFileName(libraryImage({first.path()}), "capture")),
              "");
}

TEST(ReencodedCapture, OfTheOtherByteOrderEqualsItsSource) {
    expectFirstRecords("reencoded-be-us-goose-interlocking.pcap",
                       "goose-interlocking-three-publishers-vlan0.pcap", 60);
}

TEST(ReencodedCapture, WithNanosecondsEqualsItsSource) {
    expectFirstRecords("reencoded-le-ns-sv-92le.pcap", "sv-92le-4000hz-three-phase-fault.pcap",
                       300);
}

TEST(CutCapture, HoldsAllPacketsWhenTheLastRecordIsOfAnotherProtocol) {
    expectFirstRecords("cut-mid-last-record-goose-nested.pcap",
                       "goose-nested-structures-two-relays.pcap", 79);
}

TEST(SnappedCapture, IdentifiesStreamsByAddressesAndAppIdAlone) {
    auto const path = capture("snapped-90-goose-interlocking.pcap");
    if (!path) GTEST_SKIP() << "no recorded capture of snapped frames";
    Db db;
    indexInto(db, *path);
    for (Goose const& stream : db.gooseProto.streams) {
        EXPECT_EQ(stream.appId, 0x3001U);
        EXPECT_FALSE(stream.gocbRef || stream.datSet || stream.goID || stream.confRev);
        for (Package const& package : stream.files.begin()->packages)
            EXPECT_EQ(package, Package()) << "the goosePdu runs past the captured octets";
    }
}

}  // namespace
}  // namespace TalTest
