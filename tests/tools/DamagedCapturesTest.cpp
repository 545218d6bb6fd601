// Captures that end too early: what is said of them, and what is still listed.

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::DamagedCapturesTest {
namespace {

std::vector<Arguments> const kCommands = {
    {"streams"},  {"packets"},          {"show"},
    {"captures"}, {"library", "judge"}, {"library", "judge", "--list"}};

/// The fault of a capture whose end is cut off, as each command must say it.
void expectFault(Bytes const& content, std::string const& fault, std::size_t packets) {
    TempDir const folder;
    auto const bad = folder.write("bad.pcap", content);
    auto const good = folder.write("good.pcap", CaptureBuilder().add(1, 0, oneSv("x")).bytes());
    for (auto const& command : kCommands) {
        SCOPED_TRACE(testing::PrintToString(command));
        auto const result = runCompanion(joined(command, {bad, good, "-f", "json"}));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, complaint(bad + ": " + fault));
        auto const rows = jsonOf(result.out);
        if (command[0] == "packets" || command[0] == "show") {
            EXPECT_EQ(rows.size(), packets + 1);
        }
        EXPECT_FALSE(rows.empty());
    }
}

/// Two packets, the second record at `second`.
struct TwoRecords {
    Bytes frame = svFrameCalled("MU01");
    Bytes first = CaptureBuilder().add(1, 0, frame).bytes();
    Bytes both = CaptureBuilder().add(1, 0, frame).add(2, 0, frame).bytes();
    std::string second = std::to_string(first.size());
    std::string size = std::to_string(frame.size());
};

TEST(DamagedCapture, ThatEndsInsideARecordHeaderIsSaid) {
    TwoRecords const records;
    for (std::size_t const left : {1U, 8U, 15U}) {
        expectFault(prefix(records.both, records.first.size() + left),
                    "the file ends inside the header of the record at " + records.second, 1);
    }
}

TEST(DamagedCapture, ThatEndsInsideARecordIsSaid) {
    TwoRecords const records;
    expectFault(prefix(records.both, records.first.size() + 16),
                "the file ends inside the record at " + records.second + ": " + records.size +
                    " of its " + records.size + " octets are missing",
                1);
    expectFault(prefix(records.both, records.both.size() - 1),
                "the file ends inside the record at " + records.second + ": 1 of its " +
                    records.size + " octets are missing",
                1);
}

TEST(DamagedCapture, ThatEndsInsideItsHeaderIsSaid) {
    for (std::size_t const size : {4U, 12U, 23U}) {
        expectFault(prefix(captureHeader(CaptureVariant::microBig), size),
                    "the file ends inside its header", 0);
    }
}

TEST(DamagedCapture, WhoseRecordClaimsMoreThanAnythingIsSaid) {
    TwoRecords const records;
    Bytes content = records.first;
    append(content, Bytes{2, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 1, 0, 0, 0, 0xAA});
    expectFault(content,
                "the file ends inside the record at " + records.second +
                    ": 4294967294 of its 4294967295 octets are missing",
                1);
}

TEST(WholeCapture, IsNotComplainedOfWhereverItEndsBetweenRecords) {
    Bytes const whole = memberTraffic();
    auto const records = readCapture(whole);
    for (std::size_t const number : {0U, 1U, 2U, 28U}) {
        TempFile const file(prefix(whole, records[number].position));
        EXPECT_EQ(rowsOf({"packets", file.path()}).size(), number);
    }
    TempFile const withEmptyRecords(
        CaptureBuilder().add(1, 0, {}).add(2, 0, oneSv()).add(3, 0, {}).bytes());
    EXPECT_EQ(rowsOf({"packets", withEmptyRecords.path()}).size(), 1U);
    EXPECT_EQ(rowsOf({"library", "judge", "-l", withEmptyRecords.path()}).size(), 3U);
}

TEST(DamagedCapture, IsSaidForEachFileInTheOrderGiven) {
    TempDir const folder;
    TwoRecords const records;
    auto const cut = folder.write("cut.pcap", prefix(records.both, records.both.size() - 1));
    auto const header = folder.write("header.pcap", prefix(records.both, 10));
    auto const text = folder.write("text.pcap", TalTest::text("no capture"));
    for (auto const& command : kCommands) {
        auto const result = runCompanion(joined(command, {header, text, cut, "-q"}));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err,
                  complaint(text + ": not a capture file") +
                      complaint(header + ": the file ends inside its header") +
                      complaint(cut + ": the file ends inside the record at " + records.second +
                                ": 1 of its " + records.size + " octets are missing"));
    }
}

}  // namespace
}  // namespace TalTest::DamagedCapturesTest
