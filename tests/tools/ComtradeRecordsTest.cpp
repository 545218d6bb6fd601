// Records of several streams, of GOOSE, and several records.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::ComtradeRecordsTest {
namespace {

constexpr std::int64_t kWaveStart = 1'700'000'000'000'000'000;

/// Runs `comtrade` in a folder of its own.
struct RecordFolder {
    explicit RecordFolder(Bytes const& content) : capture(content) {}

    TempFile capture;
    TempDir folder;

    ProcessResult write(Arguments const& options) const {
        return runCompanion(
            joined({"comtrade", "-o", folder.file("rec"), capture.path()}, options));
    }
    [[nodiscard]] ReadComtrade record(std::string const& number = "") const {
        return recordAt(folder.file("rec" + number));
    }
    [[nodiscard]] ReadComtrade written(Arguments const& options,
                                       std::string const& notes = "") const {
        auto const result = write(options);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.err, notes);
        return result.status == 0 ? record() : ReadComtrade();
    }
    /// Expects one line that has these words in it, and no file.
    void expectRefusal(Arguments const& options, std::string const& words) const {
        auto const result = write(options);
        SCOPED_TRACE(result.err);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
        EXPECT_TRUE(result.err.starts_with("tal-iec61850: no record is written: "));
        EXPECT_NE(result.err.find(words), std::string::npos) << words;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{});
    }
};

WaveformSettings waveCalled(std::string const& svID, std::uint32_t rate = 4000) {
    WaveformSettings settings = declaredWave(rate);
    settings.svID = svID;
    settings.ethernet = settings.ethernet.from("02:00:00:00:00:1" + svID.substr(svID.size() - 1));
    return settings;
}

/// A GOOSE packet of a relay, after so many nanoseconds from the start: trip, and a double point.
WaveformStream::Captured tripAt(std::int64_t after, bool isTripped, std::uint8_t position,
                                std::uint32_t stNum) {
    GooseMessage message = gooseCalled("RELAY1LD0/LLN0$GO$gcbTrip");
    message.stNum = MinimalUnsigned(stNum);
    message.setData({dataBoolean(isTripped), dataQuality(),
                     dataStructure({dataBitString({position}, 6), dataInteger(3)})});
    return {kWaveStart + after, gooseFrame(Ethernet(), message), 0, false};
}

/// Three phases at 4000 a second, a closed breaker (10) that opens (00, then 01) after a trip.
Bytes tripCapture() {
    WaveformStream stream(waveCalled("MU01"));
    stream.send(600);
    return captureOf({&stream},
                     {tripAt(10'000'000, false, 0x80, 1), tripAt(50'000'001, true, 0x80, 2),
                      tripAt(60'000'000, true, 0x00, 3), tripAt(80'100'000, true, 0x40, 4),
                      tripAt(100'000'000, false, 0x40, 5)});
}

/// The rows at which a digital channel changes, from 0 before the first.
std::vector<std::size_t> changesOf(ReadComtrade const& record, std::size_t digital) {
    std::vector<std::size_t> changes;
    bool state = false;
    for (std::size_t row = 0; row < record.rows.size(); ++row) {
        if (record.rows[row].digitals.at(digital) != state) {
            state = !state;
            changes.push_back(row);
        }
    }
    return changes;
}

TEST(ComtradeGoose, RisesAtTheFirstSampleThatIsNotBeforeItsArrival) {
    RecordFolder const place(tripCapture());
    for (Arguments const& kind :
         {Arguments{}, {"--data", "ascii"}, {"--edition", "1999"}, {"--cff"}}) {
        auto const record = place.written(joined(kind, {"--goose", "RELAY1*gcbTrip"}));
        ASSERT_EQ(record.digitals.size(), 3U);
        EXPECT_EQ(record.digitals[0].id, "RELAY1LD0/LLN0$GO$gcbTrip 1");
        EXPECT_EQ(record.digitals[1].id, "RELAY1LD0/LLN0$GO$gcbTrip 3.1 bit 1");
        EXPECT_EQ(record.digitals[2].id, "RELAY1LD0/LLN0$GO$gcbTrip 3.1 bit 2");
        using Rows = std::vector<std::size_t>;
        // Row 200 is at 50 ms, 1 ns before the trip arrived; row 400 when it was over.
        EXPECT_EQ(changesOf(record, 0), (Rows{201, 400}));
        EXPECT_EQ(changesOf(record, 1), (Rows{40, 240}));
        EXPECT_EQ(changesOf(record, 2), (Rows{321}));
        std::filesystem::remove(place.folder.file("rec.cff"));
    }
}

TEST(ComtradeGoose, HoldsWhatWasThereBeforeTheWindow) {
    RecordFolder const place(tripCapture());
    auto const record =
        place.written({"--goose", "*", "--from", "1700000000.07", "--to", "1700000000.075"});
    for (ReadComtradeRow const& row : record.rows) {
        EXPECT_EQ(row.digitals, (std::vector<bool>{true, false, false}));
    }
    auto const trigger = place.written({"--goose", "*", "--trigger", "22:13:20.050000001"});
    // Both have six decimals where the start needs no more.
    EXPECT_EQ(trigger.trigger, kWaveStart + 50'000'000);
    EXPECT_EQ(trigger.start, kWaveStart);
}

TEST(ComtradeGoose, ThatIsNotThereIsSaid) {
    RecordFolder const place(tripCapture());
    auto const record =
        place.written({"--goose", "OTHER*"},
                      complaint("no GOOSE stream of --goose has booleans or double points"));
    EXPECT_EQ(record.digitals.size(), 0U);
}

TEST(ComtradeGoose, FollowsQuality) {
    RecordFolder const place(tripCapture());
    auto const record = place.written({"--goose", "*", "--quality", "bits", "--channels", "1"});
    ASSERT_EQ(record.digitals.size(), 6U);
    EXPECT_EQ(record.digitals[2].id, "MU01_Ia test");
    EXPECT_EQ(changesOf(record, 3), (std::vector<std::size_t>{201, 400}));
}

TEST(ComtradeGoose, GoesByTheTimesOfSamplesThatDriftFromTheirRate) {
    WaveformSettings settings = waveCalled("MU01");
    settings.smpSynch = 0;
    settings.driftPpm = 1000;
    WaveformStream stream(settings);
    stream.send(12'000);
    // After 2.5 s samples are 10 rows from where the rate has them.
    std::int64_t const trip = 2'500'000'000;
    RecordFolder const place(
        captureOf({&stream}, {tripAt(0, false, 0x80, 1), tripAt(trip, true, 0x80, 2)}));
    auto const record = place.written({"--goose", "*", "--member", "1"});
    auto const rows = stream.rows(true);
    std::size_t expected = 0;
    while (rows[expected].arrivalTime < kWaveStart + trip) {
        ++expected;
    }
    auto const changes = changesOf(record, 0);
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_NEAR(static_cast<double>(changes[0]), static_cast<double>(expected), 2);
    EXPECT_LT(changes[0], 9995U);
}

TEST(ComtradeGoose, HasANameForEachOfTwoPublishers) {
    WaveformStream stream(waveCalled("MU01"));
    stream.send(400);
    auto const from = [](std::string const& source, std::string const& name) {
        GooseMessage message = gooseCalled(name);
        message.setData({dataBoolean(true)});
        return WaveformStream::Captured{kWaveStart + 10'000'000,
                                        gooseFrame(Ethernet().from(source), message), 0, false};
    };
    std::string const end(64, 'x');
    RecordFolder const place(captureOf(
        {&stream}, {from("02:00:00:00:00:21", "G1"), from("02:00:00:00:00:22", "G1"),
                    from("02:00:00:00:00:21", "A" + end), from("02:00:00:00:00:21", "B" + end)}));
    auto const record = place.written({"--goose", "*"});
    ASSERT_EQ(record.digitals.size(), 4U);
    std::vector<std::string> ids;
    for (auto const& digital : record.digitals) {
        ids.push_back(digital.id);
    }
    std::string const cut = std::string(60, 'x') + " 1";
    EXPECT_EQ(ids, (std::vector<std::string>{"1 " + cut, "2 " + cut, "02:00:00:00:00:21 G1 1",
                                             "02:00:00:00:00:22 G1 1"}))
        << testing::PrintToString(ids);
}

TEST(ComtradeWindows, AreARecordEach) {
    RecordFolder const place(tripCapture());
    auto const result = place.write({"--around", "1700000000.02", "--around", "1700000000.05",
                                     "--around", "1700000000.1", "--span", "10ms"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(namesIn(place.folder.path()),
              (std::vector<std::string>{"rec-001.cfg", "rec-001.dat", "rec-001.hdr", "rec-002.cfg",
                                        "rec-002.dat", "rec-002.hdr", "rec-003.cfg", "rec-003.dat",
                                        "rec-003.hdr"}));
    EXPECT_EQ(place.record("-001").start, kWaveStart + 15'000'000);
    EXPECT_EQ(place.record("-002").start, kWaveStart + 45'000'000);
    EXPECT_EQ(place.record("-003").start, kWaveStart + 95'000'000);
    EXPECT_EQ(place.record("-003").rows.size(), 41U);
}

TEST(ComtradeWindows, AreTheSameRecordsInAnyOrder) {
    Bytes const capture = tripCapture();
    RecordFolder const together(capture);
    // Not in order, one twice, some over each other, and two that touch.
    Arguments const times = {"1700000000.1",   "1700000000.02", "1700000000.024", "1700000000.05",
                             "1700000000.034", "1700000000.02", "1700000000.027"};
    Arguments options = {"--span", "10ms", "--goose", "RELAY1*gcbTrip"};
    for (std::string const& time : times) {
        options.insert(options.end(), {"--around", time});
    }
    EXPECT_EQ(together.write(options).status, 0);
    for (std::size_t number = 1; number <= times.size(); ++number) {
        RecordFolder const alone(capture);
        EXPECT_EQ(alone
                      .write({"--span", "10ms", "--goose", "RELAY1*gcbTrip", "--around",
                              times[number - 1]})
                      .status,
                  0);
        std::string const part = together.folder.file("rec-00" + std::to_string(number));
        for (char const* const kind : {".dat", ".cfg"}) {
            EXPECT_EQ(readFile(part + kind), readFile(alone.folder.file("rec") + kind))
                << number << kind;
        }
    }
}

TEST(ComtradeWindows, ThatMakeNoRecordLeaveTheOthers) {
    RecordFolder const place(tripCapture());
    auto const result = place.write({"--around", "1700000000.02", "--around", "2030-01-01",
                                     "--around", "1700000000.1", "--span", "10ms", "--cff"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(place.folder.file("rec-002") +
                                    " is not written: there is no sample in the window"));
    EXPECT_EQ(namesIn(place.folder.path()),
              (std::vector<std::string>{"rec-001.cff", "rec-003.cff"}));
}

TEST(ComtradeSplit, HasEachRowOnce) {
    RecordFolder const place(tripCapture());
    EXPECT_EQ(place.write({"--split", "40ms", "--cff"}).status, 0);
    EXPECT_EQ(
        namesIn(place.folder.path()),
        (std::vector<std::string>{"rec-001.cff", "rec-002.cff", "rec-003.cff", "rec-004.cff"}));
    std::size_t rows = 0;
    auto const all = samplesOf({place.capture.path()});
    for (char const* const number : {"-001", "-002", "-003", "-004"}) {
        auto const record = place.record(number);
        EXPECT_EQ(record.rows.size(), rows == 480 ? 120U : 160U);
        EXPECT_EQ(record.start, kWaveStart + static_cast<std::int64_t>(rows) * 250'000);
        for (ReadComtradeRow const& row : record.rows) {
            ASSERT_EQ(row.analogs[0], all.at(rows)["values"][0].get<std::int64_t>());
            ++rows;
        }
    }
    EXPECT_EQ(rows, 600U);
}

TEST(ComtradeSplit, LeavesOutPartsWithoutASample) {
    WaveformStream stream(waveCalled("MU01"));
    stream.send(400).lose(8000).send(400);
    RecordFolder const place(captureOf({&stream}));
    auto const result = place.write({"--split", "100ms", "--cff"});
    EXPECT_EQ(result.status, 0) << result.err;
    auto const names = namesIn(place.folder.path());
    // 2.2 s, of which all but 0.1 s at either end was lost.
    EXPECT_EQ(names, (std::vector<std::string>{"rec-001.cff", "rec-022.cff"}));
    std::size_t samples = 0;
    for (std::string const& name : names) {
        for (ReadComtradeRow const& row :
             recordAt(place.folder.file(name.substr(0, name.size() - 4))).rows) {
            samples += row.analogs[0].has_value() ? 1 : 0;
        }
    }
    EXPECT_EQ(samples, 800U);
}

TEST(ComtradeSplit, IntoTooManyRecordsIsRefused) {
    RecordFolder const place(tripCapture());
    place.expectRefusal({"--split", "1us"}, "--split would make more than 100000 records");
}

TEST(ComtradeStreams, OfOneRateShareTheirRows) {
    // The second begins 20 samples later, ends 30 later, and lost some.
    WaveformSettings settings = waveCalled("MU02");
    settings.firstCount = 20;
    settings.delay = 350'000;
    WaveformStream second(settings);
    second.send(200).lose(10).send(420);
    WaveformStream first(waveCalled("MU01"));
    first.send(600);
    RecordFolder const place(captureOf({&first, &second}));
    std::string const lost = complaint("MU02: of 630 samples 10 lost, 0 late, 0 repeated");
    auto const record = place.written({}, lost);
    ASSERT_EQ(record.analogs.size(), 16U);
    EXPECT_EQ(record.analogs[0].id, "MU01_Ia");
    EXPECT_EQ(record.analogs[15].id, "MU02_Un");
    ASSERT_EQ(record.rows.size(), 650U);
    auto const a = first.rows(true);
    auto const b = second.rows(true);
    for (std::size_t row = 0; row < 650; ++row) {
        bool const hasFirst = row < 600;
        bool const hasSecond = row >= 20 && !b[row - 20].isMissing;
        ASSERT_EQ(record.rows[row].analogs[0].has_value(), hasFirst) << row;
        ASSERT_EQ(record.rows[row].analogs[8].has_value(), hasSecond) << row;
        if (hasFirst) {
            ASSERT_EQ(record.rows[row].analogs[3], a[row].values[3]);
        }
        if (hasSecond) {
            ASSERT_EQ(record.rows[row].analogs[11], b[row - 20].values[3]);
        }
    }
    EXPECT_EQ(place.written({"--svid", "MU02"}, lost).analogs.size(), 8U);
}

TEST(ComtradeStreams, BeginWithTheEarliestSample) {
    WaveformSettings settings = waveCalled("MU01");
    settings.firstCount = 40;
    WaveformStream first(settings);
    WaveformStream second(waveCalled("MU02"));
    RecordFolder const place(captureOf({&first.send(400), &second.send(400)}));
    auto const record = place.written({});
    EXPECT_EQ(record.start, kWaveStart);
    ASSERT_EQ(record.rows.size(), 440U);
    EXPECT_FALSE(record.rows[39].analogs[0].has_value());
    EXPECT_TRUE(record.rows[40].analogs[0].has_value());
    EXPECT_TRUE(record.rows[0].analogs[8].has_value());
}

TEST(ComtradeStreams, OfOtherRatesAreRefused) {
    WaveformStream first(waveCalled("MU01"));
    WaveformStream second(waveCalled("MU02", 4800));
    RecordFolder const place(captureOf({&first.send(400), &second.send(400)}));
    place.expectRefusal({},
                        "MU01 has 4000 samples a second, MU02 has 4800: choose streams of one "
                        "rate, by --svid");
    EXPECT_EQ(place.written({"--svid", "MU02"}).rate, 4800);
}

/// Two streams of one rate, the second of which takes its samples 100 us later, by refrTm.
Bytes phasesCapture() {
    WaveformStream first(waveCalled("MU01"));
    first.send(400);
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    std::vector<WaveformStream::Captured> others;
    SvMessage message = svCalled("MU02");
    for (std::uint32_t i = 0; i < 400; ++i) {
        std::int64_t const taken = kWaveStart + 100'000 + std::int64_t{i} * 250'000;
        message.asdus[0].smpCnt = Unsigned<2>(i);
        message.asdus[0].smpRate = Unsigned<2>(4000);
        message.asdus[0].smpMod = Unsigned<2>(1);
        message.asdus[0].refrTm =
            utcTime(static_cast<std::uint32_t>(taken / 1'000'000'000),
                    static_cast<std::uint32_t>(taken % 1'000'000'000 * 16'777'216 / 1'000'000'000));
        message.asdus[0].seqData =
            samples({{static_cast<std::int32_t>(i) + 1, 0}, {-static_cast<std::int32_t>(i), 0}});
        others.push_back(
            {taken + 400'000, svFrame(svEthernet().from("02:00:00:00:00:99"), message), 0, false});
    }
    return captureOf({&first}, others);
}

TEST(ComtradeStreams, OfOtherPhaseAreAlignedOnlyWhereAskedFor) {
    RecordFolder const place(phasesCapture());
    place.expectRefusal({},
                        "MU02: the samples are between those of the record: see --align "
                        "nearest");
    auto const record = place.written({"--align", "nearest"});
    ASSERT_EQ(record.analogs.size(), 10U);
    ASSERT_EQ(record.rows.size(), 400U);
    for (std::uint32_t row = 0; row < 400; ++row) {
        // 100 us after a row is nearest to that.
        ASSERT_EQ(record.rows[row].analogs[8], row + 1);
    }
}

TEST(ComtradeStreams, ThatDriftApartAreAlignedOnlyWhereAskedFor) {
    // Their clocks are 2 ms apart at the end: 8 rows.
    WaveformSettings settings = waveCalled("MU01");
    settings.smpSynch = 0;
    WaveformStream first(settings);
    settings = waveCalled("MU02");
    settings.smpSynch = 0;
    settings.driftPpm = 1000;
    WaveformStream second(settings);
    RecordFolder const place(captureOf({&first.send(8000), &second.send(8000)}));
    place.expectRefusal({}, ": MU02: drifts away from MU01: in one row, their samples are ");
    auto const result = place.write({"--align", "nearest"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.err.find(" --align nearest left out "), std::string::npos) << result.err;
    EXPECT_NE(textOf(place.folder.file("rec.hdr")).find(" --align nearest left out "),
              std::string::npos);
}

TEST(ComtradeStreams, ThatDriftTogetherShareTheirRows) {
    WaveformSettings settings = waveCalled("MU01");
    settings.smpSynch = 1;
    settings.driftPpm = 1000;
    WaveformStream first(settings);
    WaveformSettings other = waveCalled("MU02");
    other.smpSynch = 1;
    other.driftPpm = 1000;
    WaveformStream second(other);
    RecordFolder const place(captureOf({&first.send(8000), &second.send(8000)}));
    EXPECT_EQ(place.written({}).rows.size(), 8000U);
}

TEST(ComtradeChoice, LeavesTheRowsOfWhatIsLeftOut) {
    WaveformStream stream(waveCalled("MU01"));
    stream.send(400).revise(9).send(400).revise(1).send(400);
    RecordFolder const place(captureOf({&stream}));
    auto const record = place.written({"--confrev", "1"});
    auto const rows = stream.rows(true);
    ASSERT_EQ(record.rows.size(), 1200U);
    for (std::size_t row = 0; row < 1200; ++row) {
        bool const isLeftOut = row >= 400 && row < 800;
        ASSERT_EQ(record.rows[row].analogs[0].has_value(), !isLeftOut) << row;
        if (!isLeftOut) {
            ASSERT_EQ(record.rows[row].analogs[4], rows[row].values[4]) << row;
        }
    }
}

TEST(ComtradeChoice, MayBeAShortStretchOfALongStream) {
    // None of the places that are looked at all over the stream is in it.
    WaveformStream stream(waveCalled("MU01"));
    stream.send(2601).revise(2).send(5);
    RecordFolder const place(captureOf({&stream}));
    EXPECT_EQ(place.written({"--confrev", "2"}).rows.size(), 5U);
}

TEST(ComtradeNotes, TellWhatCameLateOrAgain) {
    WaveformStream stream(waveCalled("MU01"));
    stream.send(400).sendLate(3).send(20).repeatLast().send(20);
    RecordFolder const place(captureOf({&stream}));
    auto const counts = stream.counts();
    for (Arguments const& kind : {Arguments{}, {"--cff"}}) {
        auto const result = place.write(kind);
        EXPECT_EQ(result.err, complaint("MU01: of " + std::to_string(counts.received) +
                                        " samples 0 lost, 1 late, 1 repeated"));
        std::string const header = textOf(place.folder.file(kind.empty() ? "rec.hdr" : "rec.cff"));
        EXPECT_NE(header.find(
                      "MU01: of the samples that were gone through, 1 late, each in its place, and "
                      "1 repeated, left out."),
                  std::string::npos)
            << header.substr(0, 1000);
    }
}

TEST(ComtradeMixtures, AreRefused) {
    {
        WaveformStream stream(waveCalled("MU01"));
        stream.send(400).revise(9).send(400);
        RecordFolder const place(captureOf({&stream}));
        place.expectRefusal({}, ": MU01: confRev changes here: choose one part");
        // The place is that of the first sample of another make.
        std::string const err = place.write({}).err;
        std::size_t const at = err.find('@') + 1;
        auto const shown = runCompanion(
            {"show", place.capture.path() + "@" + err.substr(at, err.find(':', at) - at)});
        EXPECT_EQ(shown.status, 0) << shown.err;
        EXPECT_NE(shown.out.find("confRev: 9"), std::string::npos) << shown.out;
        EXPECT_NE(shown.out.find("smpCnt: 400"), std::string::npos) << shown.out;
        EXPECT_EQ(place.written({"--confrev", "9"}).rows.size(), 400U);
        EXPECT_EQ(place.written({"--to", "1700000000.05"}).rows.size(), 201U);
    }
    {
        WaveformStream stream(waveCalled("MU01"));
        stream.send(4000).changeRate(4800, 0, 4800).send(4800);
        RecordFolder const place(captureOf({&stream}));
        place.expectRefusal({}, "from here on 4800 samples a second, before 4000");
        EXPECT_EQ(place.written({"--from", "1700000001"}).rate, 4800);
    }
    {
        WaveformStream stream(waveCalled("MU01"));
        WaveformSettings settings = waveCalled("MU01");
        settings.firstCount = 400;
        settings.members = repeatedMembers({WaveMember::int32, WaveMember::quality}, 3);
        WaveformStream other(settings);
        RecordFolder const place(captureOf({&stream.send(400), &other.send(400)}));
        place.expectRefusal({}, "MU01: the samples have another layout from here on");
    }
    {
        WaveformSettings settings = waveCalled("MU01");
        settings.members = {WaveMember::int16, WaveMember::int8, WaveMember::int16};
        WaveformStream stream(settings);
        RecordFolder const place(captureOf({&stream.send(400)}));
        place.expectRefusal({}, "MU01: 5 octets of samples have no known layout: see --layout");
        EXPECT_EQ(place.written({"--layout", "int16,int8,int16"}).rows.size(), 400U);
    }
}

TEST(ComtradeRestart, ThatIsInThePhaseOfTheRecordGoesOn) {
    WaveformSettings settings = waveCalled("MU01");
    settings.smpSynch = 0;
    WaveformStream stream(settings);
    stream.send(400).restartAt(2500).send(400);
    RecordFolder const place(captureOf({&stream}));
    auto const result = place.write({"--align", "nearest"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.err.find("smpCnt goes on elsewhere"), std::string::npos) << result.err;
    auto const record = place.record();
    EXPECT_NEAR(static_cast<double>(record.rows.size()), 800, 2);
}

TEST(ComtradeOfNothing, IsRefused) {
    RecordFolder const goose(CaptureBuilder().add(1, 0, oneGoose()).bytes());
    auto const result = goose.write({"-q"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint("no record is written: there is no SV stream to write"));
    EXPECT_EQ(namesIn(goose.folder.path()), std::vector<std::string>{});
    RecordFolder const place(tripCapture());
    place.expectRefusal({"--from", "2030-01-01"}, "there is no sample in the window");
    EXPECT_EQ(place.write({"--svid", "NONE"}).status, 2);
    EXPECT_EQ(namesIn(place.folder.path()), std::vector<std::string>{});
    RecordFolder const one(CaptureBuilder().add(1, 0, oneSv()).bytes());
    one.expectRefusal({"--layout", "int32"}, "the rate of the samples is not known: see --rate");
}

TEST(ComtradeFiles, ReplaceOthersOnlyWhenAllIsThere) {
    RecordFolder const place(tripCapture());
    Bytes const old = {'o', 'l', 'd'};
    for (char const* const name : {"rec.cfg", "rec.dat", "rec.hdr"}) {
        place.folder.write(name, old);
    }
    EXPECT_EQ(place.write({"--from", "2030-01-01"}).status, 2);
    // No room for the data.
    auto const full =
        run({"/bin/sh", "-c", "trap '' XFSZ; ulimit -f 8; exec \"$0\" comtrade -o \"$1\" \"$2\"",
             companionPath(), place.folder.file("rec"), place.capture.path()});
    EXPECT_EQ(full.status, 2);
    EXPECT_EQ(std::count(full.err.begin(), full.err.end(), '\n'), 1) << full.err;
    EXPECT_EQ(namesIn(place.folder.path()),
              (std::vector<std::string>{"rec.cfg", "rec.dat", "rec.hdr"}));
    for (char const* const name : {"rec.cfg", "rec.dat", "rec.hdr"}) {
        EXPECT_EQ(readFile(place.folder.file(name)), old) << name;
    }
    EXPECT_EQ(place.written({}).rows.size(), 600U);
}

TEST(ComtradeFiles, AreNoneWhereTheFolderIsNot) {
    RecordFolder const place(tripCapture());
    auto const result =
        runCompanion({"comtrade", "-o", place.folder.file("nowhere/rec"), place.capture.path()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_EQ(namesIn(place.folder.path()), std::vector<std::string>{});
}

TEST(ComtradeFiles, AreNeverTheCaptures) {
    TempDir const folder;
    Bytes const capture = tripCapture();
    for (std::string const end : {".cfg", ".dat", ".hdr", ".cff", "-001.cfg", "-002.cff"}) {
        auto const path = folder.write("mu" + end, capture);
        Arguments command = {"comtrade", "-o", folder.file("mu"), path};
        if (end.ends_with("cff")) {
            command.push_back("--cff");
        }
        if (end.starts_with("-")) {
            command.insert(command.end(), {"--split", "80ms"});
        }
        auto const result = runCompanion(command);
        EXPECT_EQ(result.status, 1) << end << result.err;
        EXPECT_EQ(readFile(path), capture) << end;
        EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"mu" + end});
        std::filesystem::remove(path);
    }
}

TEST(ComtradeOptions, AreRefusedInOneLine) {
    RecordFolder const place(tripCapture());
    std::string const base = place.folder.file("rec");
    for (Arguments const& options :
         std::vector<Arguments>{{"--data", "float32"},
                                {"--data", "binary32", "--edition", "1999"},
                                {"--cff", "--edition", "1999"},
                                {"--edition", "1991"},
                                {"--edition", "2001"},
                                {"--quality", "some"},
                                {"--align", "linear"},
                                {"--split", "0s"},
                                {"--split", "-1s"},
                                {"--split", "x"},
                                {"--split", "1s", "--around", "+0.01s", "--around", "+0.02s"},
                                {"--trigger", "yesterday"},
                                {"--frequency", "0"},
                                {"--frequency", "nan"},
                                {"--frequency", "50Hz"},
                                {"--scale", "0"},
                                {"--channels", "0"},
                                {"--channels", "9"},
                                {"--protocol", "goose"},
                                {"--format", "json"},
                                {"--every", "2"},
                                {"--from", "2030-01-02", "--to", "2030-01-01"}}) {
        expectUsageError(joined({"comtrade", "-o", base, place.capture.path()}, options));
        EXPECT_EQ(namesIn(place.folder.path()), std::vector<std::string>{});
    }
    expectUsageError({"comtrade", place.capture.path()});
    expectUsageError({"comtrade", "-o", base});
    for (std::string const no : {"", "-", "folder/"}) {
        expectUsageError({"comtrade", "-o", no, place.capture.path()});
    }
}

TEST(ComtradeCopies, ComeOnce) {
    for (WaveCopies const copies : {WaveCopies::prp, WaveCopies::hsr}) {
        WaveformSettings settings = waveCalled("MU01");
        settings.copies = copies;
        WaveformStream stream(settings);
        RecordFolder const place(captureOf({&stream.send(400)}));
        EXPECT_EQ(place.written({}).rows.size(), 400U);
    }
}

TEST(ComtradeSources, OfOneNameAreRefused) {
    WaveformSettings settings = waveCalled("MU01");
    WaveformStream first(settings);
    settings.ethernet = settings.ethernet.from("02:00:00:00:00:77");
    WaveformStream second(settings);
    RecordFolder const place(captureOf({&first.send(400), &second.send(400)}));
    place.expectRefusal({}, "another stream has the svID MU01, too: choose one, by --source");
    EXPECT_EQ(place.written({"--source", "02:00:00:00:00:77"}).analogs.size(), 8U);
}

}  // namespace
}  // namespace TalTest::ComtradeRecordsTest
