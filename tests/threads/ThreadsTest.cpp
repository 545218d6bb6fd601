#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <TalIec61850Parser/codec/Asn1Parser.hpp>
#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "capture/Criteria.hpp"
#include "capture/Indexing.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/Station.hpp"
#include "support/TempFile.hpp"
#include "threads/Together.hpp"

// What may run on several threads at once gives on each of them what it gives alone. The program is
// also built for a sanitizer that watches for races.

namespace TalTest::ThreadsTest {
namespace {

using namespace TalIec61850Parser;

constexpr std::size_t kThreads = 8;
constexpr std::uint64_t kFrames = 4000;

Bytes const& stationCapture() {
    static Bytes const octets = [] {
        std::ostringstream out;
        writeStation(out, CaptureVariant::microLittle, kFrames);
        return text(out.str());
    }();
    return octets;
}

Db index(std::string const& path, IndexOptions const& options = {}) {
    Db db;
    std::atomic<bool> const stop = false;
    PcapParser::parseFile(path, db, {}, stop, {}, options);
    return db;
}

/// A capture file of a station, and what the index holds of it.
class Threads : public testing::Test {
protected:
    [[nodiscard]] std::string const& path() const { return file_.path(); }
    [[nodiscard]] Db const& whole() const { return whole_; }

private:
    TempFile file_{stationCapture()};
    Db whole_ = index(file_.path());
};

// --- Judging frames ------------------------------------------------------------------------------

std::vector<bool> verdicts(std::vector<CaptureRecord> const& records, Filter const& filter) {
    std::vector<bool> all;
    for (CaptureRecord const& record : records)
        all.push_back(EthernetParser::parsePacketSimple(record.frame, filter));
    return all;
}

/// The names and addresses of every other stream.
Filter everyOtherStream(Db const& db) {
    Filter filter;
    bool wantedOne = false;
    for (Goose const& goose : db.gooseProto.streams)
        if ((wantedOne = !wantedOne)) filter.gooseFilters.push_back(goose);
    for (Sv const& sv : db.svProto.streams)
        if ((wantedOne = !wantedOne)) filter.svFilters.push_back(sv);
    return filter;
}

TEST_F(Threads, JudgeFramesWithOneFilter) {
    std::vector<CaptureRecord> const records = readCapture(stationCapture());
    for (Filter const& filter : {Filter{}, everyOtherStream(whole())}) {
        std::vector<bool> const expected = verdicts(records, filter);
        EXPECT_GT(std::count(expected.begin(), expected.end(), true), 0);
        EXPECT_GT(std::count(expected.begin(), expected.end(), false), 0);
        std::vector<std::vector<bool>> results(kThreads);
        together(kThreads, [&](std::size_t i) { results[i] = verdicts(records, filter); });
        for (std::vector<bool> const& result : results) EXPECT_EQ(result, expected);
    }
}

// --- Decoding packets from the file --------------------------------------------------------------

template <typename Streams>
std::vector<std::uint64_t> positionsOf(Streams const& streams) {
    std::vector<std::uint64_t> positions;
    for (auto const& stream : streams)
        for (Package const& package : packagesOf(stream)) positions.push_back(package.position);
    std::sort(positions.begin(), positions.end());
    return positions;
}

/// A line for each packet: all fields, all data, all samples.
std::vector<std::string> decodedGoose(std::string const& path,
                                      std::vector<std::uint64_t> const& positions) {
    std::vector<std::string> lines;
    for (std::uint64_t const position : positions) {
        GoosePdu const pdu = GooseParser::parseGoosePDUFromFile(path, position);
        std::string line;
        for (std::string const* field :
             {&pdu.gocbRef, &pdu.timeAllowedToLive, &pdu.datSet, &pdu.goID, &pdu.t, &pdu.stNum,
              &pdu.sqNum, &pdu.simulation, &pdu.confRev, &pdu.ndsCom, &pdu.numDatSetEntries})
            line += *field + ';';
        line += Asn1Parser::formatBytes(pdu.allData);
        for (float const value : GooseParser::parseBooleanValues(pdu.allData))
            line += ' ' + std::to_string(value);
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> decodedSv(std::string const& path,
                                   std::vector<std::uint64_t> const& positions) {
    std::vector<std::string> lines;
    for (std::uint64_t const position : positions) {
        std::ostringstream line;
        for (ASDUData const& asdu : SvParser::parseASDUFromFile(path, position)) {
            line << asdu.svID << ';' << asdu.datSet << ';' << asdu.smpCnt << ';' << asdu.confRev
                 << ';' << Asn1Parser::convertRefrTmToDateTime(asdu.refrTm) << ';'
                 << unsigned{asdu.smpSynch} << ';' << asdu.smpRate;
            for (SampleData const& sample : asdu.samples)
                line << ' ' << sample.value << '/' << sample.quality;
            line << '\n';
        }
        lines.push_back(line.str());
    }
    return lines;
}

/// Every kind of time, as text.
std::vector<std::string> renderedTimes() {
    std::vector<std::string> texts;
    for (std::uint32_t second = 0; second < 2000; ++second) {
        std::uint32_t const time = second * 2'000'000;
        for (Bytes const& value :
             {bigEndian(time, 4), bigEndian(time * 1'000'000'000ULL, 8), utcTime(time, second),
              bigEndian(0x41D0'0000'0000'0000 + (std::uint64_t{second} << 32), 8),
              Bytes{0x03, 0xE7, 1, 2, 3, 4}, Bytes{}, Bytes{1, 2, 3}}) {
            texts.push_back(Asn1Parser::convertGooseTimestampToDateTime(value));
            texts.push_back(Asn1Parser::convertBytesToTimestamp(value));
            texts.push_back(Asn1Parser::convertRefrTmToDateTime(value));
        }
    }
    return texts;
}

TEST_F(Threads, DecodePacketsFromOneFile) {
    std::vector<std::uint64_t> const gooses = positionsOf(whole().gooseProto.streams);
    std::vector<std::uint64_t> svs = positionsOf(whole().svProto.streams);
    svs.resize(std::min<std::size_t>(svs.size(), 500));
    ASSERT_FALSE(gooses.empty() || svs.empty());
    auto const decode = [&] {
        return std::pair(decodedGoose(path(), gooses), decodedSv(path(), svs));
    };
    auto const expected = decode();
    EXPECT_NE(expected.first.front().find("LLN0"), std::string::npos);
    EXPECT_GT(expected.second.front().size(), 20U);
    std::vector<decltype(decode())> results(kThreads);
    together(kThreads, [&](std::size_t i) { results[i] = decode(); });
    for (auto const& result : results) EXPECT_EQ(result, expected);
}

TEST_F(Threads, RenderTimes) {
    std::vector<std::string> const expected = renderedTimes();
    std::vector<std::vector<std::string>> results(kThreads);
    together(kThreads, [&](std::size_t i) { results[i] = renderedTimes(); });
    for (auto const& result : results) EXPECT_EQ(result, expected);
}

// --- Indexing ------------------------------------------------------------------------------------

TEST_F(Threads, IndexOneFileIntoAStoreEach) {
    for (bool const readAhead : {false, true}) {
        std::vector<Db> stores(kThreads);
        together(kThreads,
                 [&](std::size_t i) { stores[i] = index(path(), {.readAhead = readAhead}); });
        for (Db const& db : stores) {
            EXPECT_EQ(streamLines(db), streamLines(whole()));
            EXPECT_EQ(packetLines(db), packetLines(whole()));
        }
    }
}

TEST_F(Threads, IndexJudgeAndDecodeAtOnce) {
    std::vector<CaptureRecord> const records = readCapture(stationCapture());
    Filter const filter = everyOtherStream(whole());
    std::vector<std::uint64_t> const gooses = positionsOf(whole().gooseProto.streams);
    auto const expectedVerdicts = verdicts(records, filter);
    auto const expectedPackets = packetLines(whole());
    auto const expectedGoose = decodedGoose(path(), gooses);
    std::vector<char> equal(kThreads);
    together(kThreads, [&](std::size_t i) {
        if (i % 3 == 0) equal[i] = verdicts(records, filter) == expectedVerdicts;
        if (i % 3 == 1) equal[i] = packetLines(index(path())) == expectedPackets;
        if (i % 3 == 2) equal[i] = decodedGoose(path(), gooses) == expectedGoose;
    });
    EXPECT_EQ(equal, std::vector<char>(kThreads, 1));
}

// --- Stopping ------------------------------------------------------------------------------------

using Packet = std::pair<std::uint64_t, std::string>;

template <typename Streams>
void addPackets(std::vector<Packet>& packets, Streams const& streams) {
    for (auto const& stream : streams)
        for (Package const& package : packagesOf(stream))
            packets.emplace_back(package.position, listing::identity(stream));
}

/// The packets of the index in the order in which they stand in the file.
std::vector<Packet> packetsInOrder(Db const& db) {
    std::vector<Packet> packets;
    addPackets(packets, db.gooseProto.streams);
    addPackets(packets, db.svProto.streams);
    std::sort(packets.begin(), packets.end());
    return packets;
}

TEST_F(Threads, FlagSetByAnotherEndsIndexingAtAnyMoment) {
    std::vector<Packet> const all = packetsInOrder(whole());
    std::size_t stoppedOnTheWay = 0;
    std::size_t yields = 0;
    for (int round = 0; round < 300; ++round) {
        IndexOptions const options{.readAhead = round % 2 == 1};
        std::atomic<bool> begun = false;
        std::atomic<bool> spinning = false;
        std::atomic<bool> stop = false;
        std::thread other([&] {
            while (!begun) std::this_thread::yield();
            if (yields != 0) spinning = true;
            for (std::size_t i = 0; i < yields; ++i) std::this_thread::yield();
            stop = true;
            spinning = true;
        });
        Db db;
        double last = -1;
        PcapParser::parseFile(
            path(), db, {}, stop,
            [&](double fraction) {
                begun = true;
                while (!spinning) std::this_thread::yield();
                last = fraction;
            },
            options);
        other.join();

        std::vector<Packet> const packets = packetsInOrder(db);
        ASSERT_LE(packets.size(), all.size());
        EXPECT_TRUE(std::equal(packets.begin(), packets.end(), all.begin()));
        // Complete, and said so, or stopped, and said nothing.
        if (last == 1.0) {
            EXPECT_EQ(packets.size(), all.size());
        }
        stoppedOnTheWay += packets.size() < all.size() ? 1U : 0U;
        // Later each time, until that is too late.
        yields = last == 1.0 ? 0 : yields + 1 + yields / 8;
    }
    EXPECT_GT(stoppedOnTheWay, 0U);
}

TEST_F(Threads, FlagSetByAnotherEndsIndexingBeforeTheNextRecord) {
    std::vector<CaptureRecord> const records = readCapture(stationCapture());
    std::vector<Packet> const all = packetsInOrder(whole());
    for (int round = 0; round < 8; ++round) {
        int const callback = round / 2 + 1;
        IndexOptions const options{.readAhead = round % 2 == 1};
        std::atomic<bool> asked = false;
        std::atomic<bool> stop = false;
        std::thread other([&] {
            while (!asked) std::this_thread::yield();
            stop = true;
        });
        int callbacks = 0;
        Db db;
        PcapParser::parseFile(
            path(), db, {}, stop,
            [&](double) {
                if (++callbacks != callback) return;
                asked = true;
                while (!stop) std::this_thread::yield();
            },
            options);
        other.join();
        EXPECT_EQ(callbacks, callback);
        // Called before records 0, 1000, 2000, ...: that record is still read, the next is not.
        std::uint64_t const end =
            records.at(static_cast<std::size_t>(callback - 1) * 1000 + 1).position;
        auto const expected = std::count_if(
            all.begin(), all.end(), [end](Packet const& packet) { return packet.first < end; });
        EXPECT_EQ(packetsInOrder(db).size(), static_cast<std::size_t>(expected));
    }
}

}  // namespace
}  // namespace TalTest::ThreadsTest
