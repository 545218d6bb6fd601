#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <TalIec61850Parser/capture/Filter.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "capture/Criteria.hpp"
#include "capture/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest::FilterTest {
namespace {

using namespace TalIec61850Parser;

constexpr char const* kSource = "00:30:a7:00:00:0a";
constexpr char const* kOtherSource = "00:30:a7:00:00:0b";
constexpr char const* kDestination = "01:0c:cd:01:00:01";
constexpr char const* kOtherDestination = "01:0c:cd:01:00:02";

/// The link layer of a frame from kSource to kDestination, or of others.
EthernetHeader headerOf(char const* source = kSource, char const* destination = kDestination) {
    EthernetHeader header;
    Bytes const sourceOctets = macAddress(source);
    Bytes const destinationOctets = macAddress(destination);
    std::copy(sourceOctets.begin(), sourceOctets.end(), header.srcMac);
    std::copy(destinationOctets.begin(), destinationOctets.end(), header.dstMac);
    return header;
}

EthernetHeader taggedHeader(std::uint16_t vlanId, char hsrLan, char prpLan) {
    EthernetHeader header = headerOf();
    header.hasVlan = header.hasHsr = header.hasPrp = true;
    header.vlanId = vlanId;
    header.hsrLan = hsrLan;
    header.prpLan = prpLan;
    return header;
}

struct GooseSide {
    using Record = Goose;
    using Identifer = GooseIdentifer;
};
struct SvSide {
    using Record = Sv;
    using Identifer = SvIdentifer;
};

/// GOOSE and SV filters are matched alike.
template <typename Side>
class EthernetParserCheckEthernetFilters : public testing::Test {
protected:
    using Record = typename Side::Record;
    using Identifer = typename Side::Identifer;
    using Identifers = std::vector<Identifer>;

    bool check(Identifers const& entries, EthernetHeader const& header) {
        record = {};
        return EthernetParser::_checkEthernetFilters(record, entries, header);
    }
    static Identifer source(std::string const& address) {
        return wanted(&Identifer::srcMac, address);
    }
    static Identifer destination(std::string const& address) {
        return wanted(&Identifer::dstMac, address);
    }
    static Identifer vlan(std::optional<std::uint16_t> id) {
        return wanted(&Identifer::vlan, VlanInfo{.priority = {}, .dei = {}, .vlanId = id});
    }
    static Identifer hsr(std::optional<char> lan) {
        return wanted(&Identifer::hsr,
                      HsrInfo{.hsrSpare1 = {}, .lanId = lan, .hsrSpare2 = {}, .hsrSpare3 = {}});
    }
    static Identifer prp(std::optional<char> lan) {
        PrpInfo info;
        info.lanId = lan;
        return wanted(&Identifer::prp, info);
    }
    /// Which of srcMac, dstMac, vlan, hsr and prp the last check filled, one letter each.
    [[nodiscard]] std::string filled() const {
        std::string letters;
        if (record.srcMac) letters += 's';
        if (record.dstMac) letters += 'd';
        if (record.vlan) letters += 'v';
        if (record.hsr) letters += 'h';
        if (record.prp) letters += 'p';
        return letters;
    }

    Record record;
};

using Sides = testing::Types<GooseSide, SvSide>;
TYPED_TEST_SUITE(EthernetParserCheckEthernetFilters, Sides);

TYPED_TEST(EthernetParserCheckEthernetFilters, EmptyListAcceptsAndFillsTheRecord) {
    EXPECT_TRUE(this->check({}, taggedHeader(0xFFF, 'B', 'A')));
    EXPECT_EQ(this->record.srcMac, kSource);
    EXPECT_EQ(this->record.dstMac, kDestination);
    EXPECT_EQ(this->record.vlan.value().vlanId, 0xFFF);
    EXPECT_EQ(this->record.hsr.value().lanId, 'B');
    EXPECT_EQ(this->record.prp.value().lanId, 'A');
}

TYPED_TEST(EthernetParserCheckEthernetFilters, OnlyWhatTheFrameHasIsFilled) {
    EthernetHeader header = headerOf();
    EXPECT_TRUE(this->check({}, header));
    EXPECT_EQ(this->filled(), "sd");
    header.hasVlan = true;
    EXPECT_TRUE(this->check({}, header));
    EXPECT_EQ(this->filled(), "sdv");
    header = headerOf();
    header.hasHsr = true;
    EXPECT_TRUE(this->check({}, header));
    EXPECT_EQ(this->filled(), "sdh");
    header = headerOf();
    header.hasPrp = true;
    EXPECT_TRUE(this->check({}, header));
    EXPECT_EQ(this->filled(), "sdp");
}

TYPED_TEST(EthernetParserCheckEthernetFilters, OtherMembersOfTheGroupsStayUnset) {
    EXPECT_TRUE(this->check({}, taggedHeader(5, 'A', 'B')));
    EXPECT_FALSE(this->record.vlan->priority.has_value());
    EXPECT_FALSE(this->record.vlan->dei.has_value());
    EXPECT_FALSE(this->record.hsr->hsrSpare1.has_value());
    EXPECT_FALSE(this->record.hsr->hsrSpare2.has_value());
    EXPECT_FALSE(this->record.hsr->hsrSpare3.has_value());
}

TYPED_TEST(EthernetParserCheckEthernetFilters, DestinationIsMatched) {
    std::vector const entries = {this->destination(kDestination)};
    EXPECT_TRUE(this->check(entries, headerOf()));
    EXPECT_FALSE(this->check(entries, headerOf(kSource, kOtherDestination)));
}

TYPED_TEST(EthernetParserCheckEthernetFilters, AddressesAreMatchedAsText) {
    for (char const* const other : {"00:30:A7:00:00:0A", "00-30-a7-00-00-0a", "0030a700000a", "",
                                    "00:30:a7:00:00:0", "00:30:a7:00:00:0a "}) {
        EXPECT_FALSE(this->check({this->source(other)}, headerOf())) << other;
    }
    EXPECT_FALSE(this->check({this->destination("01:0C:CD:01:00:01")}, headerOf()));
    EXPECT_FALSE(this->check({this->destination("01:0C:CD:01:00:01")},
                             headerOf(kSource, kOtherDestination)));
}

TYPED_TEST(EthernetParserCheckEthernetFilters, AnyEntryMayMatch) {
    std::vector const entries = {this->source(kSource), this->source(kOtherSource)};
    EXPECT_TRUE(this->check(entries, headerOf(kSource)));
    EXPECT_TRUE(this->check(entries, headerOf(kOtherSource)));
    EXPECT_FALSE(this->check(entries, headerOf("00:30:a7:00:00:0c")));
}

TYPED_TEST(EthernetParserCheckEthernetFilters, LongListIsSearchedToItsEnd) {
    std::vector entries(1000, this->source(kOtherSource));
    EXPECT_FALSE(this->check(entries, headerOf()));
    entries.push_back(this->source(kSource));
    EXPECT_TRUE(this->check(entries, headerOf()));
    entries.insert(entries.begin(), this->source("none"));
    EXPECT_TRUE(this->check(entries, headerOf()));
}

TYPED_TEST(EthernetParserCheckEthernetFilters, EachCriterionIsMatchedOverTheWholeList) {
    // The second entry leaves the source open, the first the destination.
    std::vector const entries = {this->source(kSource), this->destination(kDestination)};
    EXPECT_TRUE(this->check(entries, headerOf()));
    EXPECT_TRUE(this->check(entries, headerOf(kOtherSource, kOtherDestination)));
}

TYPED_TEST(EthernetParserCheckEthernetFilters, EveryCriterionOfALoneEntryMustPass) {
    auto entry = this->source(kSource);
    entry.dstMac = kDestination;
    EXPECT_TRUE(this->check({entry}, headerOf()));
    EXPECT_FALSE(this->check({entry}, headerOf(kOtherSource, kDestination)));
    EXPECT_FALSE(this->check({entry}, headerOf(kSource, kOtherDestination)));
}

TYPED_TEST(EthernetParserCheckEthernetFilters, CriteriaOfDifferentEntriesAddUp) {
    auto first = this->source(kSource);
    first.dstMac = kDestination;
    auto second = this->source(kOtherSource);
    second.dstMac = kOtherDestination;
    EXPECT_TRUE(this->check({first, second}, headerOf(kSource, kOtherDestination)));
}

TYPED_TEST(EthernetParserCheckEthernetFilters, EntryWithNothingSetAcceptsEveryFrame) {
    std::vector const entries = {anyStream<typename TypeParam::Identifer>()};
    EXPECT_TRUE(this->check(entries, headerOf()));
    EXPECT_TRUE(this->check(entries, taggedHeader(0, 'A', 'A')));
}

TYPED_TEST(EthernetParserCheckEthernetFilters, VlanIsMatchedInTaggedFramesOnly) {
    std::vector const entries = {this->vlan(5)};
    EXPECT_TRUE(this->check(entries, taggedHeader(5, 'A', 'A')));
    EXPECT_FALSE(this->check(entries, taggedHeader(6, 'A', 'A')));
    EXPECT_FALSE(this->check(entries, taggedHeader(0, 'A', 'A')));
    EXPECT_TRUE(this->check(entries, headerOf()));
    EXPECT_FALSE(this->record.vlan.has_value());
}

TYPED_TEST(EthernetParserCheckEthernetFilters, VlanZeroIsAValueToo) {
    EXPECT_TRUE(this->check({this->vlan(0)}, taggedHeader(0, 'A', 'A')));
    EXPECT_FALSE(this->check({this->vlan(0)}, taggedHeader(5, 'A', 'A')));
}

TYPED_TEST(EthernetParserCheckEthernetFilters, HsrIsMatchedInTaggedFramesOnly) {
    EXPECT_TRUE(this->check({this->hsr('B')}, taggedHeader(5, 'B', 'A')));
    EXPECT_FALSE(this->check({this->hsr('B')}, taggedHeader(5, 'A', 'B')));
    EXPECT_FALSE(this->check({this->hsr('b')}, taggedHeader(5, 'B', 'A')));
    EXPECT_TRUE(this->check({this->hsr('B')}, headerOf()));
    EXPECT_FALSE(this->record.hsr.has_value());
}

TYPED_TEST(EthernetParserCheckEthernetFilters, PrpIsMatchedInFramesWithATrailerOnly) {
    EXPECT_TRUE(this->check({this->prp('B')}, taggedHeader(5, 'A', 'B')));
    EXPECT_FALSE(this->check({this->prp('B')}, taggedHeader(5, 'B', 'A')));
    EXPECT_FALSE(this->check({this->prp('b')}, taggedHeader(5, 'A', 'B')));
    EXPECT_TRUE(this->check({this->prp('B')}, headerOf()));
    EXPECT_FALSE(this->record.prp.has_value());
}

TYPED_TEST(EthernetParserCheckEthernetFilters, GroupWithoutItsIdentifierIsNoCriterion) {
    auto vlan = this->vlan({});
    vlan.vlan->priority = 3;
    vlan.vlan->dei = 1;
    auto hsr = this->hsr({});
    hsr.hsr->hsrSpare1 = 1;
    hsr.hsr->hsrSpare2 = 2;
    hsr.hsr->hsrSpare3 = 3;
    for (auto const& entry : {vlan, hsr, this->prp({}), this->vlan({}), this->hsr({})}) {
        EXPECT_TRUE(this->check({entry}, taggedHeader(6, 'A', 'B')));
    }
    // Such an entry opens the criterion for the whole list.
    EXPECT_TRUE(this->check({this->vlan(5), vlan}, taggedHeader(6, 'A', 'B')));
    EXPECT_TRUE(this->check({this->hsr('B'), hsr}, taggedHeader(6, 'A', 'B')));
    EXPECT_TRUE(this->check({this->prp('A'), this->prp({})}, taggedHeader(6, 'A', 'B')));
}

TYPED_TEST(EthernetParserCheckEthernetFilters, RecordIsFilledUpToTheCriterionThatFails) {
    EthernetHeader const header = taggedHeader(5, 'A', 'A');
    EXPECT_FALSE(this->check({this->source(kOtherSource)}, header));
    EXPECT_EQ(this->filled(), "s");
    EXPECT_FALSE(this->check({this->destination(kOtherDestination)}, header));
    EXPECT_EQ(this->filled(), "sd");
    EXPECT_FALSE(this->check({this->vlan(6)}, header));
    EXPECT_EQ(this->filled(), "sd");
    EXPECT_FALSE(this->check({this->hsr('B')}, header));
    EXPECT_EQ(this->filled(), "sdv");
    EXPECT_FALSE(this->check({this->prp('B')}, header));
    EXPECT_EQ(this->filled(), "sdvh");
}

TYPED_TEST(EthernetParserCheckEthernetFilters, CriteriaOfThePduAreNotLookedAt) {
    auto entry = anyStream<typename TypeParam::Identifer>();
    entry.appId = 0x1234;
    entry.reserved1Bit0 = 1;
    entry.confRev = 99;
    EXPECT_TRUE(this->check({entry}, headerOf()));
}

/// The number of GOOSE and of SV packets that a filter lets through, of one frame each.
std::pair<std::size_t, std::size_t> indexedPackets(Filter const& filter) {
    Indexed const result = indexCapture(
        CaptureBuilder().add(1, 0, gooseFrame({}, {})).add(2, 0, svFrame(svEthernet(), {})).bytes(),
        filter);
    return {result.db.gooseProto.getGooseCount(), result.db.svProto.getSvCount()};
}

using Packets = std::pair<std::size_t, std::size_t>;

TEST(Filter, KeepsBothProtocolsAndEveryStreamByDefault) {
    EXPECT_TRUE(Filter{}.parseGoose);
    EXPECT_TRUE(Filter{}.parseSv);
    EXPECT_EQ(indexedPackets({}), Packets(1, 1));
}

TEST(Filter, ListOfOneProtocolLeavesTheOtherAlone) {
    EXPECT_EQ(indexedPackets(gooseFilter({wanted(&GooseIdentifer::dstMac, "none")})),
              Packets(0, 1));
    EXPECT_EQ(indexedPackets(svFilter({wanted(&SvIdentifer::dstMac, "none")})), Packets(1, 0));
}

TEST(Filter, DisabledProtocolIsDroppedWhateverItsList) {
    Filter filter = gooseFilter({anyStream<GooseIdentifer>()});
    filter.svFilters = {anyStream<SvIdentifer>()};
    EXPECT_EQ(indexedPackets(filter), Packets(1, 1));
    filter.parseGoose = false;
    EXPECT_EQ(indexedPackets(filter), Packets(0, 1));
    filter.parseSv = false;
    EXPECT_EQ(indexedPackets(filter), Packets(0, 0));
}

TEST(Filter, DefaultSvEntryAdmitsItsAppIdOnly) {
    SvMessage other;
    other.appId = 0x4001;
    Bytes const capture = CaptureBuilder()
                              .add(1, 0, svFrame(svEthernet(), {}))
                              .add(2, 0, svFrame(svEthernet(), other))
                              .bytes();
    EXPECT_EQ(only(indexCapture(capture, svFilter({SvIdentifer{}})).db.svProto.streams).appId,
              0x4000U);
    EXPECT_EQ(indexCapture(capture, svFilter({anyStream<SvIdentifer>()})).db.svProto.getSvCount(),
              2U);
}

TEST(Filter, DefaultGooseEntryAdmitsEveryStream) {
    EXPECT_EQ(indexedPackets(gooseFilter({GooseIdentifer{}})), Packets(1, 1));
}

TEST(Filter, FrameRejectedByItsAddressLeavesNoTrace) {
    Bytes const capture = CaptureBuilder()
                              .add(1, 0, gooseFrame(Ethernet().from(kSource), {}))
                              .add(2, 0, gooseFrame(Ethernet().from(kOtherSource), {}))
                              .bytes();
    Indexed const result =
        indexCapture(capture, gooseFilter({wanted(&GooseIdentifer::srcMac, kSource)}));
    EXPECT_EQ(only(result.db.gooseProto.streams).srcMac, kSource);
    EXPECT_EQ(only(result.db.gooseProto.streams).packetCount, 1U);
}

TEST(Filter, CriteriaOfLinkLayerAndPduAddUp) {
    auto entry = wanted(&GooseIdentifer::goID, "RELAY1_gcb1");
    entry.vlan.emplace().vlanId = 5;
    Bytes const capture = CaptureBuilder()
                              .add(1, 0, gooseFrame(Ethernet().withVlan(5), {}))
                              .add(2, 0, gooseFrame(Ethernet().withVlan(6), {}))
                              .add(3, 0, gooseFrame({}, {}))
                              .bytes();
    EXPECT_EQ(indexCapture(capture, gooseFilter({entry})).db.gooseProto.getGooseCount(), 2U);
    entry.goID = "another";
    EXPECT_TRUE(isEmpty(indexCapture(capture, gooseFilter({entry})).db));
}

}  // namespace
}  // namespace TalTest::FilterTest
