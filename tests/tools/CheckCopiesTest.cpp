// The words of findings of redundant copies.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "support/CaptureFile.hpp"
#include "tools/CheckTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::CheckCopiesTest {
namespace {

using CopySentences = std::vector<std::string>;

constexpr std::int64_t kNsBetweenCopies = 20'000;

/// A merging unit that sends over both LANs of PRP.
FaultyStation copiedStation() {
    FaultyStation station;
    station.add(SvPlan{.frames = 8000, .prpDelay = kNsBetweenCopies});
    return station;
}

StationFrame& copyOver(FaultyStation& station, std::size_t number, char lan) {
    return *std::find_if(station.frames().begin(), station.frames().end(), [&](auto const& frame) {
        return frame.number == number && frame.ethernet.prpLan == lan;
    });
}

void loseCopiesOver(FaultyStation& station, char lan, std::size_t number, std::size_t count) {
    std::erase_if(station.frames(), [&](StationFrame const& frame) {
        return frame.ethernet.prpLan == lan && frame.number >= number &&
               frame.number < number + count;
    });
}

/// The capture with another size in the trailers of some frames, over LAN A.
Bytes withMisfits(FaultyStation& station, std::size_t number, std::size_t count) {
    constexpr std::int64_t kNsOfSecond = 1'000'000'000;
    constexpr std::size_t kSizeToEnd = 3;
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (StationFrame const& frame : station.inTimeOrder()) {
        Bytes octets = FaultyStation::octetsOf(frame);
        if (frame.ethernet.prpLan == 'A' && frame.number >= number &&
            frame.number < number + count) {
            octets[octets.size() - kSizeToEnd] ^= 0x04U;
        }
        std::int64_t const time = FaultyStation::timeOf(frame);
        capture.add(static_cast<std::uint32_t>(time / kNsOfSecond),
                    static_cast<std::uint32_t>(time % kNsOfSecond), octets);
    }
    return capture.bytes();
}

TEST(CopySentence, SaysWhichLanLacksCopies) {
    auto station = copiedStation();
    loseCopiesOver(station, 'B', 4000, 1);
    loseCopiesOver(station, 'A', 5000, 8);
    EXPECT_EQ(sentencesOf(station, "copyMissing"),
              (CopySentences{"a frame came over LAN A alone: its copy over LAN B is missing",
                             "8 frames in 1.75 ms came over LAN B alone: their copies over LAN A "
                             "are missing"}));
}

TEST(CopySentence, SaysWhichLaneOfARingLacksACopy) {
    auto station = copiedStation();
    loseCopiesOver(station, 'A', 4000, 1);
    station.makeRing();
    EXPECT_EQ(sentencesOf(station, "copyMissing"),
              CopySentences{"a frame came over lane B alone: its copy over lane A is missing"});
}

TEST(CopySentence, SaysThatCopiesDiffer) {
    auto station = copiedStation();
    std::get<SvMessage>(copyOver(station, 4000, 'B').message).asdus.front().seqData = Bytes(64, 7);
    EXPECT_EQ(sentencesOf(station, "copyDiffers"),
              CopySentences{"the two copies of a frame have different contents"});
}

TEST(CopySentence, SaysWhichWayBroughtAFrameAgain) {
    auto station = copiedStation();
    station.repeat(0, 4000, 2 * kNsBetweenCopies);
    EXPECT_EQ(sentencesOf(station, "copyExtra"),
              CopySentences{"a frame came more than once over LAN A"});
    station.makeRing();
    EXPECT_EQ(sentencesOf(station, "copyExtra"),
              CopySentences{"a frame came more than once over lane A"});
}

TEST(CopySentence, SaysWhichLanBothCopiesName) {
    auto station = copiedStation();
    copyOver(station, 4000, 'A').ethernet.prpLan = 'B';
    EXPECT_EQ(sentencesOf(station, "wrongLan"),
              CopySentences{"both copies say LAN B: one came over the wrong LAN"});
}

TEST(CopyFields, NameTheLans) {
    auto station = copiedStation();
    loseCopiesOver(station, 'B', 4000, 1);
    station.repeat(0, 5000, 2 * kNsBetweenCopies);
    std::get<SvMessage>(copyOver(station, 6000, 'B').message).asdus.front().seqData = Bytes(64, 7);
    copyOver(station, 7000, 'A').ethernet.prpLan = 'B';
    auto const rows = checkRows(station);
    auto const fieldsOf = [&](std::string const& kind) {
        auto const row = std::find_if(rows.begin(), rows.end(),
                                      [&](Json const& each) { return each["finding"] == kind; });
        return row == rows.end() ? "none" : (*row)["expected"].dump() + (*row)["found"].dump();
    };
    EXPECT_EQ(fieldsOf("copyMissing"), R"("B""A")");
    EXPECT_EQ(fieldsOf("copyExtra"), R"(null"A")");
    EXPECT_EQ(fieldsOf("copyDiffers"), R"(null"B")");
    EXPECT_EQ(fieldsOf("wrongLan"), R"("A""B")");
}

/// LAN A and LAN B of merging unit and relay in two files, the second with another clock.
FaultyStation tappedCopies(std::int64_t ahead) {
    FaultyStation station;
    station.add(SvPlan{.frames = 4500, .prpDelay = kNsBetweenCopies});
    station.add(GoosePlan{
        .firstMessage = 100, .states = {5, 10}, .start = 10'000'000, .prpDelay = kNsBetweenCopies});
    loseCopiesOver(station, 'B', 2000, 3);
    return station.tapLans(ahead);
}

TEST(TappedLans, GiveTheFindingsOfOneClock) {
    auto station = tappedCopies(0);
    StationFiles const same(station);
    auto const expected = runCompanion(same.check({"-f", "json", "--fail-on", "none"}));
    EXPECT_EQ(expected.err, "");
    for (auto const& [ahead, note] :
         {std::pair(std::int64_t{5'000'000'000}, std::string("5.000020000 s ahead of")),
          std::pair(std::int64_t{-3600'000'000'000}, std::string("3599.999980000 s behind"))}) {
        auto other = tappedCopies(ahead);
        StationFiles const files(other);
        auto const result = runCompanion(files.check({"-f", "json", "--fail-on", "none"}));
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "tal-iec61850: " + files.paths()[1] + ": its clock is " + note +
                                  " that of " + files.paths()[0] + ", by which times are told\n");
        auto const rows = rowsOf(files.check({"--fail-on", "none", "-q"}));
        ASSERT_EQ(rows.size(), 1U) << result.out;
        EXPECT_EQ(rows[0]["finding"], "copyMissing");
        EXPECT_EQ(rows[0]["count"], 3);
        EXPECT_EQ(rows[0]["time"], checkRows(same)[0]["time"]);
        EXPECT_EQ(runCompanion(files.check({"-q", "--fail-on", "none"})).err, "");
    }
}

TEST(TappedLans, GiveTheFiguresOfOneClock) {
    auto station = tappedCopies(0);
    auto other = tappedCopies(5'000'000'000);
    Arguments const figures = {
        "-q",        "--summary",
        "--fail-on", "none",
        "-f",        "csv",
        "--columns", "svID,gocbRef,packets,lost,late,repeated,restarts,states,firstTime"};
    auto const expected = runCompanion(StationFiles(station).check(figures));
    EXPECT_EQ(linesOf(expected.out).size(), 3U);
    EXPECT_EQ(runCompanion(StationFiles(other).check(figures)).out, expected.out);
}

TEST(TappedLans, HaveAnEventOnceWhateverTheirClocks) {
    auto station = tappedCopies(0);
    auto other = tappedCopies(5'000'000'000);
    Arguments const events = {"events", "-f", "csv", "--columns",
                              "time,stNum,sqNum,changes,retransmissions"};
    auto const expected = runCompanion(joined(events, StationFiles(station).paths()));
    EXPECT_EQ(linesOf(expected.out).size(), 2U);
    StationFiles const files(other);
    auto const result = runCompanion(joined(events, files.paths()));
    EXPECT_EQ(result.out, expected.out);
    EXPECT_EQ(result.err, "tal-iec61850: " + files.paths()[1] +
                              ": its clock is 5.000020000 s ahead of that of " + files.paths()[0] +
                              ", by which times are told\n");
}

TEST(CopySentence, SaysBothSizesOfATrailer) {
    auto station = copiedStation();
    auto const rows = checkRows(StationFiles({withMisfits(station, 4000, 3)}));
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["finding"], "trailerInvalid");
    EXPECT_EQ(rows[0]["count"], 3);
    EXPECT_EQ(rows[0]["text"],
              "the PRP trailer gives a size of 104 octets, 108 would fit; 3 times in 500 us");
}

}  // namespace
}  // namespace TalTest::CheckCopiesTest
