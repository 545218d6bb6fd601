#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/store/Sv.hpp>
#include <TalIec61850Parser/store/SvProto.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

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
using Text = std::optional<std::string>;

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

struct Member {
    char const* name;
    std::function<void(Sv&)> change;
    std::function<void(Sv&)> unset;
    std::function<void(Sv&)> zero;
    bool inHash;
    bool inEquality;
};

std::vector<Member> members() {
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

Sv changed(std::function<void(Sv&)> const& change) {
    Sv sv = publisher();
    change(sv);
    return sv;
}

std::size_t termOf(Text const& text) { return text ? std::hash<std::string>{}(*text) : 0; }

std::size_t hashOf(Sv const& s) {
    VlanInfo const vlan = s.vlan.value_or(VlanInfo{});
    return termOf(s.srcMac) ^ termOf(s.dstMac) ^ vlan.priority.value_or(0) ^ vlan.dei.value_or(0) ^
           vlan.vlanId.value_or(0) ^ s.appId.value_or(0) ^ termOf(s.svID) ^
           s.reserved1Bit0.value_or(0) ^ s.confRev.value_or(0);
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

std::size_t streamsOf(std::vector<Sv> const& records) {
    SvProto proto;
    for (Sv const& record : records) {
        proto.addSv(Sv(record));
    }
    return proto.getSvCount();
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

TEST(SvIdentity, TakesInEachMemberAsLaidDown) {
    for (Member const& member : members()) {
        SCOPED_TRACE(member.name);
        Sv const other = changed(member.change);
        EXPECT_EQ(Hash{}(publisher()) != Hash{}(other), member.inHash);
        EXPECT_EQ(!Equal{}(publisher(), other), member.inEquality);
        EXPECT_EQ(!Equal{}(other, publisher()), member.inEquality);
        EXPECT_EQ(streamsOf({publisher(), other}), member.inHash || member.inEquality ? 2U : 1U);
    }
}

TEST(SvIdentity, TakesAMemberThatIsNotSetForZeroOrEmptyInEquality) {
    for (Member const& member : members()) {
        SCOPED_TRACE(member.name);
        EXPECT_TRUE(Equal{}(changed(member.unset), changed(member.zero)));
        EXPECT_TRUE(Equal{}(changed(member.zero), changed(member.unset)));
    }
}

TEST(SvIdentity, KeepsAbsentAndEmptyTextsApartByHash) {
    std::set<std::string> const texts{"srcMac", "dstMac", "svID"};
    for (Member const& member : members()) {
        SCOPED_TRACE(member.name);
        EXPECT_EQ(streamsOf({changed(member.unset), changed(member.zero)}),
                  texts.contains(member.name) ? 2U : 1U);
    }
}

TEST(SvIdentity, TakesAnAppIdThatIsNotSetForZeroAndNotForTheDefault) {
    Sv unset;
    unset.appId.reset();
    Sv zero;
    zero.appId = 0;
    EXPECT_EQ(streamsOf({unset, zero}), 1U);
    EXPECT_EQ(streamsOf({unset, Sv()}), 2U);
}

TEST(SvHash, IsTheExclusiveOrOfItsTerms) {
    EXPECT_EQ(Hash{}(Sv()), 0x4000U);
    EXPECT_EQ(Hash{}(publisher()), hashOf(publisher()));
    for (Member const& member : members()) {
        SCOPED_TRACE(member.name);
        for (auto const& change : {member.change, member.unset, member.zero}) {
            EXPECT_EQ(Hash{}(changed(change)), hashOf(changed(change)));
        }
    }
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
    EXPECT_EQ(streamsOf({a, b}), 2U);
    b.vlan = VlanInfo{.priority = 1, .dei = 0, .vlanId = 4};
    EXPECT_EQ(streamsOf({a, b}), 2U);
}

TEST(SvIdentity, TellsRecordsOfOneHashApartByEquality) {
    Sv swapped = publisher();
    std::swap(swapped.srcMac, swapped.dstMac);
    EXPECT_EQ(Hash{}(publisher()), Hash{}(swapped));
    EXPECT_EQ(streamsOf({publisher(), swapped}), 2U);

    swapped = publisher();
    std::swap(swapped.appId, swapped.confRev);
    EXPECT_EQ(Hash{}(publisher()), Hash{}(swapped));
    EXPECT_EQ(streamsOf({publisher(), swapped}), 2U);
}

TEST(SvIdentity, IsTwoStreamsOverTheTwoDirectionsOfARing) {
    Sv lanA;
    lanA.hsr.emplace().lanId = 'A';
    Sv lanB;
    lanB.hsr.emplace().lanId = 'B';
    EXPECT_EQ(Hash{}(lanA), Hash{}(lanB));
    EXPECT_EQ(streamsOf({lanA, lanB}), 2U);
    EXPECT_EQ(streamsOf({lanA, lanB, Sv()}), 3U);
}

TEST(SvIdentity, IsOneStreamOverTheTwoPrpLans) {
    Sv lanA;
    lanA.prp.emplace().lanId = 'A';
    Sv lanB;
    lanB.prp.emplace().lanId = 'B';
    EXPECT_EQ(streamsOf({lanA, lanB, Sv()}), 1U);
}

TEST(SvIdentity, ComparesTextsOctetForOctet) {
    Sv a;
    Sv b;
    a.svID = std::string("MU\0a", 4);
    b.svID = std::string("MU\0b", 4);
    EXPECT_FALSE(Equal{}(a, b));
    EXPECT_EQ(streamsOf({a, b}), 2U);
    b.svID = "MU";
    EXPECT_EQ(streamsOf({a, b}), 2U);
}

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

/// Few values for each member, so that streams meet.
Sv anySv() {
    auto const text = [] {
        return *rc::gen::element<Text>(std::nullopt, std::string(), std::string("a"));
    };
    auto const number = [] { return *rc::gen::element(-1, 0, 1, 2); };
    auto const set = [&number](auto& member) {
        using Value = typename std::remove_reference_t<decltype(member)>::value_type;
        int const value = number();
        member = value < 0 ? std::nullopt : std::optional(static_cast<Value>(value));
    };
    Sv s;
    s.srcMac = text();
    s.dstMac = text();
    s.svID = text();
    s.spareText = text();
    set(s.appId);
    set(s.reserved1Bit0);
    set(s.confRev);
    if (number() > 0) {
        set(s.vlan.emplace().priority);
        set(s.vlan->dei);
        set(s.vlan->vlanId);
    }
    if (number() > 0) {
        set(s.hsr.emplace().lanId);
        set(s.hsr->hsrSpare1);
        set(s.hsr->hsrSpare2);
        set(s.hsr->hsrSpare3);
    }
    if (number() > 0) {
        set(s.prp.emplace().lanId);
    }
    return s;
}

RC_GTEST_PROP(SvIdentity, EqualsAreEqualBothWays, ()) {
    Sv const a = anySv();
    Sv const b = anySv();
    RC_ASSERT(Equal{}(a, a));
    RC_ASSERT(Equal{}(a, b) == Equal{}(b, a));
    RC_ASSERT(Equal{}(a, b) == (comparedPart(a) == comparedPart(b)));
    RC_ASSERT(Hash{}(a) == hashOf(a));
}

RC_GTEST_PROP(SvIdentity, MakesOneStreamOfEqualHashAndEquality, ()) {
    SvProto proto;
    std::set<std::pair<std::size_t, decltype(comparedPart(Sv()))>> model;
    // Most of them repeat three records but for a few members.
    std::vector<Sv> const seeds{anySv(), anySv(), anySv()};
    int const count = *rc::gen::inRange(0, 40);
    for (int i = 0; i < count; ++i) {
        Sv sv = seeds[*rc::gen::inRange<std::size_t>(0, 3)];
        Sv const other = anySv();
        switch (*rc::gen::inRange(0, 6)) {
            case 0:
                sv = other;
                break;
            case 1:
                sv.vlan = other.vlan;
                break;
            case 2:
                sv.hsr = other.hsr;
                break;
            case 3:
                sv.svID = other.svID;
                break;
            case 4:
                sv.prp = other.prp;
                break;
            default:
                break;
        }
        bool const isNew = model.emplace(hashOf(sv), comparedPart(sv)).second;
        std::size_t const before = proto.getSvCount();
        Sv const& stored = proto.addSv(Sv(sv));
        RC_ASSERT((proto.getSvCount() > before) == isNew);
        RC_ASSERT(Equal{}(stored, sv) && Hash{}(stored) == Hash{}(sv));
        RC_ASSERT(proto.getSvCount() == model.size());
    }
}

}  // namespace
