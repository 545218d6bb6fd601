// The index of every capture, frame by frame, against what tshark dissects.

#include <gtest/gtest.h>

#include <TalIec61850Parser/store/Db.hpp>
#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "index/Indexing.hpp"
#include "index/KnownCaptures.hpp"
#include "index/Tshark.hpp"
#include "support/CaptureFile.hpp"

namespace TalTest::TsharkTest {
namespace {

using namespace TalIec61850Parser;

std::vector<std::string> const fieldNames = {
    "frame.number", "frame.time_epoch", "eth.src",      "eth.dst",    "vlan.id",       "hsr.path",
    "goose.appid",  "goose.gocbRef",    "goose.datSet", "goose.goID", "goose.confRev", "sv.appid",
    "sv.svID",      "sv.confRev",       "sv.smpCnt",    "sv.smpRate", "sv.noASDU"};

/// What is not compared because the index differs from tshark on purpose.
struct Difference {
    bool confRev = false;
    std::string why = {};
};

Difference differenceIn(std::string const& capture) {
    static std::map<std::string, Difference> const differences = {
        {"goose-single-vlan-five-octet-integers.pcap",
         {true, "of confRev in five octets the index reads the first four"}},
        {"own-goose-five-octet-integers.pcap",
         {true, "of confRev in five octets the index reads the first four"}},
    };
    auto const found = differences.find(capture);
    return found == differences.end() ? Difference() : found->second;
}

std::optional<std::string> name(std::string const& field) {
    return field.empty() ? std::nullopt : std::optional(field);
}

Timest timeOf(std::string const& field) {
    std::size_t const point = field.find('.');
    return {static_cast<std::uint32_t>(std::stoul(field.substr(0, point))),
            static_cast<std::uint32_t>(std::stoul(field.substr(point + 1)))};
}

template <typename Id>
void expectLink(Id const& id, TsharkFields const& frame) {
    EXPECT_EQ(id.srcMac, frame.at("eth.src"));
    EXPECT_EQ(id.dstMac, frame.at("eth.dst"));
    EXPECT_EQ(id.vlan.has_value(), !frame.at("vlan.id").empty());
    if (id.vlan) {
        EXPECT_EQ(id.vlan->vlanId, number(frame.at("vlan.id")));
    }
    EXPECT_EQ(id.hsr.has_value(), !frame.at("hsr.path").empty());
}

void expectIdentity(Goose const& goose, TsharkFields const& frame, Difference const& known) {
    expectLink(goose, frame);
    EXPECT_EQ(goose.appId, number(frame.at("goose.appid")));
    EXPECT_EQ(goose.gocbRef, name(frame.at("goose.gocbRef")));
    EXPECT_EQ(goose.datSet, name(frame.at("goose.datSet")));
    EXPECT_EQ(goose.goID, name(frame.at("goose.goID")));
    EXPECT_EQ(goose.confRev == number(frame.at("goose.confRev")), !known.confRev) << known.why;
}

void expectIdentity(Sv const& sv, TsharkFields const& frame) {
    expectLink(sv, frame);
    EXPECT_EQ(sv.appId, number(frame.at("sv.appid")));
    EXPECT_EQ(sv.svID, name(frame.at("sv.svID")));
    EXPECT_EQ(sv.confRev, number(frame.at("sv.confRev")));
}

class TsharkComparison : public KnownCaptureTest {
protected:
    void SetUp() override {
        std::optional<std::string> const program = tsharkProgram();
        if (!program) GTEST_SKIP() << "no tshark on PATH";
        KnownCaptureTest::SetUp();
        if (HasFatalFailure()) return;
        indexInto(db_, path());
        packets_ = packetsByPosition(db_);
        frames_ = dissect(*program, wholePath(), fieldNames);
    }

    /// The indexed packet that is in this record.
    [[nodiscard]] IndexedPacket packetIn(CaptureRecord const& record) const {
        auto const found = packets_.lower_bound(record.position);
        std::uint64_t const end = record.position + recordHeaderSize + record.inclLen;
        return found == packets_.end() || found->first >= end ? IndexedPacket{} : found->second;
    }

    Db db_;
    std::map<std::uint64_t, IndexedPacket> packets_;
    std::vector<TsharkFields> frames_;
};

class TsharkSvComparison : public TsharkComparison {};
class TsharkCounts : public TsharkComparison {};

/// Where PDUs run past the captured octets, the index takes nothing from them, and tshark the
/// fields up to the cut.
bool isCompared(KnownCapture const& capture) {
    return capture.frames() != 0 && capture.withoutPosition == 0 &&
           (capture.dissected == Dissected::inFull || capture.dissected == Dissected::repeated);
}

bool isComparedSv(KnownCapture const& capture) {
    return isCompared(capture) && capture.svFrames != 0;
}

bool isCounted(KnownCapture const& capture) { return !capture.isOwn || !isCompared(capture); }

TEST_P(TsharkComparison, AgreesOnIdentityAndTimeOfEveryFrame) {
    Difference const known = differenceIn(GetParam().name);
    std::vector<CaptureRecord> const records = readCapture(wholePath());
    EXPECT_EQ(packets_.size(), frames_.size());
    for (TsharkFields const& frame : frames_) {
        SCOPED_TRACE("frame " + frame.at("frame.number"));
        IndexedPacket const packet = packetIn(records.at(std::stoul(frame.at("frame.number")) - 1));
        ASSERT_TRUE(packet.goose != nullptr || packet.sv != nullptr);
        EXPECT_EQ(packet.package.time, timeOf(frame.at("frame.time_epoch")));
        if (packet.goose != nullptr) expectIdentity(*packet.goose, frame, known);
        if (packet.sv != nullptr) expectIdentity(*packet.sv, frame);
        if (HasFailure()) return;
    }
}

/// What the index keeps of a stream's sample counts and rates, from tshark's fields.
struct Statistics {
    std::uint64_t maxSmpCnt = 0;
    std::uint64_t smpRate = 0;
    std::uint64_t maxNoASDU = 0;
};

TEST_P(TsharkSvComparison, AgreesOnTheStatisticsOfEveryStream) {
    std::vector<CaptureRecord> const records = readCapture(wholePath());
    std::map<Sv const*, Statistics> expected;
    for (TsharkFields const& frame : frames_) {
        Sv const* const sv = packetIn(records.at(std::stoul(frame.at("frame.number")) - 1)).sv;
        if (sv == nullptr) continue;
        Statistics& of = expected[sv];
        of.maxSmpCnt = std::max(of.maxSmpCnt, number(frame.at("sv.smpCnt")).value_or(0));
        of.smpRate = number(frame.at("sv.smpRate")).value_or(0);
        of.maxNoASDU = std::max(of.maxNoASDU, number(frame.at("sv.noASDU")).value_or(0));
    }
    for (auto const& [sv, of] : expected) {
        EXPECT_EQ(sv->maxSmpCnt, of.maxSmpCnt);
        EXPECT_EQ(sv->smpRate, of.smpRate);
        EXPECT_EQ(sv->maxNoASDU, of.maxNoASDU);
    }
    EXPECT_EQ(expected.size(), db_.svProto.getSvCount());
}

/// Addresses and APPIDs with the number of their frames.
using HeaderCounts = std::map<std::vector<std::string>, std::size_t>;

TEST_P(TsharkCounts, AgreeForEveryAddressAndAppId) {
    EXPECT_EQ(frames_.size(), GetParam().dissectedFrames);
    if (GetParam().dissected == Dissected::otherwise) return;
    HeaderCounts expected;
    for (TsharkFields const& frame : frames_) {
        std::string const& goose = frame.at("goose.appid");
        std::string const& appId = goose.empty() ? frame.at("sv.appid") : goose;
        ++expected[{frame.at("eth.src"), frame.at("eth.dst"),
                    std::to_string(number(appId).value())}];
    }
    HeaderCounts counted;
    auto const count = [&counted](auto const& streams) {
        for (auto const& stream : streams)
            counted[{*stream.srcMac, *stream.dstMac, std::to_string(*stream.appId)}] +=
                stream.packetCount;
    };
    count(db_.gooseProto.streams);
    count(db_.svProto.streams);
    EXPECT_EQ(counted, expected);
}

INSTANTIATE_TEST_SUITE_P(Captures, TsharkComparison, testing::ValuesIn(capturesWith(isCompared)),
                         testName);
INSTANTIATE_TEST_SUITE_P(Captures, TsharkSvComparison,
                         testing::ValuesIn(capturesWith(isComparedSv)), testName);
INSTANTIATE_TEST_SUITE_P(Captures, TsharkCounts, testing::ValuesIn(capturesWith(isCounted)),
                         testName);

}  // namespace
}  // namespace TalTest::TsharkTest
