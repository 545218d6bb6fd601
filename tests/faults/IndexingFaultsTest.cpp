// Indexing when memory ends: all packets before are in the store, and nothing else.

#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "capture/Criteria.hpp"
#include "faults/FaultTraffic.hpp"
#include "faults/IndexedUnderFaults.hpp"
#include "support/Apdu.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest {

void PrintTo(IndexingScenario const& scenario, std::ostream* out) { *out << scenario.name; }

}  // namespace TalTest

namespace TalTest::IndexingFaultsTest {
namespace {

using namespace TalIec61850Parser;

Bytes taggedCapture() {
    CaptureBuilder capture;
    for (std::uint16_t turn = 0; turn < 4; ++turn) {
        Ethernet const vlan = Ethernet().withVlan(turn);
        for (Ethernet const& link : {vlan, vlan.withHsr('A', turn), vlan.withPrp('B', turn)}) {
            capture.add(turn, 1, relayFrame(1, turn, link));
            capture.add(turn, 2, mergingUnitFrame(1, turn, link));
        }
    }
    return capture.bytes();
}

Bytes nestedCapture() {
    GooseMessage message;
    message.allData = nestedWithSiblings(100);
    Bytes const sampled =
        apdu({}, ber(0x60, concat({ber(0x80, {1}), ber(0xA2, ber(0x30, nestedWithSiblings(60)))})));
    CaptureBuilder capture;
    for (std::uint32_t turn = 0; turn < 3; ++turn) {
        capture.add(turn, 1, gooseFrame({}, message));
        capture.add(turn, 2, ethernetFrame(svEthernet(), etherTypeSampledValues, sampled));
    }
    return capture.bytes();
}

Bytes unprintableCapture() {
    GooseMessage message;
    message.gocbRef = std::string(40, '\xE4');
    message.datSet = std::string("\0set", 4);
    message.goID = std::string(70, '\n');
    CaptureBuilder capture;
    for (std::uint16_t turn = 0; turn < 25; ++turn) {
        capture.add(turn, 1, gooseFrame({}, message));
        capture.add(turn, 2, svFrame(svEthernet(), message92le("unit\x7F with a long name", turn)));
    }
    return capture.bytes();
}

/// A record that takes two blocks of the reader and more, between small ones.
Bytes largeRecordCapture() {
    constexpr std::size_t size = 700'000;
    GooseMessage message;
    message.length = 0;
    message.trailing = Bytes(size);
    return CaptureBuilder()
        .add(1, 0, relayFrame(1, 1))
        .add(2, 0, gooseFrame({}, message))
        .add(3, 0, mergingUnitFrame(1, 3))
        .bytes();
}

constexpr std::size_t lacking = 30;
Bytes cutCapture() {
    Bytes const whole = mixedCapture();
    return prefix(whole, whole.size() - lacking);
}

Filter namesFilter() {
    Filter filter = gooseFilter({wanted(&GooseIdentifer::gocbRef, "RELAY1LD0/LLN0$GO$gcb1"),
                                 wanted(&GooseIdentifer::dstMac, "01:0c:cd:01:00:01")});
    filter.gooseFilters[1].gocbRef = "RELAY2LD0/LLN0$GO$gcb1";
    filter.svFilters = {wanted(&SvIdentifer::svID, "a merging unit's name 2")};
    return filter;
}

std::vector<IndexingScenario> scenarios() {
    return {
        {.name = "Goose", .captures = {gooseCapture(25, 3)}},
        {.name = "Sv", .captures = {svCapture(25, 3)}},
        {.name = "SeveralStreamsInTwoFiles", .captures = {mixedCapture(), mixedCapture()}},
        {.name = "NanosecondBigEndian", .captures = {mixedCapture(CaptureVariant::nanoBig)}},
        {.name = "UnderAFilter", .captures = {mixedCapture()}, .filter = namesFilter()},
        {.name = "TaggedFrames", .captures = {taggedCapture()}},
        {.name = "DeepNesting", .captures = {nestedCapture()}},
        {.name = "UnprintableNames", .captures = {unprintableCapture()}},
        {.name = "ARecordLargerThanABlock", .captures = {largeRecordCapture()}},
        {.name = "ARecordLargerThanABlockReadAhead",
         .captures = {largeRecordCapture()},
         .options = {.readAhead = true}},
        {.name = "ALastRecordCutShort", .captures = {cutCapture()}, .missing = Bytes(lacking)},
        {.name = "AStoreThatTheCallbackClears",
         .captures = {gooseCapture(270, 4)},
         .callback = Callback::clears},
        {.name = "AStoreThatTheCallbackTakes",
         .captures = {svCapture(270, 4)},
         .callback = Callback::takesTheStore},
        {.name = "AStoreThatTheCallbackTakesReadAhead",
         .captures = {svCapture(270, 4)},
         .callback = Callback::takesTheStore,
         .options = {.readAhead = true}},
    };
}

class IndexingUnderFaultsOf : public testing::TestWithParam<IndexingScenario> {};

TEST_P(IndexingUnderFaultsOf, LeavesThePacketsBeforeAndNothingHalfMade) {
    IndexingUnderFaults const scenario(GetParam());
    constexpr std::size_t fewest = 20;
    EXPECT_GE(attemptUnderEachFault([&](Fault const& fault) { return scenario.attempt(fault); }),
              fewest);
}

INSTANTIATE_TEST_SUITE_P(Scenarios, IndexingUnderFaultsOf, testing::ValuesIn(scenarios()),
                         [](auto const& instance) { return instance.param.name; });

TEST(IndexingUnderFaults, FrameByFrameCountsAFrameOnlyWithItsPacket) {
    PcapFile file(std::string{});
    file.fileName = "a capture with a name of some length.pcap";
    std::vector<Bytes> frames;
    for (std::uint16_t turn = 0; turn < 50; ++turn) {
        frames.push_back(relayFrame(1, turn));
        frames.push_back(mergingUnitFrame(1, turn));
    }
    auto const indexOne = [&](std::size_t number, Db& db) {
        EthernetParser::parsePacket(frames[number], 0, file, false, {}, {}, db);
    };
    Db undisturbed;
    std::vector<IndexImage> images = {IndexImage{}};
    for (std::size_t number = 0; number < frames.size(); ++number) {
        indexOne(number, undisturbed);
        images.push_back(imageOf(undisturbed));
    }
    attemptUnderEachFault([&](Fault const& fault) {
        Db db;
        std::size_t done = 0;
        bool const wasHit = failsAsItShould(fault, [&] {
            for (; done < frames.size(); ++done) indexOne(done, db);
        });
        EXPECT_EQ(difference(imageOf(db), images[done]), "");
        return wasHit;
    });
}

/// Indexes one frame of each protocol into a store that holds those streams already.
/// @param prepare  `void prepare(auto const& stream, std::string const& fileName)`
template <typename Prepare>
void expectPreparedStoreKept(Prepare const& prepare) {
    std::string const name = "a capture with a name of some length.pcap";
    Bytes const goose = relayFrame(1, 1);
    Bytes const sampled = mergingUnitFrame(1, 1);
    auto const fill = [&](Db& db) {
        PcapFile file(std::string{});
        file.fileName = name;
        EthernetParser::parsePacket(goose, 0, file, false, {}, {}, db);
        EthernetParser::parsePacket(sampled, 0, file, false, {}, {}, db);
    };
    Db prepared;
    fill(prepared);
    for (Goose const& stream : prepared.gooseProto.streams) prepare(stream, name);
    for (Sv const& stream : prepared.svProto.streams) prepare(stream, name);
    Db full = prepared;
    fill(full);
    IndexImage const before = imageOf(prepared);
    IndexImage const after = imageOf(full);

    EXPECT_GE(attemptUnderEachFault([&](Fault const& fault) {
                  Db db = prepared;
                  bool const wasHit = failsAsItShould(fault, [&] { fill(db); });
                  IndexImage const image = imageOf(db);
                  for (std::size_t i = 0; i < image.streams.size(); ++i)
                      EXPECT_TRUE(image.streams[i] == before.streams[i] ||
                                  image.streams[i] == after.streams[i])
                          << image.streams[i];
                  EXPECT_EQ(image.streams.size(), before.streams.size());
                  EXPECT_EQ(image == after, !wasHit);
                  return wasHit;
              }),
              6U);
}

TEST(IndexingUnderFaults, KeepsAStreamThatTheCallerAddedWithoutFiles) {
    expectPreparedStoreKept([](auto const& stream, std::string const& /*fileName*/) {
        stream.files.clear();
        stream.packetCount = 0;
    });
}

TEST(IndexingUnderFaults, KeepsAFileThatTheCallerAddedWithoutPackets) {
    expectPreparedStoreKept([](auto const& stream, std::string const& fileName) {
        stream.files.clear();
        static_cast<void>(stream.addFile(fileName));
        static_cast<void>(stream.addFile("another file"));
        stream.packetCount = 7;
    });
}

TEST(IndexingUnderFaults, KeepsAStreamWithThePacketsOfAnotherFile) {
    expectPreparedStoreKept([](auto const& stream, std::string const& /*fileName*/) {
        stream.files.clear();
        stream.addFile("another file")->addPackage(1, 2, 3);
        stream.packetCount = 1;
    });
}

}  // namespace
}  // namespace TalTest::IndexingFaultsTest
