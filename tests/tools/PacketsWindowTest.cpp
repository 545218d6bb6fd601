// Which packets `packets` lists for a window of time.

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"

namespace TalTest::PacketsWindowTest {
namespace {

constexpr std::uint32_t kBegin = 1'710'928'800;  // 2024-03-20T10:00:00
constexpr std::int64_t kGiga = 1'000'000'000;

/// Packets at 0, 1, 1.5 and 2 s, and 1 ns before and after 1 s.
Bytes secondsCapture() {
    Bytes const frame = svFrameCalled("MU01");
    return CaptureBuilder(CaptureVariant::nanoBig)
        .add(kBegin, 0, frame)
        .add(kBegin, 999'999'999, frame)
        .add(kBegin + 1, 0, frame)
        .add(kBegin + 1, 1, frame)
        .add(kBegin + 1, 500'000'000, frame)
        .add(kBegin + 2, 0, frame)
        .bytes();
}

/// Times of the listed packets, in nanoseconds from the begin.
std::vector<std::int64_t> listed(Arguments const& options,
                                 Bytes const& capture = secondsCapture()) {
    TempFile const file(capture);
    std::vector<std::int64_t> times;
    for (Json const& row : rowsOf(joined({"packets", file.path()}, options))) {
        EXPECT_EQ(row["place"], "inside");
        times.push_back(row["timeNs"].get<std::int64_t>() - kBegin * kGiga);
    }
    return times;
}

using Times = std::vector<std::int64_t>;
Times const kMiddle = {1'000'000'000, 1'000'000'001, 1'500'000'000};

TEST(PacketsWindow, IsAllTimeUnlessToldOtherwise) { EXPECT_EQ(listed({}).size(), 6U); }

TEST(PacketsWindow, HasBothItsEndsInside) {
    EXPECT_EQ(listed({"--from", "2024-03-20T10:00:01", "--to", "2024-03-20T10:00:01.5"}), kMiddle);
    EXPECT_EQ(listed({"--from", "1710928801.0", "--to", "1710928801.500000000"}), kMiddle);
    EXPECT_EQ(listed({"--from", "+1s", "--to", "+1500ms"}), kMiddle);
    EXPECT_EQ(listed({"--from=+1s", "--to=2024-03-20 10:00:01.5Z"}), kMiddle);
    EXPECT_EQ(listed({"--from", "2024-03-20T11:00:01+01:00", "--to", "-0.5s"}), kMiddle);
    EXPECT_EQ(listed({"--from", "10:00:01", "--to", "04:30:01.5-05:30"}), kMiddle);
    EXPECT_EQ(listed({"--from", "-1s", "--to=-500ms"}), kMiddle);
}

TEST(PacketsWindow, CountsFromTheLatestRecordOfAllCaptures) {
    TempFile const first(CaptureBuilder().add(100, 0, svFrameCalled("MU01")).bytes());
    TempFile const second(CaptureBuilder()
                              .add(109, 0, svFrameCalled("MU01"))
                              .add(108, 0, svFrameCalled("MU01"))
                              .add(110, 0, Bytes(60))
                              .bytes());
    auto const rows = rowsOf({"packets", second.path(), first.path(), "--from", "-1.5s"});
    EXPECT_EQ(fieldOf(rows, "timeNs"), std::vector<Json>{109 * kGiga});
}

TEST(PacketsLimit, LeavesTheFirstPackets) {
    EXPECT_EQ(listed({"--limit", "2"}), (Times{0, 999'999'999}));
    EXPECT_EQ(listed({"--limit", "0"}), Times{});
    EXPECT_EQ(listed({"--limit=6"}).size(), 6U);
    EXPECT_EQ(listed({"--limit", "99"}).size(), 6U);
    EXPECT_EQ(listed({"--from", "+1s", "--limit", "1"}), Times{1'000'000'000});
}

TEST(PacketsLimit, IsSaidInTheSummary) {
    TempFile const file(secondsCapture());
    EXPECT_EQ(summaryOf(runCompanion({"packets", file.path(), "--limit", "2"}).out),
              "2 packets of 1 stream in 1 file; 4 more not listed");
    EXPECT_EQ(summaryOf(runCompanion({"packets", file.path(), "--limit", "6"}).out),
              "6 packets of 1 stream in 1 file");
}

TEST(PacketsLimit, IsThatOfShowToo) {
    TempFile const file(secondsCapture());
    EXPECT_EQ(fieldOf(rowsOf({"show", file.path(), "--limit", "3"}), "timeNs"),
              fieldOf(rowsOf({"packets", file.path(), "--limit", "3"}), "timeNs"));
}

TEST(PacketsLimit, IsANumber) {
    TempFile const file(secondsCapture());
    for (auto const* limit : {"", "x", "-1", "1.5", "0x1", " 1", "18446744073709551616"}) {
        expectUsageError({"packets", file.path(), "--limit", limit});
        expectUsageError({"show", file.path(), "--limit", limit});
    }
}

TEST(PacketsWindow, IsExactToTheNanosecond) {
    EXPECT_EQ(listed({"--from", "+1.000000001s", "--to", "+1.000000001s"}), Times{1'000'000'001});
    EXPECT_EQ(listed({"--from", "1710928800.999999999", "--to", "1710928800.999999999"}),
              Times{999'999'999});
    EXPECT_EQ(listed({"--from", "+1000000002ns", "--to", "+1499999999ns"}), Times{});
}

TEST(PacketsWindow, MayBeOpenOnEitherSide) {
    EXPECT_EQ(listed({"--from", "+1.5s"}), (Times{1'500'000'000, 2'000'000'000}));
    EXPECT_EQ(listed({"--to", "+0s"}), Times{0});
    EXPECT_EQ(listed({"--from", "2024-03-20T10:00:03"}), Times{});
    EXPECT_EQ(listed({"--to", "2024-03-20"}), Times{});
    EXPECT_EQ(listed({"--to", "2200-12-31"}).size(), 6U);
    EXPECT_EQ(listed({"--from", "0"}).size(), 6U);
}

TEST(PacketsWindow, CountsFromTheEarliestFirstRecordWhateverIsInIt) {
    Bytes const other = ethernetFrame(Ethernet(), 0x0800, Bytes(46));
    TempDir const folder;
    auto const late = folder.write(
        "late.pcap", CaptureBuilder().add(kBegin + 5, 0, svFrameCalled("MU01")).bytes());
    auto const early = folder.write(
        "early.pcap",
        CaptureBuilder().add(kBegin, 0, other).add(kBegin + 1, 0, svFrameCalled("MU02")).bytes());
    auto const names = [&](Arguments const& options) {
        return fieldOf(rowsOf(joined({"packets", late, early}, options)), "svID");
    };
    EXPECT_EQ(names({"--to", "+1s"}), std::vector<Json>{"MU02"});
    EXPECT_EQ(fieldOf(rowsOf({"packets", "--to", "+1s", early, late}), "svID"),
              std::vector<Json>{"MU02"});
    EXPECT_EQ(names({"--from", "+2s", "--to", "+5s"}), std::vector<Json>{"MU01"});
    // The begin is that of the captures, not of the streams.
    EXPECT_EQ(names({"--svid", "MU01", "--to", "+5s"}), std::vector<Json>{"MU01"});
}

TEST(PacketsWindow, MayReachFartherThanAnyCapture) {
    Bytes const capture = CaptureBuilder().add(0xFFFF'FFFF, 0, svFrameCalled("MU01")).bytes();
    EXPECT_EQ(listed({"--to", "+1h"}, capture).size(), 1U);
    EXPECT_EQ(listed({"--to", "+2000000h"}, capture).size(), 1U);
    EXPECT_EQ(listed({"--to", "2200-12-31"}, capture).size(), 1U);
}

TEST(PacketsWindow, FindsPacketsOfACaptureWhoseTimesAreInNoOrder) {
    Bytes const frame = svFrameCalled("MU01");
    CaptureBuilder capture;
    for (std::uint32_t const second : {9U, 2U, 7U, 2U, 5U, 0U, 3U, 8U}) {
        capture.add(kBegin + second, 0, frame);
    }
    EXPECT_EQ(
        listed({"--from", "2024-03-20T10:00:02", "--to", "2024-03-20T10:00:05"}, capture.bytes()),
        (Times{2 * kGiga, 2 * kGiga, 3 * kGiga, 5 * kGiga}));
    // The earliest record counts, not the first.
    EXPECT_EQ(listed({"--from", "+8s"}, capture.bytes()), (Times{8 * kGiga, 9 * kGiga}));
    EXPECT_EQ(listed({"--around", "+2.5s", "--span", "1s"}, capture.bytes()),
              (Times{2 * kGiga, 2 * kGiga, 3 * kGiga}));
}

TEST(PacketsWindow, CarriesNanosecondsThatMakeUpASecond) {
    Bytes const frame = svFrameCalled("MU01");
    auto const record = [&](std::uint32_t fraction) {
        auto header = bigEndian(kBegin, 4);
        append(header, bigEndian(fraction, 4));
        append(header, bigEndian(frame.size(), 4));
        append(header, bigEndian(frame.size(), 4));
        return concat({header, frame});
    };
    Bytes const capture = CaptureBuilder(CaptureVariant::microBig)
                              .addRaw(record(1'000'001))
                              .addRaw(record(999'999))
                              .bytes();
    EXPECT_EQ(listed({}, capture), (Times{999'999'000, 1'000'001'000}));
    EXPECT_EQ(listed({"--from", "+1.1s", "--to", "+1.2s"}, capture), Times{});
}

TEST(PacketsWindow, HoldsFramesThatCannotBeReadByTheirTimes) {
    TempFile const capture(CaptureBuilder()
                               .addSnapped(kBegin, 0, 26, gooseFrameCalled("gcb1"))
                               .addSnapped(kBegin + 1, 0, 26, gooseFrameCalled("gcb1"))
                               .add(kBegin + 2, 0, svFrameCalled("MU01"))
                               .bytes());
    EXPECT_EQ(rowsOf({"packets", capture.path()}).size(), 3U);
    EXPECT_EQ(summaryOf(runCompanion({"packets", capture.path()}).out),
              "3 packets of 1 stream in 1 file");
    EXPECT_EQ(rowsOf({"packets", "--from", "+1s", capture.path()}).size(), 2U);
    EXPECT_EQ(rowsOf({"packets", "--protocol", "sv", capture.path()}).size(), 1U);
}

TEST(PacketsWindow, ThatEndsBeforeItBeginsIsWrongUsage) {
    TempFile const capture(secondsCapture());
    for (std::string const command : {"packets", "show"}) {
        expectUsageError({command, capture.path(), "--from", "+2s", "--to", "+1s"});
        expectUsageError({command, capture.path(), "--from", "10", "--to", "9.999999999"});
        expectUsageError({command, "missing", "--from", "2024-03-20T10:00", "--to", "2024-03-20"});
    }
    // What only the captures tell is an empty window.
    EXPECT_EQ(listed({"--from", "+1s", "--to", "2024-03-20"}), Times{});
}

}  // namespace
}  // namespace TalTest::PacketsWindowTest
