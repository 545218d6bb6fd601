// Folders given for captures.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/input/CaptureFinder.hpp"

namespace TalTest::FoldersTest {
namespace {

namespace fs = std::filesystem;

Bytes const kNextGeneration = {0x0A, 0x0D, 0x0D, 0x0A, 0x1C, 0, 0, 0, 0x4D, 0x3C, 0x2B, 0x1A};

/// Names below a folder of what is found in it.
Arguments foundIn(std::string const& folder, Arguments const& arguments) {
    Arguments names;
    for (auto const& capture : TalIec61850Tools::findCaptures(arguments).captures) {
        EXPECT_TRUE(capture.name.starts_with(folder));
        names.push_back(fs::path(capture.name).lexically_relative(folder));
    }
    return names;
}

void put(TempDir const& folder, std::string const& name) {
    fs::create_directories(fs::path(folder.file(name)).parent_path());
    folder.write(name, smallCapture());
}

TEST(Folder, StandsForTheCapturesInItAndBelow) {
    TempDir const folder;
    for (auto const* name : {"b.pcap", "a.pcap", "x/y/z/deep", "x/1", ".hidden"}) {
        put(folder, name);
    }
    folder.write("notes.txt", text("no capture"));
    folder.write("empty", {});
    folder.write("short", {0xD4, 0xC3});
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(foundIn(folder.path(), {folder.path()}),
              (Arguments{".hidden", "a.pcap", "b.pcap", "x/1", "x/y/z/deep"}));
    auto const rows = rowsOf({"streams", folder.path()});
    EXPECT_EQ(fieldOf(rows, "files"), (std::vector<Json>{5, 5}));
    EXPECT_EQ(fieldOf(rows, "packets"), (std::vector<Json>{2, 3}));
    EXPECT_EQ(rowsOf({"streams", folder.path() + "/"}), rows);
}

TEST(Folder, GivesItsCapturesByNameWhateverOrderTheyWereMadeIn) {
    Arguments names;
    for (int i = 0; i < 60; ++i) {
        names.push_back(std::to_string(i * 7919 % 101) + (i % 3 == 0 ? "/x" : ""));
    }
    Arguments found;
    for (int round = 0; round < 2; ++round) {
        TempDir const folder;
        for (auto const& name : names) {
            put(folder, name);
        }
        std::reverse(names.begin(), names.end());
        auto const now = foundIn(folder.path(), {folder.path()});
        EXPECT_EQ(now.size(), names.size());
        EXPECT_TRUE(found.empty() || found == now);
        EXPECT_TRUE(std::is_sorted(now.begin(), now.end()));
        found = now;
    }
}

TEST(Folder, NextToItsFilesCountsThemOnceWhereTheyFirstStand) {
    TempDir const folder;
    for (auto const* name : {"a", "b", "sub/c"}) {
        put(folder, name);
    }
    auto const at = [&](char const* name) { return folder.file(name); };
    EXPECT_EQ(foundIn(folder.path(), {at("b"), folder.path(), at("a")}),
              (Arguments{"b", "a", "sub/c"}));
    EXPECT_EQ(foundIn(folder.path(), {at("sub"), folder.path(), folder.path()}),
              (Arguments{"sub/c", "a", "b"}));
    EXPECT_EQ(fieldOf(rowsOf({"streams", folder.path(), at("a"), at("sub")}), "files"),
              (std::vector<Json>{3, 3}));
}

TEST(Folder, ThatIsLinkedToIsSearchedOnlyWhenItIsGiven) {
    TempDir const folder;
    TempDir const other;
    put(folder, "a");
    put(other, "b");
    put(other, "c");
    fs::create_directory_symlink(other.path(), folder.file("link"));
    fs::create_directory_symlink(folder.path(), folder.file("loop"));
    fs::create_symlink(other.file("b"), folder.file("file"));
    EXPECT_EQ(foundIn(folder.path(), {folder.path()}), (Arguments{"a", "file"}));
    EXPECT_TRUE(TalIec61850Tools::findCaptures({folder.path()}).faults.empty());
    EXPECT_EQ(foundIn(folder.path(), {folder.file("link")}), (Arguments{"link/b", "link/c"}));
}

TEST(Folder, SaysWhichCapturesCannotBeRead) {
    TempDir const folder;
    put(folder, "a.pcap");
    folder.write("b.pcapng", kNextGeneration);
    folder.write("notes.txt", text("no capture"));
    fs::create_symlink("nowhere", folder.file("c.pcap"));
    auto const result = runCompanion({"streams", "-f", "json", folder.path()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              complaint(folder.file("c.pcap") + ": No such file or directory") +
                  complaint(folder.file("b.pcapng") + ": the file ends inside its header"));
    EXPECT_EQ(jsonOf(result.out), streamsOf({folder.file("a.pcap")}));
}

TEST(Folder, SaysWhatItIsNotAllowedToRead) {
    TempDir const folder;
    put(folder, "a.pcap");
    put(folder, "b.pcap");
    put(folder, "sub/c.pcap");
    fs::permissions(folder.file("b.pcap"), fs::perms::none);
    fs::permissions(folder.file("sub"), fs::perms::none);
    if (::access(folder.file("b.pcap").c_str(), R_OK) == 0) {
        GTEST_SKIP() << "this user may read every file";
    }
    auto const result = runCompanion({"streams", "-f", "json", folder.path()});
    fs::permissions(folder.file("sub"), fs::perms::owner_all);
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find(complaint(folder.file("b.pcap") + ": Permission denied")),
              std::string::npos);
    EXPECT_NE(result.err.find(complaint(folder.file("sub") + ": Permission denied")),
              std::string::npos);
    EXPECT_EQ(jsonOf(result.out), streamsOf({folder.file("a.pcap")}));
}

TEST(Folder, WithoutCapturesIsSaidOnce) {
    TempDir const folder;
    folder.write("notes.txt", text("no capture"));
    auto const result = runCompanion({"packets", folder.path(), folder.path()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(folder.path() + ": no captures in this folder"));
}

TEST(Folder, MayHaveAnyName) {
    TempDir const folder;
    for (auto const* name : {"-f", "a b", "\x1b[2J\n", "\xff", "[x]", "@", "%s"}) {
        put(folder, std::string(name) + "/a.pcap");
        EXPECT_EQ(rowsOf({"streams", folder.file(name)}).size(), 2U);
    }
    Surroundings const there{.workingFolder = folder.path()};
    EXPECT_EQ(fieldOf(rowsOf({"streams", "."}, there), "files"), (std::vector<Json>{7, 7}));
    EXPECT_EQ(rowsOf({"packets", "[x]"}, there)[0]["file"], "./[x]/a.pcap");
}

TEST(Captures, MayBeManyMoreThanFilesCanBeOpen) {
    TempDir const folder;
    for (int i = 0; i < 60; ++i) {
        put(folder, std::to_string(i));
    }
    for (std::string const command : {"streams", "packets", "library judge", "show", "captures"}) {
        auto const result = run({"/bin/sh", "-c", "ulimit -n 30; exec \"$0\" $1 -f csv \"$2\"",
                                 companionPath(), command, folder.path()});
        EXPECT_EQ(result.status, 0) << command << ": " << result.err;
        EXPECT_TRUE(result.out ==
                    runCompanion(joined(commandWords(command), {"-f", "csv", folder.path()})).out);
    }
}

}  // namespace
}  // namespace TalTest::FoldersTest
