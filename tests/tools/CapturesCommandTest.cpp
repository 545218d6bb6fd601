// `captures`: what each file holds, in both formats.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/OtherTraffic.hpp"
#include "support/PcapngMaker.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalTest::CapturesCommandTest {
namespace {

constexpr std::uint8_t kBinary = 0x80;
constexpr std::uint64_t kSecond = 1'000'000'000;

/// The row of one capture, which must be whole.
Json rowOf(Bytes const& capture) {
    TempFile const file(capture);
    auto const rows = rowsOf({"captures", file.path()});
    EXPECT_EQ(rows.size(), 1U);
    EXPECT_TRUE(rows.at(0)["damage"].is_null()) << rows.at(0)["damage"];
    return rows.at(0);
}

/// A next-generation capture with an interface of each unit of time, and no packets.
Bytes withUnits(std::vector<std::uint8_t> const& units) {
    PcapngMaker maker;
    maker.section();
    for (std::uint8_t const unit : units) {
        maker.interface(1, 0, maker.timeOptions(unit));
    }
    return maker.bytes();
}

Json precisionOf(std::vector<std::uint8_t> const& units) {
    TempFile const file(withUnits(units));
    return jsonOf(runCompanion({"captures", "-qf", "json", file.path()}).out).at(0)["precision"];
}

/// An IPv4 packet over a transport that has its ports, in a frame.
Bytes ipv4Between(std::uint8_t protocol, std::uint16_t port, Bytes const& payload) {
    Bytes const addresses = {10, 0, 0, 1, 10, 0, 0, 2};
    Bytes const header = {0x45, 0, 0, 0, 0, 0, 0, 0, 64, protocol, 0, 0};
    return ethernetFrame(
        Ethernet(), 0x0800,
        concat({header, addresses, bigEndian(port, 2), bigEndian(port, 2), Bytes(4), payload}));
}

/// The same over IPv6.
Bytes ipv6Between(std::uint8_t protocol, std::uint16_t port, Bytes const& payload) {
    return ethernetFrame(Ethernet(), 0x86DD,
                         concat({{0x60, 0, 0, 0, 0, 0, protocol, 64},
                                 Bytes(32),
                                 bigEndian(port, 2),
                                 bigEndian(port, 2),
                                 Bytes(4),
                                 payload}));
}

constexpr std::uint8_t kTcp = 6;
constexpr std::uint8_t kUdp = 17;
constexpr std::uint16_t kSessions = 102;
Bytes const kGooseSession = {0x01, 0x40, 0xA1};
Bytes const kSvSession = {0xA2};

TEST(Captures, AreOneRowForEachFileInTheOrderGiven) {
    TempDir const folder;
    auto const first = folder.write("1.pcap", smallCapture());
    auto const second = folder.write("2.pcap", CaptureBuilder().add(5, 7000, oneSv()).bytes());
    auto const rows = rowsOf({"captures", second, first, second});
    EXPECT_EQ(fieldOf(rows, "file"), (std::vector<Json>{second, first}));
    EXPECT_EQ(fieldOf(rows, "records"), (std::vector<Json>{1, 5}));
    EXPECT_EQ(fieldOf(rows, "octets"),
              (std::vector<Json>{std::filesystem::file_size(second), smallCapture().size()}));
    EXPECT_EQ(fieldOf(rows, "goose"), (std::vector<Json>{0, 2}));
    EXPECT_EQ(fieldOf(rows, "sv"), (std::vector<Json>{1, 3}));
    EXPECT_EQ(fieldOf(rows, "firstTimeNs"),
              (std::vector<Json>{5'000'007'000, 1'700'000'000'000'000'001}));
    EXPECT_EQ(fieldOf(rows, "lastTimeNs"),
              (std::vector<Json>{5'000'007'000, 1'700'000'002'123'456'789}));
}

TEST(Captures, OfFoldersAreThoseInThem) {
    TempDir const folder;
    std::filesystem::create_directories(folder.file("b/c"));
    auto const deep = folder.write("b/c/1.pcapng", withUnits({9}));
    auto const first = folder.write("a.pcap", smallCapture());
    folder.write("notes.txt", text("no capture"));
    auto const rows = rowsOf({"captures", folder.path()});
    EXPECT_EQ(fieldOf(rows, "file"), (std::vector<Json>{first, deep}));
}

TEST(Captures, HaveTheirFormatAndPrecision) {
    for (CaptureVariant const variant : captureVariants) {
        auto const row = rowOf(CaptureBuilder(variant).add(1, 0, oneSv()).bytes());
        EXPECT_EQ(row["format"], "pcap");
        EXPECT_EQ(row["precision"], isNanosecond(variant) ? "ns" : "us");
    }
    EXPECT_EQ(rowOf(withUnits({6}))["format"], "pcapng");
    EXPECT_EQ(precisionOf({0}), "s");
    EXPECT_EQ(precisionOf({3}), "ms");
    EXPECT_EQ(precisionOf({6}), "us");
    EXPECT_EQ(precisionOf({7}), "1e-7s");
    EXPECT_EQ(precisionOf({9}), "ns");
    EXPECT_EQ(precisionOf({12}), "ps");
    EXPECT_EQ(precisionOf({19}), "1e-19s");
    EXPECT_EQ(precisionOf({kBinary | 20}), "2^-20s");
    EXPECT_EQ(precisionOf({kBinary}), "s");
}

TEST(Captures, OfSeveralInterfacesHaveTheFinestPrecision) {
    EXPECT_EQ(precisionOf({3, 9, 6}), "ns");
    EXPECT_EQ(precisionOf({9, 12}), "ps");
    // 2^-20 s is a bit less than a microsecond, 2^-19 s more.
    EXPECT_EQ(precisionOf({6, kBinary | 20}), "2^-20s");
    EXPECT_EQ(precisionOf({6, kBinary | 19}), "us");
    // Units that no time can be told in.
    EXPECT_EQ(precisionOf({20, 6, kBinary | 64}), "us");
    EXPECT_TRUE(precisionOf({20}).is_null());
    EXPECT_TRUE(precisionOf({}).is_null());
}

TEST(Captures, HaveTheNumbersOfTheirLinkTypes) {
    EXPECT_EQ(rowOf(captureHeader(CaptureVariant::microBig, 113))["linkTypes"], Json::array({113}));
    PcapngMaker maker;
    maker.section().interface(276).interface(1).interface(105).interface(1);
    maker.packet({.interface = 1, .frame = oneSv()}).packet({.interface = 3, .frame = oneGoose()});
    auto const row = rowOf(maker.bytes());
    EXPECT_EQ(row["linkTypes"], Json::array({1, 105, 276}));
    EXPECT_EQ(row["records"], 2);
    EXPECT_EQ(row["goose"], 1);
    EXPECT_EQ(row["sv"], 1);
    EXPECT_EQ(rowOf(PcapngMaker().section().bytes())["linkTypes"], Json::array());
}

TEST(Captures, OfOtherLinkTypesAreNotedWithoutAComplaint) {
    TempDir const folder;
    auto const wireless =
        folder.write("wireless.pcap",
                     CaptureBuilder(CaptureVariant::microLittle, 105).add(1, 0, oneSv()).bytes());
    auto const result = runCompanion({"captures", "-f", "json", wireless});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, complaint(wireless + ": 1 frame of link type 105 is not looked into"));
    EXPECT_EQ(jsonOf(result.out).at(0)["sv"], 0);
    EXPECT_EQ(jsonOf(result.out).at(0)["records"], 1);
    EXPECT_EQ(runCompanion({"captures", "-q", wireless}).err, "");
}

TEST(Captures, HaveOtherFramesByNameTheMostFrequentFirst) {
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 12; ++i) {
        capture.add(i, 0, ptpSync(i)).add(i, 0, i < 3 ? arpRequest(i) : oneSv());
    }
    capture.add(20, 0, spanningTreeHello()).add(20, 0, tcpSegment(1)).add(21, 0, udpDatagram(1));
    for (unsigned const etherType :
         {0x88CCU, 0x88FBU, 0x88B9U, 0x8809U, 0x888EU, 0x88E3U, 0x88E5U, 0x1234U, 0xABCDU}) {
        capture.add(30, 0,
                    ethernetFrame(Ethernet().withVlan(3), static_cast<std::uint16_t>(etherType),
                                  Bytes(46)));
    }
    auto const other = rowOf(capture.bytes())["other"];
    EXPECT_EQ(other, (Json{{"PTP", 12},
                           {"ARP", 3},
                           {"IPv4", 2},
                           {"IEEE 802.3", 1},
                           {"LLDP", 1},
                           {"PRP supervision", 1},
                           {"GSE management", 1},
                           {"slow protocols", 1},
                           {"EAPOL", 1},
                           {"MRP", 1},
                           {"MACsec", 1},
                           {"0x1234", 1},
                           {"0xabcd", 1}}));
    TempFile const file(capture.bytes());
    auto const csv = runCompanion({"captures", "-f", "csv", "--columns", "other", file.path()}).out;
    EXPECT_TRUE(csv.starts_with("other\n\"{\"\"PTP\"\":12,\"\"ARP\"\":3,\"\"IPv4\"\":2,")) << csv;
    auto const table = runCompanion({"captures", file.path()}).out;
    EXPECT_NE(table.find("  PTP 12, ARP 3, IPv4 2, "), std::string::npos) << table;
}

TEST(Captures, CountAnIpFrameOnce) {
    auto const row = rowOf(CaptureBuilder()
                               .add(1, 0, ipv4Between(kUdp, kSessions, kGooseSession))
                               .add(1, 0, ipv6Between(kUdp, kSessions, kGooseSession))
                               .add(1, 0, ipv6Between(kUdp, kSessions, kSvSession))
                               .add(1, 0, ipv4Between(kTcp, kSessions, {}))
                               .add(1, 0, ipv4Between(kTcp, kSessions, {}))
                               .add(1, 0, ipv4Between(kTcp, 103, {}))
                               .bytes());
    EXPECT_EQ(row["other"], (Json{{"R-GOOSE", 2}, {"R-SV", 1}, {"MMS", 2}, {"IPv4", 1}}));
    auto const overIpv6 = rowOf(CaptureBuilder()
                                    .add(1, 0, ipv6Between(kTcp, kSessions, {}))
                                    .add(1, 0, ipv6Between(kUdp, kSessions, {}))
                                    .bytes());
    EXPECT_EQ(overIpv6["other"], (Json{{"MMS", 1}, {"IPv6", 1}}));
    EXPECT_EQ(rowOf(smallCapture())["other"], Json::object());
}

TEST(Captures, HaveTheDropsThatTheFileTells) {
    EXPECT_TRUE(rowOf(smallCapture())["dropped"].is_null());
    constexpr std::uint16_t packetDropped = 4;
    constexpr std::uint16_t interfaceDropped = 5;
    constexpr std::uint16_t systemDropped = 7;
    PcapngMaker maker;
    maker.section().interface().interface();
    maker.packet({.frame = oneSv()});
    EXPECT_TRUE(rowOf(maker.bytes())["dropped"].is_null());
    auto const drops = [&](std::uint16_t code, std::uint64_t count) {
        return concat({maker.numberOption(code, count), PcapngMaker::endOfOptions()});
    };
    maker.statistics(0, drops(interfaceDropped, 0));
    EXPECT_EQ(rowOf(maker.bytes())["dropped"], 0);
    maker.packet({.frame = oneSv(), .options = drops(packetDropped, 4)})
        .packet({.interface = 1, .frame = oneSv(), .options = drops(packetDropped, 1)});
    EXPECT_EQ(rowOf(maker.bytes())["dropped"], 5);
    maker.statistics(0, drops(interfaceDropped, 2)).statistics(1, drops(systemDropped, 1));
    EXPECT_EQ(rowOf(maker.bytes())["dropped"], 5);
    maker.statistics(1, drops(systemDropped, 40));
    EXPECT_EQ(rowOf(maker.bytes())["dropped"], 42);
}

TEST(Captures, CountTrailersThatAreNeitherPaddingNorOfPrp) {
    GooseMessage signedMessage;
    signedMessage.trailing = Bytes(8, 0xEE);
    auto const signedFrame = gooseFrame(Ethernet(), signedMessage);
    TempFile const some(CaptureBuilder()
                            .add(1, 0, signedFrame)
                            .add(2, 0, oneGoose())
                            .add(3, 0, signedFrame)
                            .bytes());
    EXPECT_EQ(rowsOf({"captures", some.path()}).at(0)["unknownTrailers"], 2);
    EXPECT_EQ(rowOf(smallCapture())["unknownTrailers"], 0);
    auto const trailers = [](std::string const& path) {
        return tableRows(runCompanion({"captures", "--columns", "unknownTrailers", path}).out);
    };
    EXPECT_EQ(trailers(some.path()).at(0).back(), "2");
    TempFile const none(smallCapture());
    EXPECT_EQ(trailers(none.path()).at(0).back(), "-");
}

TEST(Captures, HaveTheEarliestAndLatestTimeOfAllRecords) {
    PcapngMaker maker;
    maker.section().interface(1, 0, maker.timeOptions(9));
    maker.packet({.time = 30 * kSecond, .frame = ptpSync(0)});
    maker.packet({.time = 10 * kSecond + 1, .frame = oneSv()});
    maker.packet({.time = 20 * kSecond, .frame = oneSv()}).simplePacket(oneSv());
    auto const row = rowOf(maker.bytes());
    EXPECT_EQ(row["firstTimeNs"], 10 * kSecond + 1);
    EXPECT_EQ(row["lastTimeNs"], 30 * kSecond);
    TempFile const file(maker.bytes());
    auto const table = runCompanion({"captures", file.path()}).out;
    EXPECT_NE(table.find("  1970-01-01T00:00:10.000000001Z  1970-01-01T00:00:30.000000000Z  "),
              std::string::npos)
        << table;
    auto const timeless = rowOf(PcapngMaker().section().interface().simplePacket(oneSv()).bytes());
    EXPECT_TRUE(timeless["firstTimeNs"].is_null());
    EXPECT_TRUE(timeless["lastTimeNs"].is_null());
    EXPECT_EQ(timeless["sv"], 1);
}

TEST(Captures, ThatAreCutAreComplainedOfWithARow) {
    TempDir const folder;
    Bytes const whole = smallCapture();
    auto const cut = folder.write("cut.pcap", prefix(whole, whole.size() - 1));
    auto const good = folder.write("good.pcap", whole);
    auto const result = runCompanion({"captures", "-f", "json", cut, good});
    EXPECT_EQ(result.status, 2);
    auto const rows = jsonOf(result.out);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["records"], 4);
    std::string const fault = rows[0]["damage"];
    EXPECT_TRUE(fault.starts_with("the file ends inside the record at ")) << fault;
    EXPECT_EQ(result.err, complaint(cut + ": " + fault));
    EXPECT_TRUE(rows[1]["damage"].is_null());
}

/// A next-generation capture with so many blocks whose two lengths differ, then a packet.
Bytes withDamagedBlocks(std::size_t count) {
    PcapngMaker maker;
    maker.section().interface();
    for (std::size_t i = 0; i < count; ++i) {
        maker.raw(concat({maker.number(0x0BAD, 4), maker.number(12, 4), maker.number(13, 4)}));
    }
    return maker.packet({.frame = oneSv()}).bytes();
}

TEST(Captures, WithManyDamagedPlacesNameTheFirstAndCountTheOthers) {
    for (std::size_t const count : {1U, 2U, 5U, 6U, 1000U}) {
        SCOPED_TRACE(count);
        TempFile const file(withDamagedBlocks(count));
        auto const result = runCompanion({"captures", "-f", "json", file.path()});
        EXPECT_EQ(result.status, 2);
        auto const row = jsonOf(result.out).at(0);
        EXPECT_EQ(row["sv"], 1);
        std::string const more =
            count == 1   ? ""
            : count == 2 ? ", and 1 more damaged place"
                         : ", and " + std::to_string(count - 1) + " more damaged places";
        EXPECT_EQ(row["damage"], "a block with two different lengths at 48" + more);
        auto const lines = linesOf(result.err);
        ASSERT_EQ(lines.size(), std::min<std::size_t>(count, 6));
        EXPECT_EQ(lines[0],
                  "tal-iec61850: " + file.path() + ": a block with two different lengths at 48");
        if (count == 1000) {
            EXPECT_EQ(lines[4], "tal-iec61850: " + file.path() +
                                    ": a block with two different lengths at 96");
            EXPECT_EQ(lines[5], "tal-iec61850: " + file.path() + ": and 995 more damaged places");
        }
    }
}

TEST(Captures, ThatCannotBeReadAreComplainedOfWithoutARow) {
    TempDir const folder;
    auto const notes = folder.write("notes.txt", text("no capture"));
    auto const good = folder.write("good.pcap", smallCapture());
    auto const missing = folder.file("missing.pcap");
    auto const result = runCompanion({"captures", "-f", "json", notes, missing, good});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(notes + ": not a capture file") +
                              complaint(missing + ": No such file or directory"));
    EXPECT_EQ(jsonOf(result.out), rowsOf({"captures", good}));
    auto const nothing = runCompanion({"captures", missing});
    EXPECT_EQ(nothing.status, 2);
    EXPECT_EQ(summaryOf(nothing.out), "0 records (0 GOOSE, 0 SV, 0 other) in 0 files");
}

TEST(Captures, InATableHaveASummary) {
    TempDir const folder;
    auto const first = folder.write("1.pcap", smallCapture());
    auto const second =
        folder.write("2.pcap", CaptureBuilder().add(1, 0, ptpSync(0)).add(2, 0, oneSv()).bytes());
    auto const out = runCompanion({"captures", first, second}).out;
    EXPECT_EQ(summaryOf(out),
              "7 records (2 GOOSE, 4 SV, 1 other) in 2 files, 1970-01-01T00:00:01.000000000Z to "
              "2023-11-14T22:13:22.123456789Z");
    auto const rows = tableRows(out);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[1], (std::vector<std::string>{second, "pcap", "us", "Ethernet", "2",
                                                 std::to_string(std::filesystem::file_size(second)),
                                                 "1970-01-01T00:00:01.000000000Z",
                                                 "1970-01-01T00:00:02.000000000Z", "0", "1",
                                                 "PTP 1", "-", "-", "-"}));
    EXPECT_EQ(summaryOf(runCompanion({"captures", "-q", first}).out), "");
}

TEST(Captures, InATableHaveLinkTypesByName) {
    PcapngMaker maker;
    maker.section().interface(276).interface(1).interface(105).interface(113);
    TempFile const file(maker.bytes());
    EXPECT_NE(runCompanion({"captures", file.path()})
                  .out.find("  Ethernet, 105, Linux cooked, Linux cooked 2  "),
              std::string::npos);
}

/// The headings of a table on a terminal, whose lines all fit it.
Arguments headingsAt(int columns, std::string const& file) {
    auto const result = runCompanion({"captures", file},
                                     {.output = StandardOutputIs::terminal,
                                      .outputColumns = columns,
                                      .environment = {{"NO_COLOR", "1"}, {"LC_ALL", "C.UTF-8"}}});
    auto const lines = linesOf(result.out);
    for (auto const& line : lines) {
        EXPECT_LE(TalIec61850Tools::countColumns(line), static_cast<std::size_t>(columns)) << line;
    }
    return commandWords(lines.at(0));
}

TEST(Captures, OnATerminalStartWithWhatMattersMost) {
    TempDir const folder;
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 2000; ++i) {
        capture.add(1'700'000'000 + i, 0, i % 10 == 0 ? oneGoose() : oneSv());
    }
    capture.add(1'700'000'000, 0, ptpSync(0)).add(1'700'000'000, 0, arpRequest(0));
    auto const file =
        folder.write("a-long-name-of-a-recorder-at-the-north-bus.pcap", capture.bytes());
    Arguments expected = {"FILE", "RECORDS", "GOOSE", "SV", "FIRST", "OTHER"};
    EXPECT_EQ(headingsAt(80, file), expected);
    expected.insert(expected.end(), {"LAST", "FORMAT", "PRECISION"});
    EXPECT_EQ(headingsAt(120, file), expected);
    auto const damaged =
        folder.write("damaged.pcap", prefix(capture.bytes(), capture.bytes().size() - 1));
    expected = {"FILE", "RECORDS", "GOOSE", "SV", "FIRST", "OTHER", "LAST", "DAMAGE", "FORMAT"};
    EXPECT_EQ(headingsAt(120, damaged), expected);
}

TEST(Captures, AreTheSameWhateverTheJobs) {
    TempDir const folder;
    for (int i = 0; i < 20; ++i) {
        folder.write(std::to_string(i), i % 3 == 0 ? withUnits({9}) : smallCapture());
    }
    auto const expected = rowsOf({"captures", folder.path()});
    EXPECT_EQ(expected.size(), 20U);
    for (auto const* jobs : {"1", "2", "7", "1000", "18446744073709551615"}) {
        EXPECT_EQ(rowsOf({"captures", "--jobs", jobs, folder.path()}), expected) << jobs;
    }
}

TEST(Captures, TakeAsJobsANumberFromOne) {
    TempFile const file(smallCapture());
    for (auto const* jobs : {"0", "-1", "two", "1x", "", "18446744073709551616"}) {
        expectUsageError({"captures", file.path(), "--jobs", jobs});
    }
    EXPECT_EQ(runCompanion({"captures", file.path(), "--jobs", "0"}).err,
              complaint("captures: --jobs: 0 is not a number from 1"));
    expectUsageError({"captures", file.path(), "--jobs", "1", "--jobs", "2"});
    expectUsageError({"captures", file.path(), "--svid", "MU01"});
    expectUsageError({"captures", file.path(), "--columns", "firstTime"});
    expectUsageError({"captures"});
}

TEST(Captures, OfWholeRecordingsHaveWhatTsharkCounts) {
    for (auto const& path : recorded({"goose-mms-mixed-station-bus.pcap"})) {
        auto const row = rowsOf({"captures", path}).at(0);
        EXPECT_EQ(row["records"], 301);
        EXPECT_EQ(row["goose"], 34);
        EXPECT_EQ(row["other"], (Json{{"IPv4", 253 - 86}, {"MMS", 86}, {"IEEE 802.3", 14}}));
    }
}

}  // namespace
}  // namespace TalTest::CapturesCommandTest
