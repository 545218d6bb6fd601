// What `packets` tells of each packet itself: counters, ways, lengths, and frames of no stream.

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/PcapngMaker.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::PacketsFieldsTest {
namespace {

GooseMessage gooseAt(std::uint64_t stNum, std::uint64_t sqNum) {
    GooseMessage message;
    message.stNum = MinimalUnsigned(stNum);
    message.sqNum = MinimalUnsigned(sqNum);
    return message;
}

std::vector<Json> packetsOf(Bytes const& capture, Arguments const& options = {}) {
    TempFile const file(capture);
    return rowsOf(joined({"packets", file.path()}, options));
}

TEST(PacketsFields, AreTheCountersOfGooseAtFullWidth) {
    auto const rows = packetsOf(CaptureBuilder()
                                    .add(1, 0, gooseFrame(Ethernet(), gooseAt(7, 0)))
                                    .add(2, 0, gooseFrame(Ethernet(), gooseAt(4294967295, 70000)))
                                    .bytes());
    EXPECT_EQ(fieldOf(rows, "stNum"), (std::vector<Json>{7, 4294967295}));
    EXPECT_EQ(fieldOf(rows, "sqNum"), (std::vector<Json>{0, 70000}));
    EXPECT_EQ(fieldOf(rows, "timeAllowedToLive"), (std::vector<Json>{2000, 2000}));
    EXPECT_EQ(fieldOf(rows, "smpCnt"), (std::vector<Json>{nullptr, nullptr}));
    EXPECT_EQ(fieldOf(rows, "asdu"), (std::vector<Json>{nullptr, nullptr}));
}

TEST(PacketsFields, AreThoseOfEachAsdu) {
    SvMessage message;
    message.asdus.resize(3);
    for (std::uint16_t i = 0; i < 3; ++i) {
        message.asdus[i].svID = "MU" + std::to_string(i);
        message.asdus[i].smpCnt = Unsigned<2>(i + 10U);
    }
    Bytes const capture = CaptureBuilder().add(1, 0, svFrame(svEthernet(), message)).bytes();
    auto const rows = packetsOf(capture);
    EXPECT_EQ(fieldOf(rows, "svID"), (std::vector<Json>{"MU0", "MU1", "MU2"}));
    EXPECT_EQ(fieldOf(rows, "asdu"), (std::vector<Json>{1, 2, 3}));
    EXPECT_EQ(fieldOf(rows, "smpCnt"), (std::vector<Json>{10, 11, 12}));
    EXPECT_EQ(fieldOf(rows, "smpSynch"), (std::vector<Json>{2, 2, 2}));
    EXPECT_EQ(rows[0]["framePosition"], rows[2]["framePosition"]);
    EXPECT_EQ(fieldOf(packetsOf(capture, {"--svid", "MU1"}), "smpCnt"), std::vector<Json>{11});
    EXPECT_EQ(fieldOf(packetsOf(capture, {"--smpcnt", "11-12"}), "asdu"),
              (std::vector<Json>{2, 3}));
}

TEST(PacketsFields, AreTheWayOfEachPacketItself) {
    auto const rows = packetsOf(CaptureBuilder()
                                    .add(1, 0, svFrameCalled("MU", svEthernet().withPrp('A', 7)))
                                    .add(1, 1000, svFrameCalled("MU", svEthernet().withPrp('B', 7)))
                                    .add(2, 0, svFrameCalled("MU", svEthernet().withHsr('B', 9)))
                                    .add(3, 0, svFrameCalled("MU"))
                                    .bytes());
    EXPECT_EQ(fieldOf(rows, "prpLane"), (std::vector<Json>{"A", "B", nullptr, nullptr}));
    EXPECT_EQ(fieldOf(rows, "hsrLane"), (std::vector<Json>{nullptr, nullptr, "B", nullptr}));
    EXPECT_EQ(fieldOf(rows, "redundancySequence"), (std::vector<Json>{7, 7, 9, nullptr}));
}

TEST(PacketsFields, SaySimulationOfThePacketItself) {
    GooseMessage byElement;
    byElement.simulation = true;
    GooseMessage byHeader;
    byHeader.reserved1 = 0x8000;
    Bytes const capture = CaptureBuilder()
                              .add(1, 0, gooseFrame(Ethernet(), GooseMessage()))
                              .add(2, 0, gooseFrame(Ethernet(), byElement))
                              .add(3, 0, gooseFrame(Ethernet(), byHeader))
                              .bytes();
    EXPECT_EQ(fieldOf(packetsOf(capture), "simulated"), (std::vector<Json>{false, true, true}));
    EXPECT_EQ(packetsOf(capture, {"--simulated", "yes"}).size(), 2U);
    EXPECT_EQ(packetsOf(capture, {"--simulated", "no"}).size(), 1U);
}

TEST(PacketsFilters, AskForCounters) {
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 10; ++i) {
        capture.add(i, 0, gooseFrame(Ethernet(), gooseAt(i / 5, i % 5)));
    }
    EXPECT_EQ(packetsOf(capture.bytes(), {"--stnum", "1"}).size(), 5U);
    EXPECT_EQ(packetsOf(capture.bytes(), {"--sqnum", "3-4"}).size(), 4U);
    EXPECT_EQ(packetsOf(capture.bytes(), {"--stnum", "1", "--sqnum", "0", "--sqnum", "4"}).size(),
              2U);
    TempFile const file(capture.bytes());
    auto const none = runCompanion({"packets", "-f", "json", file.path(), "--stnum", "5"});
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.err, complaint("no packet of 1 stream meets the options on packets"));
}

TEST(PacketsFields, OfWhatASnapLengthCutAreNull) {
    Bytes const frame = gooseFrame(Ethernet(), gooseAt(7, 3));
    auto const rows =
        packetsOf(CaptureBuilder().addSnapped(1, 0, 60, frame).addSnapped(2, 0, 30, frame).bytes());
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["gocbRef"], "RELAY1LD0/LLN0$GO$gcb1");
    EXPECT_TRUE(rows[0]["stNum"].is_null());
    EXPECT_TRUE(rows[0]["unreadable"].is_null());
    EXPECT_EQ(fieldOf(rows, "capturedOctets"), (std::vector<Json>{60, 30}));
    EXPECT_EQ(fieldOf(rows, "wireOctets"), (std::vector<Json>{frame.size(), frame.size()}));
    EXPECT_EQ(rows[1]["unreadable"], "cut");
    EXPECT_EQ(rows[1]["protocol"], "GOOSE");
    EXPECT_EQ(rows[1]["source"], "02:00:00:00:00:01");
    EXPECT_EQ(rows[1]["appId"], "0x0001");
    EXPECT_TRUE(rows[1]["gocbRef"].is_null());
    EXPECT_TRUE(rows[1]["position"].is_null());
}

TEST(PacketsFields, OfFramesWithoutAPduSayWhy) {
    Bytes const noPdu = ethernetFrame(Ethernet(), 0x88B8, Bytes(40));
    Bytes const capture = CaptureBuilder().add(1, 0, noPdu).add(2, 0, oneGoose()).bytes();
    auto const rows = packetsOf(capture);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["unreadable"], "noPdu");
    EXPECT_EQ(packetsOf(capture, {"--source", "02:00:00:00:00:01"}).size(), 1U);
    EXPECT_EQ(packetsOf(capture, {"--source", "00:30:a7:00:00:01"}).size(), 1U);
    EXPECT_EQ(packetsOf(capture, {"--appid", "0"}).size(), 1U);
    EXPECT_EQ(packetsOf(capture, {"--gocbref", "*"}).size(), 1U);
    EXPECT_EQ(packetsOf(capture, {"--from", "2"}).size(), 1U);
    TempFile const file(capture);
    EXPECT_EQ(rowsOf({"show", file.path() + "@" + rows[0]["framePosition"].dump()}).size(), 1U);
    EXPECT_EQ(rowsOf({"show", file.path()}).size(), 2U);
}

TEST(PacketsFields, AreNotMisledByWhatIsAfterThePdu) {
    // A sequence number and a size that look like an element, and so do the octets of a signature.
    for (std::uint16_t const sequence :
         std::initializer_list<std::uint16_t>{0x6100, 0x6104, 0xA200, 0xA204, 0xA280, 0x8004}) {
        GooseMessage signedMessage;
        signedMessage.trailing = {0x61, 0x04, 0x80, 0x02, 'x', 'y', 0xA2, 0x03, 0x30, 0x01, 0x00};
        auto const rows =
            packetsOf(CaptureBuilder()
                          .add(1, 0, svFrameCalled("MU01", svEthernet().withPrp('A', sequence)))
                          .add(2, 0, gooseFrame(Ethernet().withPrp('B', sequence), signedMessage))
                          .bytes());
        ASSERT_EQ(rows.size(), 2U) << sequence;
        EXPECT_EQ(rows[0]["svID"], "MU01") << sequence;
        EXPECT_EQ(rows[1]["gocbRef"], "RELAY1LD0/LLN0$GO$gcb1") << sequence;
        EXPECT_EQ(fieldOf(rows, "redundancySequence"), (std::vector<Json>{sequence, sequence}));
    }
}

/// Packets of a next-generation capture: one with a time, one without, one with a time before.
Bytes withoutATime() {
    PcapngMaker maker;
    maker.section().interface(1, 0, maker.timeOptions(9));
    maker.packet({.time = 2'000'000'000, .frame = oneSv("MU2")});
    maker.simplePacket(oneSv("MU?"));
    maker.packet({.time = 1'000'000'000, .frame = oneSv("MU1")});
    return maker.bytes();
}

TEST(PacketsOfNextGenerationCaptures, WithoutATimeComeLastAndAreInNoWindow) {
    auto const rows = packetsOf(withoutATime());
    EXPECT_EQ(fieldOf(rows, "svID"), (std::vector<Json>{"MU1", "MU2", "MU?"}));
    EXPECT_TRUE(rows[2]["time"].is_null());
    EXPECT_TRUE(rows[2]["timeNs"].is_null());
    EXPECT_EQ(packetsOf(withoutATime(), {"--from", "0"}).size(), 2U);
}

TEST(PacketsOfNextGenerationCaptures, AreShownByTheirPlaces) {
    TempFile const file(withoutATime());
    for (Json const& row : rowsOf({"packets", file.path()})) {
        for (auto const* field : {"position", "framePosition", "recordPosition"}) {
            auto const shown = rowsOf({"show", file.path() + "@" + row[field].dump()});
            ASSERT_EQ(shown.size(), 1U) << field;
            EXPECT_EQ(shown[0]["sv"]["asdus"][0]["svID"], row["svID"]);
            EXPECT_EQ(shown[0]["recordPosition"], row["recordPosition"]);
        }
    }
}

TEST(WrittenCapture, HasTheSelectedFramesOnceWithNanoseconds) {
    SvMessage message;
    message.asdus.resize(2);
    message.asdus[1].svID = "MU02";
    TempDir const folder;
    auto const from =
        folder.write("from.pcap", CaptureBuilder(CaptureVariant::nanoBig)
                                      .add(1, 123456789, svFrame(svEthernet(), message))
                                      .add(2, 7, oneGoose())
                                      .addSnapped(3, 8, 60, oneGoose())
                                      .bytes());
    auto const written = folder.file("to.pcap");
    auto const result = runCompanion({"packets", from, "-w", written});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "");
    auto const records = readCapture(readFile(written));
    auto const before = readCapture(readFile(from));
    ASSERT_EQ(records.size(), 3U);
    for (std::size_t i = 0; i < records.size(); ++i) {
        EXPECT_EQ(records[i].frame, before[i].frame);
        EXPECT_EQ(records[i].seconds, before[i].seconds);
        EXPECT_EQ(records[i].nanoseconds, before[i].nanoseconds);
        EXPECT_EQ(records[i].origLen, before[i].origLen);
    }
    EXPECT_EQ(runCompanion({"packets", from, "--protocol", "sv", "-w", written}).status, 0);
    EXPECT_EQ(readCapture(readFile(written)).size(), 1U);
}

TEST(WrittenCapture, OfNothingIsACaptureWithoutRecords) {
    TempDir const folder;
    auto const from = folder.write("from.pcap", smallCapture());
    auto const written = folder.file("to.pcap");
    EXPECT_EQ(runCompanion({"packets", from, "--svid", "none", "-w", written}).status, 0);
    EXPECT_EQ(rowsOf({"captures", written}).at(0)["records"], 0);
}

TEST(WrittenCapture, HasOneLinkTypeAlone) {
    PcapngMaker maker;
    maker.section().interface(1).interface(113);
    maker.packet({.frame = oneGoose()});
    Bytes cooked(14);
    cooked.insert(cooked.end(), {0x88, 0xB8});
    Bytes const frame = oneGoose("gcb2");
    cooked.insert(cooked.end(), frame.begin() + 14, frame.end());
    maker.packet({.interface = 1, .time = 1, .frame = cooked});
    TempDir const folder;
    auto const from = folder.write("from.pcapng", maker.bytes());
    auto const written = folder.file("to.pcap");
    EXPECT_EQ(rowsOf({"packets", from}).size(), 2U);
    auto const result = runCompanion({"packets", from, "-w", written});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              complaint(written + ": 1 frame left out, not of link type 1 as the first"));
    EXPECT_EQ(readCapture(readFile(written)).size(), 1U);
}

TEST(WrittenCapture, SaysWhichFramesHaveNoTime) {
    PcapngMaker maker;
    maker.section().interface().packet({.time = 20, .frame = oneSv()});
    maker.simplePacket(oneSv()).simplePacket(oneSv());
    TempDir const folder;
    auto const from = folder.write("from.pcapng", maker.bytes());
    auto const written = folder.file("to.pcap");
    auto const result = runCompanion({"packets", from, "-w", written});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err,
              complaint(written + ": 2 frames without a time, written as of 1970-01-01"));
    EXPECT_EQ(readCapture(readFile(written)).size(), 3U);
}

TEST(WrittenCapture, TakesThePlaceOfRows) {
    TempFile const file(smallCapture());
    expectUsageError({"packets", file.path(), "-w", "x.pcap", "-o", "y"});
    expectUsageError({"packets", file.path(), "-w", "x.pcap", "-f", "csv"});
    expectUsageError({"packets", file.path(), "-w", "x.pcap", "--columns", "time"});
    expectUsageError({"packets", file.path(), "-w", file.path()});
}

TEST(Jobs, ChangeNoOutput) {
    TempDir const folder;
    for (int i = 0; i < 5; ++i) {
        folder.write(std::to_string(i) + ".pcap",
                     CaptureBuilder()
                         .add(static_cast<std::uint32_t>(9 - i), 0, oneSv("MU" + std::to_string(i)))
                         .add(5, 0, oneGoose())
                         .bytes());
    }
    for (std::string const command : {"streams", "packets", "show", "captures"}) {
        auto const one = runCompanion({command, folder.path(), "--jobs", "1"});
        EXPECT_EQ(one.status, 0);
        for (auto const* jobs : {"2", "3", "64"}) {
            EXPECT_EQ(runCompanion({command, folder.path(), "--jobs", jobs}).out, one.out);
        }
        EXPECT_EQ(runCompanion({command, folder.path()}).out, one.out);
    }
}

}  // namespace
}  // namespace TalTest::PacketsFieldsTest
