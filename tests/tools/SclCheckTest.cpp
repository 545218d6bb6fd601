// The command `scl check`: captures against the description of their station.

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "tools/SclTraffic.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalTest::SclCheckTest {
namespace {

int statusOf(SclFiles const& files, Arguments const& more = {}) {
    return runCompanion(files.check(more)).status;
}

/// A description that another number of the relay's confRev is in.
std::string otherRevision() { return replaced(sclStationText(), "confRev=\"3\"", "confRev=\"2\""); }

/// A capture in which another relay publishes too.
Bytes captureOfStranger() {
    Bytes const stranger = [] {
        GooseMessage message;
        message.gocbRef = "RELAY9LD0/LLN0$GO$gcb9";
        message.appId = 9;
        return gooseFrame(Ethernet().to("01:0c:cd:01:00:09"), message);
    }();
    Bytes capture = sclStationCapture();
    Bytes const more =
        CaptureBuilder(CaptureVariant::nanoLittle).add(1'700'000'001, 0, stranger).bytes();
    capture.insert(capture.end(), more.begin() + captureHeaderSize, more.end());
    return capture;
}

std::vector<std::string> whatsOf(Json const& row) {
    std::vector<std::string> whats;
    for (Json const& difference : row["differences"]) {
        whats.push_back(difference["what"]);
    }
    return whats;
}

TEST(SclCheck, FindsTheStationAsItIsDescribed) {
    SclFiles const files;
    auto const rows = rowsOf(files.check());
    ASSERT_EQ(rows.size(), 2U);
    Json const goose = {{"result", "match"},
                        {"ied", "RELAY1"},
                        {"controlBlock", "RELAY1LD0/LLN0$GO$gcb1"},
                        {"protocol", "GOOSE"},
                        {"gocbRef", "RELAY1LD0/LLN0$GO$gcb1"},
                        {"svID", nullptr},
                        {"differences", Json::array()},
                        {"packets", 10},
                        {"file", files.capture()},
                        {"position", rows[0]["position"]}};
    EXPECT_EQ(rows[0], goose);
    EXPECT_EQ(rows[1]["result"], "match");
    EXPECT_EQ(rows[1]["controlBlock"], "MU1LD0/LLN0$MS$msvcb1");
    EXPECT_EQ(rows[1]["protocol"], "SV");
    EXPECT_EQ(rows[1]["gocbRef"], nullptr);
    EXPECT_EQ(rows[1]["svID"], "MU01");
    EXPECT_EQ(rows[1]["packets"], 4000);
    EXPECT_EQ(statusOf(files), 0);
    // `show` takes the place.
    auto const shown = rowsOf({"show", files.capture() + "@" + rows[0]["position"].dump()});
    EXPECT_EQ(shown.at(0)["goose"]["sqNum"], 0);
}

TEST(SclCheck, HasItsFieldsInOrder) {
    SclFiles const files;
    auto const out = runCompanion(files.check({"-f", "json", "-q"})).out;
    std::vector<std::string> names;
    auto const row = nlohmann::ordered_json::parse(linesOf(out).at(0));
    for (auto const& field : row.items()) {
        names.push_back(field.key());
    }
    EXPECT_EQ(names,
              (std::vector<std::string>{"result", "ied", "controlBlock", "protocol", "gocbRef",
                                        "svID", "differences", "packets", "file", "position"}));
}

/// A change of the description or of the capture, and the difference that it makes.
struct Deviation {
    std::string name;
    std::string description;
    Bytes capture;
    std::string ied;
    Json expected;
    Json found;
    std::string words;
};

Deviation ofDescription(std::string const& name, std::string_view part, std::string_view by,
                        std::string const& ied, Json expected, Json found,
                        std::string const& words) {
    return {.name = name,
            .description = replaced(sclStationText(), part, by),
            .capture = sclStationCapture(),
            .ied = ied,
            .expected = std::move(expected),
            .found = std::move(found),
            .words = words};
}

std::vector<Deviation> deviations() {
    std::vector<Deviation> all = {
        ofDescription("mac", "01-0C-CD-01-00-01", "01-0C-CD-01-00-02", "RELAY1",
                      "01:0c:cd:01:00:02", "01:0c:cd:01:00:01",
                      "MAC: 01:0c:cd:01:00:01, described 01:0c:cd:01:00:02"),
        ofDescription("appId", ">0001<", ">00AB<", "RELAY1", "0x00AB", "0x0001",
                      "APPID: 0x0001, described 0x00AB"),
        ofDescription("vlanId", ">005<", ">00A<", "RELAY1", 10, 5, "VLAN: 5, described 10"),
        ofDescription("vlanPriority", "\"VLAN-PRIORITY\">4", "\"VLAN-PRIORITY\">6", "RELAY1", 6, 4,
                      "VLAN priority: 4, described 6"),
        ofDescription("gocbRef", "<GSEControl name=\"gcb1\"", "<GSEControl name=\"gcb7\"", "RELAY1",
                      "RELAY1LD0/LLN0$GO$gcb7", "RELAY1LD0/LLN0$GO$gcb1",
                      "gocbRef: RELAY1LD0/LLN0$GO$gcb1, described RELAY1LD0/LLN0$GO$gcb7"),
        ofDescription("goID", "appID=\"goTrip\"", "appID=\"goX\"", "RELAY1", "goX", "goTrip",
                      "goID: goTrip, described goX"),
        ofDescription("svID", "smvID=\"MU01\"", "smvID=\"MU02\"", "MU1", "MU02", "MU01",
                      "svID: MU01, described MU02"),
        ofDescription("confRev", "confRev=\"3\"", "confRev=\"2\"", "RELAY1", 2, 3,
                      "confRev: 3, described 2"),
        ofDescription("memberType", "bType=\"FLOAT32\"/>", "bType=\"INT32\"/>", "RELAY1", "INT32",
                      "floating-point",
                      "member 3 (LD0/MMXU1.TotW.mag.f): floating-point, described INT32"),
        ofDescription("smpRate", "smpRate=\"4000\"", "smpRate=\"4800\"", "MU1", 4800, 4000,
                      "samples a second: 4000, described 4800"),
        ofDescription("noASDU", "nofASDU=\"1\"", "nofASDU=\"2\"", "MU1", 2, 1,
                      "ASDUs in a frame: 1, described 2"),
        ofDescription("options", "<SmvOpts/>", "<SmvOpts refreshTime=\"true\"/>", "MU1",
                      {"refreshTime", "sampleSynchronized"}, Json::array({"sampleSynchronized"}),
                      "optional fields: refreshTime missing"),
        ofDescription("maxTime", ">100<", ">80<", "RELAY1", 80, 100,
                      "interval: 100 ms, described at most 80 ms"),
    };
    // The name of the control block's address is another too.
    all[4].description = replaced(all[4].description, "cbName=\"gcb1\"", "cbName=\"gcb7\"");
    auto const ofGoose = [&](std::string const& name, ChangeGoose const& change, Json expected,
                             Json found, std::string const& words) {
        all.push_back({.name = name,
                       .description = sclStationText(),
                       .capture = sclStationCapture(change),
                       .ied = "RELAY1",
                       .expected = std::move(expected),
                       .found = std::move(found),
                       .words = words});
    };
    ofGoose(
        "datSet",
        [](std::size_t, Ethernet&, GooseMessage& message) {
            message.datSet = "RELAY1LD0/LLN0$ds2";
        },
        "RELAY1LD0/LLN0$ds1", "RELAY1LD0/LLN0$ds2",
        "datSet: RELAY1LD0/LLN0$ds2, described RELAY1LD0/LLN0$ds1");
    ofGoose(
        "memberCount",
        [](std::size_t number, Ethernet&, GooseMessage& message) {
            if (number > 4) {
                message.setData({dataBoolean(true)});
            }
        },
        3, 1, "values in allData: 1, described 3");
    return all;
}

TEST(SclCheck, TellsEachDifference) {
    for (Deviation const& deviation : deviations()) {
        SCOPED_TRACE(deviation.name);
        SclFiles const files(deviation.description, deviation.capture);
        auto const result = runCompanion(files.check({"-q", "-f", "json"}));
        EXPECT_EQ(result.status, 3);
        auto const rows = jsonOf(result.out);
        ASSERT_EQ(rows.size(), 2U);
        Json const& row = rows[0]["ied"] == deviation.ied ? rows[0] : rows[1];
        EXPECT_EQ((&row == &rows[0] ? rows[1] : rows[0])["result"], "match");
        EXPECT_EQ(row["result"], "differs");
        ASSERT_EQ(whatsOf(row), std::vector<std::string>{deviation.name});
        Json const& difference = row["differences"][0];
        EXPECT_EQ(difference["expected"], deviation.expected);
        if (deviation.name == "smpRate") {
            // As measured.
            EXPECT_NEAR(double(difference["found"]), double(deviation.found), 1);
        } else {
            EXPECT_EQ(difference["found"], deviation.found);
        }
        EXPECT_EQ(difference["file"], files.capture());
        EXPECT_EQ(difference["position"], row["position"]);
        auto const csv = csvRows(runCompanion(files.check({"-q", "-f", "csv"})).out);
        EXPECT_EQ(csv.at(&row == &rows[0] ? 0 : 1).at("differences"), deviation.words);
        EXPECT_NE(runCompanion(files.check({"-q"})).out.find("  " + deviation.words + "  "),
                  std::string::npos);
    }
}

TEST(SclCheck, NamesTheMemberOfAnotherType) {
    SclFiles const files(sclStationText(), sclStationCapture([](std::size_t number, Ethernet&,
                                                                GooseMessage& message) {
                             if (number == 3) {
                                 message.setData({dataBoolean(false),
                                                  dataStructure({dataBoolean(false), dataInteger(7),
                                                                 dataQuality(), dataUtcTime(1)}),
                                                  dataFloat(1)});
                             }
                         }));
    auto const row = files.checkRows()[0];
    ASSERT_EQ(whatsOf(row), std::vector<std::string>{"memberType"});
    auto const& difference = row["differences"][0];
    EXPECT_EQ(difference["member"], "2.2");
    EXPECT_EQ(difference["name"], "LD0/PTOC1.Op.phsA");
    EXPECT_EQ(difference["expected"], "BOOLEAN");
    EXPECT_EQ(difference["found"], "integer");
    // The packet that shows it.
    auto const shown = rowsOf({"show", files.capture() + "@" + difference["position"].dump()});
    EXPECT_EQ(shown.at(0)["goose"]["sqNum"], 3);
}

TEST(SclCheck, HasALineInATableForEachDifference) {
    auto const description = replaced(
        replaced(otherRevision(), "appID=\"goTrip\"", "appID=\"goX\""), ">0001<", ">0002<");
    SclFiles const files(description);
    auto const result = runCompanion(files.check({"--color", "never"}));
    EXPECT_EQ(result.status, 3);
    auto const rows = tableRows(result.out);
    ASSERT_EQ(rows.size(), 4U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(rows[i][0], "differs");
        EXPECT_EQ(rows[i][1], "RELAY1");
        EXPECT_EQ(rows[i][2], "RELAY1LD0/LLN0$GO$gcb1");
    }
    EXPECT_EQ(rows[0][3], "APPID: 0x0001, described 0x0002");
    EXPECT_EQ(rows[1][3], "goID: goTrip, described goX");
    EXPECT_EQ(rows[2][3], "confRev: 3, described 2");
    EXPECT_EQ(rows[3][0], "match");
    EXPECT_EQ(rows[3][3], "as described");
    EXPECT_EQ(summaryOf(result.out), "1 match, 0 missing, 1 differ, 0 unexpected, in 1 file");
    // Columns that are chosen are of rows.
    EXPECT_EQ(tableRows(runCompanion(files.check({"--columns", "result,differences"})).out).size(),
              2U);
}

TEST(SclCheck, TellsWhatIsMissingAndWhatIsNotDescribed) {
    SclFiles const files(
        replaced(replaced(replaced(sclStationText(), "smvID=\"MU01\"", "smvID=\"MU05\""),
                          "01-0C-CD-04-00-01", "01-0C-CD-04-00-05"),
                 ">4000<", ">4005<"));
    auto const rows = files.checkRows();
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(fieldOf(rows, "result"), (std::vector<Json>{"match", "missing", "unexpected"}));
    EXPECT_EQ(rows[1]["ied"], "MU1");
    EXPECT_EQ(rows[1]["svID"], "MU05");
    EXPECT_EQ(rows[1]["packets"], 0);
    EXPECT_EQ(rows[1]["file"], nullptr);
    EXPECT_EQ(rows[1]["position"], nullptr);
    EXPECT_EQ(rows[2]["ied"], nullptr);
    EXPECT_EQ(rows[2]["controlBlock"], nullptr);
    EXPECT_EQ(rows[2]["svID"], "MU01");
    EXPECT_EQ(rows[2]["packets"], 4000);
    auto const table = tableRows(runCompanion(files.check()).out);
    EXPECT_EQ(table[1][3], "no packet came");
    EXPECT_EQ(table[2][3], "APPID 0x4000 to 01:0c:cd:04:00:01 is not described");
}

TEST(SclCheckStatus, GoesByTheWorstRow) {
    SclFiles const differs(otherRevision());
    EXPECT_EQ(statusOf(differs), 3);
    EXPECT_EQ(statusOf(differs, {"--fail-on", "warning"}), 3);
    EXPECT_EQ(statusOf(differs, {"--fail-on", "error"}), 3);
    EXPECT_EQ(statusOf(differs, {"--fail-on", "none"}), 0);
    SclFiles const stranger(sclStationText(), captureOfStranger());
    EXPECT_EQ(statusOf(stranger), 0);
    EXPECT_EQ(statusOf(stranger, {"--fail-on", "warning"}), 3);
    EXPECT_EQ(statusOf(stranger, {"--fail-on", "ERROR"}), 0);
    EXPECT_EQ(statusOf(stranger, {"--result", "match", "--result", "differs"}), 0);
    EXPECT_EQ(statusOf(stranger, {"--ied", "*"}), 0);
}

TEST(SclCheckStatus, OfRowsOutranksThatOfFailures) {
    SclFiles const differs(otherRevision());
    EXPECT_EQ(statusOf(differs, {"/nonexistent"}), 3);
    EXPECT_EQ(statusOf(differs, {"--fail-on", "none", "/nonexistent"}), 2);
    EXPECT_EQ(statusOf(differs, {"--fail-on", "none", "--scl", "/nonexistent"}), 2);
    SclFiles const files;
    EXPECT_EQ(statusOf(files, {"/nonexistent"}), 2);
}

TEST(SclCheckRows, AreThoseThatAreWanted) {
    SclFiles const files(otherRevision(), captureOfStranger());
    auto const results = [&](Arguments const& more) {
        return fieldOf(files.checkRows(more), "result");
    };
    EXPECT_EQ(results({}), (std::vector<Json>{"differs", "match", "unexpected"}));
    EXPECT_EQ(results({"--result", "differs"}), std::vector<Json>{"differs"});
    EXPECT_EQ(results({"--result", "match", "--result", "missing"}), std::vector<Json>{"match"});
    EXPECT_EQ(results({"--ied", "MU?"}), std::vector<Json>{"match"});
    EXPECT_EQ(results({"--protocol", "goose"}), (std::vector<Json>{"differs", "unexpected"}));
    EXPECT_EQ(results({"--appid", "9"}), std::vector<Json>{"unexpected"});
    EXPECT_EQ(results({"--source", "02:00:00:00:00:77"}), std::vector<Json>{});
    // By what is captured, and by what is described.
    EXPECT_EQ(results({"--confrev", "3"}), std::vector<Json>{"differs"});
    EXPECT_EQ(results({"--confrev", "2"}), std::vector<Json>{"differs"});
}

TEST(SclCheckRows, OfControlBlocksWithAStreamAreNeverMissing) {
    SclFiles const files(replaced(sclStationText(), ">0001<", ">0002<"));
    for (std::string const appId : {"1", "2"}) {
        EXPECT_EQ(fieldOf(files.checkRows({"--appid", appId}), "result"),
                  std::vector<Json>{"differs"});
    }
    EXPECT_EQ(files.checkRows({"--appid", "3"}).size(), 0U);
}

TEST(SclCheckRows, AreOfAllDescriptions) {
    SclFiles const files;
    auto const whole = files.folder().write("whole.cid", text(sclStationText()));
    // The unit alone is not enough.
    std::string station = sclStationText();
    auto const begin = station.find("  <IED name=\"RELAY1\">");
    auto const end = station.find("  <IED name=\"MU1\">");
    auto const unit = files.folder().write("unit.cid", text(station.erase(begin, end - begin)));
    auto const alone = runCompanion({"scl", "check", "-q", "-f", "json", unit, files.capture()});
    EXPECT_EQ(fieldOf(jsonOf(alone.out), "result"), (std::vector<Json>{"match", "unexpected"}));
    auto const both =
        runCompanion({"scl", "check", "-q", "-f", "json", unit, files.capture(), "--scl", whole});
    EXPECT_EQ(fieldOf(jsonOf(both.out), "result"), (std::vector<Json>{"match", "match"}));
    EXPECT_EQ(both.status, 0);
}

TEST(SclCheckRows, DoNotDependOnJobs) {
    SclFiles const files(otherRevision());
    auto const one = runCompanion(files.check({"--jobs", "1"}));
    auto const many = runCompanion(files.check({"--jobs", "7"}));
    EXPECT_EQ(one.out, many.out);
    EXPECT_EQ(one.status, many.status);
}

/// What a command writes to a terminal of so many columns.
std::vector<std::string> onTerminal(Arguments const& arguments, int columns) {
    return linesOf(
        runCompanion(arguments, {.output = StandardOutputIs::terminal,
                                 .outputColumns = columns,
                                 .environment = {{"NO_COLOR", "1"}, {"LC_ALL", "C.UTF-8"}}})
            .out);
}

TEST(SclTables, FitATerminal) {
    std::string station = replaced(otherRevision(), ">0001<", ">0002<");
    station = replaced(station, "desc=\"Trips\"", "desc=\"" + std::string(90, 'x') + "\"");
    SclFiles const files(replaced(station, "type=\"MV\"", "type=\"Gone\""), captureOfStranger());
    for (Arguments const& command : {files.check(),
                                     {"scl", "list", files.scd()},
                                     {"scl", "list", "--members", files.scd()},
                                     {"scl", "list", "--diagnostics", files.scd()},
                                     {"scl", "subscribers", files.scd()}}) {
        for (int const columns : {20, 40, 80, 120, 200}) {
            for (auto const& line : onTerminal(command, columns)) {
                bool const isOneWord = line.find(' ') == std::string::npos;
                EXPECT_TRUE(isOneWord || TalIec61850Tools::countColumns(line) <=
                                             static_cast<std::size_t>(columns))
                    << columns << " " << line;
            }
        }
    }
}

TEST(SclTables, LeaveDifferencesWholeIn80Columns) {
    SclFiles const files(replaced(sclStationText(), "01-0C-CD-01-00-01", "01-0C-CD-01-00-02"),
                         captureOfStranger());
    auto const lines = onTerminal(files.check(), 80);
    ASSERT_GT(lines.size(), 3U);
    EXPECT_NE(lines[1].find("MAC: 01:0c:cd:01:00:01, described 01:0c:cd:01:00:02"),
              std::string::npos);
    EXPECT_NE(lines[3].find("APPID 0x0009 to 01:0c:cd:01:00:09 is not described"),
              std::string::npos);
}

TEST(SclCheckColours, AreThoseOfResults) {
    SclFiles const differs(otherRevision());
    EXPECT_NE(runCompanion(differs.check({"--color", "always"})).out.find("\x1b["),
              std::string::npos);
    EXPECT_EQ(runCompanion(differs.check({"--color", "never"})).out.find("\x1b["),
              std::string::npos);
}

}  // namespace
}  // namespace TalTest::SclCheckTest
