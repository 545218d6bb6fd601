// `report` without a browser: what it writes, refuses and leaves. tests/report looks at the page.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/PcapngMaker.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/DescribedStation.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/report/HtmlText.hpp"
#include "tools/report/LanePicture.hpp"
#include "tools/report/RetransmissionCurve.hpp"
#include "tools/report/StatesSection.hpp"

namespace TalTest::ReportCommandTest {
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

TEST_F(ReportCommand, SaysHowFarSamplesAreFromTheirCapture) {
    EXPECT_FALSE(has(pageOf(twoStreams()), "Samples are drawn when"));
    WaveformSettings settings;
    settings.delay = 262'430'000;
    WaveformStream late(settings);
    settings.svID = "MU02";
    settings.delay = 200'000;
    WaveformStream other(settings);
    late.send(kWaveFrames);
    other.send(kWaveFrames);
    EXPECT_TRUE(has(pageOf(captureOf({&late, &other})),
                    "Samples are drawn when they were taken, 262.43 ms before they were captured "
                    "(MU01); states and findings when they were captured."));
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

/// A publisher of each protocol, of which the last packets are at the last time there is.
Bytes trafficAtTheLastTime() {
    constexpr std::uint64_t kLast = std::numeric_limits<std::int64_t>::max();
    PcapngMaker maker;
    maker.section().interface(1, 0, maker.timeOptions(9));
    for (std::uint64_t const before : {1'000'000U, 0U}) {
        maker.packet({.time = kLast - before, .frame = gooseFrameCalled("gcb1")});
        maker.packet({.time = kLast - before, .frame = svFrameCalled("MU1")});
    }
    return maker.bytes();
}

TEST(Pictures, HaveAnAxisAtTheLastTimeThereIs) {
    TempDir const folder;
    auto const path = folder.write("bay1.pcapng", trafficAtTheLastTime());
    for (Arguments const& window : std::vector<Arguments>{{}, {"--from", "-0s"}}) {
        auto const page = folder.file("page.html");
        auto const report = runCompanion(joined({"report", "-o", page, path}, window));
        EXPECT_EQ(report.status, 0) << report.err;
        auto const told = [&, text = textOf(page)](std::string const& name) {
            std::size_t const at = text.find("\"" + name + "\":");
            return std::stoll(text.substr(at + name.size() + 3));
        };
        EXPECT_GT(told("to"), told("from"));
        EXPECT_LE(told("to") - told("from"), 1'000'001);
        for (Arguments const& command :
             std::vector<Arguments>{{"events", "--timeline"}, {"samples", "--plot"}, {"plot"}}) {
            auto const drawn = runCompanion(joined(joined(command, {path}), window));
            EXPECT_EQ(drawn.status, 0) << drawn.err;
            EXPECT_EQ(drawn.out.find("nan"), std::string::npos) << drawn.out;
        }
    }
}

/// Two messages of a stream, the second of which has another state.
void addGoose(CaptureBuilder& capture, std::string const& name, std::size_t members) {
    for (std::uint32_t const state : {1U, 2U}) {
        GooseMessage message = gooseCalled(name);
        message.stNum = MinimalUnsigned(state);
        message.sqNum = MinimalUnsigned(0);
        message.setData(std::vector<Bytes>(members, dataInteger(state)));
        capture.add(1'700'000'000 + state, 0, gooseFrame(Ethernet(), message));
    }
}

TEST_F(ReportCommand, DrawsSmallStatesAfterThoseThatHaveNoRoom) {
    using namespace TalIec61850Tools;
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    addGoose(capture, "gcb1", 1);
    addGoose(capture, "gcb2", 20);
    addGoose(capture, "gcb3", 1);
    auto const index =
        TalIec61850Analysis::indexCapture(folder_.write("bay1.pcap", capture.bytes()));
    PictureNames const names;
    auto const sizeOf = [&](std::size_t stream) {
        return scriptSize(drawLanes(index, stream, LanePictureWish(), names).json);
    };
    ASSERT_GT(sizeOf(1), sizeOf(2) + 1);
    StatesSection section(index, names, LanePictureWish(), sizeOf(0) + sizeOf(2) + 1);
    for (std::size_t const stream : {0U, 1U, 2U}) {
        section.add(stream);
    }
    ASSERT_EQ(section.json().size(), 2U);
    EXPECT_EQ(section.json()[1]["name"], "gcb3");
    EXPECT_EQ(section.absent(3), std::vector<std::string>{"2 of 3 GOOSE streams are drawn."});
}

}  // namespace
}  // namespace TalTest::ReportCommandTest
