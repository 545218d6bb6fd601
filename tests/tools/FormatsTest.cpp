// Table, JSON and comma-separated values say the same.

#include <gtest/gtest.h>

#include <algorithm>

#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::FormatsTest {
namespace {

std::vector<Arguments> commands(std::string const& file) {
    return {{"streams", file},
            {"library", "streams", file},
            {"streams", file, "--svid", "none", "-q"},
            {"packets", file},
            {"packets", file, "--context", "--from", "+5s", "--to", "+6s"},
            {"library", "judge", file, "--vlan", "5"},
            {"library", "judge", file, "--list"},
            {"show", file, "--to", "+3s"}};
}

std::string written(Arguments const& command, std::string const& format) {
    auto const result = runCompanion(joined(command, {"--format", format}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    return result.out;
}

/// What a cell of comma-separated values must be for a field.
CsvCell cellFor(Json const& field) {
    if (field.is_null()) {
        return std::nullopt;
    }
    return field.is_string() ? field.get<std::string>() : field.dump(-1, ' ', true);
}

TEST(Formats, OfJsonAndCommaSeparatedValuesHoldTheSame) {
    TempFile const file(memberTraffic());
    for (auto const& command : commands(file.path())) {
        SCOPED_TRACE(testing::PrintToString(command));
        auto const json = jsonOf(written(command, "json"));
        auto const csv = csvRows(written(command, "csv"));
        ASSERT_EQ(json.size(), csv.size());
        for (std::size_t i = 0; i < json.size(); ++i) {
            EXPECT_EQ(json[i].size(), csv[i].size());
            for (auto const& [name, field] : json[i].items()) {
                bool const isNested = field.is_object();
                EXPECT_TRUE(isNested ? Json::parse(csv[i].at(name).value()) == field
                                     : csv[i].at(name) == cellFor(field))
                    << name << " " << field;
            }
        }
    }
}

/// The names of the members of an object, in the order in which they are written.
std::vector<CsvCell> memberNames(std::string const& line) {
    std::vector<CsvCell> names;
    auto const object = nlohmann::ordered_json::parse(line);
    for (auto const& member : object.items()) {
        names.emplace_back(member.key());
    }
    return names;
}

/// The call for a command's help.
Arguments helpOf(Arguments const& command) {
    return command[0] == "library" ? Arguments{command[0], command[1], "--help"}
                                   : Arguments{command[0], "--help"};
}

TEST(Formats, HaveTheSameFieldsInTheSameOrderInEveryRow) {
    TempFile const file(memberTraffic());
    for (auto const& command : commands(file.path())) {
        auto const header = csvLines(written(command, "csv")).at(0);
        for (auto const& line : linesOf(written(command, "json"))) {
            EXPECT_EQ(memberNames(line), header);
        }
        auto const help = runCompanion(helpOf(command)).out;
        for (auto const& name : header) {
            EXPECT_NE(help.find(name.value()), std::string::npos) << command[0] << " " << *name;
        }
    }
}

/// A field as a table shows it.
std::string shown(Json const& field) {
    return field.is_null() ? "-" : (field.is_string() ? field.get<std::string>() : field.dump());
}

std::string shownYes(Json const& field) { return field == true ? "yes" : "-"; }

/// The name of a row's stream.
std::string shownName(Json const& row) {
    return shown(row["protocol"] == "SV" ? row["svID"] : row["gocbRef"]);
}

/// The lane of HSR, or else the LAN of PRP.
std::string shownLane(Json const& row) {
    return shown(row["hsrLane"].is_null() ? row["prpLane"] : row["hsrLane"]);
}

/// What the cells of a table must be for the rows, by `cellsFor`.
template <typename CellsFor>
void expectTable(Arguments const& command, CellsFor cellsFor) {
    std::vector<std::vector<std::string>> expected;
    for (Json const& row : jsonOf(written(command, "json"))) {
        expected.push_back(cellsFor(row));
    }
    EXPECT_EQ(tableRows(written(command, "table")), expected);
}

TEST(Formats, OfATableOfStreamsHoldTheSame) {
    TempFile const file(memberTraffic());
    expectTable({"streams", file.path()}, [](Json const& row) -> Arguments {
        std::string const name = shownName(row);
        std::string const lanes =
            name.ends_with("rA") || name.ends_with("pA")
                ? "1/0"
                : (name.ends_with("rB") || name.ends_with("pB") ? "0/1" : "-");
        return {row["protocol"],
                name,
                row["appId"],
                row["source"],
                row["destination"],
                shown(row["vlanId"]),
                shown(row["vlanStack"]),
                shown(row["confRev"]),
                shownYes(row["simulated"]),
                shown(row["asdusPerFrame"]),
                shown(row["nominalRate"]),
                "-",
                shown(row["packets"]),
                "-",
                lanes,
                shown(row["files"]),
                row["firstTime"],
                row["lastTime"],
                shown(row["datSet"]),
                shown(row["goID"])};
    });
}

TEST(Formats, OfATableOfPacketsHoldTheSame) {
    TempFile const file(memberTraffic());
    expectTable({"packets", "--context", "--from", "+3s", file.path()},
                [](Json const& row) -> Arguments {
                    return {row["time"],
                            row["protocol"],
                            shownName(row),
                            shown(row["asdu"]),
                            shown(row["stNum"]),
                            shown(row["sqNum"]),
                            shown(row["timeAllowedToLive"]),
                            shown(row["smpCnt"]),
                            shown(row["smpSynch"]),
                            shownYes(row["simulated"]),
                            shownLane(row),
                            shown(row["redundancySequence"]),
                            row["appId"],
                            row["source"],
                            shown(row["capturedOctets"]),
                            shown(row["unreadable"]),
                            shown(row["file"]) + "@" + shown(row["position"]),
                            row["place"]};
                });
}

TEST(Formats, OfATableOfVerdictsHoldTheSame) {
    TempFile const file(memberTraffic());
    expectTable({"library", "judge", "--vlan", "5", file.path()}, [](Json const& row) -> Arguments {
        return {row["protocol"], row["verdict"], shown(row["answer"]), shown(row["frames"]),
                shown(row["octets"])};
    });
    expectTable({"library", "judge", "--list", file.path()}, [](Json const& row) -> Arguments {
        return {row["time"],
                row["protocol"],
                row["verdict"],
                shown(row["answer"]),
                shown(row["recordPosition"]),
                row["file"]};
    });
}

TEST(Formats, BeginWithHeadingsEvenWithoutRows) {
    TempFile const file(smallCapture());
    for (std::string const command : {"streams", "packets"}) {
        Arguments const none = {command, file.path(), "--svid", "none", "-q"};
        EXPECT_EQ(written(none, "json"), "");
        EXPECT_EQ(csvLines(written(none, "csv")).size(), 1U);
        EXPECT_EQ(linesOf(written(none, "table")).size(), 1U);
    }
    EXPECT_EQ(written({"show", file.path(), "--svid", "none", "-q"}, "table"), "");
    EXPECT_EQ(csvLines(written({"show", file.path(), "--svid", "none", "-q"}, "csv")).size(), 1U);
}

}  // namespace
}  // namespace TalTest::FormatsTest
