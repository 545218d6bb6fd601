#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>

#include "tools/NamedStreams.hpp"
#include "tools/library/LibraryLayout.hpp"
#include "tools/library/LibraryRow.hpp"
#include "tools/output/RowLines.hpp"

namespace TalIec61850Tools::LibraryOrderTest {
namespace {

using TalIec61850Parser::Db;
using TalIec61850Parser::Goose;
using TalIec61850Parser::HsrInfo;
using TalIec61850Parser::Sv;
using TalIec61850Parser::VlanInfo;
using TalTest::gooseNamed;
using TalTest::svNamed;

/// Streams each of which differs from some other in one member of the identity alone.
std::vector<Goose> manyGooses() {
    std::vector<Goose> gooses;
    auto const add = [&](auto change) {
        gooses.push_back(gooseNamed("gcb1"));
        change(gooses.back());
    };
    add([](Goose&) {});
    add([](Goose& g) { g.srcMac = "00:30:a7:00:00:00"; });
    add([](Goose& g) { g.dstMac = "01:0c:cd:01:00:00"; });
    add([](Goose& g) { g.vlan = VlanInfo{.priority = {}, .dei = {}, .vlanId = 7}; });
    add([](Goose& g) { g.vlan = VlanInfo{.priority = 3, .dei = {}, .vlanId = 7}; });
    add([](Goose& g) { g.appId = 0; });
    add([](Goose& g) { g.reserved1Bit0 = 1; });
    add([](Goose& g) { g.gocbRef = "gcb0"; });
    add([](Goose& g) { g.gocbRef = ""; });
    add([](Goose& g) { g.gocbRef.reset(); });
    add([](Goose& g) { g.datSet = "dataSet0"; });
    add([](Goose& g) { g.goID = "goID0"; });
    add([](Goose& g) { g.simulation = true; });
    add([](Goose& g) { g.confRev = 2; });
    return gooses;
}

std::vector<Sv> manySvs() {
    std::vector<Sv> svs;
    auto const add = [&](auto change) {
        svs.push_back(svNamed("MU01"));
        change(svs.back());
    };
    auto const lane = [](char letter) {
        return HsrInfo{.hsrSpare1 = {}, .lanId = letter, .hsrSpare2 = {}, .hsrSpare3 = {}};
    };
    add([](Sv&) {});
    add([&](Sv& s) { s.hsr = lane('A'); });
    add([&](Sv& s) { s.hsr = lane('B'); });
    add([](Sv& s) { s.svID = "MU00"; });
    add([](Sv& s) { s.appId = 0x4001; });
    add([](Sv& s) { s.confRev = 0x80000000; });
    add([](Sv& s) { s.reserved1Bit0 = 1; });
    add([](Sv& s) { s.vlan = VlanInfo{.priority = {}, .dei = {}, .vlanId = 7}; });
    return svs;
}

std::vector<std::string> linesOf(Db const& db) {
    std::vector<std::string> lines;
    RowLines<LibraryRow> json(Format::json, libraryLayout());
    for (LibraryRow const& row : collectRows(db)) {
        auto const vlan = row.vlan.value_or(VlanInfo{});
        lines.push_back(std::string(json.lineOf(row)) + std::to_string(vlan.priority.value_or(0)));
    }
    return lines;
}

TEST(StreamOrder, IsTheSameWhateverTheOrderInTheStore) {
    std::mt19937 random(1);
    auto gooses = manyGooses();
    auto svs = manySvs();
    std::vector<std::string> expected;
    for (int round = 0; round < 50; ++round) {
        std::shuffle(gooses.begin(), gooses.end(), random);
        std::shuffle(svs.begin(), svs.end(), random);
        Db db;
        db.svProto.streams.rehash(1 + random() % 100);
        db.gooseProto.streams.rehash(1 + random() % 100);
        for (Goose const& goose : gooses) {
            db.gooseProto.addGoose(Goose(goose));
        }
        for (Sv const& sv : svs) {
            db.svProto.addSv(Sv(sv));
        }
        auto const lines = linesOf(db);
        ASSERT_EQ(lines.size(), gooses.size() + svs.size());
        if (round == 0) {
            expected = lines;
        }
        ASSERT_EQ(lines, expected);
    }
}

TEST(StreamOrder, IsByProtocolThenDestinationThenAppIdThenNames) {
    Db db;
    auto const add = [&](std::string const& destination, std::uint64_t appId,
                         std::string const& name) {
        Goose goose = gooseNamed(name);
        goose.dstMac = destination;
        goose.appId = appId;
        db.gooseProto.addGoose(std::move(goose));
    };
    db.svProto.addSv(svNamed("MU01"));
    add("01:0c:cd:01:00:02", 1, "a");
    add("01:0c:cd:01:00:01", 10, "a");
    add("01:0c:cd:01:00:01", 9, "b");
    add("01:0c:cd:01:00:01", 9, "a");

    std::vector<std::string> order;
    for (LibraryRow const& row : collectRows(db)) {
        order.push_back(row.svID ? *row.svID
                                 : row.destination->substr(15) + " " + std::to_string(*row.appId) +
                                       " " + *row.gocbRef);
    }
    EXPECT_EQ(order, (std::vector<std::string>{"01 9 a", "01 9 b", "01 10 a", "02 1 a", "MU01"}));
}

}  // namespace
}  // namespace TalIec61850Tools::LibraryOrderTest
