// What is said where nothing matches.

#include <gtest/gtest.h>

#include <array>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::NothingFoundTest {
namespace {

/// What a command says on standard error, which ends well and writes no row.
std::string saidBy(Arguments const& command) {
    auto const result = runCompanion(joined(command, {"-f", "json"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(runCompanion(joined(command, {"-f", "json", "-q"})).err, "");
    return result.err;
}

Bytes manyNames() {
    CaptureBuilder capture;
    for (auto const* name : {"MU01", "MU02", "BAY1", "BAY2", "BAY3", "BAY4", "MU12"}) {
        capture.add(1, 0, oneSv(name));
    }
    return capture.bytes();
}

TEST(NothingFound, NamesTheNearestValues) {
    TempFile const file(manyNames());
    for (std::string const command : {"streams", "packets", "show"}) {
        EXPECT_EQ(saidBy({command, file.path(), "--svid", "MU22"}),
                  complaint("no stream matches --svid MU22; there are MU02, MU12, MU01, BAY2, BAY1 "
                            "and 2 more"));
        EXPECT_EQ(saidBy({command, file.path(), "--appid", "4001"}),
                  complaint("no stream matches --appid 0x4001; there is 0x4000"));
        EXPECT_EQ(saidBy({command, file.path(), "--gocbref", "Q*"}),
                  complaint("no stream has what --gocbref Q* asks for"));
    }
}

TEST(NothingFound, NamesTheValuesOfEachCriterion) {
    Ethernet const link = Ethernet().from("02:00:00:00:00:99").to("01:0c:cd:01:00:98");
    GooseMessage message = gooseCalled("gcbTrip");
    message.appId = 0x3FFF;
    message.reserved1 = 0x0001;
    message.datSet = "dsTrip";
    message.goID = "Trip";
    message.confRev = 77;
    TempFile const file(CaptureBuilder()
                            .add(1, 0, gooseFrame(link.withHsr('A'), message))
                            .add(2, 0, gooseFrame(link.withVlan(5).withPrp('B'), message))
                            .bytes());
    std::vector<std::array<std::string, 3>> const cases = {
        {"--source", "02:00:00:00:00:01", "02:00:00:00:00:99"},
        {"--destination", "01:0c:cd:01:00:01", "01:0c:cd:01:00:98"},
        {"--vlan", "6", "5"},
        {"--appid", "0x0001", "0x3FFF"},
        {"--hsr", "B", "A"},
        {"--prp", "A", "B"},
        {"--gocbref", "gcbOther", "gcbTrip"},
        {"--datset", "dsOther", "dsTrip"},
        {"--goid", "Other", "Trip"},
        {"--confrev", "78", "77"}};
    for (auto const& [option, wanted, value] : cases) {
        EXPECT_EQ(saidBy({"streams", file.path(), option, wanted}),
                  complaint("no stream matches " + option + " " + wanted + "; there is " + value));
    }
}

TEST(NothingFound, BlamesNoOptionThatWasNotTyped) {
    TempFile const file(CaptureBuilder().add(1, 0, gooseFrameCalled("gcb1")).bytes());
    EXPECT_EQ(saidBy({"samples", file.path()}), complaint("no stream carries SV; there is GOOSE"));
    EXPECT_EQ(saidBy({"streams", "--protocol", "sv", file.path()}),
              complaint("no stream carries SV; there is GOOSE"));
}

TEST(NothingFound, OfCriteriaThatAreMetApartIsSaid) {
    TempFile const file(CaptureBuilder()
                            .add(1, 0, svFrameCalled("A", svEthernet().withVlan(1)))
                            .add(1, 0, svFrameCalled("B", svEthernet().withVlan(2)))
                            .bytes());
    EXPECT_EQ(saidBy({"streams", file.path(), "--svid", "A", "--vlan", "2"}),
              complaint("no stream meets all criteria at once; there are 2 without them"));
}

TEST(NothingFound, OfCapturesWithoutStreamsIsSaid) {
    TempFile const file(CaptureBuilder().add(1, 0, Bytes(60)).bytes());
    EXPECT_EQ(
        saidBy({"streams", file.path()}),
        complaint("no GOOSE or SV streams in the captures: 1 frame; tal-iec61850 captures tells "
                  "what they are"));
}

TEST(NothingFound, OfAWindowNamesTheSpanOfThePackets) {
    TempFile const file(smallCapture());
    EXPECT_EQ(saidBy({"packets", file.path(), "--from", "2025-01-01"}),
              complaint("no packet in the window; these streams have packets from "
                        "2023-11-14T22:13:20.000000001Z to 2023-11-14T22:13:22.123456789Z"));
}

TEST(NothingFound, IsNotSaidWhereNothingWasWanted) {
    TempFile const file(smallCapture());
    EXPECT_EQ(saidBy({"packets", file.path(), "--limit", "0"}), "");
}

TEST(NothingFound, RepeatsNoComplaintOfADamagedCapture) {
    Bytes const whole = smallCapture();
    TempFile const file(prefix(whole, whole.size() - 1));
    auto const result = runCompanion({"streams", file.path(), "--svid", "none"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(linesOf(result.err).size(), 2U) << result.err;
}

TEST(NothingFound, EscapesNames) {
    TempFile const file(CaptureBuilder().add(1, 0, oneSv("MU01")).bytes());
    EXPECT_EQ(saidBy({"streams", file.path(), "--svid", "\x1b[2J"}),
              complaint(R"(no stream matches --svid \x1b[2J; there is MU01)"));
}

}  // namespace
}  // namespace TalTest::NothingFoundTest
