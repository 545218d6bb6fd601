#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/GooseProto.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#include "store/IdentityRules.hpp"

namespace TalTest::GooseTest {
namespace {

using TalIec61850::GooseIdentifer;
using TalIec61850Parser::Goose;
using TalIec61850Parser::GooseProto;
using TalIec61850Parser::HsrInfo;
using TalIec61850Parser::PrpInfo;
using TalIec61850Parser::VlanInfo;
using Streams = decltype(GooseProto::streams);
using Hash = Streams::hasher;
using Equal = Streams::key_equal;

static_assert(std::is_same_v<decltype(GooseIdentifer::srcMac), Text>);
static_assert(std::is_same_v<decltype(GooseIdentifer::dstMac), Text>);
static_assert(std::is_same_v<decltype(GooseIdentifer::vlan), std::optional<VlanInfo>>);
static_assert(std::is_same_v<decltype(GooseIdentifer::hsr), std::optional<HsrInfo>>);
static_assert(std::is_same_v<decltype(GooseIdentifer::prp), std::optional<PrpInfo>>);
static_assert(std::is_same_v<decltype(GooseIdentifer::appId), std::optional<std::uint64_t>>);
static_assert(std::is_same_v<decltype(GooseIdentifer::reserved1Bit0), std::optional<std::uint8_t>>);
static_assert(std::is_same_v<decltype(GooseIdentifer::gocbRef), Text>);
static_assert(std::is_same_v<decltype(GooseIdentifer::datSet), Text>);
static_assert(std::is_same_v<decltype(GooseIdentifer::goID), Text>);
static_assert(std::is_same_v<decltype(GooseIdentifer::simulation), std::optional<bool>>);
static_assert(std::is_same_v<decltype(GooseIdentifer::confRev), std::optional<std::uint64_t>>);
static_assert(std::is_same_v<decltype(Goose::packetCount), std::uint32_t>);
static_assert(std::is_same_v<decltype(VlanInfo::priority), std::optional<std::uint8_t>>);
static_assert(std::is_same_v<decltype(VlanInfo::dei), std::optional<std::uint8_t>>);
static_assert(std::is_same_v<decltype(VlanInfo::vlanId), std::optional<std::uint16_t>>);
static_assert(std::is_same_v<decltype(HsrInfo::hsrSpare1), std::optional<std::uint8_t>>);
static_assert(std::is_same_v<decltype(HsrInfo::lanId), std::optional<char>>);
static_assert(std::is_same_v<decltype(HsrInfo::hsrSpare2), std::optional<std::uint16_t>>);
static_assert(std::is_same_v<decltype(HsrInfo::hsrSpare3), std::optional<std::uint16_t>>);
static_assert(std::is_same_v<decltype(PrpInfo::lanId), std::optional<char>>);
static_assert(std::is_same_v<Streams, std::unordered_set<Goose, Hash, Equal>>);

// A hasher that cannot throw would make the set forget the hashes that keep VLANs apart.
static_assert(!std::is_nothrow_invocable_v<Hash const&, Goose const&>);

/// A record with every member set.
Goose publisher() {
    Goose goose;
    goose.srcMac = "00:1a:2b:3c:4d:5e";
    goose.dstMac = "01:0c:cd:01:00:01";
    goose.vlan = VlanInfo{.priority = 4, .dei = 0, .vlanId = 0x123};
    goose.hsr = HsrInfo{.hsrSpare1 = 1, .lanId = 'A', .hsrSpare2 = 2, .hsrSpare3 = 3};
    goose.prp.emplace().lanId = 'A';
    goose.appId = 0x3001;
    goose.reserved1Bit0 = 1;
    goose.gocbRef = "IED1LD0/LLN0$GO$gcb01";
    goose.datSet = "IED1LD0/LLN0$dsTrip";
    goose.goID = "IED1_Trip";
    goose.simulation = true;
    goose.confRev = 10000;
    return goose;
}

std::vector<IdentityMember<Goose>> members() {
    return {
        {"srcMac", [](Goose& g) { g.srcMac = "00:1a:2b:3c:4d:5f"; },
         [](Goose& g) { g.srcMac.reset(); }, [](Goose& g) { g.srcMac = ""; }, true, true},
        {"dstMac", [](Goose& g) { g.dstMac = "01:0c:cd:01:00:02"; },
         [](Goose& g) { g.dstMac.reset(); }, [](Goose& g) { g.dstMac = ""; }, true, true},
        {"vlan.priority", [](Goose& g) { g.vlan->priority = 5; },
         [](Goose& g) { g.vlan->priority.reset(); }, [](Goose& g) { g.vlan->priority = 0; }, true,
         false},
        {"vlan.dei", [](Goose& g) { g.vlan->dei = 1; }, [](Goose& g) { g.vlan->dei.reset(); },
         [](Goose& g) { g.vlan->dei = 0; }, true, false},
        {"vlan.vlanId", [](Goose& g) { g.vlan->vlanId = 0x124; },
         [](Goose& g) { g.vlan->vlanId.reset(); }, [](Goose& g) { g.vlan->vlanId = 0; }, true,
         false},
        {"vlan", [](Goose& g) { g.vlan = VlanInfo{.priority = {}, .dei = {}, .vlanId = 7}; },
         [](Goose& g) { g.vlan.reset(); }, [](Goose& g) { g.vlan = VlanInfo{}; }, true, false},
        {"hsr.lanId", [](Goose& g) { g.hsr->lanId = 'B'; }, [](Goose& g) { g.hsr.reset(); },
         [](Goose& g) { g.hsr = HsrInfo{}; }, false, false},
        {"hsr.hsrSpare1", [](Goose& g) { g.hsr->hsrSpare1 = 9; },
         [](Goose& g) { g.hsr->hsrSpare1.reset(); }, [](Goose& g) { g.hsr->hsrSpare1 = 0; }, false,
         false},
        {"hsr.hsrSpare2", [](Goose& g) { g.hsr->hsrSpare2 = 9; },
         [](Goose& g) { g.hsr->hsrSpare2.reset(); }, [](Goose& g) { g.hsr->hsrSpare2 = 0; }, false,
         false},
        {"hsr.hsrSpare3", [](Goose& g) { g.hsr->hsrSpare3 = 9; },
         [](Goose& g) { g.hsr->hsrSpare3.reset(); }, [](Goose& g) { g.hsr->hsrSpare3 = 0; }, false,
         false},
        {"prp.lanId", [](Goose& g) { g.prp->lanId = 'B'; }, [](Goose& g) { g.prp.reset(); },
         [](Goose& g) { g.prp = PrpInfo{}; }, false, false},
        {"appId", [](Goose& g) { g.appId = 0x100003001U; }, [](Goose& g) { g.appId.reset(); },
         [](Goose& g) { g.appId = 0; }, true, true},
        {"reserved1Bit0", [](Goose& g) { g.reserved1Bit0 = 2; },
         [](Goose& g) { g.reserved1Bit0.reset(); }, [](Goose& g) { g.reserved1Bit0 = 0; }, false,
         true},
        {"gocbRef", [](Goose& g) { g.gocbRef = "IED1LD0/LLN0$GO$gcb02"; },
         [](Goose& g) { g.gocbRef.reset(); }, [](Goose& g) { g.gocbRef = ""; }, true, true},
        {"datSet", [](Goose& g) { g.datSet = "IED1LD0/LLN0$dsTriP"; },
         [](Goose& g) { g.datSet.reset(); }, [](Goose& g) { g.datSet = ""; }, true, true},
        {"goID", [](Goose& g) { g.goID = "IED1_Trip "; }, [](Goose& g) { g.goID.reset(); },
         [](Goose& g) { g.goID = ""; }, true, true},
        {"simulation", [](Goose& g) { g.simulation = false; },
         [](Goose& g) { g.simulation = std::nullopt; }, [](Goose& g) { g.simulation = false; },
         true, true},
        {"confRev", [](Goose& g) { g.confRev = 10001; }, [](Goose& g) { g.confRev.reset(); },
         [](Goose& g) { g.confRev = 0; }, true, true},
    };
}

Goose changed(std::function<void(Goose&)> const& change) {
    Goose goose = publisher();
    change(goose);
    return goose;
}

std::size_t hashOf(Goose const& g) {
    return termOf(g.srcMac) ^ termOf(g.dstMac) ^ termOf(g.vlan) ^ g.appId.value_or(0) ^
           termOf(g.gocbRef) ^ termOf(g.datSet) ^ termOf(g.goID) ^
           std::size_t{g.simulation.value_or(false)} ^ g.confRev.value_or(0);
}

auto comparedPart(Goose const& g) {
    return std::tuple(g.srcMac.value_or(""), g.dstMac.value_or(""), g.appId.value_or(0),
                      g.reserved1Bit0.value_or(0), g.gocbRef.value_or(""), g.datSet.value_or(""),
                      g.goID.value_or(""), g.simulation.value_or(false), g.confRev.value_or(0));
}

IdentityRules<Goose, decltype(comparedPart(Goose()))> rules() {
    return {publisher(), members(), hashOf, comparedPart};
}

TEST(Goose, HasNothingSetByDefault) {
    Goose const goose;
    EXPECT_FALSE(goose.srcMac || goose.dstMac || goose.vlan || goose.hsr || goose.prp);
    EXPECT_FALSE(goose.appId || goose.reserved1Bit0 || goose.gocbRef || goose.datSet);
    EXPECT_FALSE(goose.goID || goose.simulation || goose.confRev);
    EXPECT_EQ(goose.packetCount, 0U);
    EXPECT_TRUE(goose.files.empty());
}

TEST(GooseIdentity, TakesInEachMemberAsLaidDown) { rules().expectEachMemberWhereItCounts(); }

TEST(GooseIdentity, TakesAMemberThatIsNotSetForZeroOrEmptyInEquality) {
    rules().expectUnsetToEqualZero();
    for (auto const& member : members()) {
        SCOPED_TRACE(member.name);
        EXPECT_EQ(Equal{}(publisher(), changed(member.unset)), !member.inEquality);
    }
}

TEST(GooseIdentity, KeepsAbsentAndEmptyTextsApartByHash) {
    EXPECT_NE(std::hash<std::string>{}(""), 0U);
    rules().expectUnsetAndZeroApart({"srcMac", "dstMac", "gocbRef", "datSet", "goID"});
}

TEST(GooseHash, IsTheExclusiveOrOfItsTerms) {
    EXPECT_EQ(Hash{}(Goose()), 0U);
    rules().expectHashOfEveryChange();
}

TEST(GooseHash, OfNumbersIsTheirExclusiveOr) {
    Goose goose;
    goose.appId = 0xF000000000000001U;
    EXPECT_EQ(Hash{}(goose), 0xF000000000000001U);
    goose.confRev = 0x10;
    EXPECT_EQ(Hash{}(goose), 0xF000000000000011U);
    goose.simulation = true;
    EXPECT_EQ(Hash{}(goose), 0xF000000000000010U);
    goose.vlan = VlanInfo{.priority = 0x80, .dei = 0x01, .vlanId = 0xFFF0};
    EXPECT_EQ(Hash{}(goose), 0xF00000000000FF61U);
}

TEST(GooseHash, DoesNotLookAtWhatIndexingAdds) {
    Goose const goose = publisher();
    std::size_t const before = Hash{}(goose);
    goose.packetCount = 99;
    goose.addFile("a.pcap")->addPackage(1, 2, 3);
    EXPECT_EQ(Hash{}(goose), before);
    EXPECT_TRUE(Equal{}(goose, publisher()));
}

TEST(GooseIdentity, IsLostOnVlansWhoseTermsAreEqual) {
    Goose a = publisher();
    Goose b = publisher();
    a.vlan = VlanInfo{.priority = {}, .dei = {}, .vlanId = 5};
    b.vlan = VlanInfo{.priority = 5, .dei = {}, .vlanId = {}};
    EXPECT_EQ(streamsOf<Goose>({a, b}), 1U);
    b.vlan = VlanInfo{.priority = 1, .dei = 0, .vlanId = 4};
    EXPECT_EQ(streamsOf<Goose>({a, b}), 1U);
    a.vlan = VlanInfo{.priority = 3, .dei = {}, .vlanId = 3};
    b.vlan.reset();
    EXPECT_EQ(streamsOf<Goose>({a, b}), 1U);
}

TEST(GooseIdentity, TellsRecordsOfOneHashApartByEquality) {
    rules().expectTwoStreamsOfOneHash<Text>(&Goose::gocbRef, &Goose::datSet);
    rules().expectTwoStreamsOfOneHash<Text>(&Goose::srcMac, &Goose::dstMac);
    rules().expectTwoStreamsOfOneHash<std::optional<std::uint64_t>>(&Goose::appId, &Goose::confRev);
}

TEST(GooseIdentity, ComparesTextsOctetForOctet) {
    rules().expectTextToCountOctetForOctet(&Goose::goID);
}

TEST(GooseIdentity, IsTheSameOverBothLansOfARing) {
    Goose lanB = publisher();
    lanB.hsr->lanId = 'B';
    lanB.prp->lanId = 'B';
    EXPECT_EQ(streamsOf<Goose>({publisher(), lanB}), 1U);
}

TEST(GooseIdentity, Of4095VlansStays4095Streams) {
    for (unsigned seed = 0; seed < 25; ++seed) {
        SCOPED_TRACE(seed);
        GooseProto proto;
        std::vector<Goose const*> stored;
        for (int round = 0; round < 2; ++round) {
            for (std::uint16_t vlanId = 1; vlanId < 4096; ++vlanId) {
                Goose goose = publisher();
                goose.gocbRef = "IED" + std::to_string(seed) + "LD0/LLN0$GO$gcb";
                goose.appId = seed * 0x9E3779B97F4A7C15U;
                goose.vlan->vlanId = vlanId;
                Goose const* const record = &proto.addGoose(std::move(goose));
                ASSERT_EQ(record->vlan->vlanId, vlanId);
                if (round == 0) {
                    stored.push_back(record);
                } else {
                    ASSERT_EQ(record, stored[vlanId - 1U]);
                }
            }
            ASSERT_EQ(proto.getGooseCount(), 4095U);
        }
    }
}

Goose anyGoose() {
    Goose g;
    for (auto* const text : {&g.srcMac, &g.dstMac, &g.gocbRef, &g.datSet, &g.goID})
        *text = anyText();
    setAny(g.appId);
    setAny(g.reserved1Bit0);
    setAny(g.simulation);
    setAny(g.confRev);
    g.vlan = anyVlan();
    if (anyNumber() > 0) {
        setAny(g.hsr.emplace().lanId);
        setAny(g.prp.emplace().lanId);
    }
    return g;
}

RC_GTEST_PROP(GooseIdentity, EqualsAreEqualBothWays, ()) {
    Goose const a = anyGoose();
    rules().checkEquality(a, anyGoose());
}

RC_GTEST_PROP(GooseIdentity, MakesOneStreamOfEqualHashAndEquality, ()) {
    rules().checkStreams(
        anyGoose, {[](Goose& g, Goose const& other) { g = other; },
                   [](Goose& g, Goose const& other) { g.vlan = other.vlan; },
                   [](Goose& g, Goose const& other) { g.reserved1Bit0 = other.reserved1Bit0; },
                   [](Goose& g, Goose const& other) { g.gocbRef = other.gocbRef; },
                   [](Goose& g, Goose const& other) { g.hsr = other.hsr; }});
}

}  // namespace
}  // namespace TalTest::GooseTest
