// `plot` as it is called: what it draws of captures, what it refuses, what it leaves.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>

#include "plot/SvgReader.hpp"
#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/DescribedStation.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalTest::PlotCommandTest {
namespace {

using TalIec61850Tools::escapeText;

class PlotCommand : public testing::Test {
protected:
    /// The picture of a capture.
    SvgReader pictureOf(Bytes const& capture, Arguments const& options = {}) {
        std::string const path = folder_.write("bay1.pcap", capture);
        auto const result = runCompanion(joined({"plot", path}, options));
        EXPECT_EQ(result.status, 0) << result.err;
        notes_ = result.err;
        return SvgReader(result.out);
    }

    static Bytes waves(std::size_t streams, std::size_t frames = kWaveFrames) {
        std::vector<WaveformStream> made;
        for (std::size_t i = 0; i < streams; ++i) {
            WaveformSettings settings;
            settings.svID = "MU" + std::to_string(10 + i);
            made.emplace_back(settings).send(frames);
        }
        std::vector<WaveformStream const*> all;
        for (WaveformStream const& stream : made) {
            all.push_back(&stream);
        }
        return captureOf(all);
    }

    /// A relay that trips after 200 ms, for 100 ms.
    static std::vector<WaveformStream::Captured> tripAfter(std::int64_t start) {
        constexpr std::int64_t kMillisecond = 1'000'000;
        std::vector<WaveformStream::Captured> frames;
        std::uint32_t state = 0;
        for (std::int64_t const after : {1, 200, 300}) {
            GooseMessage message = gooseCalled("PROT/LLN0$GO$gcbTrip");
            ++state;
            message.stNum = MinimalUnsigned(state);
            message.setData({dataBoolean(state == 2), dataQuality(), dataInteger(state)});
            frames.push_back(
                {.time = start + after * kMillisecond, .frame = gooseFrame(Ethernet(), message)});
        }
        return frames;
    }

    TempDir folder_;
    std::string notes_;
};

TEST_F(PlotCommand, DrawsWaveformsStatesAndFindingsOnOneAxis) {
    WaveformStream wave;
    wave.send(1200).lose(8).send(792);
    std::int64_t const start = wave.rows(true)[0].time;
    SvgReader const svg = pictureOf(captureOf({&wave}, tripAfter(start)));
    EXPECT_EQ(notes_, "");
    EXPECT_EQ(svg.ofClass("waveforms").size(), 2U);
    EXPECT_EQ(svg.ofClass("curve").size(), 8U);
    for (char const* const text :
         {"currents, A", "voltages, kV", "Ia", "Un", "MU01", "PROT/LLN0$GO$gcbTrip", "findings",
          "samples are missing", "error", "true, on"}) {
        EXPECT_TRUE(svg.shows(text)) << text;
    }
    ASSERT_EQ(svg.boxes("missing").size(), 2U);
    ASSERT_EQ(svg.boxes("true").size(), 1U);
    // 200 ms after the start there is sample 800, and 300 ms after it sample 1200, which is lost.
    Box const trip = svg.boxes("true")[0];
    EXPECT_NEAR(trip.right, svg.boxes("missing")[0].left, 1.01);
    double const perMillisecond = (trip.right - trip.left) / 100;
    EXPECT_NEAR(trip.left - 200 * perMillisecond, svg.boxes("frame")[0].left, 1.0);
    EXPECT_FALSE(svg.ofClass("error").empty());
}

TEST_F(PlotCommand, SelectsStreamsTimesAndChannels) {
    SvgReader const svg = pictureOf(
        waves(3), {"--svid", "MU11", "--from", "+10ms", "--to", "+20ms", "--channels", "1-3,8"});
    EXPECT_EQ(svg.ofClass("curve").size(), 4U);
    EXPECT_TRUE(svg.shows("MU11"));
    EXPECT_FALSE(svg.shows("MU10"));
    EXPECT_TRUE(svg.shows(", 10 ms; bay1.pcap"));
    SvgReader const scaled = pictureOf(waves(1), {"--scale", "2"});
    EXPECT_TRUE(scaled.shows("counts"));
    EXPECT_FALSE(scaled.shows("currents, A"));
    SvgReader const titled = pictureOf(waves(1), {"--title", "Test 4.2 <bay 1>\x1b"});
    EXPECT_EQ(titled.texts()[0], "Test 4.2 <bay 1>\\x1b");
}

TEST_F(PlotCommand, LeavesOutWhatHasNoRoomAndSaysSo) {
    SvgReader const svg = pictureOf(waves(10));
    EXPECT_EQ(svg.ofClass("waveforms").size(), 16U);
    EXPECT_TRUE(svg.shows("Not shown: 2 SV streams"));
    EXPECT_EQ(notes_,
              "tal-iec61850: no room in the picture for 2 SV streams: select fewer by --svid, "
              "--gocbref or --channels\n");
    static_cast<void>(pictureOf(waves(10), {"--quiet"}));
    EXPECT_EQ(notes_, "");
    WaveformSettings many;
    many.members = repeatedMembers({WaveMember::float32}, 100);
    WaveformStream stream(many);
    stream.send(kWaveFrames);
    SvgReader const wide = pictureOf(captureOf({&stream}));
    EXPECT_EQ(wide.ofClass("curve").size(), 64U);
    EXPECT_TRUE(wide.shows("Not shown: 36 channels"));
}

TEST_F(PlotCommand, IsNoLargerForLongCaptures) {
    auto const few = pictureOf(waves(1, 2000)).text().size();
    auto const many = pictureOf(waves(1, 40'000)).text().size();
    EXPECT_LT(many, few * 3 / 2);
    EXPECT_LT(many, 300'000U);
}

TEST_F(PlotCommand, DrawsTheSameAgain) {
    Bytes const capture = waves(2);
    std::string const text = pictureOf(capture).text();
    EXPECT_EQ(pictureOf(capture).text(), text);
    EXPECT_EQ(pictureOf(capture, {"--jobs", "1"}).text(), text);
    std::string const file = folder_.file("picture.svg");
    auto const result = runCompanion({"plot", "-o", file, folder_.file("bay1.pcap")});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(textOf(file), text);
}

TEST_F(PlotCommand, SaysWhatIsNotThere) {
    SvgReader const nothing = pictureOf(captureOf({}));
    EXPECT_TRUE(nothing.shows("There is no stream of Sampled Values."));
    EXPECT_TRUE(nothing.shows("There is no GOOSE stream."));
    EXPECT_TRUE(nothing.shows("Nothing was looked for: no frame of GOOSE or SV was read."));
    EXPECT_FALSE(nothing.shows("Nothing was found."));
    SvgReader const waveAlone = pictureOf(waves(1));
    EXPECT_TRUE(waveAlone.shows("There is no GOOSE stream."));
    EXPECT_FALSE(waveAlone.shows("There is no stream of Sampled Values."));
    // Of streams that are not asked for, nothing is said.
    SvgReader const chosen = pictureOf(memberTraffic(), {"--svid", "MUplain"});
    EXPECT_FALSE(chosen.shows("GOOSE"));
    SvgReader const before = pictureOf(waves(1), {"--to", "2001-01-01T00:00"});
    EXPECT_TRUE(before.shows("No samples can be drawn in this time"));
    EXPECT_NE(notes_.find("no packet in the window"), std::string::npos) << notes_;
    SvgReader const other = pictureOf(waves(1), {"--svid", "MU99"});
    EXPECT_NE(notes_.find("MU99"), std::string::npos) << notes_;
    EXPECT_TRUE(other.ofClass("curve").empty());
    EXPECT_TRUE(other.shows("No stream of Sampled Values is selected."));
    EXPECT_TRUE(other.shows("There is no GOOSE stream."));
}

TEST_F(PlotCommand, SaysHowFarSamplesAreFromTheirCapture) {
    EXPECT_FALSE(pictureOf(waves(1)).shows("Samples are drawn when"));
    WaveformSettings settings;
    settings.delay = 262'430'000;
    WaveformStream late(settings);
    late.send(kWaveFrames);
    EXPECT_TRUE(pictureOf(captureOf({&late}))
                    .shows("Samples are drawn when they were taken, 262.43 ms before"));
}

TEST_F(PlotCommand, DrawsFewSamplesAndNumbersThatAreNone) {
    WaveformSettings settings;
    settings.members = {WaveMember::float32};
    WaveformStream stream(settings);
    stream.send(1);
    SvgReader const one =
        pictureOf(captureOf({&stream}), {"--layout", "float32", "--rate", "4000"});
    EXPECT_EQ(one.ofClass("curve").size(), 1U);
    EXPECT_EQ(one.paths("samples")[0].size(), 1U);
    CaptureBuilder capture;
    std::vector<float> const values = {1,      std::numeric_limits<float>::quiet_NaN(),
                                       1e30F,  -std::numeric_limits<float>::infinity(),
                                       -1e30F, 1e-30F};
    for (std::uint16_t i = 0; i < 240; ++i) {
        SvMessage message = svCalled("MU01");
        message.asdus[0].smpCnt = Unsigned<2>(i);
        std::uint32_t bits = 0;
        float const value = values[i % values.size()];
        std::memcpy(&bits, &value, sizeof bits);
        message.asdus[0].seqData = bigEndian(bits, 4);
        capture.add(1'700'000'000, 250'000U * i, svFrame(svEthernet(), message));
    }
    SvgReader const svg = pictureOf(capture.bytes(), {"--layout", "float32", "--rate", "4000"});
    EXPECT_TRUE(svg.shows("values that are infinite or no number (80)"));
    EXPECT_TRUE(svg.shows("1e30"));
    ASSERT_EQ(svg.paths("curve").size(), 1U);
    EXPECT_EQ(svg.paths("curve")[0].size(), 81U);
}

TEST_F(PlotCommand, ShowsHostileNamesAsText) {
    std::vector<std::string> const names = {"</text><script>alert(1)</script>",
                                            "]]>",
                                            "\"'&amp;<b>",
                                            "\xe2\x80\xae"
                                            "txt",
                                            "\xff\xfe\xc3",
                                            "<!-- --",
                                            "a\nb\x01\x1b[1m",
                                            "\xef\xbf\xbf"};
    for (std::string const& name : names) {
        CaptureBuilder capture;
        for (std::uint32_t state = 1; state <= 2; ++state) {
            GooseMessage message = gooseCalled(name);
            message.stNum = MinimalUnsigned(state);
            message.setData({dataVisibleString(name + std::to_string(state))});
            capture.add(1'700'000'000, state * 1'000'000, gooseFrame(Ethernet(), message));
        }
        WaveformSettings settings;
        settings.svID = name;
        WaveformStream stream(settings);
        stream.send(kWaveFrames);
        for (auto const& captured : stream.captured()) {
            capture.add(static_cast<std::uint32_t>(captured.time / 1'000'000'000),
                        static_cast<std::uint32_t>(captured.time % 1'000'000'000), captured.frame);
        }
        std::string const file = "<script>alert(1)<!--\"\xff&.pcap";
        std::string const path = folder_.write(file, capture.bytes());
        auto const result = runCompanion({"plot", path, "--width", "2000"});
        EXPECT_EQ(result.status, 0) << result.err;
        SvgReader const svg(result.out);
        auto const texts = svg.texts();
        EXPECT_EQ(std::count(texts.begin(), texts.end(), escapeText(name)), 2)
            << escapeText(name);  // of the stream of either protocol
        EXPECT_TRUE(svg.shows(escapeText(file)));
        EXPECT_EQ(svg.text().find("<script"), std::string::npos);
        EXPECT_EQ(svg.text().find("\xe2\x80\xae"), std::string::npos);
    }
}

TEST_F(PlotCommand, HasTheNamesThatAStationIsDescribedWith) {
    std::string const station = folder_.write("station.scd", octetsOfText(describedStation()));
    SvgReader const trips = pictureOf(describedTrips(), {"--scl", station, "--width", "1600"});
    EXPECT_TRUE(trips.shows("LD0/PTRC1.Tr.general"));
    SvgReader const one =
        pictureOf(describedTrips(), {"--scl", station, "--ied", "RELAY2", "--width", "1600"});
    EXPECT_FALSE(one.shows("LD0/PTRC1.Tr.general"));
    EXPECT_TRUE(one.shows("LD0/PTRC2.Tr.general"));
    SvgReader const wave = pictureOf(describedSamples(), {"--scl", station, "--width", "1600"});
    EXPECT_TRUE(wave.shows("LD0/InnATCTR1.Amp.instMag.i"));
    EXPECT_EQ(notes_, "");
}

TEST_F(PlotCommand, DrawsEachRecordedCapture) {
    auto const paths = recordedCapturePaths();
    if (paths.empty()) {
        GTEST_SKIP() << "no recorded captures";
    }
    for (std::string const& path : paths) {
        auto const result = runCompanion({"plot", "--quiet", path});
        EXPECT_LE(result.status, 2) << path;
        EXPECT_NE(result.status, 1) << path;
        SvgReader const svg(result.out);
        EXPECT_LT(svg.text().size(), 1'500'000U) << path;
    }
}

TEST_F(PlotCommand, LeavesNoPictureWhereItCannotBeWritten) {
    std::string const capture = folder_.write("bay1.pcap", waves(1));
    auto const result = runCompanion({"plot", "-o", folder_.file("no/such/folder.svg"), capture});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("cannot write"), std::string::npos);
    EXPECT_EQ(runCompanion({"plot", "-o", "/dev/full", capture}).status, 2);
    EXPECT_EQ(runCompanion({"plot", "-o", folder_.file("x.svg"), "/no/such/file"}).status, 2);
    EXPECT_EQ(namesIn(folder_.path()), std::vector<std::string>{"bay1.pcap"});
    expectUsageError({"plot", "-o", capture, capture});
}

TEST_F(PlotCommand, RefusesWhatItCannotDo) {
    std::string const capture = folder_.write("bay1.pcap", waves(1));
    for (char const* const width : {"0", "319", "4001", "-5", "x", ""}) {
        expectUsageError({"plot", "--width", width, capture});
    }
    expectUsageError({"plot", "--height", "99", capture});
    expectUsageError({"plot", "--theme", "grey", capture});
    expectUsageError({"plot", "--around", "+1s", "--from", "+1s", capture});
    expectUsageError({"plot", "--ied", "IED1", capture});
    expectUsageError({"plot", "--channels", "9", capture});
    EXPECT_EQ(runCompanion({"plot", "--theme", "dark", "--height", "500", capture}).status, 0);
}

}  // namespace
}  // namespace TalTest::PlotCommandTest
