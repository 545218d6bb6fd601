// Every other operation when memory ends: its result in full or std::bad_alloc.

#include <gtest/gtest.h>

#include <TalIec61850Parser/TalIec61850Parser.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "capture/Criteria.hpp"
#include "cli/ServedStatusFile.hpp"
#include "faults/FaultTraffic.hpp"
#include "faults/UnderFaults.hpp"
#include "goose/GoosePduText.hpp"
#include "index/IndexImage.hpp"
#include "index/Indexing.hpp"
#include "support/Apdu.hpp"
#include "support/TempFile.hpp"
#include "sv/AsduText.hpp"

namespace TalTest::OperationsFaultsTest {
namespace {

using namespace TalIec61850Parser;

/// Two relays and two merging units, in two files.
struct Stored {
    TempDir folder;
    std::string first = folder.write("the first capture.pcap", mixedCapture());
    std::string second = folder.write("the second capture.pcap", mixedCapture());
    Db db;

    Stored() {
        indexInto(db, first);
        indexInto(db, second);
    }
    [[nodiscard]] Goose const& goose() const { return *db.gooseProto.streams.begin(); }
    [[nodiscard]] Sv const& sv() const { return *db.svProto.streams.begin(); }
};

Timest const from{3, 0};
Timest const to{20, 0};

TEST(QueriesUnderFaults, OfATimeWindowGiveAllOrNothing) {
    Stored const stored;
    expectAllOrNothing(
        [&] { return stored.goose().getfilteredPackages(from, to); },
        [](auto const& found) {
            std::vector<void const*> all;
            for (auto const& [file, result] : found) {
                all.insert(all.end(), {file, result.previousPackage, result.nextPackage});
                all.insert(all.end(), result.packages.begin(), result.packages.end());
            }
            return all;
        },
        4);
    expectAllOrNothing([&] { return stored.sv().getfilteredPackages(from, to); });
}

TEST(QueriesUnderFaults, OfTheNearestPacketsGiveAllOrNothing) {
    Stored const stored;
    expectAllOrNothing([&] { return stored.goose().findFilesNearestPackageIterator(to); });
    expectAllOrNothing([&] { return stored.sv().findFilesNearestPackageIterator(to); });
}

TEST(StoreUnderFaults, IsCopiedWholeOrNotAtAll) {
    Stored const stored;
    expectAllOrNothing([&] { return stored.db; }, [](Db const& copy) { return imageOf(copy); }, 40);
}

TEST(StoreUnderFaults, IsClearedOfAFileOrLeftAsItIs) {
    Stored const stored;
    IndexImage const whole = imageOf(stored.db);
    Db cleared = stored.db;
    cleared.clearByFileName(stored.first);
    IndexImage const rest = imageOf(cleared);
    EXPECT_GE(attemptUnderEachFault([&](Fault const& fault) {
                  Db db = stored.db;
                  bool const wasHit =
                      failsAsItShould(fault, [&] { db.clearByFileName(stored.first); });
                  EXPECT_EQ(difference(imageOf(db), wasHit ? whole : rest), "");
                  return wasHit;
              }),
              1U);
}

TEST(StoreUnderFaults, TakesInAStreamAFileAndAPacketOrStaysAsItIs) {
    Stored const stored;
    IndexImage const whole = imageOf(stored.db);
    Goose goose = stored.goose();
    goose.goID = "another name, longer than a string holds in place";
    EXPECT_GE(attemptUnderEachFault([&](Fault const& fault) {
                  Db db;
                  Goose candidate = goose;
                  bool const wasHit =
                      failsAsItShould(fault, [&] { db.gooseProto.addGoose(std::move(candidate)); });
                  EXPECT_EQ(db.gooseProto.getGooseCount(), wasHit ? 0U : 1U);
                  return wasHit;
              }),
              1U);
    EXPECT_GE(attemptUnderEachFault([&](Fault const& fault) {
                  Goose const stream = goose;
                  bool const wasHit = failsAsItShould(fault, [&] {
                      static_cast<void>(stream.addFile("a third capture, with a long name"));
                  });
                  EXPECT_EQ(stream.files.size(), wasHit ? 2U : 3U);
                  return wasHit;
              }),
              3U);
}

TEST(StoreUnderFaults, TakesInPacketsUpToTheFault) {
    constexpr unsigned many = 100;
    EXPECT_GE(attemptUnderEachFault([&](Fault const& fault) {
                  PackageFile const file("a capture");
                  unsigned added = 0;
                  bool const wasHit = failsAsItShould(fault, [&] {
                      for (; added < many; ++added) file.addPackage(added, 0, added);
                  });
                  EXPECT_EQ(file.packages.size(), added);
                  EXPECT_EQ(added == many, !wasHit);
                  return wasHit;
              }),
              3U);
}

/// Where the first element of this tag is in a frame.
std::size_t positionOf(Bytes const& frame, Bytes const& element) {
    return find(frame, element).value();
}

TEST(DecodingUnderFaults, OfAGooseFromItsFileGivesAllOrNothing) {
    GooseMessage message;
    std::vector<Bytes> entries(40, dataBoolean(true));
    entries.push_back(dataStructure({dataBoolean(false), dataFloat(1)}));
    message.setData(entries);
    message.goID = std::string(40, '\xFF');
    Bytes const frame = gooseFrame({}, message);
    TempFile const file(frame);
    std::size_t const position = positionOf(frame, goosePdu(message));
    auto const decode = [&] { return GooseParser::parseGoosePDUFromFile(file.path(), position); };
    EXPECT_EQ(decode().gocbRef, message.gocbRef);
    expectAllOrNothing(
        decode, [](GoosePdu const& pdu) { return textOf(pdu); }, 6);
    GoosePdu const pdu = decode();
    expectAllOrNothing([&] { return GooseParser::parseBooleanValues(pdu.allData); });
    std::vector<Bytes> const deep = {nestedWithSiblings(100), nested(0x82, 20, dataBoolean(true))};
    for (Bytes const& data : deep) {
        message.setData({data, dataBoolean(true)});
        expectAllOrNothing([&] { return GooseParser::parseBooleanValues(*message.allData); });
    }
}

TEST(DecodingUnderFaults, OfAnSvFromItsFileGivesAllOrNothing) {
    SvMessage message;
    message.asdus.resize(5);
    message.asdus[1].svID = std::string(40, 's');
    message.asdus[2].datSet = std::string(40, 'd');
    message.asdus[3].refrTm = utcTime(1);
    message.asdus[4].svID = std::string(40, '\x01');
    Bytes const frame = svFrame({}, message);
    TempFile const file(frame);
    std::size_t const position = positionOf(frame, savPdu(message)) + sequenceOffset(message);
    auto const decode = [&] { return SvParser::parseASDUFromFile(file.path(), position); };
    EXPECT_EQ(decode().size(), 5U);
    expectAllOrNothing(
        decode, [](auto const& asdus) { return textOf(asdus); }, 8);
}

TEST(DecodingUnderFaults, OfAnElementLeavesItReadOrNot) {
    Bytes const data = ber(0x85, Bytes(300, 7));
    expectAllOrNothing([&] {
        Asn1Tag tag;
        std::size_t position = 0;
        EXPECT_TRUE(Asn1Parser::parseTag(data, position, tag));
        return std::pair(tag.value, position);
    });
}

TEST(DecodingUnderFaults, OfValuesAsTextGivesAllOrNothing) {
    using Renderer = std::string (*)(Bytes const&);
    std::vector<std::pair<Renderer, Bytes>> const cases = {
        {Asn1Parser::formatBytes, Bytes(30, 0xAB)},
        {Asn1Parser::bytesToString, text("a text that is printable")},
        {Asn1Parser::bytesToString, Bytes(30, 0xFF)},
        {Asn1Parser::convertGooseTimestampToDateTime, {}},
        {Asn1Parser::convertGooseTimestampToDateTime, {1, 2, 3, 4}},
        {Asn1Parser::convertGooseTimestampToDateTime, {1, 2, 3, 4, 5, 6}},
        {Asn1Parser::convertGooseTimestampToDateTime, Bytes(8, 0x41)},
        {Asn1Parser::convertGooseTimestampToDateTime, Bytes(8, 0x7F)},
        {Asn1Parser::convertGooseTimestampToDateTime, Bytes(20, 0x7F)},
        {Asn1Parser::convertBytesToTimestamp, Bytes(8, 0x7F)},
        {Asn1Parser::convertBytesToTimestamp, Bytes(20, 0x7F)},
        {Asn1Parser::convertRefrTmToDateTime, {}},
        {Asn1Parser::convertRefrTmToDateTime, Bytes(8, 0x17)},
    };
    for (auto const& each : cases) {
        SCOPED_TRACE(testing::PrintToString(each.second));
        auto const render = [&] { return each.first(each.second); };
        std::size_t const least = render().size() > 15 ? 1 : 0;  // a short one takes no memory
        expectAllOrNothing(
            render, [](std::string const& shown) { return shown; }, least);
    }
    std::array<std::uint8_t, 6> const address = {};
    expectAllOrNothing([&] { return EthernetParser::_macToString(address.data()); });
}

/// Has a frame, from its application header on, indexed alone.
template <typename Record, typename Parse>
void expectFilledOrThrown(Parse const& parse, Bytes const& payload) {
    expectAllOrNothing(
        [&] {
            Record record;
            Package package;
            EXPECT_TRUE(parse(payload, 0, {}, 0, record, package, {}));
            return record;
        },
        [](Record const& record) { return identityText(record); });
}

TEST(JudgingUnderFaults, OfAFrameWithCriteriaGivesAVerdictOrNone) {
    Filter filter;
    filter.gooseFilters.emplace_back().srcMac = "02:00:00:00:00:01";
    filter.gooseFilters.back().gocbRef = "RELAY1LD0/LLN0$GO$gcb1";
    filter.gooseFilters.back().goID = std::string("RELAY1_gcb1");
    filter.svFilters.emplace_back().svID = "a merging unit's name 1";
    filter.svFilters.back().dstMac = svEthernet().destination;
    for (Bytes const& frame : {relayFrame(1, 1), relayFrame(2, 1), mergingUnitFrame(1, 1)}) {
        expectAllOrNothing([&] { return EthernetParser::parsePacketSimple(frame, filter); },
                           [](bool verdict) { return verdict; }, 0);
    }
    Bytes const deep = concat({ber(0x80, {1}), ber(0xA2, ber(0x30, nestedWithSiblings(60)))});
    Bytes const frame =
        ethernetFrame(svEthernet(), etherTypeSampledValues, apdu({}, ber(0x60, deep)));
    Filter const any = svFilter({anyStream<SvIdentifer>()});
    expectAllOrNothing([&] { return EthernetParser::parsePacketSimple(frame, any); });
}

TEST(JudgingUnderFaults, OfAFrameAloneFillsItsRecordOrThrows) {
    expectFilledOrThrown<Goose>(GooseParser::parsePacket, gooseApdu({}));
    SvMessage const message = message92le("a merging unit of a long name", 1);
    expectFilledOrThrown<Sv>(SvParser::parsePacket, svApdu(message));
}

TEST(MemoryInfoUnderFaults, GivesAFigureOrThrows) {
    tal::test::ServedStatusFile const status("Name:\tx\nGroups:\t" + std::string(200, '1') +
                                             "\nVmRSS:\t         2048\nThreads:\t1\n");
    EXPECT_EQ(cross::MemoryInfo::getCurrentProcessMemoryUsage(), std::uint64_t{2048} << 10U);
    expectAllOrNothing([] { return cross::MemoryInfo::getCurrentProcessMemoryUsage(); });
    expectAllOrNothing([] { return cross::MemoryInfo::bytesToString(~std::uint64_t{0}); },
                       [](std::string const& shown) { return shown; }, 0);
}

}  // namespace
}  // namespace TalTest::OperationsFaultsTest
