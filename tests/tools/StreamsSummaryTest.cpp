// The order of the rows of `streams`, and the line below them.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::StreamsSummaryTest {
namespace {

/// Streams that each key of the order puts into another row.
Bytes unequalStreams() {
    CaptureBuilder capture;
    std::uint32_t seconds = 10;
    auto const add = [&](Bytes const& frame, int packets, std::uint32_t step) {
        for (int i = 0; i < packets; ++i, seconds += step) {
            capture.add(seconds, 0, frame);
        }
    };
    add(svFrameCalled("MU3", svEthernet().from("02:00:00:00:00:07")), 3, 1);
    add(gooseFrameCalled("gcbA", Ethernet().from("02:00:00:00:00:09").to("01:0c:cd:01:00:05")), 2,
        4);
    add(gooseFrameCalled("gcbB", Ethernet().to("01:0c:cd:01:00:02")), 1, 1);
    add(svFrameCalled("MU1", svEthernet().to("01:0c:cd:04:00:07")), 4, 2);
    SvMessage other = svCalled("MU2");
    other.appId = 0x4001;
    add(svFrame(svEthernet().to("01:0c:cd:04:00:05"), other), 5, 3);
    return capture.bytes();
}

std::vector<Json> sortedBy(std::string const& key, Arguments const& more = {}) {
    TempFile const capture(unequalStreams());
    return rowsOf(joined({"streams", "--sort", key, capture.path()}, more));
}

/// What a row is ordered by, as the help says; null where it has none.
Json valueFor(std::string const& key, Json const& row) {
    static std::map<std::string, std::string> const fields = {
        {"source", "source"},   {"destination", "destination"}, {"appid", "appId"},
        {"packets", "packets"}, {"rate", "packetsPerSecond"},   {"first", "firstTimeNs"},
        {"last", "lastTimeNs"}};
    if (key == "name") {
        return row["svID"].is_null() ? row["gocbRef"] : row["svID"];
    }
    return row.at(fields.at(key));
}

bool isBefore(Json const& a, Json const& b) { return a.is_null() ? !b.is_null() : a < b; }

TEST(StreamsOrder, IsThatOfEachKey) {
    for (std::string const key :
         {"source", "destination", "appid", "name", "packets", "rate", "first", "last"}) {
        auto expected = sortedBy("identity");
        std::stable_sort(expected.begin(), expected.end(), [&](Json const& a, Json const& b) {
            return isBefore(valueFor(key, a), valueFor(key, b));
        });
        EXPECT_EQ(sortedBy(key), expected) << key;
        std::stable_sort(expected.begin(), expected.end(), [&](Json const& a, Json const& b) {
            return isBefore(valueFor(key, b), valueFor(key, a));
        });
        auto const reversed = sortedBy(key, {"--reverse"});
        ASSERT_EQ(reversed.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(valueFor(key, reversed[i]), valueFor(key, expected[i])) << key;
        }
    }
}

TEST(StreamsOrder, IsByIdentityUnlessToldOtherwise) {
    TempFile const capture(unequalStreams());
    auto rows = rowsOf({"streams", capture.path()});
    EXPECT_EQ(rows, sortedBy("identity"));
    EXPECT_EQ(fieldOf(rows, "protocol"), (std::vector<Json>{"GOOSE", "GOOSE", "SV", "SV", "SV"}));
    std::reverse(rows.begin(), rows.end());
    EXPECT_EQ(rowsOf({"streams", "-r", capture.path()}), rows);
}

TEST(StreamsSummary, CountsWhatIsListed) {
    TempDir const folder;
    auto const first = folder.write("1.pcap", smallCapture());
    auto const second = folder.write("2.pcap", memberTraffic());
    EXPECT_EQ(summaryOf(runCompanion({"streams", first, second}).out),
              "31 streams (18 GOOSE, 13 SV), 34 packets in 2 files, "
              "2023-11-14T22:13:20.000000000Z to 2023-11-14T22:13:48.000000000Z");
    EXPECT_EQ(summaryOf(runCompanion({"streams", first, "--protocol", "goose"}).out),
              "1 stream (1 GOOSE, 0 SV), 2 packets in 1 file, "
              "2023-11-14T22:13:20.123456789Z to 2023-11-14T22:13:22.123456789Z");
    EXPECT_EQ(summaryOf(runCompanion({"streams", first, "--svid", "none"}).out),
              "0 streams (0 GOOSE, 0 SV), 0 packets in 1 file");
}

TEST(StreamsSummary, IsForPeopleWhoWantIt) {
    TempFile const capture(smallCapture());
    for (std::string const command : {"streams", "packets", "library judge"}) {
        auto const whole = runCompanion(joined(commandWords(command), {capture.path()})).out;
        auto const quiet =
            runCompanion(joined(commandWords(command), {capture.path(), "--quiet"})).out;
        EXPECT_EQ(whole, quiet + "\n" + summaryOf(whole) + "\n");
        EXPECT_NE(summaryOf(whole), "");
        EXPECT_EQ(runCompanion(joined(commandWords(command), {capture.path(), "-q"})).out, quiet);
        for (auto const* format : {"json", "csv"}) {
            EXPECT_EQ(
                runCompanion(joined(commandWords(command), {capture.path(), "-f", format})).out,
                runCompanion(joined(commandWords(command), {capture.path(), "-f", format, "-q"}))
                    .out);
        }
    }
}

}  // namespace
}  // namespace TalTest::StreamsSummaryTest
