// Exit statuses and fields: the lists of the documents and of the help against the code.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <regex>
#include <set>

#include "tools/CompanionRows.hpp"
#include "tools/commands/ShownPacket.hpp"
#include "tools/library/LibraryLayout.hpp"
#include "tools/library/VerdictLayout.hpp"
#include "tools/names/StreamNames.hpp"
#include "tools/options/ExitStatus.hpp"
#include "tools/output/RowLines.hpp"
#include "tools/render/CaptureLayout.hpp"
#include "tools/render/ControlBlockLayout.hpp"
#include "tools/render/DescribedMemberLayout.hpp"
#include "tools/render/DiagnosticLayout.hpp"
#include "tools/render/EventRow.hpp"
#include "tools/render/FindingLayout.hpp"
#include "tools/render/PacketLayout.hpp"
#include "tools/render/RedundancyLayout.hpp"
#include "tools/render/SampleRow.hpp"
#include "tools/render/SampleSummaryLayout.hpp"
#include "tools/render/StationCheckLayout.hpp"
#include "tools/render/StreamLayout.hpp"
#include "tools/render/SubscriberLayout.hpp"
#include "tools/render/SummaryLayout.hpp"

namespace TalIec61850Tools::DocumentedOutputTest {
namespace {

using Names = std::vector<std::string_view>;
using NameSet = std::set<std::string>;

/// The fields that a row of `samples` has, or those that are of one channel alone.
Names sampleFields(bool isLong) {
    static SampleForm const json{.format = Format::json};
    static SampleForm const ofOneChannel{.format = Format::json, .isLong = true};
    Names const wide = fieldNames(sampleRowLayout(json));
    Names names = fieldNames(sampleRowLayout(ofOneChannel));
    if (!isLong) {
        return wide;
    }
    names.erase(names.begin(), std::find(names.begin(), names.end(), "channel"));
    return names;
}

/// With what a description adds.
std::map<std::string, Names> layouts() {
    StreamNames noNames(std::nullopt, {});
    return {{"events", fieldNames(eventRowLayout(Format::json, true))},
            {"samples", sampleFields(false)},
            {"samples --long", sampleFields(true)},
            {"samples --summary", fieldNames(sampleSummaryLayout(Format::json))},
            {"captures", fieldNames(captureLayout())},
            {"streams", fieldNames(streamLayout(true))},
            {"redundancy", fieldNames(redundancyLayout(Format::json))},
            {"packets", fieldNames(packetLayout(true, &noNames))},
            {"check", fieldNames(findingLayout(true))},
            {"check --summary", fieldNames(summaryLayout())},
            {"scl list", fieldNames(controlBlockLayout())},
            {"scl list --members", fieldNames(describedMemberLayout())},
            {"scl list --diagnostics", fieldNames(diagnosticLayout())},
            {"scl subscribers", fieldNames(subscriberLayout())},
            {"scl check", fieldNames(stationCheckLayout(Format::json))},
            {"show", fieldNames(shownPacketLayout())},
            {"library judge", fieldNames(verdictCountLayout())},
            {"library streams", fieldNames(libraryLayout())},
            {"library judge --list", fieldNames(judgedFrameLayout())}};
}

std::vector<std::string> linesOfToolPage() {
    std::ifstream file(std::string(TAL_DOCS) + "/tool.md");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// The texts between backquotes.
std::vector<std::string> codesIn(std::string const& text) {
    static std::regex const code("`([^`]+)`");
    std::vector<std::string> codes;
    for (std::sregex_iterator found(text.begin(), text.end(), code), end; found != end; ++found) {
        codes.push_back((*found)[1]);
    }
    return codes;
}

/// The commands that a cell of the table names: some, all with packets or streams, or those of the
/// row above.
NameSet commandsIn(std::string const& cell, NameSet const& above) {
    if (cell.find("the same") != std::string::npos) {
        return above;
    }
    if (cell.find("all") != std::string::npos) {
        return {"streams",
                "redundancy",
                "packets",
                "show",
                "check",
                "check --summary",
                "library streams",
                "library judge",
                "library judge --list"};
    }
    auto const codes = codesIn(cell);
    return {codes.begin(), codes.end()};
}

/// The fields of each command by the table in the page.
std::map<std::string, NameSet> documentedFields() {
    static std::regex const row(R"(\| (`.*?`) \|(.*)\| ([^|]*) \|)");
    std::map<std::string, NameSet> fields;
    NameSet commands;
    bool inTable = false;
    for (auto const& line : linesOfToolPage()) {
        inTable = line.starts_with("| field |") || (inTable && line.starts_with("|"));
        std::smatch cells;
        if (!inTable || !std::regex_match(line, cells, row)) {
            continue;
        }
        commands = commandsIn(cells[3], commands);
        for (auto const& command : commands) {
            for (auto const& field : codesIn(cells[1])) {
                fields[command].insert(field);
            }
        }
    }
    return fields;
}

TEST(DocumentedFields, AreThoseOfEachCommand) {
    auto documented = documentedFields();
    for (auto const& [command, names] : layouts()) {
        EXPECT_EQ(documented[command], NameSet(names.begin(), names.end())) << command;
    }
    EXPECT_EQ(documented.size(), 19U);
}

TEST(FieldNames, OccurOnceInALayout) {
    for (auto const& [command, names] : layouts()) {
        EXPECT_EQ(NameSet(names.begin(), names.end()).size(), names.size()) << command;
    }
}

TEST(FieldNames, AreTheSameWhateverTheRow) {
    StreamRow row;
    auto const fieldsOf = [](StreamRow const& r) {
        std::vector<std::string> names;
        RowLines<StreamRow> lines(Format::json, streamLayout());
        auto const fields = nlohmann::ordered_json::parse(lines.lineOf(r));
        for (auto const& field : fields.items()) {
            names.push_back(field.key());
        }
        return names;
    };
    auto const names = fieldNames(streamLayout());
    EXPECT_EQ(fieldsOf(row), std::vector<std::string>(names.begin(), names.end()));
    row.svID = "MU01";
    row.firstTime = CaptureTime();
    row.vlans.emplace_back();
    EXPECT_EQ(fieldsOf(row), std::vector<std::string>(names.begin(), names.end()));
}

/// A text with one blank for each line end.
std::string onOneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

/// The command without its options, and --help.
TalTest::Arguments helpFor(std::string const& command) {
    auto words = TalTest::commandWords(command);
    std::erase_if(words, [](std::string const& word) { return word.starts_with('-'); });
    return TalTest::joined(words, {"--help"});
}

TEST(Help, ListsTheFieldsInTheirOrder) {
    for (auto const& [command, names] : layouts()) {
        auto const help = onOneLine(TalTest::runCompanion(helpFor(command)).out);
        std::size_t at =
            help.find(command == "library judge --list" ? "with --list" : "The fields of");
        ASSERT_NE(at, std::string::npos) << command;
        for (auto const& name : names) {
            at = help.find(" " + std::string(name), at);
            ASSERT_NE(at, std::string::npos) << command << " " << name;
            at += name.size();
        }
    }
}

TEST(ExitStatusTexts, AreOneForEachStatusInOrder) {
    auto const texts = exitStatusTexts();
    ASSERT_EQ(texts.size(), 4U);
    EXPECT_EQ(texts[0].status, ExitStatus::success);
    EXPECT_EQ(texts[1].status, ExitStatus::usageError);
    EXPECT_EQ(texts[2].status, ExitStatus::failure);
    EXPECT_EQ(texts[3].status, ExitStatus::findings);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(texts[i].status), i);
    }
}

TEST(ExitStatusTexts, AreInDocumentHelpAndManualPage) {
    auto const page = linesOfToolPage();
    auto const manual = onOneLine(TalTest::runCompanion({"manual"}).out);
    auto const help = onOneLine(TalTest::runCompanion({"show", "--help"}).out);
    for (auto const& text : exitStatusTexts()) {
        auto const number = std::to_string(static_cast<int>(text.status));
        EXPECT_EQ(std::count(page.begin(), page.end(), "| " + number + " | " + text.full + " |"), 1)
            << text.full;
        EXPECT_NE(manual.find(".B " + number + " " + text.full), std::string::npos) << text.full;
        EXPECT_NE(help.find(" " + number + " " + text.brief), std::string::npos) << text.brief;
    }
}

TEST(CompanionExitStatus, IsThatOfItsText) {
    EXPECT_EQ(TalTest::runCompanion({"manual"}).status, static_cast<int>(ExitStatus::success));
    EXPECT_EQ(TalTest::runCompanion({"nothing"}).status, static_cast<int>(ExitStatus::usageError));
    EXPECT_EQ(TalTest::runCompanion({"streams", "/nonexistent"}).status,
              static_cast<int>(ExitStatus::failure));
}

}  // namespace
}  // namespace TalIec61850Tools::DocumentedOutputTest
