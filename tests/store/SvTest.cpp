#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/store/Sv.hpp>
#include <TalIec61850Parser/store/SvProto.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#include "store/IdentityRules.hpp"

namespace TalTest::SvTest {
namespace {

using TalIec61850::SvIdentifer;
using TalIec61850Parser::HsrInfo;
using TalIec61850Parser::PrpInfo;
using TalIec61850Parser::Sv;
using TalIec61850Parser::SvProto;
using TalIec61850Parser::VlanInfo;
using Streams = decltype(SvProto::streams);
using Hash = Streams::hasher;
using Equal = Streams::key_equal;

static_assert(std::is_same_v<decltype(SvIdentifer::srcMac), Text>);
static_assert(std::is_same_v<decltype(SvIdentifer::spareText), Text>);
static_assert(std::is_same_v<decltype(SvIdentifer::vlan), std::optional<VlanInfo>>);
static_assert(std::is_same_v<decltype(SvIdentifer::hsr), std::optional<HsrInfo>>);
static_assert(std::is_same_v<decltype(SvIdentifer::prp), std::optional<PrpInfo>>);
static_assert(std::is_same_v<decltype(SvIdentifer::appId), std::optional<std::uint64_t>>);
static_assert(std::is_same_v<decltype(SvIdentifer::dstMac), Text>);
static_assert(std::is_same_v<decltype(SvIdentifer::reserved1Bit0), std::optional<std::uint8_t>>);
static_assert(std::is_same_v<decltype(SvIdentifer::svID), Text>);
static_assert(std::is_same_v<decltype(SvIdentifer::confRev), std::optional<std::uint64_t>>);
static_assert(std::is_same_v<decltype(Sv::maxSmpCnt), std::uint16_t>);
static_assert(std::is_same_v<decltype(Sv::smpRate), std::uint16_t>);
static_assert(std::is_same_v<decltype(Sv::packetCount), std::uint32_t>);
static_assert(std::is_same_v<decltype(Sv::maxNoASDU), std::uint32_t>);
static_assert(std::is_same_v<Streams, std::unordered_set<Sv, Hash, Equal>>);
static_assert(!std::is_nothrow_invocable_v<Hash const&, Sv const&>);

/// A record with every member set.
Sv publisher() {
    Sv sv;
    sv.srcMac = "00:1a:2b:3c:4d:5e";
    sv.spareText = "spare";
    sv.vlan = VlanInfo{.priority = 4, .dei = 0, .vlanId = 0x123};
    sv.hsr = HsrInfo{.hsrSpare1 = 1, .lanId = 'A', .hsrSpare2 = 2, .hsrSpare3 = 3};
    sv.prp.emplace().lanId = 'A';
    sv.appId = 0x4001;
    sv.dstMac = "01:0c:cd:04:00:01";
    sv.reserved1Bit0 = 1;
    sv.svID = "IED1MU0101";
    sv.confRev = 10000;
    return sv;
}

std::vector<IdentityMember<Sv>> members() {
    return {
        {"srcMac", [](Sv& s) { s.srcMac = "00:1a:2b:3c:4d:5f"; }, [](Sv& s) { s.srcMac.reset(); },
         [](Sv& s) { s.srcMac = ""; }, true, true},
        {"spareText", [](Sv& s) { s.spareText = "other"; }, [](Sv& s) { s.spareText.reset(); },
         [](Sv& s) { s.spareText = ""; }, false, false},
        {"vlan.priority", [](Sv& s) { s.vlan->priority = 5; },
         [](Sv& s) { s.vlan->priority.reset(); }, [](Sv& s) { s.vlan->priority = 0; }, true, true},
        {"vlan.dei", [](Sv& s) { s.vlan->dei = 1; }, [](Sv& s) { s.vlan->dei.reset(); },
         [](Sv& s) { s.vlan->dei = 0; }, true, true},
        {"vlan.vlanId", [](Sv& s) { s.vlan->vlanId = 0x124; },
         [](Sv& s) { s.vlan->vlanId.reset(); }, [](Sv& s) { s.vlan->vlanId = 0; }, true, true},
        {"vlan", [](Sv& s) { s.vlan = VlanInfo{.priority = {}, .dei = {}, .vlanId = 7}; },
         [](Sv& s) { s.vlan.reset(); }, [](Sv& s) { s.vlan = VlanInfo{}; }, true, true},
        {"hsr", [](Sv& s) { s.hsr->lanId = 'B'; }, [](Sv& s) { s.hsr.reset(); },
         [](Sv& s) { s.hsr = HsrInfo{}; }, false, true},
        {"hsr.lanId", [](Sv& s) { s.hsr->lanId = 'a'; }, [](Sv& s) { s.hsr->lanId.reset(); },
         [](Sv& s) { s.hsr->lanId = '\0'; }, false, true},
        {"hsr.hsrSpare1", [](Sv& s) { s.hsr->hsrSpare1 = 9; },
         [](Sv& s) { s.hsr->hsrSpare1.reset(); }, [](Sv& s) { s.hsr->hsrSpare1 = 0; }, false, true},
        {"hsr.hsrSpare2", [](Sv& s) { s.hsr->hsrSpare2 = 0x102; },
         [](Sv& s) { s.hsr->hsrSpare2.reset(); }, [](Sv& s) { s.hsr->hsrSpare2 = 0; }, false, true},
        {"hsr.hsrSpare3", [](Sv& s) { s.hsr->hsrSpare3 = 0x103; },
         [](Sv& s) { s.hsr->hsrSpare3.reset(); }, [](Sv& s) { s.hsr->hsrSpare3 = 0; }, false, true},
        {"prp.lanId", [](Sv& s) { s.prp->lanId = 'B'; }, [](Sv& s) { s.prp.reset(); },
         [](Sv& s) { s.prp = PrpInfo{}; }, false, false},
        {"appId", [](Sv& s) { s.appId = 0x100004001U; }, [](Sv& s) { s.appId.reset(); },
         [](Sv& s) { s.appId = 0; }, true, true},
        {"dstMac", [](Sv& s) { s.dstMac = "01:0c:cd:04:00:02"; }, [](Sv& s) { s.dstMac.reset(); },
         [](Sv& s) { s.dstMac = ""; }, true, true},
        {"reserved1Bit0", [](Sv& s) { s.reserved1Bit0 = 2; },
         [](Sv& s) { s.reserved1Bit0.reset(); }, [](Sv& s) { s.reserved1Bit0 = 0; }, true, true},
        {"svID", [](Sv& s) { s.svID = "IED1MU0102"; }, [](Sv& s) { s.svID.reset(); },
         [](Sv& s) { s.svID = ""; }, true, true},
        {"confRev", [](Sv& s) { s.confRev = 10001; }, [](Sv& s) { s.confRev.reset(); },
         [](Sv& s) { s.confRev = 0; }, true, true},
    };
}

std::size_t hashOf(Sv const& s) {
    return termOf(s.srcMac) ^ termOf(s.dstMac) ^ termOf(s.vlan) ^ s.appId.value_or(0) ^
           termOf(s.svID) ^ s.reserved1Bit0.value_or(0) ^ s.confRev.value_or(0);
}

auto comparedPart(Sv const& s) {
    VlanInfo const vlan = s.vlan.value_or(VlanInfo{});
    HsrInfo const hsr = s.hsr.value_or(HsrInfo{});
    return std::tuple(s.srcMac.value_or(""), s.dstMac.value_or(""), vlan.priority.value_or(0),
                      vlan.dei.value_or(0), vlan.vlanId.value_or(0), hsr.hsrSpare1.value_or(0),
                      hsr.lanId.value_or('\0'), hsr.hsrSpare2.value_or(0),
                      hsr.hsrSpare3.value_or(0), s.appId.value_or(0), s.svID.value_or(""),
                      s.reserved1Bit0.value_or(0), s.confRev.value_or(0));
}

IdentityRules<Sv, decltype(comparedPart(Sv()))> rules() {
    return {publisher(), members(), hashOf, comparedPart};
}

TEST(Sv, HasOnlyItsAppIdSetByDefault) {
    Sv const sv;
    EXPECT_EQ(sv.appId, std::uint64_t{0x4000});
    EXPECT_EQ(SvIdentifer().appId, std::uint64_t{16384});
    EXPECT_FALSE(sv.srcMac || sv.spareText || sv.vlan || sv.hsr || sv.prp);
    EXPECT_FALSE(sv.dstMac || sv.reserved1Bit0 || sv.svID || sv.confRev);
    EXPECT_EQ(sv.maxSmpCnt, 0U);
    EXPECT_EQ(sv.smpRate, 0U);
    EXPECT_EQ(sv.packetCount, 0U);
    EXPECT_EQ(sv.maxNoASDU, 0U);
    EXPECT_TRUE(sv.files.empty());
}

TEST(SvIdentity, TakesInEachMemberAsLaidDown) { rules().expectEachMemberWhereItCounts(); }

TEST(SvIdentity, TakesAMemberThatIsNotSetForZeroOrEmptyInEquality) {
    rules().expectUnsetToEqualZero();
}

TEST(SvIdentity, KeepsAbsentAndEmptyTextsApartByHash) {
    rules().expectUnsetAndZeroApart({"srcMac", "dstMac", "svID"});
}

TEST(SvIdentity, TakesAnAppIdThatIsNotSetForZeroAndNotForTheDefault) {
    Sv unset;
    unset.appId.reset();
    Sv zero;
    zero.appId = 0;
    EXPECT_EQ(streamsOf<Sv>({unset, zero}), 1U);
    EXPECT_EQ(streamsOf<Sv>({unset, Sv()}), 2U);
}

TEST(SvHash, IsTheExclusiveOrOfItsTerms) {
    EXPECT_EQ(Hash{}(Sv()), 0x4000U);
    rules().expectHashOfEveryChange();
}

TEST(SvHash, OfNumbersIsTheirExclusiveOr) {
    Sv sv;
    sv.appId = 0xF000000000000001U;
    EXPECT_EQ(Hash{}(sv), 0xF000000000000001U);
    sv.confRev = 0x10;
    EXPECT_EQ(Hash{}(sv), 0xF000000000000011U);
    sv.reserved1Bit0 = 0xFF;
    EXPECT_EQ(Hash{}(sv), 0xF0000000000000EEU);
    sv.vlan = VlanInfo{.priority = 0x80, .dei = 0x01, .vlanId = 0xFFF0};
    EXPECT_EQ(Hash{}(sv), 0xF00000000000FF9FU);
}

TEST(SvHash, DoesNotLookAtWhatIndexingAdds) {
    Sv const sv = publisher();
    std::size_t const before = Hash{}(sv);
    sv.maxSmpCnt = 3999;
    sv.smpRate = 80;
    sv.packetCount = 99;
    sv.maxNoASDU = 8;
    sv.addFile("a.pcap")->addPackage(1, 2, 3);
    EXPECT_EQ(Hash{}(sv), before);
    EXPECT_TRUE(Equal{}(sv, publisher()));
}

TEST(SvIdentity, TellsVlansOfEqualTermsApart) {
    Sv a = publisher();
    Sv b = publisher();
    a.vlan = VlanInfo{.priority = {}, .dei = {}, .vlanId = 5};
    b.vlan = VlanInfo{.priority = 5, .dei = {}, .vlanId = {}};
    EXPECT_EQ(Hash{}(a), Hash{}(b));
    EXPECT_EQ(streamsOf<Sv>({a, b}), 2U);
    b.vlan = VlanInfo{.priority = 1, .dei = 0, .vlanId = 4};
    EXPECT_EQ(streamsOf<Sv>({a, b}), 2U);
}

TEST(SvIdentity, TellsRecordsOfOneHashApartByEquality) {
    rules().expectTwoStreamsOfOneHash<Text>(&Sv::srcMac, &Sv::dstMac);
    rules().expectTwoStreamsOfOneHash<std::optional<std::uint64_t>>(&Sv::appId, &Sv::confRev);
}

TEST(SvIdentity, IsTwoStreamsOverTheTwoDirectionsOfARing) {
    Sv lanA;
    lanA.hsr.emplace().lanId = 'A';
    Sv lanB;
    lanB.hsr.emplace().lanId = 'B';
    EXPECT_EQ(Hash{}(lanA), Hash{}(lanB));
    EXPECT_EQ(streamsOf<Sv>({lanA, lanB}), 2U);
    EXPECT_EQ(streamsOf<Sv>({lanA, lanB, Sv()}), 3U);
}

TEST(SvIdentity, IsOneStreamOverTheTwoPrpLans) {
    Sv lanA;
    lanA.prp.emplace().lanId = 'A';
    Sv lanB;
    lanB.prp.emplace().lanId = 'B';
    EXPECT_EQ(streamsOf<Sv>({lanA, lanB, Sv()}), 1U);
}

TEST(SvIdentity, ComparesTextsOctetForOctet) { rules().expectTextToCountOctetForOctet(&Sv::svID); }

TEST(SvIdentity, Of4095VlansIs4095Streams) {
    SvProto proto;
    for (int round = 0; round < 2; ++round) {
        for (std::uint16_t vlanId = 1; vlanId < 4096; ++vlanId) {
            Sv sv = publisher();
            sv.vlan->vlanId = vlanId;
            ASSERT_EQ(proto.addSv(std::move(sv)).vlan->vlanId, vlanId);
        }
        EXPECT_EQ(proto.getSvCount(), 4095U);
    }
}

Sv anySv() {
    Sv s;
    for (auto* const text : {&s.srcMac, &s.dstMac, &s.svID, &s.spareText}) *text = anyText();
    setAny(s.appId);
    setAny(s.reserved1Bit0);
    setAny(s.confRev);
    s.vlan = anyVlan();
    if (anyNumber() > 0) {
        setAny(s.hsr.emplace().lanId);
        setAny(s.hsr->hsrSpare1);
        setAny(s.hsr->hsrSpare2);
        setAny(s.hsr->hsrSpare3);
    }
    if (anyNumber() > 0) {
        setAny(s.prp.emplace().lanId);
    }
    return s;
}

RC_GTEST_PROP(SvIdentity, EqualsAreEqualBothWays, ()) {
    Sv const a = anySv();
    rules().checkEquality(a, anySv());
}

RC_GTEST_PROP(SvIdentity, MakesOneStreamOfEqualHashAndEquality, ()) {
    rules().checkStreams(anySv, {[](Sv& s, Sv const& other) { s = other; },
                                 [](Sv& s, Sv const& other) { s.vlan = other.vlan; },
                                 [](Sv& s, Sv const& other) { s.hsr = other.hsr; },
                                 [](Sv& s, Sv const& other) { s.svID = other.svID; },
                                 [](Sv& s, Sv const& other) { s.prp = other.prp; }});
}

}  // namespace
}  // namespace TalTest::SvTest
