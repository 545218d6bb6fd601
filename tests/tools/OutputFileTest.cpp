// -o FILE: it holds what standard output would, and appears whole or not at all.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::OutputFileTest {
namespace {

namespace fs = std::filesystem;

/// A folder with one capture in it, apart from that in which output is to appear.
struct Place {
    TempFile capture{smallCapture()};
    TempDir folder;
    std::string out = folder.file("out.txt");

    [[nodiscard]] std::set<std::string> entries() const {
        std::set<std::string> names;
        for (auto const& entry : fs::directory_iterator(folder.path())) {
            names.insert(entry.path().filename());
        }
        return names;
    }

    /// What a command writes to standard output, then with -o to a file.
    [[nodiscard]] ProcessResult write(Arguments const& more = {}) const {
        return runCompanion(joined({"streams", capture.path(), "-o", out}, more));
    }
};

std::string contentOf(std::string const& path) {
    auto const octets = readFile(path);
    return {octets.begin(), octets.end()};
}

unsigned permissionsOf(std::string const& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

void put(std::string const& path, std::string const& content) {
    std::ofstream(path, std::ios::binary) << content;
}

TEST(OutputFile, HoldsWhatStandardOutputWould) {
    Place const place;
    for (std::string const command : {"streams", "packets", "show", "captures", "library judge"}) {
        for (std::string const format : {"table", "json", "csv"}) {
            auto const arguments =
                joined(commandWords(command), {"-f", format, place.capture.path()});
            auto const printed = runCompanion(arguments);
            for (auto const& option : {Arguments{"-o", place.out}, {"--output=" + place.out}}) {
                auto const result = runCompanion(joined(arguments, option));
                EXPECT_EQ(result.status, 0);
                EXPECT_EQ(result.out, "");
                EXPECT_EQ(result.err, "");
                EXPECT_EQ(contentOf(place.out), printed.out) << command << " " << format;
                EXPECT_EQ(place.entries(), std::set<std::string>{"out.txt"});
            }
        }
    }
}

TEST(OutputFile, ThatIsADashIsStandardOutput) {
    Place const place;
    auto const printed = runCompanion({"streams", place.capture.path()});
    auto const result = runCompanion({"streams", place.capture.path(), "-o", "-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, printed.out);
    EXPECT_NE(printed.out, "");
}

TEST(OutputFile, ReplacesAnotherAndKeepsItsPermissions) {
    Place const place;
    put(place.out, std::string(100'000, 'x'));
    for (mode_t const mode : {0600U, 0640U, 0666U, 0755U, 0400U}) {
        ASSERT_EQ(::chmod(place.out.c_str(), mode), 0);
        EXPECT_EQ(place.write().status, 0);
        EXPECT_EQ(permissionsOf(place.out), mode);
        EXPECT_TRUE(contentOf(place.out).starts_with("PROTO "));
    }
    EXPECT_EQ(place.entries(), std::set<std::string>{"out.txt"});
}

TEST(OutputFile, ThatIsNewHasThePermissionsThatTheMaskLeaves) {
    Place const place;
    for (mode_t const mask : {0022U, 0077U, 0000U}) {
        mode_t const before = ::umask(mask);
        fs::remove(place.out);
        EXPECT_EQ(place.write().status, 0);
        ::umask(before);
        EXPECT_EQ(permissionsOf(place.out), 0666U & ~mask);
    }
}

TEST(OutputFile, BehindASymbolicLinkIsReplacedAndTheLinkStays) {
    Place const place;
    TempDir const elsewhere;
    auto const target = elsewhere.file("target.txt");
    put(target, "old");
    fs::create_symlink(target, place.out);
    EXPECT_EQ(place.write().status, 0);
    EXPECT_TRUE(fs::is_symlink(place.out));
    EXPECT_TRUE(contentOf(target).starts_with("PROTO "));
    EXPECT_EQ(place.entries(), std::set<std::string>{"out.txt"});
}

TEST(OutputFile, BehindASymbolicLinkThatLeadsNowhereYetIsMadeThere) {
    Place const place;
    fs::create_symlink("later.txt", place.out);
    EXPECT_EQ(place.write().status, 0);
    EXPECT_TRUE(fs::is_symlink(place.out));
    EXPECT_EQ(place.entries(), (std::set<std::string>{"later.txt", "out.txt"}));
}

TEST(OutputFile, MayBeNamedRelativeToTheWorkingFolder) {
    Place const place;
    Surroundings const there{.workingFolder = place.folder.path()};
    for (auto const* name : {"a", "./b", "-c", " d", "%s", "e.XXXXXX"}) {
        auto const result =
            runCompanion({"streams", place.capture.path(), "--output=" + std::string(name)}, there);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_TRUE(contentOf(place.folder.file(name)).starts_with("PROTO ")) << name;
    }
    EXPECT_EQ(place.entries().size(), 6U);
}

TEST(OutputFile, MayHaveTheLongestNameThereIs) {
    Place const place;
    auto const longest = place.folder.file(std::string(255, 'n'));
    put(longest, "");  // it may be
    EXPECT_EQ(runCompanion({"streams", place.capture.path(), "-o", longest}).status, 0);
    EXPECT_TRUE(contentOf(longest).starts_with("PROTO "));
}

TEST(OutputFile, ThatIsADeviceOrAPipeIsWrittenAsItIs) {
    Place const place;
    auto const result = runCompanion({"streams", place.capture.path(), "-o", "/dev/null"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    ASSERT_EQ(::mkfifo(place.out.c_str(), 0600), 0);
    auto const piped = run({"/bin/sh", "-c", "cat \"$3\" & \"$0\" streams \"$1\" $2 \"$3\"; wait",
                            companionPath(), place.capture.path(), "-o", place.out});
    EXPECT_EQ(piped.out, runCompanion({"streams", place.capture.path()}).out);
    EXPECT_TRUE(fs::is_fifo(place.out));
    EXPECT_EQ(place.entries(), std::set<std::string>{"out.txt"});
}

TEST(OutputFile, ThatIsStandardOutputByAnotherNameIsThat) {
    Place const place;
    auto const printed = runCompanion({"streams", place.capture.path()}).out;
    auto const piped = run({"/bin/sh", "-c", "\"$0\" streams \"$1\" -o /dev/stdout | cat",
                            companionPath(), place.capture.path()});
    EXPECT_EQ(piped.out, printed);
    EXPECT_EQ(piped.err, "");
}

TEST(OutputFile, ThatCannotBeMadeOrFilledIsReported) {
    Place const place;
    auto const failsWith = [&](std::string const& path, std::string const& reason) {
        auto const result = runCompanion({"streams", place.capture.path(), "-o", path});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, complaint("cannot write " + path + ": " + reason));
    };
    failsWith("/dev/full", "No space left on device");
    failsWith(place.folder.path(), "Is a directory");
    failsWith(place.folder.file("no/such"), "No such file or directory");
    failsWith(place.capture.path() + "/x", "Not a directory");
    EXPECT_EQ(place.entries(), std::set<std::string>{});
}

TEST(OutputFile, ThatGrowsTooLargeLeavesNothingAndTheOldOneStays) {
    Place const place;
    CaptureBuilder many;
    for (int i = 0; i < 500; ++i) {
        many.add(1, 0, oneSv("MU" + std::to_string(i)));
    }
    TempFile const capture(many.bytes());
    put(place.out, "old");
    for (std::string const format : {"table", "json", "csv"}) {
        auto const result = run({"/bin/sh", "-c",
                                 "trap '' XFSZ; ulimit -f 8; exec \"$0\" streams -f \"$1\" -o "
                                 "\"$2\" \"$3\"",
                                 companionPath(), format, place.out, capture.path()});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, complaint("cannot write " + place.out + ": File too large"));
        EXPECT_EQ(contentOf(place.out), "old");
        EXPECT_EQ(place.entries(), std::set<std::string>{"out.txt"});
    }
}

TEST(OutputFile, AppearsWhereSomeCapturesCannotBeReadToo) {
    Place const place;
    auto const result = place.write({"/nonexistent/a.pcap"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(contentOf(place.out), runCompanion({"streams", place.capture.path()}).out);
}

TEST(OutputFile, IsNotTouchedByWrongUsage) {
    Place const place;
    put(place.out, "old");
    expectUsageError({"streams", place.capture.path(), "-o", place.out, "--sort", "nothing"});
    expectUsageError(
        {"packets", place.capture.path(), "-o", place.out, "--from", "2", "--to", "1"});
    expectUsageError({"show", place.capture.path(), place.capture.path() + "@1", "-o", place.out});
    EXPECT_EQ(contentOf(place.out), "old");
    EXPECT_EQ(place.entries(), std::set<std::string>{"out.txt"});
}

}  // namespace
}  // namespace TalTest::OutputFileTest
