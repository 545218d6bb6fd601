// What `samples` says on standard error, and where.

#include <gtest/gtest.h>

#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::SamplesNotesTest {
namespace {

/// The notes about a capture, each without the name of the program and that of the file; quiet or
/// not, they are the same.
std::vector<std::string> notesOf(TempFile const& file, Arguments const& options = {}) {
    std::string quiet;
    static_cast<void>(samplesOf(joined({file.path()}, options), &quiet));
    auto const loud = runCompanion(joined({"samples", "-f", "csv", file.path()}, options));
    EXPECT_EQ(loud.err, quiet);
    std::vector<std::string> notes;
    for (std::string note : linesOf(quiet)) {
        for (std::string const& prefix : {std::string("tal-iec61850: "), file.path()}) {
            if (note.starts_with(prefix)) {
                note.erase(0, prefix.size());
            }
        }
        if (!note.empty()) {
            notes.push_back(note);
        }
    }
    return notes;
}

using Notes = std::vector<std::string>;

TEST(SamplesNotes, AreNoneOfAWholeStream) {
    WaveformStream stream(declaredWave());
    TempFile const file(stream.send(kWaveFrames).captures()[0]);
    EXPECT_EQ(notesOf(file), Notes{});
}

TEST(SamplesNotes, SayWhereARestartIs) {
    WaveformStream stream(declaredWave());
    stream.send(kWaveFrames).restartAt(2500).send(200);
    TempFile const file(stream.captures()[0]);
    auto const rows = stream.rows(false);
    std::string const place = "@" + std::to_string(rows[kWaveFrames].fileOffset);
    EXPECT_EQ(notesOf(file), Notes{place + ": MU01: smpCnt goes on elsewhere: a restart, or a "
                                           "second publisher"});
    // The place can be shown.
    auto const shown = runCompanion({"show", file.path() + place});
    EXPECT_EQ(shown.status, 0) << shown.err;
    EXPECT_NE(shown.out.find("smpCnt: 2500"), std::string::npos) << shown.out;
    // Nothing is lost.
    std::string ignored;
    expectWaveform(samplesOf({"--missing", file.path()}, &ignored), stream.rows(true),
                   stream.settings());
}

TEST(SamplesNotes, SayWhereTheRateChanges) {
    WaveformStream stream(declaredWave());
    stream.send(4000).changeRate(4800, 0, 4800).send(4800);
    TempFile const file(stream.captures()[0]);
    std::string const place = "@" + std::to_string(stream.rows(false)[4000].fileOffset);
    EXPECT_EQ(notesOf(file),
              Notes{place + ": MU01: from here on 4800 samples a second, by smpRate"});
}

TEST(SamplesNotes, SayWhereConfRevChanges) {
    WaveformStream stream(declaredWave());
    stream.send(kWaveFrames).revise(7).send(200);
    TempFile const file(stream.captures()[0]);
    std::string const place = "@" + std::to_string(stream.rows(false)[kWaveFrames].fileOffset);
    EXPECT_EQ(notesOf(file), Notes{place + ": MU01: confRev changes from 1 to 7"});
    EXPECT_EQ(notesOf(file, {"--confrev", "7"}), Notes{});
    EXPECT_EQ(samplesOf({"--confrev", "7", file.path()}).size(), 200U);
    EXPECT_EQ(samplesOf({"--confrev", "1", file.path()}).size(), kWaveFrames);
}

TEST(SamplesNotes, SayWhereTheLayoutChanges) {
    WaveformSettings settings = declaredWave();
    WaveformStream first(settings);
    settings.members = repeatedMembers({WaveMember::int32, WaveMember::quality}, 3);
    settings.firstCount = kWaveFrames;
    WaveformStream second(settings);
    TempFile const file(captureOf({&first.send(kWaveFrames), &second.send(kWaveFrames)}));
    auto const notes = notesOf(file);
    ASSERT_EQ(notes.size(), 1U) << testing::PrintToString(notes);
    EXPECT_NE(notes[0].find(": the samples change from 8 x (INT32, quality) to 3 x (INT32, "
                            "quality)"),
              std::string::npos)
        << notes[0];
    std::string ignored;
    auto const rows = samplesOf({file.path()}, &ignored);
    ASSERT_EQ(rows.size(), 2 * kWaveFrames);
    EXPECT_EQ(rows[kWaveFrames - 1]["values"].size(), 8U);
    EXPECT_EQ(rows[kWaveFrames]["values"].size(), 3U);
    EXPECT_TRUE(notes[0].starts_with("@" + rows[kWaveFrames]["position"].dump())) << notes[0];
    // Columns are those of the widest, with no names.
    auto const csv = runCompanion({"samples", "-f", "csv", file.path()});
    EXPECT_NE(linesOf(csv.out).at(0).find(",value8,quality8"), std::string::npos);
}

TEST(SamplesNotes, SayThatTwoSourcesHaveOneName) {
    WaveformSettings settings = declaredWave();
    WaveformStream first(settings);
    settings.ethernet = settings.ethernet.from("02:00:00:00:00:02");
    settings.firstCount = 1000;
    WaveformStream second(settings);
    TempFile const file(captureOf({&first.send(kWaveFrames), &second.send(kWaveFrames)}));
    auto const notes = notesOf(file);
    ASSERT_EQ(notes.size(), 1U) << testing::PrintToString(notes);
    EXPECT_TRUE(
        notes[0].ends_with(": MU01: sent by 02:00:00:00:00:01 and 02:00:00:00:00:02: each is a "
                           "stream of its own"))
        << notes[0];
    auto const shown =
        runCompanion({"show", "-f", "json", file.path() + notes[0].substr(0, notes[0].find(':'))});
    EXPECT_EQ(jsonOf(shown.out).at(0)["timeNs"], second.rows(false)[0].arrival) << shown.err;
    std::string ignored;
    auto const rows = samplesOf({file.path()}, &ignored);
    ASSERT_EQ(rows.size(), 2 * kWaveFrames);
    EXPECT_EQ(rows[kWaveFrames - 1]["source"], "02:00:00:00:00:01");
    EXPECT_EQ(rows[kWaveFrames]["source"], "02:00:00:00:00:02");
}

TEST(SamplesNotes, SayThatSmpRateAndSmpCntContradictEachOther) {
    WaveformSettings settings = declaredWave(4800);
    settings.smpRate = 4000;
    settings.firstCount = 2400;
    WaveformStream stream(settings);
    TempFile const file(stream.send(4800).captures()[0]);
    auto const notes = notesOf(file);
    ASSERT_EQ(notes.size(), 1U) << testing::PrintToString(notes);
    EXPECT_NE(notes[0].find(": MU01: smpRate and smpCnt contradict each other: taken as 4800 "
                            "samples a second, where smpCnt begins again"),
              std::string::npos)
        << notes[0];
}

TEST(SamplesNotes, SayWhatIsNotDecided) {
    CaptureBuilder zeros(CaptureVariant::nanoLittle);
    for (std::uint32_t i = 0; i < kWaveFrames; ++i) {
        SvMessage message = svCalled("MU01");
        message.asdus[0].smpCnt = Unsigned<2>(i);
        zeros.add(1'700'000'000, 300'000 + i * 250'000, svFrame(svEthernet(), message));
    }
    TempFile const file(zeros.bytes());
    auto const notes = notesOf(file);
    ASSERT_EQ(notes.size(), 1U) << testing::PrintToString(notes);
    EXPECT_NE(notes[0].find("the layout is undecided (all zeros): read as 8 x (INT32, quality); "
                            "see --layout"),
              std::string::npos)
        << notes[0];
    EXPECT_EQ(notesOf(file, {"--layout",
                             "float32,quality,float32,quality,float32,quality,float32,"
                             "quality,float32,quality,float32,quality,float32,quality,"
                             "float32,quality"}),
              Notes{});
}

TEST(SamplesNotes, AreNotManyOfOneKind) {
    WaveformStream stream(declaredWave());
    stream.send(kWaveFrames);
    for (std::uint32_t i = 0; i < 20; ++i) {
        stream.restartAt(i % 2 == 0 ? 3000 : 1000).send(50);
    }
    TempFile const file(stream.captures()[0]);
    auto const notes = notesOf(file);
    EXPECT_EQ(notes.size(), 9U) << testing::PrintToString(notes);
    EXPECT_EQ(notes.back(), "MU01: 12 more of these");
}

TEST(SamplesNotes, EscapeNames) {
    WaveformSettings settings = declaredWave();
    settings.svID = "M\nU,\x1b[31m\"1";
    WaveformStream stream(settings);
    TempFile const file(stream.send(kWaveFrames).lose().send(3).captures()[0]);
    std::string notes;
    auto const rows = samplesOf({file.path()}, &notes);
    EXPECT_EQ(rows.at(0)["svID"], settings.svID);
    EXPECT_EQ(std::count(notes.begin(), notes.end(), '\n'), 1) << notes;
    EXPECT_EQ(notes.find('\x1b'), std::string::npos) << notes;
    auto const csv = csvLines(runCompanion({"samples", "-f", "csv", file.path()}).out);
    EXPECT_EQ(csv.size(), kWaveFrames + 4);
    auto const table = runCompanion({"samples", file.path()}).out;
    EXPECT_EQ(table.find('\x1b'), std::string::npos);
}

TEST(SamplesNotes, TellOfACaptureThatShrankSinceItWasIndexed) {
    // The capture is cut while the program waits for its first rows to be taken: there are more
    // than a pipe holds.
    WaveformStream stream(declaredWave());
    Bytes const capture = stream.send(20'000).captures()[0];
    TempDir const folder;
    auto const path = folder.write("mu.pcap", capture);
    auto const result =
        run({"/bin/sh", "-c",
             "\"$0\" samples -q -f csv \"$1\" | { head -n 3 >/dev/null; truncate -s 100000 \"$1\"; "
             "cat >/dev/null; }",
             companionPath(), path});
    // Rows stop where the file does; a line tells so.
    EXPECT_TRUE(result.err.starts_with("tal-iec61850: " + path + ": ")) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
}

TEST(SamplesOutput, FailsWhereThereIsNoRoom) {
    WaveformStream stream(declaredWave());
    TempFile const file(stream.send(kWaveFrames).captures()[0]);
    auto const result =
        runCompanion({"samples", "-f", "csv", file.path()}, {.output = StandardOutputIs::full});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("No space left on device"), std::string::npos) << result.err;
    TempDir const folder;
    auto const written =
        runCompanion({"samples", "-f", "csv", "-o", folder.file("x.csv"), file.path()});
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(textOf(folder.file("x.csv")),
              runCompanion({"samples", "-f", "csv", file.path()}).out);
    expectUsageError({"samples", "-o", file.path(), file.path()});
}

}  // namespace
}  // namespace TalTest::SamplesNotesTest
