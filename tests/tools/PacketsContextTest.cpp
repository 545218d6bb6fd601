// The packets on either side of a window.

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"

namespace TalTest::PacketsContextTest {
namespace {

/// A row in few words: second, place, stream.
std::vector<std::string> told(Arguments const& command) {
    std::vector<std::string> rows;
    for (Json const& row : rowsOf(command)) {
        auto const name = row["protocol"] == "SV" ? row["svID"] : row["gocbRef"];
        rows.push_back(std::to_string(row["timeNs"].get<std::int64_t>() / 1'000'000'000) + " " +
                       row["place"].get<std::string>() + " " + name.get<std::string>());
    }
    return rows;
}

using Rows = std::vector<std::string>;

Bytes captureAt(std::vector<std::uint32_t> const& seconds, Bytes const& frame) {
    CaptureBuilder capture;
    for (std::uint32_t const second : seconds) {
        capture.add(second, 0, frame);
    }
    return capture.bytes();
}

TEST(PacketsContext, IsTheNearestPacketOnEitherSide) {
    TempFile const file(captureAt({1, 2, 3, 4, 5, 6}, gooseFrameCalled("gcb1")));
    EXPECT_EQ(told({"packets", file.path(), "--context", "--from", "3", "--to", "4"}),
              (Rows{"2 before gcb1", "3 inside gcb1", "4 inside gcb1", "5 after gcb1"}));
    EXPECT_EQ(told({"packets", file.path(), "-c", "--from", "3.5", "--to", "3.6"}),
              (Rows{"3 before gcb1", "4 after gcb1"}));
    EXPECT_EQ(told({"packets", file.path(), "-c", "--from", "7"}), Rows{"6 before gcb1"});
    EXPECT_EQ(told({"packets", file.path(), "-c", "--to", "0"}), Rows{"1 after gcb1"});
    EXPECT_EQ(told({"packets", file.path(), "-c"}).size(), 6U);
}

TEST(PacketsContext, IsOfGooseAlone) {
    TempFile const file(captureAt({1, 2, 3}, svFrameCalled("MU01")));
    EXPECT_EQ(told({"packets", file.path(), "-c", "--from", "2", "--to", "2"}),
              Rows{"2 inside MU01"});
}

TEST(PacketsContext, IsOfEachStreamInEachFile) {
    TempDir const folder;
    auto const first = folder.write("1.pcap", captureAt({1, 5, 9}, gooseFrameCalled("gcb1")));
    auto const second = folder.write("2.pcap", captureAt({2, 8}, gooseFrameCalled("gcb1")));
    auto const other = folder.write("3.pcap", captureAt({3, 7}, gooseFrameCalled("gcb2")));
    EXPECT_EQ(told({"packets", first, second, other, "-c", "--from", "4", "--to", "6"}),
              (Rows{"1 before gcb1", "2 before gcb1", "3 before gcb2", "5 inside gcb1",
                    "7 after gcb2", "8 after gcb1", "9 after gcb1"}));
    EXPECT_EQ(told({"packets", first, second, other, "-c", "--gocbref", "gcb2", "--from", "4"}),
              (Rows{"3 before gcb2", "7 inside gcb2"}));
}

TEST(PacketsContext, IsTheNearestInTimeWhateverTheOrderInTheFile) {
    TempFile const file(captureAt({9, 3, 1, 7, 5, 2, 8}, gooseFrameCalled("gcb1")));
    EXPECT_EQ(told({"packets", file.path(), "-c", "--from", "4", "--to", "6"}),
              (Rows{"3 before gcb1", "5 inside gcb1", "7 after gcb1"}));
}

TEST(PacketsContext, OfOneTimeIsTheLastBeforeAndTheFirstBehind) {
    TempFile const file(captureAt({1, 1, 1, 5, 9, 9, 9}, gooseFrameCalled("gcb1")));
    auto const all = rowsOf({"packets", file.path()});
    auto const rows = rowsOf({"packets", file.path(), "-c", "--from", "5", "--to", "5"});
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0]["position"], all[2]["position"]);
    EXPECT_EQ(rows[2]["position"], all[4]["position"]);
}

TEST(PacketsContext, IsShownToo) {
    TempFile const file(captureAt({1, 2, 3}, gooseFrameCalled("gcb1")));
    Arguments const options = {file.path(), "-c", "--from", "2", "--to", "2"};
    EXPECT_EQ(fieldOf(rowsOf(joined({"show"}, options)), "place"),
              (std::vector<Json>{"before", "inside", "after"}));
    auto const text = runCompanion(joined({"show"}, options)).out;
    EXPECT_NE(text.find(" (before the window)\n"), std::string::npos);
    EXPECT_NE(text.find(" (after the window)\n"), std::string::npos);
}

}  // namespace
}  // namespace TalTest::PacketsContextTest
