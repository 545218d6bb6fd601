#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"

namespace TalIec61850Analysis::CaptureCheckTest {
namespace {

using TalTest::Bytes;
using TalTest::TempDir;
using TalTest::TempFile;

std::optional<CaptureFault> faultOf(Bytes const& content) {
    TempFile const file(content);
    CaptureCheck const check = checkCapture(file.path());
    EXPECT_EQ(check.size, content.size());
    EXPECT_FALSE(check.error);
    return check.fault;
}

std::optional<CaptureFormat> formatOf(Bytes const& content) {
    TempFile const file(content);
    return checkCapture(file.path()).format;
}

/// What the operating system says of a path.
std::error_code errorOf(std::string const& path) {
    CaptureCheck const check = checkCapture(path);
    EXPECT_EQ(check.fault, CaptureFault::refusedBySystem);
    return check.error;
}

TEST(CheckCapture, AcceptsTheFourClassicVariants) {
    for (auto const variant : TalTest::captureVariants) {
        EXPECT_EQ(faultOf(TalTest::captureHeader(variant)), std::nullopt) << name(variant);
    }
}

TEST(CheckCapture, RefusesWhatBeginsOtherwise) {
    EXPECT_EQ(faultOf(TalTest::text("a text")), CaptureFault::notCapture);
    EXPECT_EQ(faultOf({}), CaptureFault::notCapture);
    EXPECT_EQ(faultOf({0xD4, 0xC3, 0xB2}), CaptureFault::notCapture);
    EXPECT_EQ(faultOf({0xD4, 0xC3, 0xB2, 0xA2}), CaptureFault::notCapture);
}

TEST(CheckCapture, TellsTheFormatByTheFirstOctetsAlone) {
    EXPECT_EQ(formatOf(TalTest::captureHeader(TalTest::CaptureVariant::nanoBig)),
              CaptureFormat::classic);
    Bytes const nextGeneration = {0x0A, 0x0D, 0x0D, 0x0A};
    EXPECT_EQ(formatOf(nextGeneration), CaptureFormat::nextGeneration);
    EXPECT_EQ(faultOf(nextGeneration), std::nullopt);
    // Whatever is where its byte order mark should be.
    EXPECT_EQ(formatOf({0x0A, 0x0D, 0x0D, 0x0A, 0x1C, 0, 0, 0, 0xD4, 0xC3, 0xB2, 0xA1}),
              CaptureFormat::nextGeneration);
    EXPECT_EQ(formatOf(TalTest::text("a text")), std::nullopt);
}

TEST(CheckCapture, TellsWhyAFileCannotBeOpened) {
    TempDir const folder;
    std::filesystem::create_symlink(folder.file("loop"), folder.file("loop"));
    EXPECT_EQ(errorOf(folder.file("none.pcap")), std::errc::no_such_file_or_directory);
    EXPECT_EQ(errorOf(""), std::errc::no_such_file_or_directory);
    EXPECT_EQ(errorOf(folder.path()), std::errc::is_a_directory);
    EXPECT_EQ(errorOf(folder.file("loop")), std::errc::too_many_symbolic_link_levels);
    EXPECT_EQ(errorOf(folder.file(std::string(300, 'n'))), std::errc::filename_too_long);
}

TEST(CheckCapture, TellsThatPermissionIsLacking) {
    TempFile const file(TalTest::captureHeader(TalTest::CaptureVariant::microLittle));
    std::filesystem::permissions(file.path(), std::filesystem::perms::none);
    if (::access(file.path().c_str(), R_OK) == 0) {
        GTEST_SKIP() << "this user may read every file";
    }
    EXPECT_EQ(errorOf(file.path()), std::errc::permission_denied);
}

TEST(CheckCapture, DoesNotWaitForTheWriterOfAPipe) {
    TempDir const folder;
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(checkCapture(folder.file("pipe")).fault, CaptureFault::notRegularFile);
}

TEST(CheckCapture, RefusesDevices) {
    EXPECT_EQ(checkCapture("/dev/null").fault, CaptureFault::notRegularFile);
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
}  // namespace TalIec61850Analysis::CaptureCheckTest
