// What the commands of `scl` make of arguments that are no descriptions, or no captures.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tools/SclTraffic.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/input/ReadDescriptions.hpp"

namespace TalTest::SclArgumentsTest {
namespace {

namespace fs = std::filesystem;

TEST(SclGroup, ListsItsCommandsInItsHelp) {
    auto const help = runCompanion({"scl", "--help"});
    EXPECT_EQ(help.status, 0);
    for (auto const* word : {"list", "subscribers", "check", "Example:\n  tal-iec61850 scl "}) {
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
    }
    auto const nothing = runCompanion({"scl"});
    EXPECT_EQ(nothing.status, 1);
    EXPECT_EQ(nothing.err, complaint("no command given, see tal-iec61850 scl --help"));
}

TEST(SclArguments, AreRequired) {
    EXPECT_EQ(runCompanion({"scl", "list"}).err, complaint("scl list: FILE is required"));
    expectUsageError({"scl", "list"});
    expectUsageError({"scl", "subscribers"});
    expectUsageError({"scl", "check"});
    SclFiles const files;
    expectUsageError({"scl", "check", files.scd()});
    expectUsageError(files.check({"--result", "wrong"}));
    expectUsageError(files.check({"--fail-on", "note"}));
    expectUsageError(files.check({"--columns", "nothing"}));
    expectUsageError({"scl", "list", files.scd(), "--columns", "nothing"});
    expectUsageError({"scl", "list", files.scd(), "--source", "01:0c:cd:01:00:01"});
}

/// What a command says of its arguments; it must fail, and write no row.
std::string complaintOf(Arguments const& arguments) {
    auto const result = runCompanion(joined(arguments, {"-q", "-f", "json"}));
    EXPECT_EQ(result.status, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(linesOf(result.err).size(), 1U) << result.err;
    return result.err;
}

TEST(SclArguments, ThatAreNoDescriptionsAreToldInALine) {
    SclFiles const files;
    auto const& folder = files.folder();
    auto const empty = folder.write("empty.scd", {});
    auto const words = folder.write("words.scd", text("no XML"));
    auto const other = folder.write("other.scd", text("<html/>"));
    auto const broken = folder.write("broken.scd", text(sclStationText().substr(0, 300)));
    fs::create_directory(folder.file("none"));
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    for (Arguments const& command :
         {Arguments{"scl", "list"}, {"scl", "subscribers"}, {"scl", "check"}}) {
        auto const said = [&](std::string const& path) {
            auto all = joined(command, {path});
            if (command[1] == "check") {
                all.push_back(files.capture());
            }
            return complaintOf(all);
        };
        EXPECT_EQ(said(folder.file("gone")),
                  complaint(folder.file("gone") + ": No such file or directory"));
        EXPECT_EQ(said(empty), complaint(empty + ": not a description of a station (SCL)"));
        EXPECT_EQ(said(words), complaint(words + ": not a description of a station (SCL)"));
        EXPECT_EQ(said(other), complaint(other + ": not a description of a station (SCL)"));
        EXPECT_EQ(said(files.capture()),
                  complaint(files.capture() + ": a capture, not a description of a station"));
        EXPECT_TRUE(said(broken).starts_with("tal-iec61850: " + broken + ": the XML is broken"));
        EXPECT_EQ(said(folder.file("pipe")),
                  complaint(folder.file("pipe") + ": not a regular file"));
        EXPECT_EQ(said(folder.file("none")),
                  complaint(folder.file("none") + ": no descriptions of a station in this folder"));
    }
}

TEST(SclArguments, ThatAreInTheWrongOrderAreToldBoth) {
    SclFiles const files;
    auto const result = runCompanion({"scl", "check", files.capture(), files.scd()});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find(files.scd() + ": not a capture file"), std::string::npos);
    EXPECT_NE(result.err.find(files.capture() + ": a capture, not a description"),
              std::string::npos);
}

TEST(SclArguments, WithBrokenXmlAreReadAsFarAsItGoes) {
    std::string const station = sclStationText();
    SclFiles const files(station.substr(0, station.find("<IED name=\"RELAY2\">")) + "<IED name=");
    auto const result = runCompanion({"scl", "list", "-q", "-f", "json", files.scd()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(jsonOf(result.out).size(), 2U);
    EXPECT_NE(result.err.find("what comes before is used"), std::string::npos);
    EXPECT_EQ(linesOf(result.err).size(), 1U);
}

TEST(SclArguments, AreNotOverwritten) {
    SclFiles const files;
    expectUsageError({"scl", "list", files.scd(), "-o", files.scd()});
    expectUsageError(files.check({"-o", files.scd()}));
    expectUsageError(files.check({"-o", files.capture()}));
    auto const output = files.folder().file("rows.json");
    EXPECT_EQ(runCompanion({"scl", "list", "-f", "json", files.scd(), "-o", output}).status, 0);
    EXPECT_EQ(fs::file_size(output) > 0, true);
    EXPECT_EQ(runCompanion(files.check({"-f", "json", "-o", output})).status, 0);
    // Nothing could be read: what is there stays.
    auto const before = fs::file_size(output);
    EXPECT_EQ(runCompanion({"scl", "list", "/nonexistent", "-o", output}).status, 2);
    EXPECT_EQ(runCompanion({"scl", "check", "/nonexistent", files.capture(), "-o", output}).status,
              2);
    EXPECT_EQ(runCompanion({"scl", "check", files.scd(), "/nonexistent", "-o", output}).status, 2);
    EXPECT_EQ(fs::file_size(output), before);
}

TEST(Descriptions, OfAFolderAreThoseThatAreCalledSo) {
    TempDir const folder;
    auto const write = [&](std::string const& name) {
        fs::create_directories(fs::path(folder.file(name)).parent_path());
        folder.write(name, text(sclStationText()));
    };
    for (auto const* name :
         {"b.scd", "a.CID", "c.Icd", "x/y.iid", "d.ssd", "e.xml", "scd", "f.scd.bak"}) {
        write(name);
    }
    auto const found = TalIec61850Tools::readDescriptions({folder.path()});
    EXPECT_EQ(found.faults, std::vector<std::string>{});
    EXPECT_TRUE(found.isAny);
    EXPECT_EQ(
        found.station.files,
        (std::vector<std::string>{folder.file("a.CID"), folder.file("b.scd"), folder.file("c.Icd"),
                                  folder.file("d.ssd"), folder.file("x/y.iid")}));
    // A file by its name may be called anything, and is read once.
    auto const again = TalIec61850Tools::readDescriptions(
        {folder.file("e.xml"), folder.path() + "/./e.xml", folder.file("b.scd"), folder.path()});
    EXPECT_EQ(again.station.files.size(), 6U);
    EXPECT_EQ(again.files.size(), 6U);
}

TEST(Descriptions, ThatCannotBeUsedLeaveTheOthers) {
    SclFiles const files;
    auto const found =
        TalIec61850Tools::readDescriptions({"/nonexistent", files.scd(), files.capture()});
    EXPECT_EQ(found.faults.size(), 2U);
    EXPECT_TRUE(found.isAny);
    EXPECT_EQ(found.station.controlBlocks.size(), 2U);
    auto const none = TalIec61850Tools::readDescriptions({files.capture()});
    EXPECT_FALSE(none.isAny);
}

TEST(Descriptions, ThatCannotBeReadAfterAllAreToldByName) {
    // A regular file, which can be opened, and of which no octet can be read from its start.
    std::string const unreadable = "/proc/self/mem";
    std::string const fault = unreadable + ": Input/output error";
    SclFiles const files;
    auto const found = TalIec61850Tools::readDescriptions({unreadable, files.scd()});
    EXPECT_EQ(found.faults, std::vector<std::string>{fault});
    EXPECT_TRUE(found.isAny);
    EXPECT_EQ(found.station.controlBlocks.size(), 2U);
    EXPECT_FALSE(TalIec61850Tools::readDescriptions({unreadable}).isAny);
    auto const result = runCompanion({"scl", "list", "-q", unreadable, files.scd()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(fault));
    EXPECT_NE(result.out, "");
}

}  // namespace
}  // namespace TalTest::SclArgumentsTest
