// The command `check`: what it selects, how it writes it, and its exit status.

#include <gtest/gtest.h>

#include <algorithm>

#include "tools/CheckTraffic.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/render/FindingLayout.hpp"

namespace TalTest::CheckCommandTest {
namespace {

using TalIec61850Tools::countColumns;

int statusOf(StationFiles const& files, Arguments const& more = {}) {
    return runCompanion(files.check(more)).status;
}

std::vector<Json> kindsOf(std::vector<Json> const& rows) { return fieldOf(rows, "finding"); }

TEST(CheckStatus, IsThatOfTheWorstFinding) {
    auto clean = smallStation();
    StationFiles const nothing(clean);
    auto troubled = troubledStation();
    StationFiles const errors(troubled);
    auto synch = smallStation();
    synch.changeSvFrom(0, 10, [](SvMessage& message) { message.asdus.front().smpSynch = 0; });
    StationFiles const warning(synch);
    EXPECT_EQ(statusOf(nothing), 0);
    EXPECT_EQ(statusOf(nothing, {"--fail-on", "note"}), 0);
    EXPECT_EQ(statusOf(errors), 3);
    EXPECT_EQ(statusOf(errors, {"--fail-on", "none"}), 0);
    EXPECT_EQ(statusOf(errors, {"--fail-on", "note"}), 3);
    EXPECT_EQ(statusOf(errors, {"--summary"}), 3);
    EXPECT_EQ(statusOf(warning), 0);
    EXPECT_EQ(statusOf(warning, {"--fail-on", "warning"}), 3);
    EXPECT_EQ(statusOf(warning, {"--fail-on", "error"}), 0);
}

TEST(CheckStatus, GoesByWhatIsSelectedAndNotByTheLimit) {
    auto station = troubledStation();
    StationFiles const files(station);
    EXPECT_EQ(statusOf(files, {"--limit", "0"}), 3);
    EXPECT_EQ(statusOf(files, {"--kind", "synchLost"}), 0);
    EXPECT_EQ(statusOf(files, {"--from", "+1.9s"}), 0);
    EXPECT_EQ(statusOf(files, {"--svid", "MU07", "-q"}), 0);
    EXPECT_EQ(statusOf(files, {"--svid", "MU02"}), 3);
}

TEST(CheckStatus, OfFindingsOutranksThatOfFailures) {
    auto station = troubledStation();
    StationFiles const files(station);
    auto const missing = joined(files.paths(), {"/nonexistent"});
    EXPECT_EQ(runCompanion(joined({"check"}, missing)).status, 3);
    EXPECT_EQ(runCompanion(joined({"check", "--fail-on", "none"}, missing)).status, 2);
    EXPECT_EQ(runCompanion({"check", "/nonexistent"}).status, 2);
}

TEST(CheckRows, HaveTheirFieldsInOrder) {
    auto station = smallStation();
    station.drop(0, 1000, 8);
    StationFiles const files(station);
    auto const text = runCompanion(files.check({"-f", "json", "-q"})).out;
    auto const row = nlohmann::ordered_json::parse(text);
    std::vector<std::string> names;
    for (auto const& field : row.items()) {
        names.push_back(field.key());
    }
    EXPECT_EQ(names, (std::vector<std::string>{
                         "finding",     "severity", "protocol",     "source",
                         "destination", "vlanId",   "appId",        "svID",
                         "gocbRef",     "time",     "timeNs",       "untilTime",
                         "untilTimeNs", "count",    "lost",         "expected",
                         "found",       "cause",    "witness",      "witnessFrames",
                         "file",        "position", "previousFile", "previousPosition",
                         "text"}));
    EXPECT_EQ(row["finding"], "sampleGap");
    EXPECT_EQ(row["severity"], "error");
    EXPECT_EQ(row["protocol"], "SV");
    EXPECT_EQ(row["source"], "02:00:00:00:00:01");
    EXPECT_EQ(row["destination"], "01:0c:cd:04:00:01");
    EXPECT_EQ(row["vlanId"], nullptr);
    EXPECT_EQ(row["appId"], "0x4000");
    EXPECT_EQ(row["svID"], "MU01");
    EXPECT_EQ(row["gocbRef"], nullptr);
    EXPECT_EQ(row["time"], "2023-11-14T22:13:20.252000000Z");
    EXPECT_EQ(row["timeNs"], FaultyStation::timeOf(station.frame(0, 1008)));
    EXPECT_EQ(row["untilTimeNs"], row["timeNs"]);
    EXPECT_EQ(row["count"], 1);
    EXPECT_EQ(row["lost"], 8);
    EXPECT_EQ(row["expected"], 1000);
    EXPECT_EQ(row["found"], 1008);
    EXPECT_EQ(row["cause"], "network");
    EXPECT_EQ(row["witness"], "otherStreamsRanOn");
    EXPECT_EQ(row["witnessFrames"], 9);
    EXPECT_EQ(row["file"], files.paths().front());
    EXPECT_EQ(station.frameAt(0, row["position"])->number, 1008U);
    EXPECT_EQ(row["previousFile"], row["file"]);
    EXPECT_EQ(station.frameAt(0, row["previousPosition"])->number, 999U);
    // `show` takes the place.
    auto const shown = runCompanion(
        {"show", "-f", "json", "-q",
         files.paths().front() + "@" + std::to_string(row["position"].get<std::uint64_t>())});
    EXPECT_NE(shown.out.find("\"smpCnt\":1008"), std::string::npos);
}

TEST(CheckRows, AreTheSameInCsv) {
    auto station = troubledStation();
    StationFiles const files(station);
    auto const rows = checkRows(files);
    auto const cells = csvRows(runCompanion(files.check({"-f", "csv", "-q"})).out);
    ASSERT_EQ(cells.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (auto const& [name, value] : rows[i].items()) {
            auto const& cell = cells[i].at(name);
            std::string const text = value.is_string() ? std::string(value) : value.dump();
            EXPECT_EQ(cell, value.is_null() ? CsvCell() : CsvCell(text)) << name;
        }
    }
}

TEST(CheckRows, ComeInTheOrderOfTime) {
    auto station = troubledStation();
    auto const rows = checkRows(station);
    EXPECT_EQ(kindsOf(rows), (std::vector<Json>{"sampleGap", "repeated", "sqNumGap", "synchLost"}));
    auto const times = fieldOf(rows, "timeNs");
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
}

TEST(CheckRows, AreThoseOfTheKindsAndSeveritiesThatAreWanted) {
    auto station = troubledStation();
    StationFiles const files(station);
    EXPECT_EQ(kindsOf(checkRows(files, {"--kind", "repeated", "--kind", "SAMPLEGAP"})),
              (std::vector<Json>{"sampleGap", "repeated"}));
    EXPECT_EQ(kindsOf(checkRows(files, {"--severity", "error"})),
              (std::vector<Json>{"sampleGap", "repeated", "sqNumGap"}));
    EXPECT_EQ(checkRows(files, {"--severity", "warning"}).size(), 4U);
    EXPECT_EQ(kindsOf(checkRows(files, {"--limit", "2"})),
              (std::vector<Json>{"sampleGap", "repeated"}));
}

TEST(CheckRows, AreThoseInTheWindow) {
    auto station = troubledStation();
    StationFiles const files(station);
    EXPECT_EQ(kindsOf(checkRows(files, {"--from", "+0.5s", "--to", "+1s"})),
              (std::vector<Json>{"repeated", "sqNumGap"}));
    auto const rows = checkRows(files, {"--kind", "sampleGap"});
    auto const time = std::string(rows.at(0)["time"]);
    EXPECT_EQ(checkRows(files, {"--from", time, "--to", time}).size(), 1U);
    EXPECT_EQ(checkRows(files, {"--around", time, "--span", "2ms"}).size(), 1U);
}

TEST(CheckRows, AreThoseOfTheStreamsThatAreWanted) {
    auto station = troubledStation();
    station.add({.svID = "MU03", .source = "02:00:00:00:00:03", .frames = 8000, .start = 90'000});
    station.dropBetween(1800 * kNsOfMs, 1820 * kNsOfMs);
    StationFiles const files(station);
    EXPECT_EQ(kindsOf(checkRows(files, {"--svid", "MU02"})),
              (std::vector<Json>{"repeated", "sampleGap"}));
    // Streams that are not wanted are witnesses.
    EXPECT_EQ(checkRows(files, {"--svid", "MU02", "--kind", "sampleGap"}).at(0)["cause"],
              "capture");
    EXPECT_EQ(kindsOf(checkRows(files, {"--protocol", "goose"})),
              (std::vector<Json>{"sqNumGap", "sqNumGap"}));
    EXPECT_EQ(checkRows(files, {"--kind", "captureGap"}).size(), 1U);
    EXPECT_EQ(checkRows(files, {"--kind", "captureGap", "--source", "02:00:00:00:00:01"}).size(),
              0U);
    EXPECT_EQ(checkRows(files, {"--confrev", "7"}).size(), 0U);
    EXPECT_EQ(checkRows(files, {"--confrev", "1"}).size(), checkRows(files).size() - 1);
}

TEST(CheckRows, GoByTheLimitOfJitter) {
    auto station = smallStation();
    station.delay(0, 1000, 30'000);
    StationFiles const files(station);
    EXPECT_EQ(checkRows(files).size(), 0U);
    auto const row = checkRows(files, {"--jitter", "20us"}).at(0);
    EXPECT_EQ(row["finding"], "jitter");
    EXPECT_EQ(row["expected"], 20'000);
    EXPECT_EQ(row["found"], 30'000);
}

TEST(CheckRows, DoNotDependOnJobs) {
    auto station = troubledStation();
    station.splitAt(700 * kNsOfMs);
    StationFiles const files(station);
    auto const one = runCompanion(files.check({"--jobs", "1"}));
    auto const many = runCompanion(files.check({"--jobs", "7"}));
    EXPECT_EQ(one.out, many.out);
    EXPECT_EQ(one.status, many.status);
}

TEST(CheckRows, NameTheFilesOnBothSidesOfABorder) {
    auto station = smallStation();
    station.drop(0, 3999, 2).splitAt(1000 * kNsOfMs);
    StationFiles const files(station);
    auto const row = checkRows(files).at(0);
    EXPECT_EQ(row["finding"], "sampleGap");
    EXPECT_EQ(row["file"], files.paths()[1]);
    EXPECT_EQ(row["previousFile"], files.paths()[0]);
}

TEST(CheckTable, EndsWithACount) {
    auto station = troubledStation();
    StationFiles const files(station);
    EXPECT_EQ(summaryOf(runCompanion(files.check()).out),
              "4 findings: 3 errors, 1 warning, 0 notes, in 3 streams of 1 file");
    EXPECT_EQ(summaryOf(runCompanion(files.check({"--limit", "1"})).out),
              "4 findings: 3 errors, 1 warning, 0 notes, in 3 streams of 1 file; 3 more not "
              "listed");
    EXPECT_EQ(summaryOf(runCompanion(files.check({"--kind", "late"})).out),
              "nothing found: 3 streams, 16,015 packets; 4 other findings not selected");
    auto const rows = tableRows(runCompanion(files.check()).out);
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[0][1], "error");
    EXPECT_EQ(rows[0][2], "sampleGap");
    EXPECT_EQ(rows[0][3], "MU01");
}

TEST(CheckTable, SaysThatNothingWasFound) {
    auto station = smallStation();
    StationFiles const files(station);
    auto const result = runCompanion(files.check());
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(summaryOf(result.out), "nothing found: 3 streams, 16,020 packets");
    EXPECT_EQ(runCompanion(files.check({"-q"})).out, "TIME  LEVEL  FINDING  SVID/GOCBREF  TEXT\n");
}

TEST(CheckTable, SaysWhichStreamsThereAre) {
    auto station = smallStation();
    StationFiles const files(station);
    auto const result = runCompanion(files.check({"--svid", "MU7"}));
    EXPECT_NE(result.err.find("no stream matches --svid MU7; there are MU01, MU02"),
              std::string::npos)
        << result.err;
    EXPECT_EQ(result.status, 0);
}

TEST(CheckTable, HasSeveritiesInColour) {
    auto station = troubledStation();
    StationFiles const files(station);
    auto const plain = runCompanion(files.check({"--color", "never"})).out;
    auto const coloured = runCompanion(files.check({"--color", "always"})).out;
    EXPECT_EQ(plain.find('\x1b'), std::string::npos);
    EXPECT_NE(coloured.find("\x1b[1m\x1b[31merror\x1b[0m  "), std::string::npos);
    EXPECT_NE(coloured.find("\x1b[33mwarning\x1b[0m  "), std::string::npos);
    EXPECT_EQ(runCompanion(files.check({"--color", "always", "-f", "csv"})).out.find('\x1b'),
              std::string::npos);
}

TEST(CheckTable, FitsATerminal) {
    auto station = troubledStation();
    station.add({.svID = std::string(80, 'x'), .source = "02:00:00:00:00:09", .frames = 100});
    station.drop(3, 50, 3);
    StationFiles const files(station);
    for (Arguments const& more : {Arguments{}, Arguments{"--summary"}}) {
        for (int const columns : {20, 40, 80, 120, 200}) {
            auto const result = runCompanion(
                files.check(more), {.output = StandardOutputIs::terminal,
                                    .outputColumns = columns,
                                    .environment = {{"NO_COLOR", "1"}, {"LC_ALL", "C.UTF-8"}}});
            for (auto const& line : linesOf(result.out)) {
                bool const isOneWord = line.find(' ') == std::string::npos;
                EXPECT_TRUE(isOneWord || countColumns(line) <= static_cast<std::size_t>(columns))
                    << columns << "\n"
                    << line;
            }
            if (columns >= 80) {
                for (auto const* heading : {"TIME", "LEVEL", "SVID/GOCBREF", "TEXT"}) {
                    EXPECT_TRUE(!more.empty() ||
                                linesOf(result.out)[0].find(heading) != std::string::npos)
                        << heading;
                }
            }
        }
    }
}

TEST(CheckTable, HasWholeSentencesOnATerminal) {
    auto station = troubledStation();
    StationFiles const files(station);
    auto const withoutBlanks = [](std::string text) {
        std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
        return text;
    };
    auto const shown = withoutBlanks(
        runCompanion(files.check(), {.output = StandardOutputIs::terminal,
                                     .outputColumns = 80,
                                     .environment = {{"NO_COLOR", "1"}, {"LC_ALL", "C"}}})
            .out);
    auto const rows = checkRows(files);
    EXPECT_GT(rows.size(), 3U);
    for (auto const& row : rows) {
        auto const sentence = row["text"].get<std::string>();
        EXPECT_NE(shown.find(withoutBlanks(sentence)), std::string::npos) << sentence;
    }
}

TEST(CheckTable, EscapesNames) {
    FaultyStation station;
    station.add({.svID = "\x1b[2J\nMU", .frames = 400});
    station.drop(0, 100, 3).changeSvFrom(
        0, 200, [](SvMessage& message) { message.asdus.front().datSet = "\x1b]0;x\x07,\""; });
    StationFiles const files(station);
    for (auto const* format : {"table", "json", "csv", "spreadsheet"}) {
        for (Arguments const& more : {Arguments{}, Arguments{"--summary"}}) {
            auto const text = runCompanion(files.check(joined({"-f", format}, more))).out;
            EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) {
                return c == '\n' || (c >= ' ' && c < '\x7f');
            })) << format;
        }
    }
    auto const rows = checkRows(files, {"--kind", "dataSetChanged"});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["found"], "\x1b]0;x\x07,\"");
    EXPECT_EQ(rows[0]["svID"], "\x1b[2J\nMU");
}

TEST(CheckColumns, AreChosen) {
    auto station = troubledStation();
    StationFiles const files(station);
    EXPECT_EQ(runCompanion(
                  files.check({"-q", "-f", "csv", "--limit", "1", "--columns", "svID,lost,cause"}))
                  .out,
              "svID,lost,cause\nMU01,5,network\n");
}

TEST(CheckUsage, IsRefusedInOneLine) {
    auto station = smallStation();
    StationFiles const files(station);
    for (Arguments const& wrong : std::vector<Arguments>{{"--kind", "nothing"},
                                                         {"--kind"},
                                                         {"--severity", "none"},
                                                         {"--fail-on", "all"},
                                                         {"--limit", "x"},
                                                         {"--jitter", "often"},
                                                         {"--columns", "nothing"},
                                                         {"--summary", "--columns", "text"},
                                                         {"--smpcnt", "1"},
                                                         {"--from", "+2s", "--to", "+1s"}}) {
        expectUsageError(files.check(wrong));
    }
    EXPECT_NE(
        runCompanion(files.check({"--kind", "sampelGap"})).err.find("did you mean sampleGap?"),
        std::string::npos);
}

TEST(CheckHelp, NamesTheKinds) {
    auto const bash = runCompanion({"completion", "bash"}).out;
    EXPECT_NE(bash.find("sampleGap"), std::string::npos);
    EXPECT_NE(runCompanion({"check", "--help"}).out.find("--fail-on"), std::string::npos);
}

}  // namespace
}  // namespace TalTest::CheckCommandTest
