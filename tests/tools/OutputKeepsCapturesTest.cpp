// -o FILE never takes the place of what was to be read.

#include <gtest/gtest.h>

#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::OutputKeepsCapturesTest {
namespace {

namespace fs = std::filesystem;

TEST(OutputFile, IsNeverACaptureThatIsRead) {
    TempDir const folder;
    auto const file = folder.write("1.pcap", smallCapture());
    fs::create_symlink(file, folder.file("link.pcap"));
    fs::create_hard_link(file, folder.file("hard.pcap"));
    for (Arguments const& command : {Arguments{"streams", file},
                                     {"packets", file},
                                     {"library", "judge", file},
                                     {"show", file + "@70"},
                                     {"streams", folder.path()},
                                     {"streams", "/dev/null", file}}) {
        for (auto const* name : {"1.pcap", "link.pcap", "hard.pcap", "./1.pcap"}) {
            expectUsageError(joined(command, {"-o", folder.file(name)}));
        }
    }
    expectUsageError({"streams", "-", "-o", file}, {.inputFile = file});
    EXPECT_EQ(readFile(file), smallCapture());
}

TEST(OutputFile, IsNeverAFileThatWasGivenToBeReadAndCouldNotBe) {
    TempDir const folder;
    Bytes const content = {0x0A, 0x0D, 0x0D, 0x0A, 0x1C, 0, 0, 0, 0x4D, 0x3C, 0x2B, 0x1A};
    auto const next = folder.write("next.pcapng", content);
    EXPECT_NE(runCompanion({"streams", next, "-o", next}).status, 0);
    EXPECT_EQ(readFile(next), content);
    expectUsageError({"streams", folder.path(), "-o", next});
    EXPECT_EQ(readFile(next), content);
}

}  // namespace
}  // namespace TalTest::OutputKeepsCapturesTest
