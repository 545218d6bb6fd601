// What `redundancy` writes of frames over both LANs.

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <string>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::RedundancyCommandTest {
namespace {

constexpr std::uint32_t kLansStart = 1'700'000'000;
constexpr std::uint32_t kLanStep = 1'000'000;

/// Frames of MU01 over LANs, a millisecond apart; LAN B has all but one of them, some microseconds
/// later. Besides, a stream without copies.
/// @param clock  of LAN B, in seconds
Bytes lansCapture(std::string const& lans, std::uint32_t clock = 0) {
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (std::uint16_t number = 0; number < 1000; ++number) {
        std::uint32_t const time = number * kLanStep;
        for (char const lan : lans) {
            bool const isB = lan == 'B';
            if (isB && number == 500) {
                continue;
            }
            capture.add(kLansStart + (isB ? clock : 0), time + (isB ? 5000U + number % 2 : 0U),
                        oneSv("MU01", svEthernet().withVlan(5).withPrp(lan, number)));
        }
        if (number % 100 == 0) {
            capture.add(kLansStart, time + 10'000, oneSv("MU02"));
        }
    }
    return capture.bytes();
}

TEST(Redundancy, IsOneJsonObjectForEachStream) {
    TempFile const file(lansCapture("AB"));
    auto const result = runCompanion({"redundancy", "-f", "json", file.path()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out,
              "{\"protocol\":\"SV\",\"source\":\"02:00:00:00:00:01\",\"destination\":"
              "\"01:0c:cd:04:00:01\",\"vlanId\":5,\"appId\":\"0x4000\",\"svID\":\"MU01\","
              "\"gocbRef\":null,\"redundancy\":\"prp\",\"both\":999,\"onlyA\":1,\"onlyB\":0,"
              "\"more\":0,\"firstA\":999,\"firstB\":0,\"differenceNs\":{\"min\":5000,\"p50\":5001,"
              "\"p99\":5001,\"max\":5001},\"clockOffsetNs\":null,\"missingRunsA\":0,"
              "\"missingRunsB\":1,\"differs\":0,\"wrongLan\":0}\n");
}

TEST(Redundancy, HasFourColumnsOfDifferencesInCsv) {
    TempFile const file(lansCapture("AB"));
    auto const rows = csvRows(runCompanion({"redundancy", "-f", "csv", file.path()}).out);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].at("differenceMinNs"), "5000");
    EXPECT_EQ(rows[0].at("differenceP50Ns"), "5001");
    EXPECT_EQ(rows[0].at("differenceP99Ns"), "5001");
    EXPECT_EQ(rows[0].at("differenceMaxNs"), "5001");
    EXPECT_EQ(rows[0].at("clockOffsetNs"), std::nullopt);
    EXPECT_EQ(rows[0].at("gocbRef"), std::nullopt);
    EXPECT_EQ(rows[0].at("redundancy"), "prp");
}

TEST(Redundancy, TellsTheClockOfASecondFile) {
    TempFile const a(lansCapture("A"));
    TempFile const b(lansCapture("B", 7));
    for (auto const& files : {Arguments{a.path(), b.path()}, Arguments{b.path(), a.path()}}) {
        auto const rows = rowsOf(joined({"redundancy"}, files));
        ASSERT_EQ(rows.size(), 1U);
        EXPECT_EQ(rows[0]["both"], 999);
        std::int64_t const offset = rows[0]["clockOffsetNs"];
        EXPECT_GE(offset, 7'000'005'000);
        EXPECT_LE(offset, 7'000'005'001);
        EXPECT_EQ(rows[0]["differenceNs"]["min"], 7'000'005'000);
    }
}

TEST(Redundancy, PairsAllAndCountsTheWindow) {
    TempFile const file(lansCapture("AB"));
    auto const rows =
        rowsOf({"redundancy", "--from", "+0.4s", "--to", "+0.5s", "--svid", "MU01", file.path()});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["both"], 100);
    EXPECT_EQ(rows[0]["onlyA"], 1);
    EXPECT_EQ(rows[0]["missingRunsB"], 1);
}

TEST(Redundancy, IsATableThatFits) {
    TempFile const file(lansCapture("AB"));
    auto const result = runCompanion({"redundancy", file.path()});
    EXPECT_EQ(summaryOf(result.out), "1000 frames of 1 stream in 1 file");
    auto const rows = tableRows(result.out);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0][1], "MU01");
    EXPECT_EQ(linesOf(result.out)[0].find("KIND") != std::string::npos, true);
}

TEST(Redundancy, SaysWhereThereIsNone) {
    auto const saidBy = [](Arguments const& arguments) {
        auto const result = runCompanion(joined({"redundancy", "-f", "json"}, arguments));
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.out, "");
        return result.err;
    };
    TempFile const plain(smallCapture());
    EXPECT_EQ(saidBy({plain.path()}),
              complaint("no packet of 2 streams has an HSR tag or a PRP trailer"));
    TempFile const file(lansCapture("AB"));
    EXPECT_EQ(saidBy({"--svid", "MU02", file.path()}),
              complaint("no packet of 1 stream has an HSR tag or a PRP trailer"));
    EXPECT_EQ(saidBy({"--svid", "MU03", file.path()}),
              complaint("no stream matches --svid MU03; there are MU01, MU02"));
    EXPECT_EQ(saidBy({"--from", "+5s", "--svid", "MU01", file.path()}),
              complaint("no packet in the window; these streams have packets from "
                        "2023-11-14T22:13:20.000000000Z to 2023-11-14T22:13:20.999000000Z"));
    EXPECT_EQ(saidBy({"-q", plain.path()}), "");
}

TEST(Redundancy, ChoosesColumnsAndRefusesOthers) {
    TempFile const file(lansCapture("AB"));
    auto const result = runCompanion(
        {"redundancy", "-f", "csv", "--columns", "svID,both,differenceMaxNs", file.path()});
    EXPECT_EQ(result.out, "svID,both,differenceMaxNs\nMU01,999,5001\n");
    expectUsageError({"redundancy", "--columns", "copies", file.path()});
    expectUsageError({"redundancy", "--lan", "A", file.path()});
    expectUsageError({"redundancy", "--from", "+2s", "--to", "+1s", file.path()});
}

TEST(Redundancy, TellsOfFilesThatCannotBeRead) {
    TempFile const file(lansCapture("AB"));
    auto const result = runCompanion({"redundancy", "-f", "json", file.path(), "/no/such/file"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(jsonOf(result.out).size(), 1U);
    EXPECT_NE(result.err.find("/no/such/file"), std::string::npos);
}

}  // namespace
}  // namespace TalTest::RedundancyCommandTest
