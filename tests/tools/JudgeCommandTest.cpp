// `library judge`: how often each verdict came, recounted frame by frame.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <algorithm>
#include <map>

#include "index/PlainVerdict.hpp"
#include "index/TrafficGenerators.hpp"
#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"
#include "support/PcapngMaker.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::JudgeCommandTest {
namespace {

using TalIec61850Parser::EthernetParser;
using TalIec61850Parser::Filter;

/// The options of a command line, and the filter that they stand for.
struct Wish {
    Arguments options;
    Filter filter;
};

/// Without an APPID, which a new SV entry asks for.
Filter noFilter() { return {}; }

Wish forEntry(Arguments options, bool goose, bool sv, auto fill) {
    Wish wish{.options = std::move(options), .filter = noFilter()};
    wish.filter.parseGoose = goose;
    wish.filter.parseSv = sv;
    fill(wish.filter.gooseFilters.emplace_back());
    auto& entry = wish.filter.svFilters.emplace_back();
    entry.appId.reset();
    fill(entry);
    return wish;
}

std::vector<Wish> wishes() {
    std::vector<Wish> all = {{.options = {}, .filter = {}}};
    all.push_back(forEntry({"--protocol", "sv"}, false, true, [](auto&) {}));
    all.push_back(forEntry({"--protocol", "goose"}, true, false, [](auto&) {}));
    all.push_back(forEntry({"--vlan", "5"}, true, true,
                           [](auto& entry) { entry.vlan.emplace().vlanId = std::uint16_t{5}; }));
    all.push_back(
        forEntry({"--hsr", "A"}, true, true, [](auto& entry) { entry.hsr.emplace().lanId = 'A'; }));
    all.push_back(
        forEntry({"--prp", "b"}, true, true, [](auto& entry) { entry.prp.emplace().lanId = 'B'; }));
    all.push_back(
        forEntry({"--appid", "0x4000"}, true, true, [](auto& entry) { entry.appId = 0x4000; }));
    all.push_back(
        forEntry({"--confrev", "77", "--source", "02:00:00:00:00:01"}, true, true, [](auto& entry) {
            entry.confRev = 77;
            entry.srcMac = "02:00:00:00:00:01";
        }));
    all.push_back(forEntry({"--reserved1-bit0", "1"}, true, true,
                           [](auto& entry) { entry.reserved1Bit0 = std::uint8_t{1}; }));
    Wish named{.options = {"--gocbref", "gcbPlain"}, .filter = {}};
    named.filter.parseSv = false;
    named.filter.gooseFilters.emplace_back().gocbRef = "gcbPlain";
    all.push_back(named);
    Wish simulated{.options = {"--simulation-element", "no"}, .filter = {}};
    simulated.filter.parseSv = false;
    simulated.filter.gooseFilters.emplace_back().simulation = false;
    all.push_back(simulated);
    Wish several{.options = {"--svid", "MUplain", "--svid", "MUvlan5"}, .filter = {}};
    several.filter.parseGoose = false;
    for (auto const* name : {"MUplain", "MUvlan5"}) {
        auto& entry = several.filter.svFilters.emplace_back();
        entry.appId.reset();
        entry.svID = name;
    }
    all.push_back(several);
    return all;
}

/// The words of a verdict, made anew.
std::string wordsFor(Bytes const& frame, Filter const& filter) {
    auto const link = readLink(frame);
    bool const answer = EthernetParser::parsePacketSimple(frame, filter);
    bool const isGoose = link && link->etherType == etherTypeGoose;
    std::string verdict = isGoose == answer ? "wanted" : "rejectedByPdu";
    if (!link || (!isGoose && link->etherType != etherTypeSampledValues)) {
        return "other otherProtocol false";
    }
    if (isGoose ? !filter.parseGoose : !filter.parseSv) {
        verdict = "switchedOff";
    } else if (!isAdmitted(frame, *link, filter)) {
        verdict = "rejectedByLinkLayer";
    }
    return (isGoose ? "GOOSE " : "SV ") + verdict + (answer ? " true" : " false");
}

std::string commandWords(Json const& row) {
    return row["protocol"].get<std::string>() + " " + row["verdict"].get<std::string>() + " " +
           row["answer"].dump();
}

struct Count {
    std::uint64_t frames = 0;
    std::uint64_t octets = 0;
    bool operator==(Count const&) const = default;
};
using Counts = std::map<std::string, Count>;

Counts recounted(std::vector<std::string> const& files, Filter const& filter) {
    Counts counts;
    for (auto const& file : files) {
        for (auto const& record : readCapture(file)) {
            Count& count = counts[wordsFor(record.frame, filter)];
            ++count.frames;
            count.octets += record.inclLen;
        }
    }
    return counts;
}

/// What the program counts; rows of nothing are left out.
Counts counted(Arguments const& arguments) {
    Counts counts;
    auto const rows = rowsOf(joined({"library", "judge"}, arguments));
    EXPECT_EQ(rows.size(), 9U);
    for (Json const& row : rows) {
        Count const count{.frames = row["frames"], .octets = row["octets"]};
        if (count != Count()) {
            EXPECT_TRUE(counts.emplace(commandWords(row), count).second) << row;
        }
    }
    return counts;
}

/// Traffic of every member, of other protocols, and frames cut short.
Bytes mixedTraffic() {
    CaptureBuilder capture(CaptureVariant::microBig);
    for (auto const& record : readCapture(memberTraffic())) {
        capture.add(record.seconds, 0, record.frame);
        for (std::uint32_t const size : {0U, 11U, 14U, 17U, 22U, 23U, 40U}) {
            capture.addSnapped(record.seconds, 0, size, record.frame);
        }
        capture.add(record.seconds, 0, ethernetFrame(Ethernet(), 0x0800, Bytes(46)));
    }
    return capture.bytes();
}

TEST(Judge, CountsEveryFrameByWhatTheLibraryAnswers) {
    TempFile const file(mixedTraffic());
    for (Wish const& wish : wishes()) {
        EXPECT_EQ(counted(joined({file.path()}, wish.options)),
                  recounted({file.path()}, wish.filter))
            << testing::PrintToString(wish.options);
    }
}

TEST(Judge, CountsOverAllFiles) {
    TempDir const folder;
    auto const first = folder.write("1.pcap", mixedTraffic());
    auto const second = folder.write("2.pcap", smallCapture());
    EXPECT_EQ(counted({first, second}), recounted({first, second}, {}));
    EXPECT_EQ(counted({folder.path(), first}), recounted({first, second}, {}));
}

TEST(Judge, HasTheSameRowsInTheSameOrderAlways) {
    TempFile const empty(captureHeader(CaptureVariant::microLittle));
    TempFile const full(mixedTraffic());
    auto const words = [](std::string const& file) {
        std::vector<std::string> all;
        for (Json const& row : rowsOf({"library", "judge", file})) {
            all.push_back(commandWords(row));
        }
        return all;
    };
    EXPECT_EQ(words(empty.path()), words(full.path()));
    EXPECT_EQ(counted({empty.path()}), Counts{});
}

TEST(Judge, ListsEachFrameInTheOrderOfTheFiles) {
    TempDir const folder;
    auto const first = folder.write("1.pcap", mixedTraffic());
    auto const second = folder.write("2.pcap", smallCapture());
    auto const rows = rowsOf({"library", "judge", "--list", second, first, "--vlan", "5"});
    Filter filter = wishes()[3].filter;
    std::size_t number = 0;
    for (auto const& file : {second, first}) {
        for (auto const& record : readCapture(file)) {
            ASSERT_LT(number, rows.size());
            Json const& row = rows[number++];
            EXPECT_EQ(row["file"], file);
            EXPECT_EQ(row["recordPosition"], record.position);
            EXPECT_EQ(row["timeNs"],
                      std::uint64_t{record.seconds} * 1'000'000'000 + record.nanoseconds);
            EXPECT_EQ(commandWords(row), wordsFor(record.frame, filter));
        }
    }
    EXPECT_EQ(number, rows.size());
    EXPECT_EQ(rowsOf({"library", "judge", "-l", second}).size(), 5U);
}

TEST(Judge, ListsFramesWithoutATime) {
    TempFile const file(PcapngMaker().section().interface().simplePacket(oneSv()).bytes());
    auto const rows = rowsOf({"library", "judge", "--list", file.path()});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_TRUE(rows[0]["time"].is_null());
    EXPECT_TRUE(rows[0]["timeNs"].is_null());
    EXPECT_EQ(commandWords(rows[0]), "SV wanted false");
}

TEST(Judge, SummarisesWhatIsWanted) {
    TempFile const file(smallCapture());
    EXPECT_EQ(summaryOf(runCompanion({"library", "judge", file.path()}).out),
              "5 of 5 frames in 1 file wanted");
    EXPECT_EQ(
        summaryOf(
            runCompanion({"library", "judge", file.path(), "--list", "--protocol", "sv"}).out),
        "3 of 5 frames in 1 file wanted");
}

TEST(Judge, TakesNamesAsTheyStand) {
    TempFile const file(smallCapture());
    auto const wanted = [&](std::string const& name) {
        Json const row = rowsOf({"library", "judge", file.path(), "--svid=" + name})[4];
        EXPECT_EQ(commandWords(row), "SV wanted false");
        return row["frames"].get<int>();
    };
    EXPECT_EQ(wanted("MU01"), 3);
    EXPECT_EQ(wanted("MU*"), 0);
    EXPECT_EQ(wanted("MU0?"), 0);
}

TEST(Judge, OfWholeCapturesIsRecounted) {
    auto paths =
        recorded({"goose-mms-mixed-station-bus.pcap", "sv-13asdu-goose-mixed-testbed.pcap",
                  "derived-sv-prp-both-lans.pcap", "derived-goose-hsr-both-ring-directions.pcap",
                  "snapped-90-goose-interlocking.pcap", "reencoded-be-us-goose-interlocking.pcap"});
    for (auto const* name : {"own-goose-retransmissions.pcap", "own-sv-1-to-13-asdus.pcap",
                             "own-sv-prp-both-lans.pcap", "own-goose-hsr-both-ways.pcap",
                             "own-goose-snapped.pcap", "own-mixed-be-us.pcap"}) {
        paths.push_back(ownCapture(name));
    }
    for (auto const& path : paths) {
        for (std::size_t const number : {0U, 2U, 4U, 5U}) {
            Wish const wish = wishes()[number];
            EXPECT_EQ(counted(joined({path}, wish.options)), recounted({path}, wish.filter))
                << path << testing::PrintToString(wish.options);
        }
    }
}

}  // namespace
}  // namespace TalTest::JudgeCommandTest
