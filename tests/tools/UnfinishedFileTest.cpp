// A file that is removed unless it is finished, whatever ends the process.

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "support/TempFile.hpp"
#include "tools/output/UnfinishedFile.hpp"

namespace TalIec61850Tools::UnfinishedFileTest {
namespace {

namespace fs = std::filesystem;
using TalTest::TempDir;

/// Ends the process with success, without cleaning up.
[[noreturn]] void endQuietly() { std::_Exit(0); }

TEST(UnfinishedFile, IsRemovedByASignal) {
    for (int const signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ, SIGXCPU}) {
        TempDir const folder;
        auto const path = folder.write("unfinished", {1});
        EXPECT_EXIT(
            {
                UnfinishedFile const file(path);
                std::raise(signal);
                endQuietly();
            },
            testing::KilledBySignal(signal), "");
        EXPECT_FALSE(fs::exists(path)) << signal;
    }
}

TEST(UnfinishedFile, IsRemovedByASignalOnAnotherThread) {
    TempDir const folder;
    auto const path = folder.write("unfinished", {1});
    EXPECT_EXIT(
        {
            UnfinishedFile const file(path);
            std::thread([] { std::raise(SIGTERM); }).join();
            endQuietly();
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_FALSE(fs::exists(path));
}

TEST(UnfinishedFile, StaysAfterASignalOnceItIsFinished) {
    TempDir const folder;
    auto const path = folder.write("unfinished", {1});
    EXPECT_EXIT(
        {
            UnfinishedFile file(path);
            bool const isFinished = file.finishAs(folder.file("finished"));
            // The old name may be another file's by now.
            fs::copy_file(folder.file("finished"), path);
            std::raise(isFinished ? SIGTERM : SIGINT);
            endQuietly();
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_TRUE(fs::exists(folder.file("finished")));
    EXPECT_TRUE(fs::exists(path));
}

TEST(UnfinishedFile, IsGuardedAgainAfterAnotherOne) {
    TempDir const folder;
    auto const first = folder.write("first", {1});
    auto const second = folder.write("second", {2});
    EXPECT_EXIT(
        {
            { UnfinishedFile const file(first); }
            TalTest::Bytes const again{3};
            static_cast<void>(folder.write("first", again));
            UnfinishedFile const file(second);
            std::raise(SIGTERM);
            endQuietly();
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_TRUE(fs::exists(first));
    EXPECT_FALSE(fs::exists(second));
}

TEST(UnfinishedFile, IsRemovedWithAllOthers) {
    TempDir const folder;
    auto const first = folder.write("first", {1});
    auto const second = folder.write("second", {2});
    auto const third = folder.write("third", {3});
    EXPECT_EXIT(
        {
            UnfinishedFile const file(first);
            UnfinishedFile finished(second);
            UnfinishedFile const other(third);
            bool const isFinished = finished.finishAs(folder.file("finished"));
            std::raise(isFinished ? SIGTERM : SIGINT);
            endQuietly();
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_FALSE(fs::exists(first));
    EXPECT_FALSE(fs::exists(third));
    EXPECT_TRUE(fs::exists(folder.file("finished")));
}

TEST(UnfinishedFile, LetsASignalWaitUntilAllAreFinished) {
    TempDir const folder;
    auto const first = folder.write("first", {1});
    auto const second = folder.write("second", {2});
    auto const third = folder.write("third", {3});
    EXPECT_EXIT(
        {
            UnfinishedFile one(first);
            UnfinishedFile two(second);
            UnfinishedFile const notFinished(third);
            {
                UnfinishedFile::Together const together;
                bool const isFirst = one.finishAs(folder.file("one"));
                std::raise(SIGTERM);
                std::thread([] { std::raise(SIGTERM); }).join();
                bool const isSecond = two.finishAs(folder.file("two"));
                if (!isFirst || !isSecond) {
                    endQuietly();
                }
            }
            endQuietly();
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_TRUE(fs::exists(folder.file("one")));
    EXPECT_TRUE(fs::exists(folder.file("two")));
    EXPECT_FALSE(fs::exists(third));
}

TEST(UnfinishedFile, TakesSignalsAtOnceAfterAllAreFinished) {
    TempDir const folder;
    auto const path = folder.write("unfinished", {1});
    EXPECT_EXIT(
        {
            { UnfinishedFile::Together const together; }
            UnfinishedFile const file(path);
            std::raise(SIGTERM);
            endQuietly();
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_FALSE(fs::exists(path));
}

TEST(UnfinishedFile, OfAnyLengthOfPathIsRemoved) {
    TempDir const folder;
    auto path = folder.path();
    while (path.size() < 3000) {
        path += "/" + std::string(200, 'd');
    }
    fs::create_directories(path);
    path += "/f";
    fs::copy_file(folder.write("content", {1}), path);
    EXPECT_EXIT(
        {
            UnfinishedFile const file(path);
            std::raise(SIGTERM);
            endQuietly();
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_FALSE(fs::exists(path));
}

TEST(UnfinishedFile, IsRemovedWhenItCannotBeFinished) {
    TempDir const folder;
    auto const path = folder.write("unfinished", {1});
    {
        UnfinishedFile file(path);
        EXPECT_FALSE(file.finishAs(folder.file("no/such")));
        EXPECT_TRUE(fs::exists(path));
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST(UnfinishedFile, LeavesAnIgnoredSignalIgnored) {
    TempDir const folder;
    auto const path = folder.write("unfinished", {1});
    EXPECT_EXIT(
        {
            std::signal(SIGHUP, SIG_IGN);
            UnfinishedFile file(path);
            std::raise(SIGHUP);
            std::_Exit(fs::exists(path) && file.finishAs(folder.file("finished")) ? 7 : 1);
        },
        testing::ExitedWithCode(7), "");
    EXPECT_TRUE(fs::exists(folder.file("finished")));
}

}  // namespace
}  // namespace TalIec61850Tools::UnfinishedFileTest
