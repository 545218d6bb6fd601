// Which samples `samples` lists, and in which order.

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::SamplesRowsTest {
namespace {

TEST(SamplesRows, AreTheAsdusOfEachFrame) {
    for (std::uint32_t const asdus : {1U, 2U, 6U, 8U, 13U}) {
        // The counter begins again at the start of a frame.
        WaveformSettings settings = declaredWave(asdus == 13 ? 5200 : 4800, asdus);
        settings.firstCount = settings.rate - 20 * asdus;
        WaveformStream stream(settings);
        stream.send(100);
        TempFile const file(stream.captures()[0]);
        SCOPED_TRACE(asdus);
        auto const rows = samplesOf({file.path()});
        expectWaveform(rows, stream.rows(false), settings);
        EXPECT_EQ(fieldOf(rows, "asdu").at(asdus - 1), asdus);
    }
}

TEST(SamplesMissing, AreRowsWhereTheyWereTakenOut) {
    WaveformSettings settings = declaredWave(4000, 2);
    settings.firstCount = 3900;
    WaveformStream stream(settings);
    stream.send(45).lose(10).send(200).lose().send(20).lose(2000).send(30).lose(7);
    TempFile const file(stream.captures()[0]);
    std::string notes;
    expectWaveform(samplesOf({"--missing", file.path()}, &notes), stream.rows(true), settings);
    EXPECT_EQ(stream.counts().lost, 2U * 2011U);
    EXPECT_EQ(notes, complaint("MU01: of 4612 samples 4022 lost, 0 late, 0 repeated"));
    expectWaveform(samplesOf({file.path()}, &notes), stream.rows(false), settings);
    EXPECT_EQ(notes, complaint("MU01: of 4612 samples 4022 lost, 0 late, 0 repeated"));
}

TEST(SamplesMissing, HaveNothingInCsvAndOneRowInLong) {
    WaveformStream stream(declaredWave());
    stream.send(kWaveFrames).lose(2).send(5).lose(3);
    TempFile const file(stream.captures()[0]);
    auto const wide = csvRows(runCompanion({"samples", "-f", "csv", "--missing", file.path()}).out);
    ASSERT_EQ(wide.size(), kWaveFrames + 2 + 5);
    for (std::size_t const row : {kWaveFrames, kWaveFrames + 1}) {
        for (char const* const name :
             {"time", "timeNs", "position", "Ia", "Ia.quality", "Un", "Un.quality"}) {
            EXPECT_EQ(wide[row].at(name), std::nullopt) << name;
        }
        EXPECT_EQ(wide[row].at("missing"), "true");
        EXPECT_EQ(wide[row].at("smpCnt"), std::to_string(row));
        EXPECT_EQ(wide[row].at("svID"), "MU01");
        EXPECT_EQ(
            wide[row].at("sampleTimeNs"),
            std::to_string(1'700'000'000'000'000'000 + 250'000 * static_cast<std::int64_t>(row)));
    }
    auto const all =
        csvRows(runCompanion({"samples", "-f", "csv", "--missing", "--long", file.path()}).out);
    ASSERT_EQ(all.size(), 8 * kWaveFrames + 2 + 8 * 5);
    auto const& missing = all[8 * kWaveFrames];
    for (char const* const name : {"channel", "name", "value", "quality", "qualityText"}) {
        EXPECT_EQ(missing.at(name), std::nullopt) << name;
    }
}

TEST(SamplesRows, AreInTheOrderOfSamplesWhereTheyComeLateOrAgain) {
    WaveformSettings const settings = declaredWave();
    WaveformStream stream(settings);
    stream.send(200).sendLate(5).send(20).repeatLast().send(30).sendLate(16).send(50);
    TempFile const file(stream.captures()[0]);
    std::string notes;
    expectWaveform(samplesOf({"--missing", file.path()}, &notes), stream.rows(true), settings);
    EXPECT_EQ(notes, complaint("MU01: of 323 samples 0 lost, 2 late, 1 repeated"));
}

TEST(SamplesRows, AreEachNthOfAStream) {
    WaveformSettings const settings = declaredWave();
    WaveformStream first(settings);
    WaveformSettings other = settings;
    other.svID = "MU02";
    WaveformStream second(other);
    TempFile const file(captureOf({&first.send(301), &second.send(302)}));
    auto const rows = samplesOf({"--every", "20", file.path()});
    ASSERT_EQ(rows.size(), 16U + 16U);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i]["smpCnt"], i % 16 * 20);
        EXPECT_EQ(rows[i]["svID"], i < 16 ? "MU01" : "MU02");
    }
    EXPECT_EQ(samplesOf({"--every", "1", file.path()}).size(), 603U);
    EXPECT_EQ(samplesOf({"--every", "20", "--long", file.path()}).size(), 32U * 8);
    EXPECT_EQ(samplesOf({"--every", "1000000", file.path()}).size(), 2U);
}

TEST(SamplesRows, AreEachNthOfThoseThatAreMissingToo) {
    WaveformStream stream(declaredWave());
    stream.send(250).lose(100).send(50);
    TempFile const file(stream.captures()[0]);
    std::string notes;
    auto const rows = samplesOf({"--every", "25", "--missing", file.path()}, &notes);
    ASSERT_EQ(rows.size(), 16U);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i]["smpCnt"], 25 * i);
        EXPECT_EQ(rows[i]["missing"], i >= 10 && i < 14);
    }
}

TEST(SamplesRows, AreAsManyAsAskedFor) {
    WaveformStream stream(declaredWave());
    TempFile const file(stream.send(kWaveFrames).captures()[0]);
    EXPECT_EQ(samplesOf({"--limit", "7", file.path()}).size(), 7U);
    EXPECT_EQ(samplesOf({"--limit", "0", file.path()}).size(), 0U);
    EXPECT_EQ(samplesOf({"--limit", "300", file.path()}).size(), 300U);
    EXPECT_EQ(samplesOf({"--limit", "11", "--long", file.path()}).size(), 11U);
}

/// smpCnt of the samples in a window.
std::vector<std::uint32_t> countsIn(Arguments const& window, std::string const& path) {
    std::vector<std::uint32_t> counts;
    for (Json const& count : fieldOf(samplesOf(joined({path}, window)), "smpCnt")) {
        counts.push_back(count.get<std::uint32_t>());
    }
    return counts;
}

TEST(SamplesWindow, IsOneOfSampleTimes) {
    // Arrival is 2 ms after the sample, so that a window of arrivals would have others.
    WaveformSettings settings = declaredWave();
    settings.delay = 2'000'000;
    WaveformStream stream(settings);
    TempFile const file(stream.send(kWaveFrames).captures()[0]);
    using Counts = std::vector<std::uint32_t>;
    EXPECT_EQ(countsIn({"--from", "1700000000.00225", "--to", "1700000000.003"}, file.path()),
              (Counts{9, 10, 11, 12}));
    EXPECT_EQ(
        countsIn({"--from", "1700000000.002250001", "--to", "1700000000.002999999"}, file.path()),
        (Counts{10, 11}));
    EXPECT_EQ(countsIn({"--to", "1700000000"}, file.path()), Counts{0});
    EXPECT_EQ(countsIn({"--around", "22:13:20.01", "--span", "500us"}, file.path()),
              (Counts{39, 40, 41}));
    // From the first record on, which is the arrival of the first sample.
    EXPECT_EQ(countsIn({"--from", "+0s", "--to", "+0.5ms"}, file.path()), (Counts{8, 9, 10}));
}

TEST(SamplesWindow, EndsBeforeWhatIsAfterIt) {
    WaveformStream stream(declaredWave());
    TempFile const file(stream.send(kWaveFrames).lose(100).send(100).captures()[0]);
    std::string notes;
    // The window ends in the gap: what is missing at its end has a sample after it.
    auto const rows = samplesOf(
        {"--missing", "--from", "1700000000.0745", "--to", "1700000000.0755", file.path()}, &notes);
    EXPECT_EQ(fieldOf(rows, "missing"), (std::vector<Json>{false, false, true, true, true}));
}

TEST(SamplesWindow, WithoutASampleSaysWhenThereAreSome) {
    WaveformStream stream(declaredWave());
    TempFile const file(stream.send(kWaveFrames).captures()[0]);
    auto const result = runCompanion({"samples", "--from", "2030-01-01", file.path()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, complaint("no sample in the window; these streams have packets from "
                                    "2023-11-14T22:13:20.000300000Z to "
                                    "2023-11-14T22:13:20.075050000Z"));
    expectUsageError({"samples", "--from", "2030-01-02", "--to", "2030-01-01", file.path()});
    expectUsageError({"samples", "--from", "2030-01-02", "--around", "2030-01-01", file.path()});
}

TEST(SamplesStreams, ComeOneAfterTheOther) {
    WaveformSettings settings = declaredWave();
    WaveformStream first(settings);
    settings.svID = "MU02";
    settings.ethernet = settings.ethernet.from("02:00:00:00:00:02");
    settings.members = repeatedMembers({WaveMember::float32, WaveMember::quality}, 4);
    WaveformStream second(settings);
    TempFile const file(captureOf({&first.send(kWaveFrames), &second.send(kWaveFrames)}));
    auto rows = samplesOf({file.path()});
    ASSERT_EQ(rows.size(), 2 * kWaveFrames);
    EXPECT_EQ(rows[kWaveFrames - 1]["svID"], "MU01");
    EXPECT_EQ(rows[kWaveFrames]["svID"], "MU02");
    EXPECT_EQ(rows[kWaveFrames]["smpCnt"], 0);
    EXPECT_EQ(rows[kWaveFrames]["source"], "02:00:00:00:00:02");
    for (Arguments const& wanted : {Arguments{"--svid", "*2"},
                                    {"--source", "02:00:00:00:00:02"},
                                    {"--svid", "MU02", "--protocol", "sv"}}) {
        auto const alone = samplesOf(joined(wanted, {file.path()}));
        EXPECT_TRUE(std::equal(alone.begin(), alone.end(), rows.begin() + kWaveFrames, rows.end()));
    }
}

TEST(SamplesStreams, OfOneFrameAreApart) {
    // Two svIDs in one frame.
    SvMessage message = svCalled("MU01");
    message.asdus.push_back(message.asdus[0]);
    message.asdus[1].svID = "MU02";
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (std::uint32_t i = 0; i < kWaveFrames; ++i) {
        for (Asdu& asdu : message.asdus) {
            asdu.smpCnt = Unsigned<2>(i);
            asdu.seqData = samples({{static_cast<std::int32_t>(i), 0}});
        }
        message.asdus[1].seqData = samples({{-static_cast<std::int32_t>(i), 0}});
        capture.add(1'700'000'000, 300'000 + i * 250'000, svFrame(svEthernet(), message));
    }
    TempFile const file(capture.bytes());
    auto const rows = samplesOf({"--layout", "int32,quality", file.path()});
    ASSERT_EQ(rows.size(), 2 * kWaveFrames);
    EXPECT_EQ(rows[5]["values"], Json{5});
    EXPECT_EQ(rows[5]["asdu"], 1);
    EXPECT_EQ(rows[kWaveFrames + 5]["values"], Json{-5});
    EXPECT_EQ(rows[kWaveFrames + 5]["asdu"], 2);
    EXPECT_EQ(rows[kWaveFrames + 5]["svID"], "MU02");
}

TEST(SamplesCopies, ComeOnce) {
    for (WaveCopies const copies : {WaveCopies::prp, WaveCopies::hsr}) {
        WaveformSettings settings = declaredWave();
        settings.copies = copies;
        WaveformStream stream(settings);
        TempFile const file(stream.send(kWaveFrames).captures()[0]);
        expectWaveform(samplesOf({file.path()}), stream.rows(false), settings);
    }
}

TEST(SamplesCopies, OfTwoFilesComeOnce) {
    WaveformSettings const settings = declaredWave();
    WaveformStream stream(settings);
    stream.send(100).captureTwice(true).send(100).nextFile().captureTwice(false).send(100);
    auto const files = stream.captures();
    ASSERT_EQ(files.size(), 2U);
    TempDir const folder;
    auto const first = folder.write("1.pcap", files[0]);
    auto const second = folder.write("2.pcap", files[1]);
    auto const rows = samplesOf({first, second});
    expectWaveform(rows, stream.rows(false), settings);
    EXPECT_EQ(rows.at(199)["file"], first);
    EXPECT_EQ(rows.at(200)["file"], second);
    auto const turned = samplesOf({second, first});
    EXPECT_EQ(fieldOf(turned, "sampleTimeNs"), fieldOf(rows, "sampleTimeNs"));
    EXPECT_EQ(fieldOf(turned, "values"), fieldOf(rows, "values"));
}

TEST(SamplesRate, IsThatOfTheCaller) {
    // Wrong, and believed.
    WaveformSettings settings = declaredWave();
    settings.smpRate.reset();
    settings.smpMod.reset();
    WaveformStream stream(settings);
    TempFile const file(stream.send(kWaveFrames).captures()[0]);
    std::string notes;
    auto const rows = samplesOf({"--rate", "4000", file.path()}, &notes);
    expectWaveform(rows, stream.rows(false), settings);
    EXPECT_EQ(notes, "");
    for (std::string const rate : {"0", "", "1000001", "4e3", "-1", "4000Hz"}) {
        expectUsageError({"samples", "--rate=" + rate, file.path()});
    }
}

TEST(SamplesRows, AreNoneOfOtherTraffic) {
    TempFile const goose(CaptureBuilder().add(1, 0, oneGoose()).bytes());
    auto const result = runCompanion({"samples", "-f", "csv", goose.path()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(csvRows(result.out).size(), 0U);
    EXPECT_NE(result.err.find("no "), std::string::npos) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
    EXPECT_EQ(runCompanion({"samples", "-q", "-f", "csv", goose.path()}).err, "");
    TempFile const none(CaptureBuilder().bytes());
    EXPECT_EQ(runCompanion({"samples", none.path()}).status, 0);
    TempFile const noCapture(Bytes(100, 0x41));
    EXPECT_EQ(runCompanion({"samples", noCapture.path()}).status, 2);
    EXPECT_EQ(runCompanion({"samples", "/nonexistent"}).status, 2);
}

TEST(SamplesRows, AreTheSameWithAnyNumberOfJobs) {
    WaveformStream stream(declaredWave());
    stream.send(100).nextFile().send(100).lose(3).nextFile().send(100);
    TempDir const folder;
    Arguments files;
    for (Bytes const& file : stream.captures()) {
        files.push_back(folder.write(std::to_string(files.size()), file));
    }
    std::string notes;
    auto const one = samplesOf(joined({"--missing", "--jobs", "1"}, files), &notes);
    EXPECT_EQ(samplesOf(joined({"--missing", "--jobs", "3"}, files), &notes), one);
    expectWaveform(one, stream.rows(true), stream.settings());
}

TEST(SamplesRows, OfADamagedCaptureAreThoseBefore) {
    WaveformStream stream(declaredWave());
    Bytes capture = stream.send(kWaveFrames).captures()[0];
    capture.resize(capture.size() - 10);
    TempFile const file(capture);
    auto const result = runCompanion({"samples", "-q", "-f", "json", file.path()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(jsonOf(result.out).size(), kWaveFrames - 1);
    EXPECT_NE(result.err.find("the file ends inside the record"), std::string::npos) << result.err;
}

TEST(SamplesOptions, AreRefusedInOneLine) {
    TempFile const file(smallCapture());
    for (Arguments const& options :
         std::vector<Arguments>{{"--every", "0"},        {"--every", "x"},
                                {"--every", "-1"},       {"--every="},
                                {"--channels", "0"},     {"--channels", "3-2"},
                                {"--channels", "1,,2"},  {"--channels", "1-"},
                                {"--channels", "a"},     {"--channels", "1-70000"},
                                {"--scale", "0"},        {"--scale", "x"},
                                {"--scale", "1,"},       {"--scale", "inf"},
                                {"--scale", "1e999"},    {"--limit", "x"},
                                {"--protocol", "goose"}, {"--smpcnt", "1"},
                                {"--nothing"},           {"-w", "file"}}) {
        expectUsageError(joined({"samples", file.path()}, options));
    }
    expectUsageError({"samples"});
}

}  // namespace
}  // namespace TalTest::SamplesRowsTest
