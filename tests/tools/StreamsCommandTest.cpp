#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/Goose.hpp"
#include "support/OwnCaptures.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest {
namespace {

using Json = nlohmann::json;

TEST(Streams, AreATableUnlessToldOtherwise) {
    TempFile const capture(smallCapture());
    auto const result = runCompanion({"streams", capture.path()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, runCompanion({"streams", "--format", "table", capture.path()}).out);
    auto const lines = linesOf(result.out);
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_TRUE(lines[0].starts_with("PROTO  SOURCE  "));
    EXPECT_TRUE(lines[1].starts_with("GOOSE  00:30:a7:00:00:01  01:0c:cd:01:00:01     -  0x0001"));
    EXPECT_TRUE(lines[1].ends_with("0.500  gcb1          RELAY1LD0/LLN0$dataSet1  RELAY1_gcb1"));
    EXPECT_TRUE(lines[2].starts_with("SV     "));
    EXPECT_EQ(lines[3], "");
    EXPECT_EQ(lines[4],
              "2 streams (1 GOOSE, 1 SV), 5 packets in 1 file, 2023-11-14T22:13:20.000000001Z to "
              "2023-11-14T22:13:22.123456789Z");
}

TEST(Streams, AreOneJsonObjectPerLineOnRequest) {
    TempFile const capture(smallCapture());
    auto const rows = streamsOf({capture.path()});
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["protocol"], "GOOSE");
    EXPECT_EQ(rows[0]["gocbRef"], "gcb1");
    EXPECT_EQ(rows[0]["packets"], 2);
    EXPECT_EQ(rows[0]["firstTimeNs"], 1700000000123456789);
    EXPECT_EQ(rows[0]["lastTime"], "2023-11-14T22:13:22.123456789Z");
    EXPECT_EQ(rows[0]["packetsPerSecond"], 0.5);
    EXPECT_EQ(rows[1]["protocol"], "SV");
    EXPECT_EQ(rows[1]["svID"], "MU01");
    EXPECT_EQ(rows[1]["appId"], "0x4000");
    EXPECT_EQ(rows[1]["packets"], 3);
    EXPECT_EQ(rows[1]["packetsPerSecond"], 1.0);
}

TEST(Streams, AreCommaSeparatedOnRequest) {
    TempFile const capture(smallCapture());
    auto const result = runCompanion({"streams", "-f", "csv", capture.path()});
    EXPECT_EQ(result.status, 0);
    auto const lines = linesOf(result.out);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_TRUE(lines[0].starts_with("protocol,source,destination,vlanId,appId,"));
    EXPECT_TRUE(lines[1].starts_with("GOOSE,00:30:a7:00:00:01,01:0c:cd:01:00:01,,0x0001,"));
    EXPECT_TRUE(
        lines[2].ends_with(",3,1,2023-11-14T22:13:20.000000001Z,1700000000000000001,"
                           "2023-11-14T22:13:22.000000001Z,1700000002000000001,1.0"));
}

TEST(Streams, ShowVlanAndLanes) {
    TempFile const capture(
        CaptureBuilder()
            .add(1, 0, gooseFrame(Ethernet().withVlan(5), GooseMessage()))
            .add(2, 0, svFrame(svEthernet().withHsr('A'), SvMessage()))
            .add(3, 0, svFrame(svEthernet().withHsr('B'), SvMessage()))
            .add(4, 0, svFrame(svEthernet().to("01:0c:cd:04:00:09").withPrp('B'), SvMessage()))
            .bytes());
    auto const rows = streamsOf({capture.path()});
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[0]["vlanId"], 5);
    EXPECT_EQ(rows[1]["hsrLane"], "A");
    EXPECT_EQ(rows[2]["hsrLane"], "B");
    EXPECT_EQ(rows[3]["prpLane"], "B");
    auto const lines = linesOf(runCompanion({"streams", capture.path()}).out);
    EXPECT_NE(lines[2].find("  0x4000  A "), std::string::npos);
    EXPECT_NE(lines[3].find("  0x4000  B "), std::string::npos);
}

TEST(Streams, AreCountedOverAllFiles) {
    TempDir const folder;
    auto const first =
        folder.write("1.pcap", CaptureBuilder().add(10, 0, oneSv()).add(11, 0, oneSv()).bytes());
    auto const second =
        folder.write("2.pcap", CaptureBuilder(CaptureVariant::nanoBig).add(5, 7, oneSv()).bytes());
    auto const rows = streamsOf({first, second});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["packets"], 3);
    EXPECT_EQ(rows[0]["files"], 2);
    EXPECT_EQ(rows[0]["firstTimeNs"], 5000000007);
    EXPECT_EQ(rows[0]["lastTimeNs"], 11000000000);
}

TEST(Streams, DoNotDependOnTheOrderOfTheFiles) {
    TempDir const folder;
    auto const first = folder.write("1.pcap", smallCapture());
    auto const second = folder.write(
        "2.pcap", CaptureBuilder().add(10, 0, oneSv("MU02")).add(11, 0, oneGoose("gcb0")).bytes());
    EXPECT_EQ(streamsOf({first, second}), streamsOf({second, first}));
}

TEST(Streams, CountAFileGivenTwiceOnce) {
    TempDir const folder;
    auto const file = folder.write("1.pcap", smallCapture());
    std::filesystem::create_symlink(file, folder.file("latest.pcap"));
    auto const once = streamsOf({file});
    EXPECT_EQ(streamsOf({file, file}), once);
    EXPECT_EQ(streamsOf({file, folder.file("./1.pcap"), folder.file("latest.pcap")}), once);
}

TEST(Streams, CountPacketsThatCannotBePlacedButTakeNoTimeFromThem) {
    TempFile const capture(
        CaptureBuilder().addSnapped(7, 0, 30, oneGoose()).addSnapped(9, 0, 30, oneGoose()).bytes());
    auto const rows = streamsOf({capture.path()});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["packets"], 2);
    EXPECT_TRUE(rows[0]["firstTime"].is_null());
    EXPECT_TRUE(rows[0]["firstTimeNs"].is_null());
    EXPECT_TRUE(rows[0]["packetsPerSecond"].is_null());
}

TEST(Streams, OfACaptureWithoutAnyAreNoRows) {
    TempFile const capture(CaptureBuilder().bytes());
    EXPECT_TRUE(streamsOf({capture.path()}).empty());
    auto const table = runCompanion({"streams", capture.path()});
    EXPECT_EQ(table.status, 0);
    EXPECT_TRUE(table.out.ends_with("GOID\n\n0 streams (0 GOOSE, 0 SV), 0 packets in 1 file\n"));
}

TEST(Streams, ShowNoOctetOfANameToTheTerminalThatIsNotPrintable) {
    TempFile const capture(CaptureBuilder()
                               .add(1, 0, oneGoose("\x1b[2J\n\xff"))
                               .add(1, 0,
                                    oneSv("\x9b"
                                          "31m"))
                               .bytes());
    for (auto const* format : {"table", "csv", "json"}) {
        auto const result = runCompanion({"streams", "-f", format, capture.path()});
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(std::all_of(result.out.begin(), result.out.end(), [](char c) {
            return c == '\n' || (c >= ' ' && c < '\x7f');
        })) << format;
    }
}

TEST(Streams, DoNotDependOnTimeZoneOrLocale) {
    TempFile const capture(smallCapture());
    Surroundings const elsewhere{
        .environment = {{"TZ", "Asia/Kolkata"}, {"LC_ALL", "de_DE.UTF-8"}, {"LANG", "de_DE"}}};
    EXPECT_EQ(runCompanion({"streams", capture.path()}, elsewhere).out,
              runCompanion({"streams", capture.path()}).out);
}

/// The packets of each stream, in the order of the table.
std::vector<int> packetsOf(std::vector<Json> const& rows) {
    std::vector<int> packets;
    std::transform(rows.begin(), rows.end(), std::back_inserter(packets),
                   [](Json const& row) { return row["packets"].get<int>(); });
    return packets;
}

TEST(Streams, OfWholeCapturesAreAllThere) {
    auto const own = streamsOf({ownCapture("own-viewpoint-b.pcap")});
    EXPECT_EQ(packetsOf(own), (std::vector<int>{17, 17, 17, 17}));
    EXPECT_EQ(own.back()["svID"], "NODE_MU");
    for (auto const& path : recorded({"sv-13asdu-goose-mixed-testbed.pcap"})) {
        auto const rows = streamsOf({path});
        ASSERT_EQ(rows.size(), 5U);
        EXPECT_EQ(packetsOf(rows), (std::vector<int>{56, 48, 48, 947, 901}));
        EXPECT_EQ(rows[3]["svID"], "F_XFMR2");
    }
}

}  // namespace
}  // namespace TalTest
