// `report` without a browser: what it writes, refuses and leaves. tests/report looks at the page.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/DescribedStation.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/report/RetransmissionCurve.hpp"

namespace TalTest {
namespace {

class ReportCommand : public testing::Test {
protected:
    /// The page of a capture, and what is said besides.
    std::string pageOf(Bytes const& capture, Arguments const& options = {}) {
        std::string const page = folder_.file("page.html");
        auto const result = runCompanion(
            joined({"report", "-o", page, folder_.write("bay1.pcap", capture)}, options));
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.out, "");
        notes_ = result.err;
        return textOf(page);
    }

    static Bytes twoStreams() {
        WaveformSettings second;
        second.svID = "MU02";
        WaveformStream one;
        WaveformStream two(second);
        one.send(kWaveFrames).lose(2).send(kWaveFrames);
        two.send(2 * kWaveFrames);
        return captureOf({&one, &two});
    }

    TempDir folder_;
    std::string notes_;
};

bool has(std::string const& page, std::string const& text) {
    return page.find(text) != std::string::npos;
}

TEST_F(ReportCommand, WritesOnePageThatMayLoadNothing) {
    std::string const page = pageOf(twoStreams());
    EXPECT_TRUE(page.starts_with("<!DOCTYPE html>"));
    EXPECT_TRUE(page.ends_with("</html>\n"));
    EXPECT_TRUE(has(page,
                    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                    "script-src 'unsafe-inline'; style-src 'unsafe-inline'; img-src data:\">"));
    for (char const* const id :
         {"timeline", "cursor", "streams", "findings", "events", "redundancy", "licence"}) {
        EXPECT_TRUE(has(page, "id=\"" + std::string(id) + "\"")) << id;
    }
    for (char const* const place : {"version", "title", "head", "report", "samples", "script"}) {
        EXPECT_FALSE(has(page, "{{" + std::string(place) + "}}")) << place;
    }
    EXPECT_TRUE(has(page, "Permission is hereby granted"));
}

TEST_F(ReportCommand, WritesTheSamePageAgain) {
    std::string const page = pageOf(twoStreams());
    EXPECT_EQ(pageOf(twoStreams()), page);
    EXPECT_EQ(pageOf(twoStreams(), {"--jobs", "1"}), page);
}

TEST_F(ReportCommand, SelectsStreamsAndTimes) {
    std::string const all = pageOf(twoStreams());
    EXPECT_TRUE(has(all, "16 channels of 2 streams, 1,200 samples, 2 missing"));
    EXPECT_TRUE(has(all, "<td>sampleGap</td>"));
    std::string const other = pageOf(twoStreams(), {"--svid", "MU02"});
    EXPECT_TRUE(has(other, "8 channels of 1 stream, 600 samples, 0 missing"));
    EXPECT_FALSE(has(other, "<td>sampleGap</td>"));
    std::string const start = pageOf(twoStreams(), {"--to", "+20ms", "--channels", "1-3"});
    EXPECT_TRUE(has(start, "6 channels of 2 streams"));
    EXPECT_FALSE(has(start, "<td>sampleGap</td>"));
}

TEST_F(ReportCommand, TellsHowWellClocksAreSynchronized) {
    EXPECT_TRUE(has(pageOf(twoStreams()), "smpSynch 2 (global) throughout, in 2 SV streams."));
    WaveformSettings settings;
    settings.smpSynch = 0;
    WaveformStream none(settings);
    none.send(kWaveFrames);
    EXPECT_TRUE(has(pageOf(captureOf({&none})),
                    "throughout in none of 1 SV stream; MU01 had smpSynch 0 (none)"));
}

TEST_F(ReportCommand, TellsOfTheClockThatIsSynchronizedLeast) {
    WaveformSettings settings;
    settings.smpSynch = 1;
    WaveformStream local(settings);
    settings.svID = "MU02";
    settings.smpSynch = 0;
    WaveformStream none(settings);
    settings.svID = "MU03";
    settings.smpSynch.reset();
    WaveformStream silent(settings);
    for (WaveformStream* const stream : {&local, &none, &silent}) {
        stream->send(kWaveFrames);
    }
    EXPECT_TRUE(has(pageOf(captureOf({&local, &none})),
                    "throughout in none of 2 SV streams; MU02 had smpSynch 0 (none)"));
    EXPECT_TRUE(has(pageOf(captureOf({&local, &none, &silent})),
                    "throughout in none of 3 SV streams; MU03 has no smpSynch"));
}

TEST_F(ReportCommand, TakesNamesOfBothProtocols) {
    std::string const page =
        pageOf(memberTraffic(), {"--svid", "MUplain", "--gocbref", "gcbPlain"});
    EXPECT_TRUE(has(page, "<td>MUplain</td>"));
    EXPECT_TRUE(has(page, "<td>gcbPlain</td>"));
    EXPECT_FALSE(has(page, "<td>gcbSource</td>"));
    EXPECT_TRUE(has(page, "in 1 stream of Sampled Values and 1 of GOOSE"));
}

TEST_F(ReportCommand, TellsTheCopiesOfRedundantStreams) {
    WaveformSettings settings;
    std::vector<WaveformStream> streams;
    for (WaveCopies const copies : {WaveCopies::prp, WaveCopies::hsr, WaveCopies::none}) {
        settings.svID = "MU0" + std::to_string(streams.size() + 1);
        settings.copies = copies;
        streams.emplace_back(settings).send(kWaveFrames);
    }
    std::string const page = pageOf(captureOf({&streams[0], &streams[1], &streams[2]}));
    std::string const table = page.substr(page.find("id=\"redundancy\""));
    std::string const rows = table.substr(0, table.find("</table>"));
    EXPECT_TRUE(has(rows, "<td>MU01</td>")) << rows;
    EXPECT_TRUE(has(rows, "<td>prp</td>")) << rows;
    EXPECT_TRUE(has(rows, "<td>MU02</td>")) << rows;
    EXPECT_TRUE(has(rows, "<td>hsr</td>")) << rows;
    EXPECT_FALSE(has(rows, "<td>MU03</td>")) << rows;
    EXPECT_TRUE(has(rows, ">300</td>")) << rows;
}

TEST_F(ReportCommand, SaysHowManyGooseStreamsAreDrawn) {
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (std::uint32_t number = 0; number < 42; ++number) {
        capture.add(1'700'000'000, number, gooseFrameCalled("gcb" + std::to_string(number)));
    }
    EXPECT_TRUE(has(pageOf(capture.bytes()), "40 of 42 GOOSE streams are drawn."));
}

TEST(RetransmissionCurve, HasRoomForHeartbeats) {
    TalIec61850Analysis::GooseEvent event;
    std::int64_t time = 0;
    for (std::int64_t const ms : {1, 1000, 5000, 10'000, 100'000}) {
        event.retransmissions.push_back(time += ms * 1'000'000);
    }
    std::string const curve = TalIec61850Tools::retransmissionCurve(event);
    // A decade has 22 / 6 pixels; 0.1 ms is at 24.
    EXPECT_TRUE(has(curve, "points=\"4,20.3 12,9.3 20,6.8 28,5.7 36,2.0\"")) << curve;
}

TEST_F(ReportCommand, SaysThatNoStreamIsSelected) {
    static_cast<void>(pageOf(twoStreams(), {"--svid", "MU09"}));
    EXPECT_NE(notes_.find("MU09"), std::string::npos) << notes_;
}

TEST_F(ReportCommand, LeavesNoPageWhereItCannotBeWritten) {
    std::string const capture = folder_.write("bay1.pcap", twoStreams());
    auto const result =
        runCompanion({"report", "-o", folder_.file("no/such/folder.html"), capture});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("cannot write"), std::string::npos);
    std::filesystem::create_directory(folder_.file("there"));
    for (std::string const& target :
         {std::string("/dev/full"), folder_.file("there"), capture + "/page.html"}) {
        auto const refused = runCompanion({"report", "-o", target, capture});
        EXPECT_EQ(refused.status, 2) << target;
        EXPECT_EQ(std::count(refused.err.begin(), refused.err.end(), '\n'), 1) << refused.err;
        EXPECT_EQ(refused.out, "");
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder_.file("there")));
    std::filesystem::remove(folder_.file("there"));
    auto const none = runCompanion({"report", "-o", folder_.file("x.html"), "/no/such/file"});
    EXPECT_EQ(none.status, 2);
    EXPECT_FALSE(std::filesystem::exists(folder_.file("x.html")));
    EXPECT_EQ(namesIn(folder_.path()), std::vector<std::string>{"bay1.pcap"});
}

TEST_F(ReportCommand, KeepsTheCapture) {
    std::string const capture = folder_.write("bay1.pcap", twoStreams());
    std::string const before = textOf(capture);
    expectUsageError({"report", "-o", capture, capture});
    EXPECT_EQ(textOf(capture), before);
}

TEST_F(ReportCommand, RefusesWhatItCannotDo) {
    std::string const capture = folder_.write("bay1.pcap", twoStreams());
    std::string const page = folder_.file("page.html");
    expectUsageError({"report", capture});
    for (char const* const size : {"0", "1999999", "1k", "2G", "x", "-1", "1001M", ""}) {
        expectUsageError({"report", "-o", page, "--max-size", size, capture});
    }
    expectUsageError({"report", "-o", page, "--around", "+1s", "--from", "+1s", capture});
    expectUsageError({"report", "-o", page, "--channels", "9", capture});
    EXPECT_FALSE(std::filesystem::exists(page));
}

TEST_F(ReportCommand, HasTheNamesThatAStationIsDescribedWith) {
    std::string const station = folder_.write("station.scd", octetsOfText(describedStation()));
    std::string const trips = pageOf(describedTrips(), {"--scl", station});
    EXPECT_TRUE(has(trips, "\"name\":\"LD0/PTRC1.Tr.general\""));
    EXPECT_TRUE(has(trips, "RELAY1LD0/PTRC1.Tr.general: false -&gt; true"));
    std::string const first = pageOf(describedTrips(), {"--scl", station, "--ied", "RELAY2"});
    EXPECT_FALSE(has(first, "LD0/PTRC1.Tr.general"));
    EXPECT_TRUE(has(first, "LD0/PTRC2.Tr.general"));
    std::string const wave = pageOf(describedSamples(), {"--scl", station});
    EXPECT_TRUE(has(wave, "\"name\":\"LD0/InnATCTR1.Amp.instMag.i\",\"unit\":\"A\""));
    EXPECT_EQ(notes_, "");
}

TEST_F(ReportCommand, TellsOfACaptureThatIsDamaged) {
    Bytes capture = twoStreams();
    capture.resize(capture.size() - 5);
    auto const result = runCompanion(
        {"report", "-o", folder_.file("page.html"), folder_.write("bay1.pcap", capture)});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(has(textOf(folder_.file("page.html")), "<td>fileEndsInRecord</td>"));
}

}  // namespace
}  // namespace TalTest
