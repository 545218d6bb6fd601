// A file that is written whole or not at all.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/output/Output.hpp"

namespace TalIec61850Tools::OutputTest {
namespace {

namespace fs = std::filesystem;

using TalTest::TempDir;
using TalTest::text;

std::set<std::string> entriesOf(TempDir const& folder) {
    std::set<std::string> names;
    for (auto const& entry : fs::directory_iterator(folder.path())) {
        names.insert(entry.path().filename());
    }
    return names;
}

TEST(Output, TakesItsNameOnceAllIsWritten) {
    TempDir const folder;
    auto const path = folder.file("out");
    {
        Output output(path);
        output.write("a");
        auto const unfinished = entriesOf(folder);
        EXPECT_EQ(unfinished.size(), 1U);
        EXPECT_FALSE(unfinished.contains("out"));
        output.write("b\n");
        output.finish();
        EXPECT_EQ(entriesOf(folder), std::set<std::string>{"out"});
    }
    EXPECT_EQ(TalTest::readFile(path), text("ab\n"));
}

TEST(Output, LeavesNothingWhenItIsNotFinished) {
    TempDir const folder;
    auto const path = folder.write("old", text("old"));
    for (auto const* name : {"old", "new"}) {
        Output output(folder.file(name));
        output.write("x");
    }
    EXPECT_EQ(entriesOf(folder), std::set<std::string>{"old"});
    EXPECT_EQ(TalTest::readFile(path), text("old"));
}

TEST(Output, OfNothingIsAnEmptyFile) {
    TempDir const folder;
    Output output(folder.file("out"));
    output.finish();
    EXPECT_EQ(TalTest::readFile(folder.file("out")), TalTest::Bytes());
}

TEST(Output, ReplacesAFileEvenWhileItIsOpen) {
    TempDir const folder;
    auto const path = folder.write("out", text("old"));
    std::ifstream reader(path);
    Output output(path);
    output.write("new, and longer");
    output.finish();
    std::string seen;
    reader >> seen;
    EXPECT_EQ(seen, "old");
}

TEST(Output, ThatCannotBeMadeSaysWhyAndWhere) {
    TempDir const folder;
    try {
        Output const output(folder.file("no\n/such"));
        FAIL();
    } catch (OutputError const& error) {
        EXPECT_EQ(error.code().value(), ENOENT);
        EXPECT_EQ(error.target(), folder.path() + "/no\\n/such");
    }
    EXPECT_THROW(Output{folder.path()}, OutputError);
}

std::string failureOf(Output& output) {
    try {
        output.finish();
    } catch (OutputError const& error) {
        return error.target() + ": " + error.code().message();
    }
    return "none";
}

TEST(Output, WhoseFolderIsGoneWhenItIsFinishedSaysSo) {
    TempDir const folder;
    fs::create_directory(folder.file("sub"));
    Output output(folder.file("sub/out"));
    output.write("x");
    fs::remove_all(folder.file("sub"));
    EXPECT_EQ(failureOf(output), folder.file("sub/out") + ": No such file or directory");
}

TEST(Output, WhoseNameIsAFolderByNowSaysSoAndLeavesNothing) {
    TempDir const folder;
    {
        Output output(folder.file("out"));
        output.write("x");
        fs::create_directory(folder.file("out"));
        EXPECT_EQ(failureOf(output), folder.file("out") + ": Is a directory");
    }
    EXPECT_EQ(entriesOf(folder), std::set<std::string>{"out"});
    EXPECT_TRUE(fs::is_empty(folder.file("out")));
}

TEST(Output, ByLinksThatLeadToEachOtherCannotBeMade) {
    TempDir const folder;
    fs::create_symlink("b", folder.file("a"));
    fs::create_symlink("a", folder.file("b"));
    try {
        Output const output(folder.file("a"));
        FAIL();
    } catch (OutputError const& error) {
        EXPECT_EQ(error.code().value(), ELOOP);
    }
    EXPECT_EQ(entriesOf(folder), (std::set<std::string>{"a", "b"}));
}

TEST(Output, OnAFullDeviceFailsAtTheLatestWhenItIsFinished) {
    Output output("/dev/full");
    EXPECT_THROW(
        {
            output.write("x");
            output.finish();
        },
        OutputError);
    EXPECT_FALSE(output.isTerminal());
}

}  // namespace
}  // namespace TalIec61850Tools::OutputTest
