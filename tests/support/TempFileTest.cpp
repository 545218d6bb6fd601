#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"

namespace TalTest::TempFileTest {
namespace {

namespace fs = std::filesystem;

TEST(TempDir, IsRemovedWithAllItHolds) {
    std::string path;
    {
        TempDir const directory;
        path = directory.path();
        EXPECT_EQ(readFile(directory.write("a", {1, 2})), (Bytes{1, 2}));
        fs::create_directory(directory.file("b"));
        EXPECT_TRUE(fs::is_directory(path));
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST(TempDir, IsAnotherEachTime) { EXPECT_NE(TempDir().path(), TempDir().path()); }

TEST(TempDir, IsRemovedOnceWhenMoved) {
    TempDir from;
    std::string const path = from.path();
    TempDir const to = std::move(from);
    EXPECT_EQ(to.path(), path);
    EXPECT_TRUE(fs::exists(path));
}

TEST(TempFile, HoldsItsContentUntilDestroyed) {
    std::string path;
    {
        TempFile const file({1, 0, 2}, "x.pcap");
        path = file.path();
        EXPECT_EQ(readFile(path), (Bytes{1, 0, 2}));
        EXPECT_EQ(fs::path(path).filename(), "x.pcap");
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST(TempFile, KeepsItsFileWhenMoved) {
    TempFile from({1});
    TempFile const to = std::move(from);
    EXPECT_EQ(readFile(to.path()), Bytes{1});
}

}  // namespace
}  // namespace TalTest::TempFileTest
