// Which streams each option lets through, and which packets are counted then.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"

namespace TalTest::StreamsFiltersTest {
namespace {

using Names = std::set<std::string>;

Names namesIn(std::vector<Json> const& rows) {
    Names names;
    for (Json const& row : rows) {
        names.insert(row["svID"].is_null() ? row["gocbRef"] : row["svID"]);
    }
    return names;
}

/// The streams of memberTraffic() that options let through.
Names admitted(Arguments const& options) {
    TempFile const capture(memberTraffic());
    return namesIn(rowsOf(joined({"streams", capture.path()}, options)));
}

/// All of them but those of the names.
Names allBut(Names const& left, std::string const& prefix = "") {
    Names names;
    for (auto const& name : admitted({})) {
        if (name.starts_with(prefix) && !left.contains(name)) {
            names.insert(name);
        }
    }
    return names;
}

TEST(StreamsFilter, OfTrafficWithoutOptionsLetsEverythingThrough) {
    EXPECT_EQ(admitted({}).size(), 29U);
}

TEST(StreamsFilter, TakesAProtocolInAnyCase) {
    EXPECT_EQ(admitted({"--protocol", "goose"}), allBut({}, "gcb"));
    EXPECT_EQ(admitted({"--protocol", "sv"}), allBut({}, "MU"));
    EXPECT_EQ(admitted({"--protocol", "GOOSE"}), allBut({}, "gcb"));
    EXPECT_EQ(admitted({"--protocol=Sv"}), allBut({}, "MU"));
}

TEST(StreamsFilter, TakesAddressesInEveryUsualWriting) {
    Names const found = {"gcbSource", "MUsource"};
    EXPECT_EQ(admitted({"--source", "02:00:00:00:00:99"}), found);
    EXPECT_EQ(admitted({"--source", "02-00-00-00-00-99"}), found);
    EXPECT_EQ(admitted({"--destination", "01:0C:CD:01:00:99"}), Names{"gcbDestination"});
    EXPECT_EQ(admitted({"--destination", "01:0c:cd:04:00:99"}), Names{"MUdestination"});
}

TEST(StreamsFilter, TellsAVlanFromAnotherAndFromNone) {
    EXPECT_EQ(admitted({"--vlan", "5"}), (Names{"gcbVlan5", "MUvlan5"}));
    EXPECT_EQ(admitted({"--vlan", "0x5"}), (Names{"gcbVlan5", "MUvlan5"}));
    EXPECT_EQ(admitted({"--vlan", "0"}), (Names{"gcbVlan0", "MUvlan0"}));
    EXPECT_EQ(admitted({"--vlan", "4095"}), Names{});
}

TEST(StreamsFilter, TakesAnAppIdInEitherBase) {
    EXPECT_EQ(admitted({"--appid", "0x4FFF"}), Names{"MUappId"});
    EXPECT_EQ(admitted({"--appid", "0X4fff"}), Names{"MUappId"});
    EXPECT_EQ(admitted({"--appid", "3fff"}), Names{"gcbAppId"});
    EXPECT_EQ(admitted({"--appid", "0x4000"}), allBut({"MUappId"}, "MU"));
}

TEST(StreamsFilter, TellsLanesAndNetworks) {
    EXPECT_EQ(admitted({"--hsr", "A"}), (Names{"gcbHsrA", "MUhsrA"}));
    EXPECT_EQ(admitted({"--hsr", "b"}), (Names{"gcbHsrB", "MUhsrB"}));
    EXPECT_EQ(admitted({"--prp", "A"}), (Names{"gcbPrpA", "MUprpA"}));
    EXPECT_EQ(admitted({"--prp", "b"}), (Names{"gcbPrpB", "MUprpB"}));
}

TEST(StreamsFilter, TakesTheOtherMembers) {
    EXPECT_EQ(admitted({"--confrev", "77"}), (Names{"gcbConfRev", "MUconfRev"}));
    EXPECT_EQ(admitted({"--datset", "otherSet"}), Names{"gcbDatSet"});
    EXPECT_EQ(admitted({"--goid", "otherID"}), Names{"gcbGoID"});
}

TEST(StreamsFilter, AsksTheLibraryForItsOwnMembers) {
    TempFile const capture(memberTraffic());
    auto const found = [&](std::string const& option, std::string const& value) {
        return namesIn(rowsOf({"library", "streams", capture.path(), option, value}));
    };
    EXPECT_EQ(found("--reserved1-bit0", "1"), (Names{"gcbReserved", "MUreserved"}));
    EXPECT_EQ(found("--reserved1-bit0", "0"), allBut({"gcbReserved", "MUreserved"}));
    EXPECT_EQ(found("--simulation-element", "no"), Names{"gcbNoSimulation"});
    EXPECT_EQ(found("--simulation-element", "yes"), allBut({"gcbNoSimulation"}, "gcb"));
}

TEST(StreamsFilter, TellsSimulatedPackets) {
    GooseMessage byElement = gooseCalled("gcbElement");
    byElement.simulation = true;
    GooseMessage byHeader = gooseCalled("gcbHeader");
    byHeader.reserved1 = 0x8000;
    TempFile const capture(CaptureBuilder()
                               .add(1, 0, gooseFrame(Ethernet(), byElement))
                               .add(2, 0, gooseFrame(Ethernet(), byHeader))
                               .add(3, 0, gooseFrameCalled("gcbHeader"))
                               .add(4, 0, svFrameCalled("MU01"))
                               .bytes());
    auto const packets = [&](Arguments const& options) {
        return fieldOf(rowsOf(joined({"streams", capture.path()}, options)), "packets");
    };
    EXPECT_EQ(packets({"--simulated", "yes"}), (std::vector<Json>{1, 1}));
    EXPECT_EQ(packets({"--simulated", "no"}), (std::vector<Json>{1, 1}));
    EXPECT_EQ(packets({}), (std::vector<Json>{1, 2, 1}));
    EXPECT_EQ(fieldOf(rowsOf({"streams", capture.path()}), "simulated"),
              (std::vector<Json>{true, true, false}));
}

TEST(StreamsFilter, LetsNothingThroughThatLacksTheMember) {
    EXPECT_EQ(admitted({"--datset", "*"}), allBut({"gcbNoDatSet"}, "gcb"));
    EXPECT_EQ(admitted({"--goid", "*"}), allBut({"gcbNoGoID"}, "gcb"));
    EXPECT_EQ(admitted({"--svid", "*"}), allBut({}, "MU"));
    EXPECT_EQ(admitted({"--gocbref", "*"}), allBut({}, "gcb"));
    EXPECT_EQ(admitted({"--hsr", "A", "--hsr", "B"}),
              (Names{"gcbHsrA", "MUhsrA", "gcbHsrB", "MUhsrB"}));
    EXPECT_EQ(admitted({"--lan", "a"}), (Names{"gcbHsrA", "MUhsrA", "gcbPrpA", "MUprpA"}));
}

TEST(StreamsFilter, IsMetByOneOfSeveralValues) {
    EXPECT_EQ(admitted({"--svid", "MUplain", "--svid", "MUvlan?"}),
              (Names{"MUplain", "MUvlan0", "MUvlan5"}));
    EXPECT_EQ(admitted({"--vlan=0", "--vlan=5"}),
              (Names{"gcbVlan0", "gcbVlan5", "MUvlan0", "MUvlan5"}));
    EXPECT_EQ(admitted({"--appid", "0x4FFF", "--appid", "0x3FFF"}), (Names{"MUappId", "gcbAppId"}));
}

TEST(StreamsFilter, AsksForEveryMemberThatIsGiven) {
    EXPECT_EQ(admitted({"--vlan", "5", "--svid", "*"}), Names{"MUvlan5"});
    EXPECT_EQ(admitted({"--vlan", "5", "--protocol", "goose"}), Names{"gcbVlan5"});
    EXPECT_EQ(admitted({"--vlan", "5", "--confrev", "77"}), Names{});
    EXPECT_EQ(admitted({"--svid", "*", "--gocbref", "*"}), Names{});
    EXPECT_EQ(admitted({"--protocol", "goose", "--svid", "*"}), Names{});
}

TEST(StreamsFilter, TakesPatternsInNames) {
    EXPECT_EQ(admitted({"--gocbref", "gcbVlan?"}), (Names{"gcbVlan0", "gcbVlan5"}));
    EXPECT_EQ(admitted({"--gocbref", "*Vlan*"}), (Names{"gcbVlan0", "gcbVlan5"}));
    EXPECT_EQ(admitted({"--gocbref", "gcbVlan"}), Names{});
    EXPECT_EQ(admitted({"--gocbref", "GCBVLAN*"}), Names{});
    EXPECT_EQ(admitted({"--goid", "other*", "--datset", "RELAY1LD0/LLN0$*"}), Names{"gcbGoID"});
}

TEST(StreamsFilter, LeavesOutPacketsOverTheOtherLaneOrNetwork) {
    TempFile const capture(CaptureBuilder()
                               .add(1, 0, svFrameCalled("MU01", svEthernet().withPrp('A')))
                               .add(1, 5000, svFrameCalled("MU01", svEthernet().withPrp('B')))
                               .add(2, 0, svFrameCalled("MU01", svEthernet().withPrp('A')))
                               .add(3, 0, gooseFrameCalled("gcb1", Ethernet().withHsr('A')))
                               .add(3, 5000, gooseFrameCalled("gcb1", Ethernet().withHsr('B')))
                               .bytes());
    auto const packets = [&](Arguments const& options) {
        return fieldOf(rowsOf(joined({"streams", capture.path()}, options)), "packets");
    };
    EXPECT_EQ(packets({}), (std::vector<Json>{1, 2}));
    EXPECT_EQ(packets({"--prp", "A"}), std::vector<Json>{2});
    EXPECT_EQ(packets({"--prp", "B"}), std::vector<Json>{1});
    EXPECT_EQ(packets({"--hsr", "B"}), std::vector<Json>{1});
    EXPECT_EQ(packets({"--lan", "B"}), (std::vector<Json>{1, 1}));
}

/// The names that a pattern finds among streams of these names.
Names matched(Names const& names, Arguments const& options) {
    CaptureBuilder capture;
    for (auto const& name : names) {
        capture.add(1, 0, svFrameCalled(name));
    }
    TempFile const file(capture.bytes());
    return namesIn(rowsOf(joined({"streams", file.path()}, options)));
}

TEST(StreamsFilter, TakesEveryOtherCharacterOfAPatternAsItStands) {
    Names const names = {"MU[12]", "MU1", "MU\\1", "MU/.x", "MU{1}", "MU!"};
    EXPECT_EQ(matched(names, {"--svid", "MU\\?"}), Names{"MU\\1"});
    EXPECT_EQ(matched(names, {"--svid", "MU*x"}), Names{"MU/.x"});
    EXPECT_EQ(matched(names, {"--svid", "MU{1}"}), Names{"MU{1}"});
    EXPECT_EQ(matched(names, {"--svid", "MU[12]"}), Names{"MU[12]"});
    EXPECT_EQ(matched(names, {"--svid", "*[12]"}), Names{"MU[12]"});
    EXPECT_EQ(matched(names, {"--svid", "MU[!x]"}), Names{});
    EXPECT_EQ(matched(names, {"--svid", "MU[[:digit:]]"}), Names{});
}

TEST(StreamsFilter, FindsNamesOctetForOctet) {
    Names const names = {"MU\x01", "MU\x02", "MU"};
    EXPECT_EQ(matched(names, {"--svid", "MU\x01"}), Names{"MU\x01"});
    EXPECT_EQ(matched(names, {"--svid", "MU?"}), (Names{"MU\x01", "MU\x02"}));
}

TEST(StreamsFilter, TakesNamesThatLookLikeSomethingElse) {
    for (std::string const name : {"a,b", "++", "{}", "%%", "[]", "[a,b]", "--svid", "-1", "a b",
                                   "'a'", "\"a\"", "\\", "-", "--", "@x"}) {
        EXPECT_EQ(matched({name, "other"}, {"--svid=" + name}), Names{name});
    }
}

}  // namespace
}  // namespace TalTest::StreamsFiltersTest
