// Files that appear together, or not at all.

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/TempFile.hpp"
#include "tools/output/FileSet.hpp"
#include "tools/output/OutputError.hpp"

namespace TalIec61850Tools::FileSetTest {
namespace {

namespace fs = std::filesystem;
using TalTest::TempDir;

std::string contentOf(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t entriesOf(TempDir const& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()));
}

TEST(FileSet, AppearsWhenItIsFinished) {
    TempDir const folder;
    FileSet files;
    Output& first = files.add(folder.file("a.cfg"));
    Output& second = files.add(folder.file("a.dat"));
    second.write(std::string("2\0", 2));
    first.write("1");
    second.write(std::string(200'000, 'x'));
    EXPECT_FALSE(fs::exists(folder.file("a.cfg")));
    EXPECT_FALSE(fs::exists(folder.file("a.dat")));
    files.finish();
    EXPECT_EQ(contentOf(folder.file("a.cfg")), "1");
    EXPECT_EQ(contentOf(folder.file("a.dat")), std::string("2\0", 2) + std::string(200'000, 'x'));
    EXPECT_EQ(entriesOf(folder), 2U);
}

TEST(FileSet, LeavesNothingWhenItIsNotFinished) {
    TempDir const folder;
    {
        FileSet files;
        files.add(folder.file("a.cfg")).write("1");
        files.add(folder.file("a.dat")).write("2");
    }
    EXPECT_EQ(entriesOf(folder), 0U);
}

TEST(FileSet, LeavesOlderFilesUntilItIsFinished) {
    TempDir const folder;
    auto const path = folder.write("a.cfg", {'o'});
    {
        FileSet files;
        files.add(path).write("1");
        files.add(folder.file("a.dat")).write("2");
    }
    EXPECT_EQ(contentOf(path), "o");
    FileSet files;
    files.add(path).write("1");
    files.finish();
    EXPECT_EQ(contentOf(path), "1");
}

TEST(FileSet, LeavesNothingWhenAFileCannotBeMade) {
    TempDir const folder;
    {
        FileSet files;
        files.add(folder.file("a.cfg")).write("1");
        EXPECT_THROW(files.add(folder.file("none/a.dat")), OutputError);
    }
    EXPECT_EQ(entriesOf(folder), 0U);
}

TEST(FileSet, LeavesNothingWhenADeviceIsFull) {
    TempDir const folder;
    {
        FileSet files;
        files.add(folder.file("a.cfg")).write("1");
        files.add("/dev/full").write("2");
        EXPECT_THROW(files.finish(), OutputError);
        EXPECT_FALSE(fs::exists(folder.file("a.cfg")));
    }
    EXPECT_EQ(entriesOf(folder), 0U);
}

TEST(FileSet, LeavesNothingWhenANameCannotBeTaken) {
    TempDir const folder;
    {
        FileSet files;
        files.add(folder.file("a.cfg")).write("1");
        files.add(folder.file("a.dat")).write("2");
        files.add(folder.file("a.hdr")).write("3");
        // Made meanwhile: no file can take the name of a folder.
        fs::create_directory(folder.file("a.dat"));
        EXPECT_THROW(files.finish(), OutputError);
    }
    EXPECT_FALSE(fs::exists(folder.file("a.cfg")));
    EXPECT_FALSE(fs::exists(folder.file("a.hdr")));
    EXPECT_EQ(entriesOf(folder), 1U);
}

TEST(FileSet, NamesTheFileThatFails) {
    TempDir const folder;
    FileSet files;
    files.add(folder.file("a.cfg")).write("1");
    files.add("/dev/full").write("2");
    try {
        files.finish();
        FAIL();
    } catch (OutputError const& error) {
        EXPECT_EQ(error.target(), "/dev/full");
        EXPECT_EQ(error.code().value(), ENOSPC);
    }
}

TEST(FileSet, LeavesNothingWhenASignalEndsTheProgram) {
    for (int const signal : {SIGINT, SIGTERM, SIGHUP, SIGXFSZ}) {
        TempDir const folder;
        EXPECT_EXIT(
            {
                FileSet files;
                files.add(folder.file("a.cfg")).write("1");
                files.add(folder.file("a.dat")).write(std::string(200'000, 'x'));
                files.add(folder.file("a.hdr")).write("3");
                std::raise(signal);
                std::_Exit(0);
            },
            testing::KilledBySignal(signal), "");
        EXPECT_EQ(entriesOf(folder), 0U) << signal;
    }
}

TEST(FileSet, StaysAfterASignalOnceItIsFinished) {
    TempDir const folder;
    EXPECT_EXIT(
        {
            FileSet files;
            files.add(folder.file("a.cfg")).write("1");
            files.add(folder.file("a.dat")).write("2");
            files.finish();
            std::raise(SIGTERM);
            std::_Exit(0);
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_EQ(entriesOf(folder), 2U);
}

}  // namespace
}  // namespace TalIec61850Tools::FileSetTest
