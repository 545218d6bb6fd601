// The words of each kind of finding.

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/PcapngMaker.hpp"
#include "tools/CheckTraffic.hpp"
#include "tools/render/FindingText.hpp"
#include "tools/selection/FindingNames.hpp"

namespace TalTest::CheckKindsTest {
namespace {

using Sentences = std::vector<std::string>;

constexpr std::size_t kRelay = 2;

template <typename Change>
Sentences afterSv(std::string const& kind, std::size_t number, Change const& change) {
    auto station = smallStation();
    station.changeSvFrom(0, number, change);
    return sentencesOf(station, kind);
}

/// Of a relay whose state changes at message 10.
template <typename Change>
Sentences afterGoose(std::string const& kind, std::size_t number, Change const& change) {
    FaultyStation station;
    station.add(GoosePlan{.firstMessage = 100, .states = {10, 10}});
    station.changeGooseFrom(0, number, change);
    return sentencesOf(station, kind);
}

TEST(FindingSentence, IsOneForSamplesThatAreMissing) {
    auto station = smallStation();
    station.drop(0, 1000, 8);
    EXPECT_EQ(sentencesOf(station, "sampleGap"),
              Sentences{"8 samples missing: smpCnt 1000 expected, 1008 came, after 2.25 ms; lost "
                        "on the network: 9 packets of other streams came meanwhile"});
    FaultyStation alone;
    alone.add(SvPlan{});
    alone.drop(0, 2000);
    EXPECT_EQ(sentencesOf(alone, "sampleGap"),
              Sentences{"1 sample missing: smpCnt 2000 expected, 2001 came, after 500 us; nothing "
                        "tells who lost them"});
}

TEST(FindingSentence, SaysThatAGapIsAtTheBorderOfFiles) {
    FaultyStation station;
    station.add(SvPlan{});
    station.drop(0, 1000, 8).splitAt(251 * kNsOfMs);
    EXPECT_EQ(sentencesOf(station, "sampleGap"),
              Sentences{"8 samples missing: smpCnt 1000 expected, 1008 came, after 2.25 ms, from "
                        "one file to the next; nothing tells who lost them"});
}

TEST(FindingSentence, SaysThatAPauseIsAtTheBorderOfFiles) {
    FaultyStation station;
    station.add(GoosePlan{.firstMessage = 100, .states = {20}});
    for (StationFrame& frame : station.frames()) {
        if (frame.number >= 10) frame.time += 3'000 * kNsOfMs;
    }
    station.splitAt(2'000 * kNsOfMs);
    EXPECT_EQ(
        sentencesOf(station, "expired"),
        Sentences{"timeAllowedtoLive ran out: the next message came 2.85 s too late, from one "
                  "file to the next"});
    auto all = smallStation();
    all.add({.svID = "MU03", .source = "02:00:00:00:00:03", .frames = 8000, .start = 90'000});
    all.dropBetween(500 * kNsOfMs, 1'700 * kNsOfMs).splitAt(1'000 * kNsOfMs);
    EXPECT_EQ(sentencesOf(all, "captureGap").size(), 1U);
    EXPECT_NE(sentencesOf(all, "captureGap").at(0).find(", from one file to the next and lack"),
              std::string::npos);
}

TEST(FindingSentence, SaysWhatSmpCntTellsOfASilence) {
    FaultyStation station;
    station.add({.frames = 4000});
    auto later = station.frames();
    for (StationFrame& frame : later) {
        frame.time += 3'600'000 * kNsOfMs;
        auto& smpCnt = *std::get<SvMessage>(frame.message).asdus.front().smpCnt;
        smpCnt = Unsigned<2>((smpCnt.value + 85) % 4000);
    }
    station.frames().insert(station.frames().end(), later.begin(), later.end());
    EXPECT_EQ(sentencesOf(station, "silent"),
              Sentences{"nothing for 3599 s; smpCnt went from 3999 to 85, which does not tell what "
                        "is missing"});
    // No silence where nobody listened.
    station.splitAt(1'800'000 * kNsOfMs);
    EXPECT_EQ(sentencesOf(station, "silent"), Sentences());
}

TEST(FindingSentence, SaysThatSqNumWasNotReset) {
    EXPECT_EQ(afterGoose("stateStartMissing", 10,
                         [](GooseMessage& message) { message.sqNum = message.sqNum->value + 110; }),
              Sentences{"state 6 begins with sqNum 110: sqNum was not reset"});
}

TEST(FindingSentence, NamesEachWitness) {
    auto all = smallStation();
    all.add({.svID = "MU03", .source = "02:00:00:00:00:03", .frames = 8000, .start = 90'000});
    all.dropBetween(500 * kNsOfMs, 520 * kNsOfMs);
    EXPECT_EQ(sentencesOf(all, "sampleGap").front(),
              "80 samples missing: smpCnt 2000 expected, 2080 came, after 20.25 ms; lost in the "
              "capture: 2 other streams lack packets at the same time");
    EXPECT_EQ(sentencesOf(all, "captureGap"),
              (Sentences{"all streams pause for 20.16 ms and lack what should have come, 241 "
                         "packets in all"}));
    FaultyStation prp;
    for (std::string const unit : {"1", "2", "3"}) {
        prp.add({.svID = "MU0" + unit,
                 .source = "02:00:00:00:00:0" + unit,
                 .start = 60'000 * std::stoi(unit),
                 .prpDelay = 20'000});
    }
    auto sent = prp;
    sent.drop(1, 1000, 2);
    EXPECT_NE(
        sentencesOf(sent, "sampleGap")
            .front()
            .find("; lost on the network: 2 redundancy numbers are of the source missing too"),
        std::string::npos)
        << sentencesOf(sent, "sampleGap").front();
    for (StationFrame& frame : prp.frames()) {
        if (frame.stream == 1 && frame.number >= 1002) {
            frame.ethernet.prpSequence = static_cast<std::uint16_t>(frame.ethernet.prpSequence - 2);
        }
    }
    prp.drop(1, 1000, 2);
    EXPECT_NE(sentencesOf(prp, "sampleGap")
                  .front()
                  .find("; never sent: the redundancy numbers of the source have no gap"),
              std::string::npos);
}

TEST(FindingSentence, IsOneForAFlood) {
    auto station = smallStation();
    for (std::size_t number = 100; number < 3900; number += 10) {
        station.drop(0, number);
    }
    auto const rows = checkRows(station);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["count"], 380);
    EXPECT_EQ(rows[0]["lost"], 380);
    EXPECT_EQ(rows[0]["text"],
              "380 gaps in 947.5 ms, 380 samples missing; nothing tells who lost them");
}

TEST(FindingSentence, IsOneForCountersOfSv) {
    auto station = smallStation();
    station.repeat(0, 1000, 20'000).delay(1, 2000, 300'000);
    EXPECT_EQ(sentencesOf(station, "repeated"), Sentences{"smpCnt 1000 came again, 1001 was due"});
    EXPECT_EQ(sentencesOf(station, "late"), Sentences{"smpCnt 2000 came late, 2002 was due"});
    EXPECT_EQ(afterSv("counterRestart", 2000,
                      [](SvMessage& message) {
                          auto& smpCnt = message.asdus.front().smpCnt;
                          smpCnt = Unsigned<2>((smpCnt->value + 1234) % 4000);
                      }),
              Sentences{"smpCnt goes on with 3234, 2000 was due: nothing is missing, the publisher "
                        "began anew or its clock was set"});
}

TEST(FindingSentence, IsOneForCountersOfGoose) {
    FaultyStation station;
    station.add(GoosePlan{.firstMessage = 100, .states = {10, 10, 10, 10}});
    station.repeat(0, 3, kNsOfMs).repeat(0, 4, 900 * kNsOfMs).delay(0, 22, 30 * kNsOfMs);
    EXPECT_EQ(sentencesOf(station, "repeated"), Sentences{"stNum 5, sqNum 103 came again"});
    EXPECT_EQ(sentencesOf(station, "replay"),
              Sentences{"stNum 5, sqNum 104 came again, long after: stNum 6 was there already"});
    EXPECT_EQ(sentencesOf(station, "late"), Sentences{"stNum 7, sqNum 2 came late, after stNum 7"});
    FaultyStation gaps;
    gaps.add(GoosePlan{.firstMessage = 100, .states = {10, 10, 10, 10}});
    gaps.drop(0, 5, 2).drop(0, 10, 13);
    EXPECT_EQ(sentencesOf(gaps, "sqNumGap"),
              Sentences{"2 messages of state 5 missing: sqNum 105 expected, 107 came, after 300 "
                        "ms; nothing tells who lost them"});
    EXPECT_EQ(sentencesOf(gaps, "stateGap").front().substr(0, 51),
              "1 state missing: stNum 6 expected, 7 came, after 75");
    EXPECT_EQ(sentencesOf(gaps, "stateStartMissing").front().substr(0, 71),
              "the first 3 messages of state 7 missing: sqNum 0 expected, 3 came, afte");
}

TEST(FindingSentence, IsOneForAPublisherThatBeganAnew) {
    FaultyStation station;
    station.add(GoosePlan{.firstState = 9, .firstMessage = 100, .states = {10, 10}});
    station.changeGooseFrom(0, 10, [](GooseMessage& message) { message.stNum = 1; });
    EXPECT_EQ(sentencesOf(station, "counterRestart"),
              Sentences{"stNum went back from 9 to 1: the publisher began anew"});
    FaultyStation first;
    first.add(GoosePlan{.firstState = 1, .firstMessage = 100, .states = {10, 10}});
    first.changeGooseFrom(0, 10, [](GooseMessage& message) { message.stNum = 1; });
    EXPECT_EQ(sentencesOf(first, "counterRestart"),
              Sentences{"sqNum went back from 109 to 0, stNum stayed 1: the publisher began anew"});
}

TEST(FindingSentence, IsOneForTwoPublishers) {
    auto station = smallStation();
    station.add({.svID = "MU01", .source = "02:00:00:00:00:09", .frames = 8000, .start = 99'000});
    EXPECT_EQ(sentencesOf(station, "twoPublishers"),
              Sentences{"svID is sent by two sources: 02:00:00:00:00:01 and 02:00:00:00:00:09"});
    auto const row = checkRows(station).at(0);
    EXPECT_EQ(row["expected"], "02:00:00:00:00:01");
    EXPECT_EQ(row["found"], "02:00:00:00:00:09");
    FaultyStation interleaved;
    interleaved.add(SvPlan{});
    interleaved.add({.firstCount = 2000, .start = 100'000});
    auto const sentence = sentencesOf(interleaved, "twoPublishers").at(0);
    EXPECT_EQ(sentence.substr(0, 59),
              "two counters take turns in one stream: smpCnt 1 and 2000, 3");
}

TEST(FindingSentence, IsOneForContentsAgainstCounters) {
    EXPECT_EQ(
        afterGoose(
            "changedWithoutState", 5,
            [](GooseMessage& message) {
                message.setData({dataBoolean(false), dataQuality(), dataUtcTime(1'700'000'000)});
            }),
        Sentences{"data changed, stNum stayed 5"});
    EXPECT_EQ(afterGoose("stateWithoutChange", 0,
                         [](GooseMessage& message) { message.setData({dataBoolean(true)}); }),
              Sentences{"stNum went up to 6, no value or quality changed"});
    EXPECT_EQ(afterGoose("timeWithoutState", 5,
                         [](GooseMessage& message) { message.t = utcTime(1'700'000'000); })
                  .front(),
              "t went from 2023-11-14T22:13:19.000000000Z to 2023-11-14T22:13:20.000000000Z, stNum "
              "stayed 5");
    EXPECT_EQ(afterGoose("timeUnchanged", 0,
                         [](GooseMessage& message) { message.t = utcTime(1'700'000'000); }),
              Sentences{"stNum went up to 6, t stayed 2023-11-14T22:13:20.000000000Z"});
    EXPECT_EQ(afterGoose("timeAhead", 0,
                         [](GooseMessage& message) { message.t = utcTime(1'700'000'060); }),
              Sentences{"t is 60 s later than arrival: one of the clocks is wrong"});
}

TEST(FindingSentence, IsOneForTimeAllowedToLive) {
    auto station = smallStation();
    station.drop(kRelay, 8, 2).drop(kRelay, 15, 5);
    EXPECT_EQ(sentencesOf(station, "expired"),
              (Sentences{"timeAllowedtoLive ran out: the next message came 50 ms too late",
                         "timeAllowedtoLive ran out 349.74 ms before the captures end, and no "
                         "message came"}));
    EXPECT_EQ(afterGoose("timeAllowedtoLiveZero", 5,
                         [](GooseMessage& message) { message.timeAllowedtoLive = 0; }),
              Sentences{"timeAllowedtoLive is 0: receivers cannot supervise the stream"});
    EXPECT_EQ(afterGoose("timeAllowedtoLiveChanged", 5,
                         [](GooseMessage& message) { message.timeAllowedtoLive = 180; }),
              Sentences{"timeAllowedtoLive went from 250 ms to 180 ms"});
}

TEST(FindingSentence, IsOneForArrival) {
    auto station = smallStation();
    for (std::size_t number = 1000; number < 1100; ++number) {
        station.frame(0, number).time = 274'800'000 + static_cast<std::int64_t>(number);
    }
    station.drop(1, 7000, 1000);
    EXPECT_EQ(sentencesOf(station, "silent"),
              (Sentences{"nothing for 25.051 ms, though smpCnt shows no gap",
                         "nothing for the last 249.94 ms of the captures"}));
    auto jitter = smallStation();
    jitter.delay(0, 1000, 150'000).delay(1, 2000, -140'000);
    EXPECT_EQ(sentencesOf(jitter, "jitter"),
              (Sentences{"a frame came 150 us late, more than 125 us",
                         "a frame came 140 us early, more than 125 us"}));
}

TEST(FindingSentence, IsOneForWhatAStreamSaysOfItself) {
    EXPECT_EQ(afterSv("confRevChanged", 10,
                      [](SvMessage& message) { message.asdus.front().confRev = 10001; }),
              Sentences{"confRev went from 1 to 10001: the publisher was configured anew"});
    EXPECT_EQ(afterSv("dataSetChanged", 10,
                      [](SvMessage& message) { message.asdus.front().datSet = "MU01/LLN0$x"; }),
              Sentences{"datSet went from none to MU01/LLN0$x"});
    EXPECT_EQ(afterSv("dataSetChanged", 10,
                      [](SvMessage& message) { message.asdus.front().seqData = Bytes(48); }),
              Sentences{"octets of seqData went from 64 to 48"});
    EXPECT_EQ(afterGoose("dataSetChanged", 10,
                         [](GooseMessage& message) { message.setData({dataBoolean(true)}); }),
              Sentences{"members of the data set went from 3 to 1"});
    EXPECT_EQ(afterGoose("entriesDiffer", 10,
                         [](GooseMessage& message) { message.numDatSetEntries = 7; }),
              Sentences{"numDatSetEntries is 7, but the data set has 3 members"});
    EXPECT_EQ(
        afterGoose("needsCommissioning", 10, [](GooseMessage& message) { message.ndsCom = true; }),
        Sentences{"ndsCom is set: the control block is not configured in full"});
    EXPECT_EQ(afterGoose("simulationContradicts", 10,
                         [](GooseMessage& message) { message.simulation = true; }),
              Sentences{"the header says not simulated, the element of the message simulated"});
    EXPECT_EQ(
        afterSv("simulationBegan", 10, [](SvMessage& message) { message.reserved1 = 0x8000; }),
        Sentences{"packets are simulated from here on"});
    auto ends = smallStation();
    ends.changeSvFrom(0, 0, [](SvMessage& message) { message.reserved1 = 0x8000; });
    ends.changeSvFrom(0, 10, [](SvMessage& message) { message.reserved1 = 0; });
    EXPECT_EQ(sentencesOf(ends, "simulationEnded"),
              Sentences{"packets are not simulated any more"});
}

TEST(FindingSentence, IsOneForAnotherRate) {
    FaultyStation station;
    station.add({.frames = 8000});
    station.add({.rate = 4800, .frames = 9600, .start = 2000 * kNsOfMs});
    auto const sentences = sentencesOf(station, "rateChanged");
    EXPECT_EQ(sentences, Sentences{"the rate went from 4000 to 4800 samples a second"});
}

TEST(FindingSentence, IsOneForClocks) {
    EXPECT_EQ(
        afterSv("synchLost", 10, [](SvMessage& message) { message.asdus.front().smpSynch = 0; }),
        Sentences{"smpSynch fell from 2 (global) to 0 (none)"});
    auto station = smallStation();
    station.changeSvFrom(0, 0, [](SvMessage& message) { message.asdus.front().smpSynch = 7; });
    station.changeSvFrom(0, 10, [](SvMessage& message) { message.asdus.front().smpSynch = 2; });
    EXPECT_EQ(sentencesOf(station, "synchRegained"),
              Sentences{"smpSynch rose from 7 (clock 7) to 2 (global)"});
    EXPECT_EQ(
        afterGoose("clockFailure", 10,
                   [](GooseMessage& message) { message.t = utcTime(1'700'000'000, 0, 0x4A); }),
        Sentences{"t says that its clock has failed"});
    EXPECT_EQ(afterSv("clockNotSynchronized", 10,
                      [](SvMessage& message) {
                          message.asdus.front().refrTm = utcTime(1'700'000'000, 0, 0x2A);
                      }),
              Sentences{"refrTm says that its clock is not synchronized"});
    auto clocks = smallStation();
    clocks.changeSvFrom(0, 0, [](SvMessage& message) {
        message.asdus.front().extraLast = {0x89, 8, 0, 0x30, 0xA7, 0xFF, 0xFE, 0, 0, 1};
    });
    clocks.changeSvFrom(0, 10,
                        [](SvMessage& message) { message.asdus.front().extraLast.back() = 2; });
    EXPECT_EQ(sentencesOf(clocks, "grandmasterChanged"),
              Sentences{"the grandmaster clock went from 00:30:a7:ff:fe:00:00:01 to "
                        "00:30:a7:ff:fe:00:00:02"});
}

TEST(FindingSentence, HasQualitiesInWords) {
    auto station = smallStation();
    auto const set = [](std::uint32_t quality) {
        return [=](SvMessage& message) {
            std::vector<Sample> channels(8, Sample{1000, 0});
            channels[1].second = quality;
            message.asdus.front().seqData = samples(channels);
        };
    };
    station.changeSvFrom(0, 0, set(0)).changeSvFrom(0, 100, set(0x81));
    station.changeSvFrom(0, 200, set(0));
    auto const rows = checkRows(station, {"--kind", "qualityChanged"});
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["text"], "quality of channel 2 (Ib) went from good to invalid, oldData");
    EXPECT_EQ(rows[0]["severity"], "warning");
    EXPECT_EQ(rows[0]["expected"], "good");
    EXPECT_EQ(rows[0]["found"], "invalid, oldData");
    EXPECT_EQ(rows[1]["text"], "quality of channel 2 (Ib) went from invalid, oldData to good");
    EXPECT_EQ(rows[1]["severity"], "note");
    EXPECT_EQ(checkRows(station, {"--no-samples"}).size(), 0U);
    auto always = smallStation();
    always.changeSvFrom(0, 0, set(1));
    auto const first = checkRows(always, {"--kind", "qualityChanged"});
    ASSERT_EQ(first.size(), 1U);
    EXPECT_EQ(first[0]["text"], "quality of channel 2 (Ib) is invalid from the first packet on");
    EXPECT_EQ(first[0]["expected"], nullptr);
    EXPECT_EQ(afterGoose("qualityChanged", 10,
                         [](GooseMessage& message) {
                             message.setData({dataBoolean(true), dataBitString({0x40, 0x10}, 3)});
                         })
                  .size(),
              0U);
    FaultyStation relay;
    relay.add(GoosePlan{.firstMessage = 100, .states = {10, 10}});
    relay.changeGooseFrom(0, 10, [](GooseMessage& message) {
        message.setData(
            {dataBoolean(false), dataBitString({0x40, 0x10}, 3), dataUtcTime(1'700'000'000)});
    });
    EXPECT_EQ(sentencesOf(relay, "qualityChanged"),
              Sentences{"quality of member 2 went from good to invalid, test"});
}

TEST(FindingSentence, IsOneForTheCapture) {
    auto station = smallStation();
    station.stepClock(1200 * kNsOfMs, -7'000 * kNsOfMs);
    EXPECT_EQ(sentencesOf(station, "clockStep"),
              Sentences{"the clock of the capture was set back by 7 s"});
    PcapngMaker maker;
    maker.section().interface(1, 0, maker.timeOptions(9));
    FaultyStation few;
    few.add({.frames = 100});
    for (StationFrame const& frame : few.frames()) {
        PcapngMaker::Packet packet;
        packet.time = static_cast<std::uint64_t>(FaultyStation::timeOf(frame));
        packet.frame = svFrame(frame.ethernet, std::get<SvMessage>(frame.message));
        if (frame.number == 50) {
            packet.options = maker.numberOption(4, 3);
        }
        maker.packet(packet);
    }
    auto const rows = checkRows(StationFiles({maker.bytes()}));
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["finding"], "captureDropped");
    EXPECT_EQ(rows[0]["text"], "the capture says that it lost 3 packets");
    EXPECT_EQ(rows[0]["svID"], nullptr);
    EXPECT_EQ(rows[0]["protocol"], nullptr);
}

TEST(FindingSentence, IsOneForFramesThatAreNotRead) {
    auto station = smallStation();
    station.goose(kRelay, 5).gocbRef.reset();
    auto const rows = checkRows(station, {"--kind", "unreadable"});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["protocol"], "GOOSE");
    EXPECT_EQ(rows[0]["text"], "GOOSE frame that cannot be read: it has no gocbRef");
    auto nameless = smallStation();
    nameless.sv(0, 5).asdus.front().svID.reset();
    EXPECT_EQ(sentencesOf(nameless, "unreadable"),
              Sentences{"SV frame that cannot be read: an ASDU has no svID"});
    auto captures = smallStation().captures();
    captures.front().resize(captures.front().size() - 20);
    auto const result =
        runCompanion(StationFiles(captures).check({"-f", "json", "-q", "--fail-on", "none"}));
    EXPECT_EQ(result.status, 2);
    auto const cut = Json::parse(result.out);
    EXPECT_EQ(cut["finding"], "fileEndsInRecord");
    EXPECT_EQ(std::string(cut["text"]).substr(0, 33), "the file ends inside a record: 96");
}

TEST(FindingSentence, IsOneForFramesThatASnapLengthCut) {
    for (std::size_t const cut : {1U, 20U}) {
        FaultyStation station;
        station.add({.frames = 100});
        CaptureBuilder capture(CaptureVariant::nanoLittle);
        for (StationFrame const& frame : station.inTimeOrder()) {
            Bytes const octets = FaultyStation::octetsOf(frame);
            auto const size = static_cast<std::uint32_t>(octets.size());
            capture.addSnapped(FaultyStation::kStart, static_cast<std::uint32_t>(frame.time),
                               frame.number < cut ? size - 8 : size, octets);
        }
        auto const rows = checkRows(StationFiles({capture.bytes()}), {"--kind", "recordsCut"});
        ASSERT_EQ(rows.size(), 1U);
        EXPECT_EQ(rows[0]["count"], cut);
        EXPECT_EQ(rows[0]["text"],
                  cut == 1 ? "a snap length cut 1 frame" : "a snap length cut 20 frames");
        EXPECT_EQ(rows[0]["svID"], nullptr);
    }
}

TEST(FindingSentence, IsThereForEachKind) {
    using namespace TalIec61850Analysis;
    using namespace TalIec61850Tools;
    FaultyStation station;
    station.add(GoosePlan{.states = {4}});
    station.add(SvPlan{.frames = 4});
    TempFile const file(station.captures().front());
    auto const index = indexCapture(file.path());
    ASSERT_EQ(index.streams().size(), 2U);
    ASSERT_EQ(index.streams()[1].key.protocol, StreamProtocol::sv);
    StreamNames names({}, {});
    FindingText text(index, names, [](std::uint32_t) -> std::string_view { return "a.pcap"; });
    Finding finding;
    finding.expected = std::int64_t{1};
    finding.found = std::int64_t{2};
    finding.before = FindingPlace();
    finding.place = FindingPlace();
    finding.place->packet.packet = 1;
    finding.member = {0};
    finding.reason = UnreadReason::noName;
    for (std::string const& name : findingKindNames()) {
        finding.kind = *findingKindOf(name);
        finding.stream = name == "silent" || name == "sampleGap" ? 1 : 0;
        finding.protocol = index.streams()[*finding.stream].key.protocol;
        EXPECT_NE(text.sentence(finding), "") << name;
    }
}

TEST(FindingNames, AreFoundAgain) {
    using namespace TalIec61850Tools;
    for (std::string const& name : findingKindNames()) {
        EXPECT_EQ(toText(*findingKindOf(name)), name);
    }
    EXPECT_FALSE(findingKindOf("nothing"));
    for (std::string const& name : severityNames()) {
        EXPECT_EQ(toText(*severityOf(name)), name);
    }
    EXPECT_FALSE(severityOf("none"));
}

}  // namespace
}  // namespace TalTest::CheckKindsTest
