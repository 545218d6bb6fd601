// `show` with a selection: the packets are those of `packets`, each in its record.

#include <gtest/gtest.h>

#include <algorithm>

#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::ShowSelectionTest {
namespace {

/// What both commands tell of a packet.
std::vector<Json> headsOf(std::vector<Json> const& rows) {
    std::vector<Json> heads;
    for (Json const& row : rows) {
        Json& head = heads.emplace_back();
        for (auto const* field : {"time", "timeNs", "file", "position", "place", "protocol"}) {
            head[field] = row.at(field);
        }
    }
    return heads;
}

TEST(ShowSelection, HasThePacketsThatAreListed) {
    TempDir const folder;
    auto const first = folder.write("1.pcap", memberTraffic());
    folder.write("2.pcap", smallCapture());
    for (Arguments const& options :
         {Arguments{}, Arguments{"--protocol", "goose"}, Arguments{"--svid", "MU*", "--vlan", "5"},
          Arguments{"--from", "+2s", "--to", "+20s", "--context"}, Arguments{"--hsr", "A"},
          Arguments{"--from", "2030-01-01"}}) {
        auto const command = joined({folder.path(), first}, options);
        EXPECT_EQ(headsOf(rowsOf(joined({"show"}, command))),
                  headsOf(rowsOf(joined({"packets"}, command))));
    }
}

TEST(ShowSelection, TellsTheRecordOfEachPacket) {
    auto const content = memberTraffic();
    TempFile const file(content);
    auto const rows = rowsOf({"show", file.path()});
    auto const records = readCapture(content);
    ASSERT_EQ(rows.size(), records.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i]["recordPosition"], records[i].position);
        EXPECT_EQ(rows[i]["capturedOctets"], records[i].inclLen);
        EXPECT_EQ(rows[i]["wireOctets"], records[i].origLen);
        EXPECT_EQ(rows[i]["timeNs"],
                  std::uint64_t{records[i].seconds} * 1'000'000'000 + records[i].nanoseconds);
    }
}

TEST(ShowSelection, HoldsExactlyOneOfGooseAndSv) {
    TempFile const file(memberTraffic());
    for (Json const& row : rowsOf({"show", file.path()})) {
        EXPECT_EQ(row["goose"].is_object(), row["protocol"] == "GOOSE");
        EXPECT_EQ(row["sv"].is_object(), row["protocol"] == "SV");
        EXPECT_EQ(row["goose"].is_null(), row["protocol"] == "SV");
        EXPECT_EQ(row["sv"].is_null(), row["protocol"] == "GOOSE");
    }
}

TEST(ShowSelection, IsOfTheFrameInTheRecord) {
    TempFile const file(memberTraffic());
    auto const shown = rowsOf({"show", file.path()});
    auto const packets = rowsOf({"packets", file.path()});
    ASSERT_EQ(shown.size(), packets.size());
    for (std::size_t i = 0; i < shown.size(); ++i) {
        auto const* const protocol = packets[i]["protocol"] == "SV" ? "sv" : "goose";
        auto const* const field = packets[i]["protocol"] == "SV" ? "svID" : "gocbRef";
        // Wherever it is there: the name of the stream, and of no other.
        auto const text = shown[i][protocol].dump();
        EXPECT_NE(text.find(packets[i][field].dump()), std::string::npos) << text;
    }
}

TEST(ShowSelection, HasTheSameInCommaSeparatedValues) {
    TempFile const file(memberTraffic());
    auto const json = rowsOf({"show", file.path()});
    auto const csv = csvRows(runCompanion({"show", "-f", "csv", file.path()}).out);
    ASSERT_EQ(csv.size(), json.size());
    for (std::size_t i = 0; i < csv.size(); ++i) {
        ASSERT_EQ(csv[i].size(), json[i].size());
        for (auto const& [name, value] : json[i].items()) {
            auto const& cell = csv[i].at(name);
            if (value.is_null()) {
                EXPECT_FALSE(cell) << name;
            } else if (value.is_string()) {
                EXPECT_EQ(cell, value.get<std::string>()) << name;
            } else {
                EXPECT_EQ(Json::parse(cell.value()), value) << name;
            }
        }
    }
}

TEST(ShowSelection, ParagraphsHaveOneTitleEach) {
    TempFile const file(smallCapture());
    auto const text = runCompanion({"show", file.path()}).out;
    auto const rows = rowsOf({"show", file.path()});
    std::size_t at = 0;
    for (Json const& row : rows) {
        auto const title = row["time"].get<std::string>() + " " +
                           row["protocol"].get<std::string>() + " " + file.path() + "@" +
                           row["position"].dump() + "\n";
        auto const found = text.find(title, at);
        ASSERT_NE(found, std::string::npos) << title;
        EXPECT_TRUE(found == 0 || text.substr(found - 2, 2) == "\n\n");
        at = found + title.size();
    }
    EXPECT_TRUE(text.ends_with('\n'));
    EXPECT_FALSE(text.ends_with("\n\n"));
}

TEST(ShowSelection, LeavesOutTheRecordThatTheFileIsCutInWhichItsPlaceShows) {
    Bytes const whole = CaptureBuilder()
                            .add(1, 0, svFrameCalled("MU01"))
                            .add(2, 0, gooseFrameCalled("gcb1"))
                            .bytes();
    auto const records = readCapture(whole);
    TempFile const file(prefix(whole, whole.size() - 3));
    auto const result = runCompanion({"show", "-f", "json", file.path()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(file.path() + ": the file ends inside the record at " +
                                    std::to_string(records[1].position) + ": 3 of its " +
                                    std::to_string(records[1].inclLen) + " octets are missing"));
    ASSERT_EQ(jsonOf(result.out).size(), 1U);
    auto const place = file.path() + "@" + std::to_string(records[1].position);
    auto const rows = rowsOf({"show", place});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["capturedOctets"], records[1].inclLen - 3);
    EXPECT_EQ(rows[0]["wireOctets"], records[1].origLen);
    EXPECT_EQ(rows[0]["goose"]["gocbRef"], "gcb1");
}

TEST(ShowSelection, OfWholeCapturesIsWhatIsListed) {
    auto paths =
        recorded({"goose-nested-structures-two-relays.pcap", "sv-13asdu-goose-mixed-testbed.pcap",
                  "goose-single-vlan-five-octet-integers.pcap", "reencoded-le-ns-sv-92le.pcap"});
    for (auto const* name : {"own-goose-every-type.pcap", "own-sv-1-to-13-asdus.pcap",
                             "own-goose-five-octet-integers.pcap", "own-mixed-be-ns.pcap"}) {
        paths.push_back(ownCapture(name));
    }
    for (auto const& path : paths) {
        // A frame of several ASDUs is shown once.
        auto packets = rowsOf({"packets", path, "--to", "+200ms"});
        packets.erase(std::unique(packets.begin(), packets.end(),
                                  [](Json const& a, Json const& b) {
                                      return a["framePosition"] == b["framePosition"];
                                  }),
                      packets.end());
        EXPECT_EQ(headsOf(rowsOf({"show", path, "--to", "+200ms"})), headsOf(packets)) << path;
    }
}

}  // namespace
}  // namespace TalTest::ShowSelectionTest
