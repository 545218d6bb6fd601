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

namespace TalTest {
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

/// Both LANs become both directions of a ring.
void makeRing(FaultyStation& station) {
    for (StationFrame& frame : station.frames()) {
        frame.ethernet.hsrLan = frame.ethernet.prpLan;
        frame.ethernet.hsrSequence = frame.ethernet.prpSequence;
        frame.ethernet.prpLan.reset();
    }
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
    makeRing(station);
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
    makeRing(station);
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
}  // namespace TalTest
