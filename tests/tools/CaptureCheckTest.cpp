#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/input/CaptureCheck.hpp"

namespace TalIec61850Tools {
namespace {

using TalTest::Bytes;
using TalTest::TempDir;
using TalTest::TempFile;

std::string faultOf(Bytes const& content) {
    TempFile const file(content);
    return checkCapture(file.path()).fault.value_or("none");
}

TEST(CheckCapture, AcceptsTheFourClassicVariants) {
    for (auto const variant : TalTest::captureVariants) {
        EXPECT_EQ(faultOf(TalTest::captureHeader(variant)), "none") << name(variant);
    }
}

TEST(CheckCapture, RefusesWhatBeginsOtherwise) {
    EXPECT_EQ(faultOf(TalTest::text("a text")), "not a classic capture file");
    EXPECT_EQ(faultOf({}), "not a classic capture file");
    EXPECT_EQ(faultOf({0xD4, 0xC3, 0xB2}), "not a classic capture file");
    EXPECT_EQ(faultOf({0xD4, 0xC3, 0xB2, 0xA2}), "not a classic capture file");
}

TEST(CheckCapture, TellsNextGenerationCapturesFromOthers) {
    EXPECT_EQ(faultOf({0x0A, 0x0D, 0x0D, 0x0A, 0x1C, 0, 0, 0, 0x4D, 0x3C, 0x2B, 0x1A}),
              "next-generation capture: convert it first, for example with editcap -F pcap");
    EXPECT_EQ(faultOf({0x0A, 0x0D, 0x0D, 0x0A}),
              "next-generation capture: convert it first, for example with editcap -F pcap");
}

TEST(CheckCapture, AcceptsAClassicMagicBehindANextGenerationOneAsTheLibraryDoes) {
    EXPECT_EQ(faultOf({0x0A, 0x0D, 0x0D, 0x0A, 0x1C, 0, 0, 0, 0xD4, 0xC3, 0xB2, 0xA1}), "none");
}

TEST(CheckCapture, SaysWhyAFileCannotBeOpened) {
    TempDir const folder;
    std::filesystem::create_symlink(folder.file("loop"), folder.file("loop"));
    EXPECT_EQ(checkCapture(folder.file("none.pcap")).fault, "No such file or directory");
    EXPECT_EQ(checkCapture("").fault, "No such file or directory");
    EXPECT_EQ(checkCapture(folder.path()).fault, "Is a directory");
    EXPECT_EQ(checkCapture(folder.file("loop")).fault, "Too many levels of symbolic links");
    EXPECT_EQ(checkCapture(folder.file(std::string(300, 'n'))).fault, "File name too long");
}

TEST(CheckCapture, SaysThatPermissionIsLacking) {
    TempFile const file(TalTest::captureHeader(TalTest::CaptureVariant::microLittle));
    std::filesystem::permissions(file.path(), std::filesystem::perms::none);
    if (::access(file.path().c_str(), R_OK) == 0) {
        GTEST_SKIP() << "this user may read every file";
    }
    EXPECT_EQ(checkCapture(file.path()).fault, "Permission denied");
}

TEST(CheckCapture, DoesNotWaitForThoseWhoWriteIntoAPipe) {
    TempDir const folder;
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(checkCapture(folder.file("pipe")).fault, "not a regular file");
}

TEST(CheckCapture, RefusesDevices) {
    EXPECT_EQ(checkCapture("/dev/null").fault, "not a regular file");
}

TEST(CheckCapture, TellsFilesApartWhateverTheirPaths) {
    TempDir const folder;
    auto const header = TalTest::captureHeader(TalTest::CaptureVariant::microLittle);
    auto const first = folder.write("first.pcap", header);
    auto const second = folder.write("second.pcap", header);
    std::filesystem::create_symlink(first, folder.file("link"));
    EXPECT_EQ(checkCapture(first).identity, checkCapture(folder.file("./first.pcap")).identity);
    EXPECT_EQ(checkCapture(first).identity, checkCapture(folder.file("link")).identity);
    EXPECT_NE(checkCapture(first).identity, checkCapture(second).identity);
}

}  // namespace
}  // namespace TalIec61850Tools
