// What `events` writes, in each format, and what it selects.

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/FaultyStation.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalTest::EventsCommandTest {
namespace {

constexpr std::int64_t kStateMillisecond = 1'000'000;
std::string const kFirstRelay = "RELAY1LD0/LLN0$GO$gcb1";
std::string const kSecondRelay = "RELAY2LD0/LLN0$GO$gcbTrip";

/// Three states of one relay, of which the second is told by values of all sorts; and two of
/// another, which changes 30 ms after that.
FaultyStation eventStation() {
    FaultyStation station;
    station.add(GoosePlan{.firstMessage = 100, .states = {20, 5, 3}});
    auto const data = [](bool isOn) {
        return std::vector<Bytes>{
            dataBoolean(isOn), dataQuality(isOn ? 0x4000 : 0),
            dataStructure({dataFloat(isOn ? 1.5F : 0.25F), dataVisibleString("a;\"b\\\n")}),
            dataUtcTime(1'700'000'000)};
    };
    station.changeGooseFrom(0, 0, [&](GooseMessage& each) { each.setData(data(false)); })
        .changeGooseFrom(0, 20, [&](GooseMessage& each) { each.setData(data(true)); });
    station.add(GoosePlan{.gocbRef = kSecondRelay,
                          .source = "02:00:00:00:00:12",
                          .firstMessage = 7,
                          .states = {20, 4},
                          .start = 30 * kStateMillisecond});
    return station;
}

TempFile eventFile() { return TempFile(eventStation().captures().at(0)); }

std::vector<std::string> gocbRefsOf(std::vector<Json> const& rows) {
    std::vector<std::string> names;
    for (Json const& row : rows) {
        names.push_back(row["gocbRef"].get<std::string>() + " " + row["stNum"].dump());
    }
    return names;
}

std::vector<std::string> const kAllEvents = {kFirstRelay + " 6", kSecondRelay + " 6",
                                             kFirstRelay + " 7"};

TEST(EventsJson, HasItsFieldsInOneOrder) {
    TempFile const file = eventFile();
    auto const lines = linesOf(runCompanion({"events", "-f", "json", file.path()}).out);
    std::vector<std::string> names;
    auto const ordered = nlohmann::ordered_json::parse(lines.at(0));
    for (auto const& [name, value] : ordered.items()) {
        names.push_back(name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"time",
                                               "timeNs",
                                               "gocbRef",
                                               "source",
                                               "appId",
                                               "t",
                                               "tNs",
                                               "tQuality",
                                               "delayNs",
                                               "stNum",
                                               "previousStNum",
                                               "sqNum",
                                               "changes",
                                               "retransmissionsNs",
                                               "retransmissions",
                                               "timeAllowedtoLive",
                                               "longestIntervalNs",
                                               "nextStream",
                                               "nextNs",
                                               "file",
                                               "position"}));
}

TEST(EventsJson, TellsAnEvent) {
    TempFile const file = eventFile();
    auto const rows = rowsOf({"events", file.path()});
    ASSERT_EQ(gocbRefsOf(rows), kAllEvents);
    Json const& row = rows[0];
    EXPECT_EQ(row["time"], "2023-11-14T22:13:22.000000000Z");
    EXPECT_EQ(row["timeNs"], 1'700'000'002'000'000'000);
    EXPECT_EQ(row["source"], "02:00:00:00:00:11");
    EXPECT_EQ(row["appId"], "0x0001");
    EXPECT_EQ(row["t"], "2023-11-14T22:13:22.000000000Z");
    EXPECT_EQ(row["tNs"], 1'700'000'002'000'000'000);
    EXPECT_EQ(row["tQuality"], "accuracy 10 bits");
    EXPECT_EQ(row["delayNs"], 0);
    EXPECT_EQ(row["previousStNum"], 5);
    EXPECT_EQ(row["sqNum"], 0);
    EXPECT_EQ(row["retransmissionsNs"], Json::parse("[4000000,12000000,28000000,60000000]"));
    EXPECT_EQ(row["retransmissions"], 4);
    EXPECT_EQ(row["timeAllowedtoLive"], 250);
    EXPECT_EQ(row["longestIntervalNs"], 32'000'000);
    EXPECT_EQ(row["nextStream"], kSecondRelay);
    EXPECT_EQ(row["nextNs"], 30'000'000);
    EXPECT_EQ(row["file"], file.path());
    EXPECT_TRUE(rows[2]["nextStream"].is_null());
    EXPECT_TRUE(rows[2]["nextNs"].is_null());
    EXPECT_EQ(rows[2]["changes"], Json::array());
}

TEST(EventsJson, HasPlacesThatShowTakes) {
    TempFile const file = eventFile();
    auto const rows = rowsOf({"events", file.path()});
    ASSERT_EQ(rows.size(), 3U);
    for (Json const& row : rows) {
        auto const shown = rowsOf({"show", file.path() + "@" + row["position"].dump()});
        ASSERT_EQ(shown.size(), 1U);
        EXPECT_EQ(shown[0]["goose"]["stNum"], row["stNum"]);
        EXPECT_EQ(shown[0]["timeNs"], row["timeNs"]);
    }
}

TEST(EventsJson, HasValuesAsShowHasThem) {
    TempFile const file = eventFile();
    auto const rows = rowsOf({"events", file.path()});
    Json const& changes = rows.at(0)["changes"];
    ASSERT_EQ(changes.size(), 3U);
    auto const shown =
        rowsOf({"show", file.path() + "@" + rows[0]["position"].dump()}).at(0)["goose"]["allData"];
    EXPECT_EQ(changes[0]["member"], "1");
    EXPECT_TRUE(changes[0]["name"].is_null());
    EXPECT_EQ(changes[0]["to"], shown[0]);
    EXPECT_EQ(changes[0]["from"]["value"], false);
    EXPECT_EQ(changes[1]["member"], "2");
    EXPECT_EQ(changes[1]["to"], shown[1]);
    EXPECT_EQ(changes[1]["to"]["quality"]["validity"], "invalid");
    EXPECT_EQ(changes[2]["member"], "3.1");
    EXPECT_EQ(changes[2]["to"], shown[2]["members"][0]);
    EXPECT_EQ(changes[2]["from"]["value"], 0.25);
}

TEST(EventsJson, HasNullForWhatIsNotKnown) {
    auto station = eventStation();
    station.goose(0, 20).allData.reset();
    station.goose(0, 20).t.reset();
    station.changeGooseFrom(0, 25, [](GooseMessage& each) { each.setData({dataInteger(5)}); });
    TempFile const file(station.captures().at(0));
    auto const rows = rowsOf({"events", "--gocbref", kFirstRelay, file.path()});
    ASSERT_EQ(rows.size(), 2U);
    for (auto const* name : {"changes", "t", "tNs", "tQuality", "delayNs"}) {
        EXPECT_TRUE(rows[0][name].is_null()) << name;
    }
    // A value of another type has none before it.
    ASSERT_EQ(rows[1]["changes"].size(), 1U);
    EXPECT_TRUE(rows[1]["changes"][0]["from"].is_null());
    EXPECT_EQ(rows[1]["changes"][0]["to"]["value"], 5);
    auto const csv = csvRows(runCompanion({"events", "-f", "csv", file.path()}).out);
    EXPECT_EQ(csv.at(0).at("changes"), std::nullopt);
    EXPECT_EQ(csv.at(2).at("changes"), "1: none -> 5");
}

TEST(EventsCsv, HasChangesAndTimesAsTexts) {
    TempFile const file = eventFile();
    auto const json = rowsOf({"events", file.path()});
    for (auto const* format : {"csv", "spreadsheet"}) {
        auto const rows = csvRows(runCompanion({"events", "-f", format, file.path()}).out);
        ASSERT_EQ(rows.size(), 3U);
        EXPECT_EQ(rows[0].at("changes"),
                  "1: false -> true; 2: 0000000000000 (quality: good) -> 0100000000000 (quality: "
                  "invalid); 3.1: 0.25 -> 1.5");
        EXPECT_EQ(rows[0].at("retransmissionsNs"), "4000000 12000000 28000000 60000000");
        EXPECT_EQ(rows[2].at("changes"), "");
        EXPECT_EQ(rows[2].at("nextStream"), std::nullopt);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            EXPECT_EQ(rows[i].at("timeNs"), json[i]["timeNs"].dump());
            EXPECT_EQ(rows[i].at("position"), json[i]["position"].dump());
        }
    }
}

TEST(EventsCsv, EscapesTextsOnce) {
    auto station = eventStation();
    station.changeGooseFrom(0, 0, [](GooseMessage& each) { each.setData({dataInteger(1)}); })
        .changeGooseFrom(
            0, 20, [](GooseMessage& each) { each.setData({dataVisibleString("a\"\\\n\x1b")}); });
    TempFile const file(station.captures().at(0));
    auto const rows = csvRows(runCompanion({"events", "-f", "csv", file.path()}).out);
    std::string const escaped = TalIec61850Tools::escapeText("a\"\\\n\x1b");
    EXPECT_EQ(rows.at(0).at("changes"), "1: none -> " + escaped);
    auto const table = runCompanion({"events", file.path()}).out;
    EXPECT_NE(table.find("1: none -> " + escaped), std::string::npos) << table;
}

TEST(EventsTable, TellsWhatPeopleLookFor) {
    TempFile const file = eventFile();
    auto const result = runCompanion({"events", file.path()});
    EXPECT_EQ(result.err, "");
    auto const rows = tableRows(result.out);
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].at(0), "2023-11-14T22:13:22.000000000Z");
    EXPECT_EQ(rows[0].at(1), kFirstRelay);
    EXPECT_EQ(rows[0].at(2), "6");
    EXPECT_EQ(rows[0].at(4), "0.000");
    EXPECT_EQ(rows[2].at(5), "none");
    EXPECT_EQ(summaryOf(result.out), "3 events of 2 streams in 1 file");
}

TEST(EventsTable, FitsATerminal) {
    TempFile const file = eventFile();
    for (int const columns : {80, 120}) {
        auto const result =
            runCompanion({"events", "--color", "never", file.path()},
                         {.output = StandardOutputIs::terminal, .outputColumns = columns});
        ASSERT_EQ(result.status, 0) << result.err;
        for (std::string const& line : linesOf(result.out)) {
            EXPECT_LE(TalIec61850Tools::countColumns(line), static_cast<std::size_t>(columns))
                << line;
        }
        std::string const head = linesOf(result.out).at(0);
        for (auto const* name : {"TIME", "GOCBREF", "STNUM", "DELAY/MS", "CHANGES"}) {
            EXPECT_NE(head.find(name), std::string::npos) << head;
        }
    }
}

TEST(EventsSelection, IsThatOfStreams) {
    TempFile const file = eventFile();
    EXPECT_EQ(gocbRefsOf(rowsOf({"events", "--gocbref", "RELAY2*", file.path()})),
              std::vector<std::string>{kAllEvents[1]});
    EXPECT_EQ(gocbRefsOf(rowsOf({"events", "--source", "02:00:00:00:00:11", file.path()})),
              (std::vector<std::string>{kAllEvents[0], kAllEvents[2]}));
    EXPECT_EQ(gocbRefsOf(rowsOf({"events", "--protocol", "goose", file.path()})), kAllEvents);
    expectUsageError({"events", "--protocol", "sv", file.path()});
}

TEST(EventsSelection, TellsAttributesOfTheMessageItself) {
    auto station = eventStation();
    station.changeGooseFrom(0, 25, [](GooseMessage& each) { each.confRev = 7; });
    TempFile const file(station.captures().at(0));
    EXPECT_EQ(gocbRefsOf(rowsOf({"events", "--confrev", "7", file.path()})),
              std::vector<std::string>{kAllEvents[2]});
}

TEST(EventsSelection, IsThatOfTime) {
    TempFile const file = eventFile();
    EXPECT_EQ(gocbRefsOf(rowsOf({"events", "--from", "22:13:22", "--to", "22:13:22", file.path()})),
              std::vector<std::string>{kAllEvents[0]});
    EXPECT_EQ(gocbRefsOf(rowsOf({"events", "--from", "22:13:22.000000001", file.path()})),
              (std::vector<std::string>{kAllEvents[1], kAllEvents[2]}));
    EXPECT_EQ(rowsOf({"events", "--around", "22:13:22", "--span", "2ms", file.path()}).size(), 1U);
    expectUsageError({"events", "--from", "22:13:22", "--to", "22:13:21", file.path()});
}

TEST(EventsSelection, IsThatOfMembers) {
    TempFile const file = eventFile();
    auto const changedBy = [&](std::vector<std::string> const& patterns) {
        Arguments arguments = {"events", file.path()};
        for (std::string const& pattern : patterns) {
            arguments.insert(arguments.end(), {"--member", pattern});
        }
        std::string members;
        for (Json const& row : rowsOf(arguments)) {
            members += row["stNum"].dump() + ":";
            for (Json const& change : row["changes"]) {
                members += " " + change["member"].get<std::string>();
            }
            members += ";";
        }
        return members;
    };
    EXPECT_EQ(changedBy({"3.*"}), "6: 3.1;");
    EXPECT_EQ(changedBy({"1"}), "6: 1;6: 1;");
    EXPECT_EQ(changedBy({"2", "3.1"}), "6: 2 3.1;");
    // A group itself is no value.
    auto const none = runCompanion({"events", "--member", "3", "-f", "json", file.path()});
    EXPECT_EQ(none.out.find("3.1"), std::string::npos);
}

TEST(EventsSelection, EndsAtTheLimit) {
    TempFile const file = eventFile();
    EXPECT_EQ(gocbRefsOf(rowsOf({"events", "--limit", "2", file.path()})),
              (std::vector<std::string>{kAllEvents[0], kAllEvents[1]}));
    auto const result = runCompanion({"events", "--limit", "1", file.path()});
    EXPECT_EQ(summaryOf(result.out), "1 event of 1 stream in 1 file; more may be there");
    EXPECT_TRUE(rowsOf({"events", "--limit", "0", file.path()}).empty());
    expectUsageError({"events", "--limit", "x", file.path()});
}

TEST(EventsSelection, AsksHowSoonTheNextStreamChanges) {
    TempFile const file = eventFile();
    EXPECT_TRUE(
        rowsOf({"events", "--next-within", "29ms", file.path()}).at(0)["nextStream"].is_null());
    EXPECT_EQ(rowsOf({"events", "--next-within", "30ms", file.path()}).at(0)["nextNs"], 30'000'000);
    expectUsageError({"events", "--next-within", "soon", file.path()});
}

TEST(EventsColumns, AreThoseWanted) {
    TempFile const file = eventFile();
    auto const result =
        runCompanion({"events", "-f", "csv", "--columns", "stNum,changes", file.path()});
    EXPECT_EQ(linesOf(result.out).at(0), "stNum,changes");
    EXPECT_EQ(linesOf(result.out).at(3), "7,\"\"");
    expectUsageError({"events", "--columns", "svID", file.path()});
}

TEST(EventsNotes, SayWhatThereIsWhereNothingChanged) {
    TempFile const file = eventFile();
    auto const noteOf = [&](Arguments const& options) {
        auto const result = runCompanion(joined({"events", file.path()}, options));
        EXPECT_EQ(result.status, 0);
        return result.err;
    };
    EXPECT_NE(noteOf({"--from", "-1ms"}).find("no state changed in the window"), std::string::npos);
    EXPECT_NE(noteOf({"--member", "99"}).find("no such member changed"), std::string::npos);
    EXPECT_NE(noteOf({"--gocbref", "nothing"}).find("gocbref"), std::string::npos)
        << noteOf({"--gocbref", "nothing"});
    EXPECT_EQ(noteOf({"--quiet", "--member", "99"}), "");
}

TEST(EventsNotes, SayThatSvHasNone) {
    FaultyStation station;
    station.add(SvPlan{.frames = 10});
    TempFile const file(station.captures().at(0));
    auto const result = runCompanion({"events", file.path()});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.err, "");
}

TEST(EventsOutput, IsTheSameOverFilesInAnyOrder) {
    auto station = eventStation();
    auto const whole = gocbRefsOf(rowsOf({"events", eventFile().path()}));
    station.splitAt(2000 * kStateMillisecond + 1).splitAt(2010 * kStateMillisecond);
    auto const captures = station.captures();
    TempDir const folder;
    Arguments paths;
    for (Bytes const& capture : captures) {
        paths.push_back(folder.write("part" + std::to_string(paths.size()) + ".pcap", capture));
    }
    ASSERT_EQ(paths.size(), 3U);
    EXPECT_EQ(gocbRefsOf(rowsOf(joined({"events"}, paths))), whole);
    std::reverse(paths.begin(), paths.end());
    EXPECT_EQ(gocbRefsOf(rowsOf(joined({"events", "--jobs", "2"}, paths))), whole);
}

}  // namespace
}  // namespace TalTest::EventsCommandTest
