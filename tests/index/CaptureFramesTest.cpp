// The frames of captures, packet by packet, against what their octets say; and captures that share
// their traffic with another one.

#include <gtest/gtest.h>

#include <TalIec61850Parser/store/Db.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "index/IndexImage.hpp"
#include "index/Indexing.hpp"
#include "index/KnownCaptures.hpp"
#include "index/PlainDecode.hpp"
#include "support/CaptureFile.hpp"

namespace TalTest::CaptureFramesTest {
namespace {

using namespace TalIec61850Parser;

unsigned twoOctets(Bytes const& frame, std::size_t at) {
    return frame.at(at) * 256U + frame.at(at + 1);
}

Bytes from(Bytes const& frame, std::size_t at) {
    return {frame.begin() + static_cast<std::ptrdiff_t>(at), frame.end()};
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

/// Tags and trailer of a frame as they are written.
struct Link {
    std::optional<unsigned> vlanId = {};
    std::optional<char> hsrLan = {};
    std::optional<char> prpLan = {};
    unsigned etherType = 0;
    std::size_t apdu = 0;

    [[nodiscard]] bool isGoose() const { return etherType == 0x88B8; }
    [[nodiscard]] bool isSv() const { return etherType == 0x88BA; }
};

Link linkOf(Bytes const& frame) {
    Link link;
    std::size_t at = 12;
    auto const lane = [&frame](std::size_t octet) {
        return (frame.at(octet) & 0x10U) != 0 ? 'B' : 'A';
    };
    if (twoOctets(frame, at) == 0x8100) {
        link.vlanId = twoOctets(frame, at + 2) & 0xFFFU;
        at += 4;
    }
    if (twoOctets(frame, at) == 0x892F) {
        link.hsrLan = lane(at + 2);
        at += 6;
    }
    if (twoOctets(frame, frame.size() - 2) == 0x88FB) link.prpLan = lane(frame.size() - 4);
    link.etherType = twoOctets(frame, at);
    link.apdu = at + 2;
    return link;
}

template <typename Id>
void expectHeader(Id const& id, Bytes const& frame, Link const& link) {
    EXPECT_EQ(id.dstMac, macAt(frame, 0));
    EXPECT_EQ(id.srcMac, macAt(frame, 6));
    EXPECT_EQ(id.vlan.has_value(), link.vlanId.has_value());
    if (id.vlan && link.vlanId) {
        EXPECT_EQ(id.vlan->vlanId, *link.vlanId);
    }
    EXPECT_EQ(id.appId, std::uint64_t{twoOctets(frame, link.apdu)});
    EXPECT_EQ(id.reserved1Bit0, frame.at(link.apdu + 5) & 1);
}

/// Capture by capture, the packet of each GOOSE and SV frame.
class IndexedFrames : public KnownCaptureTest {
protected:
    void SetUp() override {
        KnownCaptureTest::SetUp();
        if (HasFatalFailure()) return;
        indexInto(db, path());
        records = readCapture(wholePath());
        packets = packetsByPosition(db);
    }

    /// The packet that must have its position at this index into the record's frame.
    [[nodiscard]] IndexedPacket packetAt(CaptureRecord const& record, std::size_t index) const {
        auto const found = packets.find(record.position + recordHeaderSize + index);
        if (found == packets.end()) {
            ADD_FAILURE() << "no packet for the record at " << record.position;
            return {};
        }
        EXPECT_EQ(found->second.package.time, (Timest{record.seconds, record.nanoseconds}));
        return found->second;
    }

    /// The packet in a record.
    [[nodiscard]] IndexedPacket packetIn(CaptureRecord const& record) const {
        auto const found = packets.lower_bound(record.position);
        bool const isInside = found != packets.end() &&
                              found->first < record.position + recordHeaderSize + record.inclLen;
        if (!isInside) throw std::runtime_error("no packet in the record");
        return found->second;
    }

    void expectGoose(CaptureRecord const& record, Link const& link) const {
        Goose const* const goose = packetAt(record, link.apdu + 8).goose;
        ASSERT_NE(goose, nullptr) << "record at " << record.position;
        expectHeader(*goose, record.frame, link);
        auto fields = plainFields(plainElements(from(record.frame, link.apdu + 8)).at(0).value);
        EXPECT_EQ(text(goose->gocbRef.value_or("")), fields[0x80]);
        EXPECT_EQ(text(goose->datSet.value_or("")), fields[0x82]);
        EXPECT_EQ(text(goose->goID.value_or("")), fields[0x83]);
    }

    void expectSv(CaptureRecord const& record, Link const& link) const {
        // The savPdu holds noASDU and the sequence of ASDU, the last of its elements.
        Bytes const content = plainElements(from(record.frame, link.apdu + 8)).at(0).value;
        auto const found = find(record.frame, content);
        ASSERT_TRUE(found);
        std::size_t const noAsdu = content.at(1) + std::size_t{2};
        Sv const* const sv = packetAt(record, *found + noAsdu).sv;
        ASSERT_NE(sv, nullptr) << "record at " << record.position;
        expectHeader(*sv, record.frame, link);
        auto asdus = plainAsdus(record.frame, *found + noAsdu);
        EXPECT_EQ(text(sv->svID.value_or("")), asdus.back()[0x80]);
        EXPECT_EQ(sv->maxNoASDU, asdus.size());
        EXPECT_EQ(sv->confRev, plainNumber(asdus.back()[0x83]));
        EXPECT_GE(sv->maxSmpCnt, plainNumber(asdus.back()[0x82]));
    }

    Db db;
    std::vector<CaptureRecord> records;
    std::map<std::uint64_t, IndexedPacket> packets;
};

INSTANTIATE_TEST_SUITE_P(Captures, IndexedFrames,
                         testing::ValuesIn(capturesWith([](KnownCapture const& capture) {
                             return capture.frames() != 0 && capture.withoutPosition == 0 &&
                                    capture.dissected <= Dissected::repeated;
                         })),
                         testName);

TEST_P(IndexedFrames, AreKnownByTheirOctets) {
    std::size_t compared = 0;
    for (CaptureRecord const& record : records) {
        if (record.frame.size() < 22) continue;
        Link const link = linkOf(record.frame);
        if (link.isGoose()) expectGoose(record, link);
        if (link.isSv()) expectSv(record, link);
        if (link.isGoose() || link.isSv()) ++compared;
        if (HasFailure()) return;
    }
    EXPECT_EQ(compared, GetParam().frames());
}

class RedundantFrames : public IndexedFrames {};

INSTANTIATE_TEST_SUITE_P(
    Captures, RedundantFrames,
    testing::ValuesIn(capturesNamed({"own-goose-hsr-both-ways.pcap", "own-goose-prp-both-lans.pcap",
                                     "own-sv-hsr-both-ways.pcap", "own-sv-prp-both-lans.pcap",
                                     "derived-goose-hsr-both-ring-directions.pcap",
                                     "derived-sv-prp-both-lans.pcap"})),
    testName);

TEST_P(RedundantFrames, AreOneStreamUnlessSvGoesBothWaysRoundARing) {
    std::map<char, std::size_t> framesOfLan;
    std::size_t ownLan = 0;
    for (CaptureRecord const& record : records) {
        Link const link = linkOf(record.frame);
        IndexedPacket const packet = packetIn(record);
        auto const& hsr = packet.goose != nullptr ? packet.goose->hsr : packet.sv->hsr;
        auto const& prp = packet.goose != nullptr ? packet.goose->prp : packet.sv->prp;
        ASSERT_EQ(hsr.has_value(), link.hsrLan.has_value());
        ASSERT_EQ(prp.has_value(), link.prpLan.has_value());
        char const lan = link.hsrLan ? *link.hsrLan : link.prpLan.value();
        char const kept = hsr ? *hsr->lanId : *prp->lanId;
        ++framesOfLan[lan];
        if (kept == lan) ++ownLan;
        if (packet.sv == nullptr || !hsr) {
            EXPECT_EQ(kept, 'A') << "the stream's first frame";
        }
    }
    std::size_t const half = GetParam().frames() / 2;
    EXPECT_EQ(framesOfLan, (std::map<char, std::size_t>{{'A', half}, {'B', half}}));
    bool const isSvInRing = GetParam().svFrames != 0 && db.svProto.streams.begin()->hsr.has_value();
    EXPECT_EQ(ownLan, isSvInRing ? 2 * half : half);
}

TEST_P(RedundantFrames, AreKeptByTheLanThatIsAskedFor) {
    Filter filter;
    bool const isHsr = linkOf(records.at(0).frame).hsrLan.has_value();
    auto const ask = [isHsr](auto& id) {
        id.appId.reset();
        if (isHsr) {
            id.hsr.emplace().lanId = 'B';
        } else {
            id.prp.emplace().lanId = 'B';
        }
    };
    ask(filter.gooseFilters.emplace_back());
    ask(filter.svFilters.emplace_back());
    std::size_t kept = 0;
    for (StreamImage const& stream : libraryImage({path()}, filter).streams) {
        EXPECT_NE(stream.identity.find("lanId=B"), std::string::npos) << stream;
        kept += stream.packetCount;
    }
    EXPECT_EQ(kept, GetParam().frames() / 2);
}

class SnappedFrames : public IndexedFrames {};

INSTANTIATE_TEST_SUITE_P(Captures, SnappedFrames,
                         testing::ValuesIn(capturesNamed({"own-goose-snapped.pcap",
                                                          "snapped-90-goose-interlocking.pcap"})),
                         testName);

TEST_P(SnappedFrames, AreIdentifiedByAddressesAndAppIdAlone) {
    for (Goose const& stream : db.gooseProto.streams) {
        EXPECT_TRUE(stream.appId.has_value());
        EXPECT_FALSE(stream.gocbRef || stream.datSet || stream.goID || stream.confRev);
        for (Package const& package : stream.files.begin()->packages)
            EXPECT_EQ(package, Package()) << "the goosePdu runs past the captured octets";
    }
}

// --- Elements in trailers and signatures -------------------------------------------------------

TEST(SvTrailers, ThatLookLikeNoAsduAreReadAsIt) {
    Db db;
    indexInto(db, ownCapture("own-sv-trailers-as-elements.pcap"));
    std::map<std::string, std::uint32_t> noAsdus;
    for (Sv const& stream : db.svProto.streams) noAsdus[*stream.svID] = stream.maxNoASDU;
    // A0 is what a PRP trailer of LAN A and fewer than 256 octets has after the sequence number,
    // B0 that of LAN B.
    EXPECT_EQ(noAsdus, (std::map<std::string, std::uint32_t>{{"BAY1_MU", 0xB0}, {"SIGNED", 1}}));
}

// --- Captures that belong together -------------------------------------------------------------

/// Two captures of the same streams, taken at two nodes.
using ViewpointNames = std::pair<char const*, char const*>;

class Viewpoints : public testing::TestWithParam<ViewpointNames> {
protected:
    void SetUp() override {
        auto const captures = capturesNamed({GetParam().first, GetParam().second});
        ASSERT_EQ(captures.size(), 2U);
        a = pathOf(captures[0]);
        b = pathOf(captures[1]);
        numStreams = captures[0].streams;
        indexInto(db, a);
        indexInto(db, b);
    }

    [[nodiscard]] std::size_t streams() const {
        return db.gooseProto.getGooseCount() + db.svProto.getSvCount();
    }

    std::string a;
    std::string b;
    std::size_t numStreams = 0;
    Db db;
};

std::vector<ViewpointNames> viewpoints() {
    std::vector<ViewpointNames> pairs = {{"own-viewpoint-a.pcap", "own-viewpoint-b.pcap"}};
    ViewpointNames const recorded = {"goose-testbed-viewpoint-a.pcap",
                                     "goose-testbed-viewpoint-b.pcap"};
    if (capturesNamed({recorded.first, recorded.second}).size() == 2) pairs.push_back(recorded);
    return pairs;
}

INSTANTIATE_TEST_SUITE_P(Captures, Viewpoints, testing::ValuesIn(viewpoints()),
                         [](auto const& instance) {
                             return captureTestName(instance.param.first);
                         });

template <typename Streams>
void expectBothFiles(Streams const& streams) {
    for (auto const& stream : streams) {
        EXPECT_EQ(stream.files.size(), 2U);
        std::size_t packets = 0;
        for (PackageFile const& file : stream.files) packets += file.packages.size();
        EXPECT_EQ(stream.packetCount, packets);
    }
}

TEST_P(Viewpoints, ShareTheirStreams) {
    EXPECT_EQ(streams(), numStreams);
    expectBothFiles(db.gooseProto.streams);
    expectBothFiles(db.svProto.streams);
    EXPECT_EQ(difference(imageOf(db), plainImage({a, b})), "");
}

TEST_P(Viewpoints, KeepTheOtherFileWhenOneIsCleared) {
    db.clearByFileName(b);
    EXPECT_EQ(difference(withoutStatistics(imageOf(db)), withoutStatistics(libraryImage({a}))), "");
    db.clearByFileName(a);
    EXPECT_EQ(streams(), 0U);
}

TEST_P(Viewpoints, KeepTheLaterFileWhenTheEarlierIsCleared) {
    db.clearByFileName(a);
    EXPECT_EQ(difference(withoutStatistics(imageOf(db)), withoutStatistics(libraryImage({b}))), "");
}

TEST_P(Viewpoints, AddAFileAgainAfterItWasCleared) {
    IndexImage const before = imageOf(db);
    db.clearByFileName(b);
    indexInto(db, b);
    EXPECT_EQ(difference(withoutStatistics(imageOf(db)), withoutStatistics(before)), "");
}

/// A capture that indexes to what the first records of another one do.
struct Copy {
    char const* name;
    char const* source;
    std::size_t records;
};

class CopiedCapture : public testing::TestWithParam<Copy> {};

std::vector<Copy> copies() {
    std::vector<Copy> all;
    for (Copy const& copy : std::initializer_list<Copy>{
             {"own-mixed-be-us.pcap", "own-mixed-le-us.pcap", 36},
             {"own-mixed-le-ns.pcap", "own-mixed-le-us.pcap", 36},
             {"own-mixed-be-ns.pcap", "own-mixed-le-us.pcap", 36},
             {"reencoded-be-us-goose-interlocking.pcap",
              "goose-interlocking-three-publishers-vlan0.pcap", 60},
             {"reencoded-le-ns-sv-92le.pcap", "sv-92le-4000hz-three-phase-fault.pcap", 300},
             // Its last record, which is cut, is of another protocol.
             {"cut-mid-last-record-goose-nested.pcap", "goose-nested-structures-two-relays.pcap",
              79}})
        if (capturesNamed({copy.name, copy.source}).size() == 2) all.push_back(copy);
    return all;
}

INSTANTIATE_TEST_SUITE_P(Captures, CopiedCapture, testing::ValuesIn(copies()),
                         [](auto const& instance) { return captureTestName(instance.param.name); });

/// The first records of a capture as a capture of their own.
Bytes firstRecords(std::string const& path, std::size_t count) {
    CaptureRecord const last = readCapture(path).at(count - 1);
    return prefix(readFile(path), last.position + recordHeaderSize + last.inclLen);
}

TEST_P(CopiedCapture, EqualsTheFirstRecordsOfItsSource) {
    std::string const copy = pathOf(capturesNamed({GetParam().name}).at(0));
    std::string const source = pathOf(capturesNamed({GetParam().source}).at(0));
    ScratchFile const first(firstRecords(source, GetParam().records));
    EXPECT_EQ(difference(withFileName(libraryImage({copy}), "capture"),
                         withFileName(libraryImage({first.path()}), "capture")),
              "");
}

}  // namespace
}  // namespace TalTest::CaptureFramesTest
