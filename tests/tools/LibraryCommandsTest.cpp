// The group `library`: what the library itself answers.

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::LibraryCommandsTest {
namespace {

TEST(LibraryGroup, ListsItsCommandsInItsHelp) {
    auto const help = runCompanion({"library", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    for (auto const* text : {"streams", "judge", "Example:\n  tal-iec61850 library "}) {
        EXPECT_NE(help.out.find(text), std::string::npos) << text;
    }
}

TEST(LibraryGroup, WithoutACommandPointsToItsHelp) {
    auto const result = runCompanion({"library"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, complaint("no command given, see tal-iec61850 library --help"));
}

TEST(LibraryGroup, IsNamedInComplaints) {
    EXPECT_EQ(runCompanion({"library", "judge"}).err, complaint("library judge: FILE is required"));
}

TEST(LibraryStreams, AreTheStreamsOfItsIndex) {
    // Of several ASDUs the last one alone; each lane is a stream.
    SvMessage message;
    message.asdus.resize(2);
    message.asdus[1].svID = "MU02";
    TempFile const capture(CaptureBuilder()
                               .add(1, 0, svFrame(svEthernet().withHsr('A'), message))
                               .add(2, 0, svFrame(svEthernet().withHsr('B'), message))
                               .bytes());
    auto const rows = rowsOf({"library", "streams", capture.path()});
    EXPECT_EQ(fieldOf(rows, "svID"), (std::vector<Json>{"MU02", "MU02"}));
    EXPECT_EQ(fieldOf(rows, "hsrLane"), (std::vector<Json>{"A", "B"}));
    EXPECT_EQ(fieldOf(rows, "simulationPresent"), (std::vector<Json>{nullptr, nullptr}));
}

TEST(LibraryStreams, AreSelectedAndOrderedAsStreamsAre) {
    TempFile const file(memberTraffic());
    for (Arguments const& more : {Arguments{},
                                  {"-f", "json"},
                                  {"-f", "csv", "--protocol", "sv"},
                                  {"--sort", "packets", "--reverse"}}) {
        auto const streams = runCompanion(joined({"streams", file.path()}, more));
        auto const library = runCompanion(joined({"library", "streams", file.path()}, more));
        EXPECT_EQ(library.status, 0);
        EXPECT_EQ(linesOf(library.out).size(), linesOf(streams.out).size());
        EXPECT_GT(linesOf(library.out).size(), 2U);
    }
}

}  // namespace
}  // namespace TalTest::LibraryCommandsTest
