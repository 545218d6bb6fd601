// Which control block a stream is of.

#include <gtest/gtest.h>

#include "scl/match/DescribedTraffic.hpp"
#include "support/TempFile.hpp"

namespace TalTest::MatchStreamsTest {
namespace {

using namespace TalIec61850Scl;
using TalIec61850Analysis::StreamKey;
using TalIec61850Analysis::StreamProtocol;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficStream;

StreamKey keyOf(std::string const& name, std::uint8_t address, StreamProtocol protocol) {
    StreamKey key;
    key.protocol = protocol;
    key.source = {2, 0, 0, 0, 0, 1};
    key.destination = {1, 12, 205, 4, 0, address};
    key.appId = 0x4000;
    key.name = name;
    return key;
}

StreamKey svKey(std::string const& name, std::uint8_t address) {
    return keyOf(name, address, StreamProtocol::sv);
}

ControlBlock svBlock(std::string const& id, std::optional<std::uint8_t> address) {
    ControlBlock block;
    block.protocol = StreamProtocol::sv;
    block.id = id;
    block.reference = "reference of " + id;
    if (address) {
        block.address.mac = {1, 12, 205, 4, 0, *address};
        block.address.appId = 0x4000;
    }
    return block;
}

StationDescription stationOf(std::vector<ControlBlock> blocks) {
    StationDescription station;
    station.controlBlocks = std::move(blocks);
    return station;
}

/// "n0" for the first control block by name, "a1" for the second by address, "-" for none.
std::string lineOf(std::optional<StreamMatch> const& match) {
    if (!match) {
        return "-";
    }
    return (match->by == MatchedBy::name ? "n" : "a") + std::to_string(match->controlBlock);
}

/// The matches of streams in the order of the index, which is that of their keys.
SclLines matchesOf(std::vector<StreamKey> const& keys, StationDescription const& station) {
    std::vector<TrafficStream> streams;
    for (StreamKey const& key : keys) {
        TrafficStream stream;
        stream.key = key;
        streams.push_back(std::move(stream));
    }
    SclLines lines;
    for (auto const& match : matchStreams(TrafficIndex({}, std::move(streams)), station)) {
        lines.push_back(lineOf(match));
    }
    return lines;
}

TEST(MatchStreams, GoesByNameBeforeAddress) {
    auto const station = stationOf({svBlock("A", 1), svBlock("B", 2)});
    // Names are exchanged against addresses.
    EXPECT_EQ(matchesOf({svKey("B", 1), svKey("A", 2)}, station), (SclLines{"n1", "n0"}));
}

TEST(MatchStreams, TakesTheReferenceOfAGooseControlBlockForItsName) {
    auto station = stationOf({svBlock("A", 1)});
    station.controlBlocks[0].protocol = StreamProtocol::goose;
    EXPECT_EQ(matchesOf({keyOf("reference of A", 7, StreamProtocol::goose)}, station),
              SclLines{"n0"});
    EXPECT_EQ(matchesOf({keyOf("A", 7, StreamProtocol::goose)}, station), SclLines{"-"});
}

TEST(MatchStreams, KeepsProtocolsApart) {
    auto station = stationOf({svBlock("A", 1)});
    EXPECT_EQ(matchesOf({keyOf("A", 1, StreamProtocol::goose)}, station), SclLines{"-"});
    EXPECT_EQ(lineOf(matchStream(keyOf("A", 1, StreamProtocol::goose), station)), "-");
}

TEST(MatchStreams, GoesByTheAddressOfControlBlocksWithoutAStreamOfTheirName) {
    auto const station = stationOf({svBlock("A", 1), svBlock("B", 2)});
    EXPECT_EQ(matchesOf({svKey("X", 1)}, station), SclLines{"a0"});
    EXPECT_EQ(matchesOf({svKey("A", 1), svKey("X", 1)}, station), (SclLines{"n0", "-"}));
    EXPECT_EQ(matchesOf({svKey("X", 1), svKey("A", 3)}, station), (SclLines{"-", "n0"}));
    EXPECT_EQ(matchesOf({svKey("X", 3)}, station), SclLines{"-"});
}

TEST(MatchStreams, NeedsMacAndAppIdForAnAddress) {
    auto station = stationOf({svBlock("A", 1)});
    StreamKey key = svKey("X", 1);
    key.appId = 0x4001;
    EXPECT_EQ(matchesOf({key}, station), SclLines{"-"});
    key = svKey("X", 1);
    key.destination.reset();
    EXPECT_EQ(matchesOf({key}, station), SclLines{"-"});
    station.controlBlocks[0].address.appId.reset();
    key = svKey("X", 1);
    key.appId = 0;
    EXPECT_EQ(matchesOf({key}, station), SclLines{"-"});
}

TEST(MatchStreams, TakesTheAddressToTellEqualNamesApart) {
    auto const station = stationOf({svBlock("A", 1), svBlock("A", 2), svBlock("A", 3)});
    EXPECT_EQ(matchesOf({svKey("A", 1), svKey("A", 2), svKey("A", 3)}, station),
              (SclLines{"n0", "n1", "n2"}));
    EXPECT_EQ(matchesOf({svKey("A", 3)}, station), SclLines{"n2"});
    // One that has no such address is the first that is left.
    EXPECT_EQ(matchesOf({svKey("A", 1), svKey("A", 9)}, station), (SclLines{"n0", "n1"}));
    EXPECT_EQ(matchesOf({svKey("A", 9)}, station), SclLines{"n0"});
    // Where none is left, it is the first.
    EXPECT_EQ(matchesOf({svKey("A", 1), svKey("A", 2), svKey("A", 3), svKey("A", 9)}, station),
              (SclLines{"n0", "n1", "n2", "n0"}));
}

TEST(MatchStreams, GivesControlBlocksOfOneAddressOneAfterTheOther) {
    auto const station = stationOf({svBlock("A", 1), svBlock("B", 1)});
    EXPECT_EQ(matchesOf({svKey("X", 1), svKey("Y", 1)}, station), (SclLines{"a0", "a1"}));
    EXPECT_EQ(matchesOf({svKey("A", 1), svKey("Y", 1)}, station), (SclLines{"n0", "a1"}));
    EXPECT_EQ(matchesOf({svKey("X", 1), svKey("Y", 1), svKey("Z", 1)}, station),
              (SclLines{"a0", "a1", "a0"}));
}

TEST(MatchStreams, GivesStreamsOfSeveralSourcesAndVlansOneControlBlock) {
    auto const station = stationOf({svBlock("A", 1), svBlock("B", 1)});
    StreamKey tagged = svKey("A", 1);
    tagged.vlans = {{.tpid = 0x8100, .id = 7}};
    EXPECT_EQ(matchesOf({svKey("A", 1), tagged}, station), (SclLines{"n0", "n0"}));
    StreamKey other = svKey("X", 1);
    other.source = {2, 0, 0, 0, 0, 9};
    EXPECT_EQ(matchesOf({svKey("X", 1), other}, station), (SclLines{"a0", "a0"}));
    StreamKey away = svKey("A", 9);
    away.source = {2, 0, 0, 0, 0, 9};
    EXPECT_EQ(matchesOf({svKey("A", 9), away}, station), (SclLines{"n0", "n0"}));
}

TEST(MatchStreams, TakesTheVlanToTellEqualNamesAndAddressesApart) {
    auto station = stationOf({svBlock("A", 1), svBlock("A", 1), svBlock("A", 1)});
    station.controlBlocks[0].address.vlanId = 7;
    station.controlBlocks[1].address.vlanId = 0;
    station.controlBlocks[2].address.vlanId = 8;
    StreamKey const untagged = svKey("A", 1);
    StreamKey priorityTagged = untagged;
    priorityTagged.vlans = {{.tpid = 0x8100, .id = 0}};
    StreamKey inner = untagged;
    inner.vlans = {{.tpid = 0x88A8, .id = 7}, {.tpid = 0x8100, .id = 8}};
    StreamKey outer = untagged;
    outer.vlans = {{.tpid = 0x9100, .id = 8}, {.tpid = 0x9100, .id = 7}};
    EXPECT_EQ(matchesOf({untagged, priorityTagged, inner, outer}, station),
              (SclLines{"n1", "n1", "n2", "n0"}));
    EXPECT_EQ(lineOf(matchStream(inner, station)), "n2");
    EXPECT_EQ(lineOf(matchStream(priorityTagged, station)), "n1");
    // A VLAN that is not described takes what is left.
    StreamKey other = untagged;
    other.vlans = {{.tpid = 0x8100, .id = 9}};
    EXPECT_EQ(matchesOf({untagged, other, inner}, station), (SclLines{"n1", "n0", "n2"}));
    EXPECT_EQ(lineOf(matchStream(other, station)), "n0");
}

TEST(MatchStreams, TakesAnEmptyNameForNone) {
    auto const station = stationOf({svBlock("", 1), svBlock("", 2)});
    EXPECT_EQ(matchesOf({svKey("", 2)}, station), SclLines{"a1"});
    EXPECT_EQ(matchesOf({svKey("", 3)}, station), SclLines{"-"});
    EXPECT_EQ(lineOf(matchStream(svKey("", 2), station)), "a1");
}

TEST(MatchStreams, MatchesASingleStream) {
    auto const station = stationOf({svBlock("A", 1), svBlock("B", 2), svBlock("A", 3)});
    EXPECT_EQ(lineOf(matchStream(svKey("A", 3), station)), "n2");
    EXPECT_EQ(lineOf(matchStream(svKey("A", 2), station)), "n0");
    EXPECT_EQ(lineOf(matchStream(svKey("A", 1), station)), "n0");
    EXPECT_EQ(lineOf(matchStream(svKey("X", 2), station)), "a1");
    EXPECT_EQ(lineOf(matchStream(svKey("X", 9), station)), "-");
    EXPECT_EQ(lineOf(matchStream(svKey("X", 9), {})), "-");
}

TEST(MatchStreams, GoesByTheAddressOfASingleStreamWhereOneControlBlockHasIt) {
    auto const station = stationOf({svBlock("A", 1), svBlock("B", 1), svBlock("C", 2)});
    EXPECT_EQ(lineOf(matchStream(svKey("X", 1), station)), "-");
    EXPECT_EQ(lineOf(matchStream(svKey("X", 2), station)), "a2");
    EXPECT_EQ(lineOf(matchStream(svKey("B", 1), station)), "n1");
}

TEST(MatchStreams, MatchesKeysAsAnIndexOfThem) {
    auto const station = stationOf({svBlock("A", 1), svBlock("B", 1)});
    std::vector<StreamKey> const keys = {svKey("A", 1), svKey("Y", 1)};
    SclLines lines;
    for (auto const& match : matchStreams(keys, station)) {
        lines.push_back(lineOf(match));
    }
    EXPECT_EQ(lines, matchesOf(keys, station));
    EXPECT_EQ(lines, (SclLines{"n0", "a1"}));
}

TEST(MatchStreams, TellsWhatAStreamMayBeOf) {
    EXPECT_TRUE(mayBeOf(svKey("A", 9), svBlock("A", 1)));
    EXPECT_TRUE(mayBeOf(svKey("X", 1), svBlock("A", 1)));
    EXPECT_FALSE(mayBeOf(svKey("X", 9), svBlock("A", 1)));
    EXPECT_FALSE(mayBeOf(keyOf("A", 1, StreamProtocol::goose), svBlock("A", 1)));
    EXPECT_FALSE(mayBeOf(svKey("", 9), svBlock("", 1)));
}

TEST(MatchStreams, TakesEqualNamesAndAddressesEverywhere) {
    constexpr std::size_t kMany = 100'000;
    auto const station = stationOf(std::vector<ControlBlock>(kMany, svBlock("A", 1)));
    std::vector<StreamKey> keys(kMany / 2, svKey("A", 2));
    for (std::size_t i = 0; i < keys.size(); ++i) {
        keys[i].appId = static_cast<std::uint16_t>(i);
        keys[i].vlans = {{.tpid = 0x8100, .id = static_cast<std::uint16_t>(i >> 16U)}};
    }
    auto const matches = matchesOf(keys, station);
    EXPECT_EQ(matches.front(), "n0");
    EXPECT_EQ(matches.back(), "n" + std::to_string(keys.size() - 1));
}

}  // namespace
}  // namespace TalTest::MatchStreamsTest
