#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "capture/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

// What a caller can do while a capture is being indexed: watch, stop, throw, and use the store.

namespace TalTest::PcapParserProgressTest {
namespace {

using namespace TalIec61850Parser;

/// A capture of `records` GOOSE and SV frames in turn; record n is of second n.
Bytes captureOf(std::uint32_t records) {
    Bytes const goose = gooseFrame({}, {});
    Bytes const sv = svFrame(svEthernet(), {});
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < records; ++i) capture.add(i, 0, i % 2 == 0 ? goose : sv);
    return capture.bytes();
}

std::size_t packetsIn(Db const& db) { return packetLines(db).size(); }

/// Indexes `records` records; `action` is called with the count of the progress call, from 0.
Db indexWith(std::string const& path, Db db, std::function<void(Db&, int)> const& action) {
    std::atomic<bool> const stop = false;
    int call = 0;
    PcapParser::parseFile(path, db, {}, stop, [&](double) { action(db, call++); });
    return db;
}

TEST(PcapParserProgress, CaptureWithoutRecordsIsOnlyDone) {
    EXPECT_EQ(indexCapture(captureOf(0)).progress, std::vector<double>{1.0});
}

TEST(PcapParserProgress, OneRecordBeginsBehindTheHeader) {
    Bytes const capture = captureOf(1);
    EXPECT_EQ(indexCapture(capture).progress,
              (std::vector<double>{24.0 / static_cast<double>(capture.size()), 1.0}));
}

TEST(PcapParserProgress, IsReportedBeforeEveryThousandthRecord) {
    for (std::uint32_t const records : {999U, 1000U, 1001U, 2000U, 2001U, 2500U}) {
        Bytes const capture = captureOf(records);
        auto const size = static_cast<double>(capture.size());
        std::vector<double> expected;
        for (std::uint32_t i = 0; i < records; i += 1000) {
            expected.push_back(static_cast<double>(captureOf(i).size()) / size);
        }
        expected.push_back(1.0);
        Indexed const result = indexCapture(capture);
        EXPECT_EQ(result.progress, expected) << records << " records";
        EXPECT_EQ(packetsIn(result.db), records);
    }
    EXPECT_EQ(indexCapture(captureOf(2500)).progress.size(), 4U);
}

TEST(PcapParserProgress, RecordsThatAreNotIndexedCountToo) {
    CaptureBuilder capture;
    for (int i = 0; i < 1001; ++i) capture.add(0, 0, {});
    auto const size = static_cast<double>(capture.bytes().size());
    EXPECT_EQ(indexCapture(capture.bytes()).progress,
              (std::vector<double>{24.0 / size, (24.0 + 1000 * 16) / size, 1.0}));
}

TEST(PcapParserProgress, RecordCutShortEndsInOne) {
    Bytes const capture = prefix(captureOf(1), 24 + 5);
    EXPECT_EQ(indexCapture(capture).progress, (std::vector<double>{24.0 / 29.0, 1.0}));
}

TEST(PcapParserProgress, RecordAboutToBeReadIsNotYetIndexed) {
    TempFile const file(captureOf(1001));
    std::vector<std::size_t> packets;
    indexWith(file.path(), {}, [&](Db& db, int) { packets.push_back(packetsIn(db)); });
    EXPECT_EQ(packets, (std::vector<std::size_t>{0, 1000, 1001}));
}

TEST(PcapParserProgress, EmptyCallbackIsNotCalled) {
    TempFile const file(captureOf(1001));
    std::atomic<bool> const stop = false;
    Db db;
    PcapParser::parseFile(file.path(), db, {}, stop, {});
    PcapParser::parseFile(file.path(), db, {}, stop, nullptr);
    EXPECT_EQ(packetsIn(db), 2002U);
}

TEST(PcapParserProgress, FileSizeIsWhatItIsAFractionOf) {
    TempFile const onDisk(captureOf(1));
    PcapFile file(onDisk.path());
    Db db;
    std::vector<double> progress;
    PcapParser::_parseFilePcap(file, false, true, db, {}, std::atomic<bool>{false}, 96,
                               [&](double fraction) { progress.push_back(fraction); });
    EXPECT_EQ(progress, (std::vector<double>{0.25, 1.0}));
}

TEST(PcapParserProgress, FileSizeOfZeroGivesNoFractions) {
    TempFile const onDisk(captureOf(1001));
    PcapFile file(onDisk.path());
    Db db;
    std::vector<double> progress;
    PcapParser::_parseFilePcap(file, false, true, db, {}, std::atomic<bool>{false}, 0,
                               [&](double fraction) { progress.push_back(fraction); });
    EXPECT_EQ(progress, std::vector<double>{1.0});
    EXPECT_EQ(packetsIn(db), 1001U);
}

TEST(PcapParserStop, FlagSetBeforehandEndsBeforeTheFirstRecord) {
    Indexed const result = indexCapture(captureOf(3), {}, true);
    EXPECT_TRUE(isEmpty(result.db));
    EXPECT_TRUE(result.progress.empty());
    EXPECT_EQ(result.errors, "");
}

TEST(PcapParserStop, EndOfFileIsTestedBeforeTheFlag) {
    Bytes const header = captureHeader(CaptureVariant::microLittle);
    EXPECT_EQ(indexCapture(header, {}, true).progress, std::vector<double>{1.0});
    EXPECT_EQ(indexCapture(prefix(header, 10), {}, true).progress, std::vector<double>{1.0});
    EXPECT_TRUE(indexCapture(concat({header, {0x00}}), {}, true).progress.empty());
}

TEST(PcapParserStop, FlagSetBeforehandDoesNotHideABadFile) {
    EXPECT_EQ(indexCapture(text("no capture at all"), {}, true).errors,
              "Invalid PCAP file format\n");
}

TEST(PcapParserStop, RecordWhoseProgressCallSetsTheFlagIsTheLast) {
    TempFile const file(captureOf(2500));
    for (std::size_t const callThatStops : {0U, 1U, 2U}) {
        std::atomic<bool> stop = false;
        std::vector<double> progress;
        Db db;
        PcapParser::parseFile(file.path(), db, {}, stop, [&](double fraction) {
            progress.push_back(fraction);
            stop = progress.size() > callThatStops;
        });
        // The flag was read before the call, so that record is still taken, and none after it.
        EXPECT_EQ(packetsIn(db), callThatStops * 1000 + 1);
        EXPECT_EQ(progress.size(), callThatStops + 1);
        EXPECT_LT(progress.back(), 1.0);
    }
}

TEST(PcapParserStop, StoppedStoreCanBeAddedTo) {
    TempFile const file(captureOf(1500));
    std::atomic<bool> stop = false;
    Db db;
    PcapParser::parseFile(file.path(), db, {}, stop, [&](double) { stop = true; });
    stop = false;
    PcapParser::parseFile(file.path(), db, {}, stop, {});
    EXPECT_EQ(packetsIn(db), 1501U);
}

TEST(PcapParserException, OfTheCallbackReachesTheCallerAndKeepsWhatWasIndexed) {
    TempFile const file(captureOf(2500));
    std::atomic<bool> const stop = false;
    for (int callThatThrows = 0; callThatThrows < 4; ++callThatThrows) {
        Db db;
        int call = 0;
        auto const throwing = [&](double) {
            if (call++ == callThatThrows) throw std::runtime_error("enough");
        };
        EXPECT_THROW(PcapParser::parseFile(file.path(), db, {}, stop, throwing),
                     std::runtime_error);
        auto const indexed =
            static_cast<std::size_t>(callThatThrows == 3 ? 2500 : callThatThrows * 1000);
        EXPECT_EQ(packetsIn(db), indexed);

        PcapParser::parseFile(file.path(), db, {}, stop, {});
        EXPECT_EQ(packetsIn(db), indexed + 2500);
        EXPECT_EQ(only(db.gooseProto.streams).packetCount, indexed / 2 + 1250);
        db.clearByFileName(file.path());
        EXPECT_TRUE(isEmpty(db));
    }
}

TEST(PcapParserException, NeedNotBeAStandardOne) {
    TempFile const file(captureOf(1));
    std::atomic<bool> const stop = false;
    Db db;
    EXPECT_THROW(PcapParser::parseFile(file.path(), db, {}, stop, [](double) { throw 7; }), int);
    EXPECT_TRUE(isEmpty(db));
}

TEST(PcapParserCallback, MayClearTheStore) {
    TempFile const file(captureOf(1500));
    Db const db = indexWith(file.path(), {}, [](Db& store, int call) {
        if (call == 1) store.clear();
    });
    EXPECT_EQ(packetsIn(db), 500U);
    EXPECT_EQ(only(db.gooseProto.streams).packetCount, 250U);
    EXPECT_EQ(only(db.svProto.streams).packetCount, 250U);
    EXPECT_EQ(packagesOf(only(db.gooseProto.streams)).front().time.seconds, 1000U);
}

TEST(PcapParserCallback, MayClearTheStoreEveryTime) {
    TempFile const file(captureOf(2500));
    EXPECT_TRUE(isEmpty(indexWith(file.path(), {}, [](Db& store, int) { store.clear(); })));
}

TEST(PcapParserCallback, MayClearTheFileBeingIndexed) {
    TempFile const file(captureOf(1500));
    Db const db = indexWith(file.path(), {}, [&](Db& store, int call) {
        if (call == 1) store.clearByFileName(file.path());
    });
    EXPECT_EQ(packetsIn(db), 500U);
    EXPECT_EQ(only(db.gooseProto.streams).packetCount, 250U);
}

TEST(PcapParserCallback, MayClearTheFileBeingIndexedFromStreamsThatHaveAnother) {
    TempDir const directory;
    std::string const early = directory.write("early.pcap", captureOf(10));
    std::string const late = directory.write("late.pcap", captureOf(1500));
    Db const db = indexWith(late, indexFile(early).db, [&](Db& store, int call) {
        if (call == 1) store.clearByFileName(late);
    });
    EXPECT_EQ(packetsIn(db), 510U);
    EXPECT_EQ(only(db.svProto.streams).files.size(), 2U);
    EXPECT_EQ(only(db.svProto.streams).packetCount, 5U + 750U);
}

TEST(PcapParserCallback, MayClearAnotherFile) {
    TempDir const directory;
    std::string const early = directory.write("early.pcap", captureOf(10));
    std::string const late = directory.write("late.pcap", captureOf(1500));
    Db const db = indexWith(late, indexFile(early).db, [&](Db& store, int call) {
        if (call == 1) store.clearByFileName(early);
    });
    EXPECT_EQ(packetsIn(db), 1500U);
    EXPECT_EQ(packagesOf(only(db.gooseProto.streams)).size(), 750U);
    EXPECT_EQ(only(db.gooseProto.streams).packetCount, 5U + 750U);
}

TEST(PcapParserCallback, MayReplaceTheStore) {
    TempFile const file(captureOf(1500));
    Db const db = indexWith(file.path(), {}, [](Db& store, int call) {
        if (call == 1) store = Db{};
    });
    EXPECT_EQ(packetsIn(db), 500U);
}

TEST(PcapParserCallback, MayIndexAnotherFileIntoTheStore) {
    TempDir const directory;
    std::string const outer = directory.write("outer.pcap", captureOf(1500));
    std::string const inner = directory.write("inner.pcap", captureOf(1200));
    std::atomic<bool> const stop = false;
    Db const db = indexWith(outer, {}, [&](Db& store, int call) {
        if (call < 2) PcapParser::parseFile(inner, store, {}, stop, {});
    });
    EXPECT_EQ(packetsIn(db), 1500U + 2 * 1200U);
    EXPECT_EQ(only(db.gooseProto.streams).packetCount, 750U + 1200U);
}

}  // namespace
}  // namespace TalTest::PcapParserProgressTest
