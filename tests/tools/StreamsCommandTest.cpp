#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/Goose.hpp"
#include "support/OwnCaptures.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::StreamsCommandTest {
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
    EXPECT_TRUE(lines[0].starts_with("PROTO  SVID/GOCBREF   APPID  SOURCE  "));
    EXPECT_TRUE(lines[1].starts_with("GOOSE  gcb1          0x0001  00:30:a7:00:00:01  "));
    EXPECT_TRUE(lines[1].ends_with("  RELAY1LD0/LLN0$dataSet1  RELAY1_gcb1"));
    EXPECT_TRUE(lines[2].starts_with("SV     MU01          0x4000  "));
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
    EXPECT_TRUE(lines[0].starts_with("protocol,source,destination,vlanId,vlanStack,appId,"));
    EXPECT_TRUE(lines[1].starts_with("GOOSE,00:30:a7:00:00:01,01:0c:cd:01:00:01,,,0x0001,"));
    EXPECT_TRUE(
        lines[2].ends_with(",3,0,1,2023-11-14T22:13:20.000000001Z,1700000000000000001,"
                           "2023-11-14T22:13:22.000000001Z,1700000002000000001,1.0"));
}

TEST(Streams, AreNotToldApartByLaneAndCountCopiesApart) {
    CaptureBuilder builder;
    for (std::uint16_t i = 0; i < 3; ++i) {
        builder.add(i, 0, oneSv("MU01", svEthernet().withPrp('A', i)))
            .add(i, 1000, oneSv("MU01", svEthernet().withPrp('B', i)))
            .add(i, 2000, oneSv("MU02", svEthernet().withVlan(5).withHsr('B', i)));
    }
    TempFile const capture(builder.bytes());
    auto const rows = streamsOf({capture.path()});
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["packets"], 3);
    EXPECT_EQ(rows[0]["copies"], 3);
    EXPECT_EQ(rows[0]["packetsPerSecond"], 1.0);
    EXPECT_EQ(rows[0]["lastTimeNs"], 2'000'000'000);
    EXPECT_EQ(rows[1]["vlanId"], 5);
    EXPECT_EQ(rows[1]["copies"], 0);
    auto const lines = linesOf(runCompanion({"streams", capture.path()}).out);
    EXPECT_NE(lines[1].find("  3/3  "), std::string::npos) << lines[1];
    EXPECT_NE(lines[2].find("  0/3  "), std::string::npos) << lines[2];
}

TEST(Streams, AreThoseOfEveryAsdu) {
    std::set<std::string> names;
    for (Json const& row : streamsOf({ownCapture("own-sv-1-to-13-asdus.pcap")})) {
        names.insert(row["svID"].get<std::string>());
        EXPECT_GE(row["asdusPerFrame"], 1);
    }
    EXPECT_GE(names.size(), 13U);
}

TEST(Streams, OfStackedVlanTagsAndCookedCapturesAreThere) {
    GooseMessage const message;
    Bytes stacked = gooseFrame(Ethernet().withVlan(2), message);
    Bytes const outer = {0x88, 0xA8, 0x00, 0x01};
    stacked.insert(stacked.begin() + 12, outer.begin(), outer.end());
    TempFile const capture(CaptureBuilder().add(1, 0, stacked).bytes());
    auto const rows = streamsOf({capture.path()});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["vlanId"], 2);
    EXPECT_EQ(rows[0]["vlanStack"], "88a8:1/8100:2");
}

TEST(Streams, OfACaptureThatIsCutHaveWholeRecordsAlone) {
    Bytes const whole = smallCapture();
    auto const records = readCapture(whole);
    auto const cutAt = records.back().position + 16 + 20;
    TempFile const capture(prefix(whole, cutAt));
    auto const result = runCompanion({"streams", "-f", "json", capture.path()});
    EXPECT_EQ(result.status, 2);
    std::uint64_t packets = 0;
    for (Json const& row : jsonOf(result.out)) {
        packets += row["packets"].get<std::uint64_t>();
    }
    EXPECT_EQ(packets, records.size() - 1);
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

TEST(Streams, OfFramesThatASnapLengthCutAreThoseWhoseIdentityIsWhole) {
    TempFile const capture(CaptureBuilder()
                               .addSnapped(7, 0, 40, oneGoose())
                               .addSnapped(9, 0, 40, oneGoose())
                               .addSnapped(10, 0, 27, oneGoose())
                               .bytes());
    auto const result = runCompanion({"streams", "-f", "json", capture.path()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, complaint("1 GOOSE or SV frame of no stream: cut 1; packets lists them"));
    auto const rows = jsonOf(result.out);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["packets"], 2);
    EXPECT_EQ(rows[0]["lastTimeNs"], 9'000'000'000);
    EXPECT_TRUE(rows[0]["datSet"].is_null());
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
        std::set<std::string> names;
        for (Json const& row : rows) {
            if (row["protocol"] == "SV") {
                names.insert(row["svID"].get<std::string>());
            }
        }
        EXPECT_EQ(names.size(), 26U) << path;
        EXPECT_TRUE(names.contains("66kV1"));
        EXPECT_TRUE(names.contains("F_XFMR2"));
    }
}

}  // namespace
}  // namespace TalTest::StreamsCommandTest
