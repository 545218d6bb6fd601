#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "tools/NamedStreams.hpp"
#include "tools/library/IndexedPackage.hpp"
#include "tools/library/LibraryRow.hpp"

namespace TalIec61850Tools::LibraryRowTest {
namespace {

using TalIec61850Parser::Db;
using TalIec61850Parser::Goose;
using TalIec61850Parser::HsrInfo;
using TalIec61850Parser::PackageFile;
using TalIec61850Parser::PrpInfo;
using TalIec61850Parser::Sv;
using TalIec61850Parser::VlanInfo;
using TalTest::gooseNamed;
using TalTest::svNamed;

/// The only row of a store with one SV stream that `fill` puts packets into.
LibraryRow rowOf(std::function<void(Sv const&)> const& fill) {
    Db db;
    fill(db.svProto.addSv(svNamed("MU01")));
    return collectRows(db).at(0);
}

TEST(CollectRows, GivesNoRowForAnEmptyStore) { EXPECT_TRUE(collectRows(Db()).empty()); }

TEST(CollectRows, CopiesTheIdentityOfAGooseStream) {
    Db db;
    Goose goose = gooseNamed("gcb1");
    goose.vlan = VlanInfo{.priority = {}, .dei = {}, .vlanId = 5};
    goose.hsr = HsrInfo{.hsrSpare1 = {}, .lanId = 'A', .hsrSpare2 = {}, .hsrSpare3 = {}};
    goose.simulation = true;
    db.gooseProto.addGoose(std::move(goose));

    LibraryRow const row = collectRows(db).at(0);
    EXPECT_EQ(row.protocol, Protocol::goose);
    EXPECT_EQ(row.source, "00:30:a7:00:00:01");
    EXPECT_EQ(row.destination, "01:0c:cd:01:00:01");
    EXPECT_EQ(row.vlan.value().vlanId, 5);
    EXPECT_EQ(row.hsr.value().lanId, 'A');
    EXPECT_FALSE(row.prp);
    EXPECT_EQ(row.appId, 1U);
    EXPECT_EQ(row.reserved1Bit0, 0);
    EXPECT_FALSE(row.svID);
    EXPECT_EQ(row.gocbRef, "gcb1");
    EXPECT_EQ(row.datSet, "dataSet1");
    EXPECT_EQ(row.goID, "goID1");
    EXPECT_EQ(row.confRev, 1U);
    EXPECT_EQ(row.simulationPresent, true);
}

TEST(CollectRows, CopiesTheIdentityOfAnSvStream) {
    Db db;
    Sv sv = svNamed("MU01");
    sv.prp = PrpInfo{.sequenceNumber = {}, .lanId = 'B', .lsduSize = {}};
    db.svProto.addSv(std::move(sv));

    LibraryRow const row = collectRows(db).at(0);
    EXPECT_EQ(row.protocol, Protocol::sv);
    EXPECT_EQ(row.source, "00:30:a7:00:00:02");
    EXPECT_EQ(row.destination, "01:0c:cd:04:00:01");
    EXPECT_FALSE(row.vlan);
    EXPECT_EQ(row.prp.value().lanId, 'B');
    EXPECT_EQ(row.appId, 0x4000U);
    EXPECT_EQ(row.svID, "MU01");
    EXPECT_FALSE(row.gocbRef);
    EXPECT_FALSE(row.simulationPresent);
}

TEST(CollectRows, TellsGooseWithoutASimulationElementByFalse) {
    Db db;
    db.gooseProto.addGoose(gooseNamed("gcb1"));
    EXPECT_EQ(collectRows(db).at(0).simulationPresent, false);
}

TEST(CollectRows, CountsPacketsAndFilesFromTheIndex) {
    LibraryRow const row = rowOf([](Sv const& sv) {
        sv.addFile("a.pcap")->addPackage(10, 0, 100);
        sv.addFile("a.pcap")->addPackage(11, 0, 200);
        sv.addFile("b.pcap")->addPackage(12, 0, 100);
        sv.packetCount = 77;  // a counter of 32 bits, which clearing a file does not reduce
    });
    EXPECT_EQ(row.packets, 3U);
    EXPECT_EQ(row.files, 2U);
}

TEST(CollectRows, FindsFirstAndLastTimeOverAllFilesInWhateverOrder) {
    LibraryRow const row = rowOf([](Sv const& sv) {
        PackageFile const& later = *sv.addFile("later.pcap");
        later.addPackage(30, 5, 100);
        later.addPackage(20, 900'000'000, 200);
        PackageFile const& earlier = *sv.addFile("earlier.pcap");
        earlier.addPackage(20, 4, 100);
        earlier.addPackage(30, 6, 200);
        earlier.addPackage(25, 0, 300);
    });
    EXPECT_EQ(row.firstTime, toCaptureTime({20, 4}));
    EXPECT_EQ(row.lastTime, toCaptureTime({30, 6}));
    EXPECT_EQ(row.timedPackets, 5U);
}

TEST(CollectRows, CountsPacketsWithoutAPositionButTakesNoTimeFromThem) {
    LibraryRow const row = rowOf([](Sv const& sv) {
        PackageFile const& file = *sv.addFile("a.pcap");
        file.addPackage(0, 0, 0);
        file.addPackage(20, 0, 100);
        file.addPackage(22, 0, 200);
        file.addPackage(0, 0, 0);
    });
    EXPECT_EQ(row.packets, 4U);
    EXPECT_EQ(row.timedPackets, 2U);
    EXPECT_EQ(row.firstTime, toCaptureTime({20, 0}));
    EXPECT_EQ(row.lastTime, toCaptureTime({22, 0}));
    EXPECT_EQ(row.packetsPerSecond(), 0.5);
}

TEST(CollectRows, TakesATimeOfZeroFromAPacketWithAPosition) {
    LibraryRow const row = rowOf([](Sv const& sv) { sv.addFile("a.pcap")->addPackage(0, 0, 100); });
    EXPECT_EQ(row.firstTime, CaptureTime());
}

TEST(CollectRows, KnowsNoTimeWithoutATimedPacket) {
    LibraryRow const row = rowOf([](Sv const& sv) { sv.addFile("a.pcap")->addPackage(0, 0, 0); });
    EXPECT_EQ(row.packets, 1U);
    EXPECT_FALSE(row.firstTime);
    EXPECT_FALSE(row.lastTime);
    EXPECT_FALSE(row.packetsPerSecond());
}

TEST(PacketsPerSecond, IsTheMeanBetweenFirstAndLast) {
    LibraryRow const row = rowOf([](Sv const& sv) {
        PackageFile const& file = *sv.addFile("a.pcap");
        for (std::uint32_t i = 0; i < 4001; ++i) {
            file.addPackage(1700000000 + i / 4000, i % 4000 * 250'000, 100 + i);
        }
    });
    EXPECT_DOUBLE_EQ(row.packetsPerSecond().value(), 4000.0);
}

TEST(PacketsPerSecond, IsUnknownForOnePacket) {
    LibraryRow const row =
        rowOf([](Sv const& sv) { sv.addFile("a.pcap")->addPackage(10, 0, 100); });
    EXPECT_FALSE(row.packetsPerSecond());
}

TEST(PacketsPerSecond, IsUnknownWhenNoTimePasses) {
    LibraryRow const row = rowOf([](Sv const& sv) {
        sv.addFile("a.pcap")->addPackage(10, 1'000'000'000, 100);
        sv.addFile("a.pcap")->addPackage(11, 0, 200);
    });
    EXPECT_FALSE(row.packetsPerSecond());
}

}  // namespace
}  // namespace TalIec61850Tools::LibraryRowTest
