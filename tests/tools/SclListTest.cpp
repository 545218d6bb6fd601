// The commands `scl list` and `scl subscribers`: what a description says, in every format.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "tools/SclTraffic.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/render/ControlBlockLayout.hpp"
#include "tools/render/DescribedMemberLayout.hpp"
#include "tools/render/DiagnosticLayout.hpp"
#include "tools/render/SubscriberLayout.hpp"

namespace TalTest::SclListTest {
namespace {

using TalIec61850Tools::countColumns;
using TalIec61850Tools::fieldNames;

std::vector<Json> list(SclFiles const& files, Arguments const& more = {}) {
    return rowsOf(joined({"scl", "list", files.scd()}, more));
}

std::vector<Json> subscribers(SclFiles const& files, Arguments const& more = {}) {
    return rowsOf(joined({"scl", "subscribers", files.scd()}, more));
}

/// The line of a part of the description, from 1.
std::int64_t lineOf(std::string_view part) {
    std::string const all = sclStationText();
    auto const begin = all.begin();
    return 1 + std::count(begin, begin + static_cast<std::ptrdiff_t>(all.find(part)), '\n');
}

TEST(SclList, HasARowForEachControlBlock) {
    SclFiles const files;
    auto const rows = list(files);
    ASSERT_EQ(rows.size(), 2U);
    Json const goose = {{"protocol", "GOOSE"},
                        {"ied", "RELAY1"},
                        {"controlBlock", "RELAY1LD0/LLN0$GO$gcb1"},
                        {"id", "goTrip"},
                        {"datSet", "RELAY1LD0/LLN0$ds1"},
                        {"confRev", 3},
                        {"mac", "01:0c:cd:01:00:01"},
                        {"appId", "0x0001"},
                        {"vlanId", 5},
                        {"vlanPriority", 4},
                        {"minTime", 4},
                        {"maxTime", 100},
                        {"smpRate", nullptr},
                        {"smpMod", nullptr},
                        {"nofASDU", nullptr},
                        {"redundancy", "prp"},
                        {"members", 6},
                        {"subscribers", 1},
                        {"desc", "Trips"},
                        {"file", files.scd()},
                        {"line", lineOf("<GSEControl")}};
    EXPECT_EQ(rows[0], goose);
    Json const sv = {{"protocol", "SV"},
                     {"ied", "MU1"},
                     {"controlBlock", "MU1LD0/LLN0$MS$msvcb1"},
                     {"id", "MU01"},
                     {"datSet", "MU1LD0/LLN0$ds1"},
                     {"confRev", 1},
                     {"mac", "01:0c:cd:04:00:01"},
                     {"appId", "0x4000"},
                     {"vlanId", nullptr},
                     {"vlanPriority", nullptr},
                     {"minTime", nullptr},
                     {"maxTime", nullptr},
                     {"smpRate", 4000},
                     {"smpMod", "SmpPerSec"},
                     {"nofASDU", 1},
                     {"redundancy", "none"},
                     {"members", 2},
                     {"subscribers", 1},
                     {"desc", nullptr},
                     {"file", files.scd()},
                     {"line", lineOf("<SampledValueControl")}};
    EXPECT_EQ(rows[1], sv);
}

TEST(SclList, NumbersMembersAsEventsAndSamplesDo) {
    SclFiles const files;
    auto const rows = list(files, {"--members"});
    EXPECT_EQ(fieldOf(rows, "member"),
              (std::vector<Json>{"1", "2.1", "2.2", "2.3", "2.4", "3", "1", "2"}));
    EXPECT_EQ(
        fieldOf(rows, "name"),
        (std::vector<Json>{"LD0/PTRC1.Tr.general", "LD0/PTOC1.Op.general", "LD0/PTOC1.Op.phsA",
                           "LD0/PTOC1.Op.q", "LD0/PTOC1.Op.t", "LD0/MMXU1.TotW.mag.f",
                           "LD0/TCTR1.AmpSv.instMag.i", "LD0/TCTR1.AmpSv.q"}));
    EXPECT_EQ(fieldOf(rows, "bType"),
              (std::vector<Json>{"BOOLEAN", "BOOLEAN", "BOOLEAN", "Quality", "Timestamp", "FLOAT32",
                                 "INT32", "Quality"}));
    Json const channel = {{"ied", "MU1"},      {"controlBlock", "MU1LD0/LLN0$MS$msvcb1"},
                          {"member", "1"},     {"name", "LD0/TCTR1.AmpSv.instMag.i"},
                          {"bType", "INT32"},  {"fc", "MX"},
                          {"desc", "Phase A"}, {"unit", "A"},
                          {"scale", 0.001},    {"offset", 2.0}};
    EXPECT_EQ(rows[6], channel);
    EXPECT_EQ(rows[1]["desc"], "Operate");
    EXPECT_EQ(rows[1]["unit"], nullptr);
    EXPECT_EQ(rows[1]["scale"], nullptr);
}

TEST(SclList, IsOfTheControlBlocksThatAreWanted) {
    SclFiles const files;
    std::vector<Json> const relay = {"RELAY1"};
    std::vector<Json> const unit = {"MU1"};
    for (Arguments const& more : {Arguments{"--ied", "RELAY*"},
                                  {"--protocol", "goose"},
                                  {"--gocbref", "*$gcb?"},
                                  {"--goid", "goTrip"},
                                  {"--appid", "1"},
                                  {"--vlan", "5"},
                                  {"--confrev", "3"},
                                  {"--datset", "RELAY1*"},
                                  {"--destination", "01:0c:cd:01:00:01"}}) {
        EXPECT_EQ(fieldOf(list(files, more), "ied"), relay) << more[0];
    }
    EXPECT_EQ(fieldOf(list(files, {"--svid", "MU0?"}), "ied"), unit);
    EXPECT_EQ(fieldOf(list(files, {"--ied", "MU1", "--members"}), "ied").size(), 2U);
    EXPECT_EQ(list(files, {"--ied", "MU1", "--ied", "RELAY1"}).size(), 2U);
}

TEST(SclList, SaysWhichIedsThereAreWhereNoneIsWanted) {
    SclFiles const files;
    auto const result = runCompanion({"scl", "list", "-f", "json", "--ied", "MU2", files.scd()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, complaint("no control block meets the options; IEDs that publish are "
                                    "MU1, RELAY1"));
}

TEST(SclList, ListsWhatIsWrong) {
    SclFiles const files(replaced(sclStationText(), "type=\"MV\"", "type=\"Gone\""));
    auto const rows = list(files, {"--diagnostics"});
    // The type, and the member of the data set that it should lead to.
    ASSERT_EQ(fieldOf(rows, "code"), (std::vector<Json>{"BadFcda", "MissingDOType"}));
    EXPECT_EQ(rows[1]["file"], files.scd());
    EXPECT_EQ(rows[1]["line"], lineOf("<LNodeType id=\"MMXU\""));
    EXPECT_EQ(rows[1]["subject"], "Gone");
    // Noted by the other commands, which go on.
    auto const result = runCompanion({"scl", "list", "-f", "json", files.scd()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(linesOf(result.out).size(), 2U);
    std::string notes;
    for (Json const& row : rows) {
        notes += complaint(files.scd() + ":" + row["line"].dump() + ": " +
                           std::string(row["code"]) + ": " + std::string(row["subject"]));
    }
    EXPECT_EQ(result.err, notes);
    EXPECT_EQ(runCompanion({"scl", "list", "-q", "-f", "json", files.scd()}).err, "");
}

TEST(SclList, NotesTheFirstFaultsAlone) {
    std::string nodes;
    for (int i = 0; i < 20; ++i) {
        nodes += "<GSEControl name='x" + std::to_string(i) + "' datSet='gone' appID='a'/>";
    }
    SclFiles const files(replaced(sclStationText(), "<GSEControl", nodes + "<GSEControl"));
    auto const result = runCompanion({"scl", "list", "-f", "json", files.scd()});
    auto const lines = linesOf(result.err);
    ASSERT_EQ(lines.size(), 6U) << result.err;
    EXPECT_EQ(lines[5].find("tal-iec61850: and "), 0U);
    auto const all = list(files, {"--diagnostics"});
    EXPECT_NE(lines[5].find(" " + std::to_string(all.size() - 5) + " more"), std::string::npos);
}

TEST(SclList, IsOfOneListAtATime) {
    SclFiles const files;
    expectUsageError({"scl", "list", "--members", "--diagnostics", files.scd()});
}

TEST(SclList, IsTheSameInCsv) {
    SclFiles const files;
    for (Arguments const& more : {Arguments{}, {"--members"}, {"--diagnostics"}}) {
        auto const rows = list(files, more);
        auto const cells = csvRows(
            runCompanion(joined({"scl", "list", "-q", "-f", "csv", files.scd()}, more)).out);
        ASSERT_EQ(cells.size(), rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            for (auto const& [name, value] : rows[i].items()) {
                std::string const plain = value.is_string() ? std::string(value) : value.dump();
                EXPECT_EQ(cells[i].at(name), value.is_null() ? CsvCell() : CsvCell(plain)) << name;
            }
        }
    }
}

TEST(SclList, EndsATableWithHowMuchThereIs) {
    SclFiles const files;
    EXPECT_EQ(summaryOf(runCompanion({"scl", "list", files.scd()}).out),
              "2 control blocks (1 GOOSE, 1 SV) in 1 file");
    EXPECT_EQ(summaryOf(runCompanion({"scl", "list", "--members", files.scd()}).out),
              "8 members of 2 control blocks in 1 file");
    EXPECT_EQ(summaryOf(runCompanion({"scl", "list", "--diagnostics", files.scd()}).out),
              "0 diagnostics in 1 file");
    EXPECT_EQ(tableRows(runCompanion({"scl", "list", "--columns", "ied,maxTime", files.scd()}).out),
              (std::vector<std::vector<std::string>>{{"RELAY1", "100"}, {"MU1", "-"}}));
}

TEST(SclList, ReadsSeveralFilesAndFoldersAsOneStation) {
    SclFiles const files;
    files.folder().write("again.CID", text(sclStationText()));
    files.folder().write("notes.txt", text("no description"));
    auto const rows = rowsOf({"scl", "list", files.folder().path()});
    EXPECT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["file"], files.folder().file("again.CID"));
    EXPECT_EQ(rowsOf({"scl", "list", files.scd(), files.scd()}).size(), 2U);
}

TEST(SclSubscribers, SayWhoListensToWhat) {
    SclFiles const files;
    auto const rows = subscribers(files);
    ASSERT_EQ(rows.size(), 2U);
    Json const trip = {{"publisher", "RELAY1"},    {"controlBlock", "RELAY1LD0/LLN0$GO$gcb1"},
                       {"subscriber", "RELAY2"},   {"node", "LD0/RBRF1"},
                       {"intAddr", "DI/1"},        {"member", "2.3"},
                       {"name", "LD0/PTOC1.Op.q"}, {"source", "controlBlock"},
                       {"file", files.scd()},      {"line", lineOf("<ExtRef iedName=\"RELAY1\"")}};
    EXPECT_EQ(rows[0], trip);
    EXPECT_EQ(rows[1]["publisher"], "MU1");
    EXPECT_EQ(rows[1]["member"], "2");
    EXPECT_EQ(rows[1]["name"], "LD0/TCTR1.AmpSv.q");
}

TEST(SclSubscribers, AreThoseOfAnIedOnEitherSide) {
    SclFiles const files;
    EXPECT_EQ(subscribers(files, {"--ied", "RELAY2"}).size(), 2U);
    EXPECT_EQ(subscribers(files, {"--ied", "RELAY1"}).size(), 1U);
    EXPECT_EQ(subscribers(files, {"--svid", "MU01"}).size(), 1U);
    EXPECT_EQ(subscribers(files, {"--ied", "RELAY3"}).size(), 0U);
}

TEST(SclSubscribers, TellOfControlBlocksWithoutOne) {
    SclFiles const files(replaced(sclStationText(), "<GSEControl",
                                  "<GSEControl name=\"gcb2\" appID=\"idle\"/>\n<GSEControl"));
    EXPECT_EQ(summaryOf(runCompanion({"scl", "subscribers", files.scd()}).out),
              "2 subscriptions to 2 control blocks; 1 without a subscriber");
}

TEST(SclFields, ComeInTheirOrder) {
    SclFiles const files(replaced(sclStationText(), "type=\"MV\"", "type=\"Gone\""));
    auto const namesIn = [](std::string const& out) {
        std::vector<std::string> names;
        auto const row = nlohmann::ordered_json::parse(linesOf(out).at(0));
        for (auto const& field : row.items()) {
            names.push_back(field.key());
        }
        return names;
    };
    auto const written = [&](Arguments const& words) {
        return namesIn(runCompanion(joined(words, {"-q", "-f", "json", files.scd()})).out);
    };
    auto const asStrings = [](std::vector<std::string_view> const& names) {
        return std::vector<std::string>(names.begin(), names.end());
    };
    EXPECT_EQ(written({"scl", "list"}),
              asStrings(fieldNames(TalIec61850Tools::controlBlockLayout())));
    EXPECT_EQ(written({"scl", "list", "--members"}),
              asStrings(fieldNames(TalIec61850Tools::describedMemberLayout())));
    EXPECT_EQ(written({"scl", "list", "--diagnostics"}),
              asStrings(fieldNames(TalIec61850Tools::diagnosticLayout())));
    EXPECT_EQ(written({"scl", "subscribers"}),
              asStrings(fieldNames(TalIec61850Tools::subscriberLayout())));
}

TEST(SclNames, ReachNoTerminal) {
    // Control characters, an override of the direction of text, quotes and commas.
    std::string const hostile = "a&#27;[2J&#10;b\u202etxt&quot;,c";
    std::string station =
        replaced(sclStationText(), "appID=\"goTrip\"", "appID=\"" + hostile + "\"");
    station = replaced(station, "desc=\"Trips\"", "desc=\"" + hostile + "\"");
    station = replaced(station, "desc=\"Operate\"", "desc=\"" + hostile + "\"");
    station = replaced(station, "intAddr=\"DI/1\"", "intAddr=\"" + hostile + "\"");
    station = replaced(station, "type=\"MV\"", "type=\"" + hostile + "\"");
    SclFiles const files(station);
    for (Arguments const& words : {Arguments{"scl", "list"},
                                   {"scl", "list", "--members"},
                                   {"scl", "list", "--diagnostics"},
                                   {"scl", "subscribers"},
                                   {"scl", "check", "--fail-on", "none"}}) {
        for (std::string const format : {"table", "json", "csv", "spreadsheet"}) {
            auto all = joined(words, {"-f", format, files.scd()});
            if (words[1] == "check") {
                all.push_back(files.capture());
            }
            auto const result = runCompanion(all);
            EXPECT_EQ(result.status, 0);
            for (char const c : result.out + result.err) {
                ASSERT_TRUE(c == '\n' || (c >= ' ' && c < '\x7f')) << words[1] << " " << format;
            }
            EXPECT_NE((result.out + result.err).find("202e"), std::string::npos)
                << words[1] << " " << format;
        }
    }
    EXPECT_EQ(list(files)[0]["id"], "a\x1b[2J\nb\u202etxt\",c");
}

}  // namespace
}  // namespace TalTest::SclListTest
