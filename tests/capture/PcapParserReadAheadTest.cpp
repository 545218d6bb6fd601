#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "capture/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/TempFile.hpp"

// Files that another thread reads; `indexFile` compares both ways of reading in all other tests.

namespace TalTest::PcapParserReadAheadTest {
namespace {

using namespace TalIec61850Parser;

/// A capture of several blocks: record n is of second n.
Bytes captureOf(std::uint32_t records) {
    Bytes const frame = gooseFrame({}, {});
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < records; ++i) capture.add(i, 0, frame);
    return capture.bytes();
}

constexpr std::uint32_t kRecords = 12'000;
constexpr IndexOptions kReadAhead{.readAhead = true};

std::size_t packetsIn(Db const& db) {
    return isEmpty(db) ? 0 : packagesOf(only(db.gooseProto.streams)).size();
}

TEST(PcapParserReadAhead, IsOffUnlessAskedFor) { EXPECT_FALSE(IndexOptions{}.readAhead); }

TEST(PcapParserReadAhead, IndexesWhatIsIndexedWithoutIt) {
    Bytes const capture = captureOf(kRecords);
    ASSERT_GT(capture.size(), 1'000'000U);
    Indexed const result = indexCapture(capture);  // both ways
    EXPECT_EQ(packetsIn(result.db), kRecords);
    EXPECT_EQ(result.progress.size(), kRecords / 1000 + 1);
}

TEST(PcapParserReadAhead, CallsProgressOnTheThreadOfTheCaller) {
    TempFile const file(captureOf(kRecords));
    std::atomic<bool> const stop = false;
    Db db;
    std::size_t calls = 0;
    PcapParser::parseFile(
        file.path(), db, {}, stop,
        [&, caller = std::this_thread::get_id()](double) {
            calls += std::this_thread::get_id() == caller ? 1 : 0;
        },
        kReadAhead);
    EXPECT_EQ(calls, kRecords / 1000 + 1);
}

TEST(PcapParserReadAhead, EndsWhereTheCallbackStopsOrThrows) {
    TempFile const file(captureOf(kRecords));
    for (std::size_t const last : {0U, 1U, 5U, 11U}) {
        std::atomic<bool> stop = false;
        std::size_t call = 0;
        Db stopped;
        PcapParser::parseFile(
            file.path(), stopped, {}, stop, [&](double) { stop = call++ == last; }, kReadAhead);
        EXPECT_EQ(packetsIn(stopped), last * 1000 + 1);

        std::atomic<bool> const neverStop = false;
        Db thrown;
        call = 0;
        EXPECT_THROW(PcapParser::parseFile(
                         file.path(), thrown, {}, neverStop,
                         [&](double) {
                             if (call++ == last) throw std::runtime_error("no further");
                         },
                         kReadAhead),
                     std::runtime_error);
        EXPECT_EQ(packetsIn(thrown), last * 1000);
    }
}

TEST(PcapParserReadAhead, TakesAFileThatGrowsAsItIsOrLonger) {
    Bytes const capture = captureOf(kRecords);
    Bytes const longer = captureOf(2 * kRecords);
    for (bool const readAhead : {false, true}) {
        TempFile const file(capture);
        std::ofstream growing(file.path(), std::ios_base::binary | std::ios_base::app);
        std::atomic<bool> const stop = false;
        std::size_t size = capture.size();
        Db db;
        PcapParser::parseFile(file.path(), db, {}, stop,
                              [&](double) {
                                  std::size_t const added =
                                      std::min<std::size_t>(77'777, longer.size() - size);
                                  growing.write(reinterpret_cast<char const*>(longer.data() + size),
                                                static_cast<std::streamsize>(added));
                                  growing.flush();
                                  size += added;
                              },
                              {.readAhead = readAhead});
        // Where reading has overtaken writing, the last record is cut, perhaps in a name.
        std::size_t cut = 0;
        std::uint32_t whole = 0;
        for (Goose const& stream : db.gooseProto.streams) {
            if (stream.packetCount == 1) {
                ++cut;
                continue;
            }
            whole = stream.packetCount;
            for (std::uint32_t i = 0; i < whole; ++i)
                ASSERT_EQ(packagesOf(stream)[i].time.seconds, i) << "every record, once";
        }
        EXPECT_LE(cut, 1U);
        EXPECT_GE(whole, kRecords);
        EXPECT_LE(whole, 2 * kRecords);
    }
}

TEST(PcapParserReadAhead, TakesAFileThatShrinksAsFarAsItWasRead) {
    for (bool const readAhead : {false, true}) {
        TempFile const file(captureOf(kRecords));
        std::atomic<bool> const stop = false;
        std::size_t call = 0;
        Db db;
        PcapParser::parseFile(file.path(), db, {}, stop,
                              [&](double) {
                                  if (call++ == 2)
                                      std::ofstream(file.path(), std::ios_base::binary).close();
                              },
                              {.readAhead = readAhead});
        // The record that was cut may be of another stream by what is left of its names.
        std::size_t const count = packetLines(db).size();
        EXPECT_GE(count, 2001U);
        EXPECT_LE(count, kRecords);
    }
}

TEST(PcapParserReadAhead, RefusesFilesOfTheKernelLikeAnyThatAreNoCaptures) {
    for (std::string const path : {"/proc/self/status", "/proc/self/maps", "/proc/self/mem"})
        EXPECT_EQ(indexFile(path).errors, "Invalid PCAP file format\n") << path;
}

}  // namespace
}  // namespace TalTest::PcapParserReadAheadTest
