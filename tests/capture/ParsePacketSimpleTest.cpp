#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "capture/Criteria.hpp"
#include "capture/FrameWalk.hpp"
#include "capture/SmallStack.hpp"
#include "support/Ber.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/Sanitized.hpp"

// One frame, one answer: true for a wanted GOOSE frame, false for a wanted SV frame.

namespace TalTest::ParsePacketSimpleTest {
namespace {

using namespace TalIec61850Parser;

bool judge(Bytes const& frame, Filter const& filter = {}) {
    return EthernetParser::parsePacketSimple(frame, filter);
}

/// A filter that has neither protocol, or only the one.
Filter switchedOff() {
    Filter filter;
    filter.parseGoose = false;
    filter.parseSv = false;
    return filter;
}

/// The same criterion for both protocols.
template <typename Member, typename Value>
Filter both(std::optional<Member> GooseIdentifer::*goose, std::optional<Member> SvIdentifer::*sv,
            Value const& value) {
    Filter filter;
    filter.gooseFilters = {wanted(goose, value)};
    filter.svFilters = {wanted(sv, value)};
    return filter;
}

Filter destinations(char const* address) {
    return both(&GooseIdentifer::dstMac, &SvIdentifer::dstMac, address);
}

Filter sources(char const* address) {
    return both(&GooseIdentifer::srcMac, &SvIdentifer::srcMac, address);
}

Filter vlans(std::uint16_t id) {
    VlanInfo vlan;
    vlan.vlanId = id;
    return both(&GooseIdentifer::vlan, &SvIdentifer::vlan, vlan);
}

Filter hsrLans(char lan) {
    HsrInfo hsr;
    hsr.lanId = lan;
    return both(&GooseIdentifer::hsr, &SvIdentifer::hsr, hsr);
}

Filter prpLans(char lan) {
    PrpInfo prp;
    prp.lanId = lan;
    return both(&GooseIdentifer::prp, &SvIdentifer::prp, prp);
}

Filter appIds(std::uint64_t appId) {
    return both(&GooseIdentifer::appId, &SvIdentifer::appId, appId);
}

/// The frame's first octets, from its EtherType or tag on, after twelve octets of addresses.
Bytes behindAddresses(Bytes const& octets) { return concat({repeat(0x01, 12), octets}); }

/// What a frame is when the filter does not look at it, wherever in the frame its EtherType is.
void expectLooksLike(bool known, Bytes const& frame) {
    EXPECT_EQ(judge(frame, switchedOff()), known) << frame.size() << " octets";
}

// --- The answers at a glance -----------------------------------------------------------------

TEST(ParsePacketSimple, FrameShorterThanFourteenOctetsIsFalse) {
    for (std::uint16_t const etherType : {etherTypeGoose, etherTypeSampledValues}) {
        Bytes const frame = ethernetFrame({}, etherType, {});
        ASSERT_EQ(frame.size(), 14U);
        for (std::size_t size = 0; size < 14; ++size) {
            EXPECT_FALSE(judge(prefix(frame, size)));
            EXPECT_FALSE(judge(prefix(frame, size), switchedOff()));
        }
    }
}

TEST(ParsePacketSimple, OtherEtherTypeIsFalse) {
    for (std::uint16_t const etherType : std::vector<std::uint16_t>{
             0x0000, 0x0800, 0x88A8, 0x88B7, 0x88B9, 0x88BB, 0x88F7, 0x88FB, 0xB888, 0xFFFF}) {
        for (Ethernet const& link : linkLayers()) {
            EXPECT_FALSE(judge(ethernetFrame(link, etherType, gooseApdu({}))));
            EXPECT_FALSE(judge(ethernetFrame(link, etherType, svApdu({})), switchedOff()));
        }
    }
}

TEST(ParsePacketSimple, WantedFrameIsTrueForGooseAndFalseForSv) {
    for (Ethernet const& link : linkLayers()) {
        EXPECT_TRUE(judge(gooseFrame(link, {})));
        EXPECT_FALSE(judge(svFrame(link, {})));
        EXPECT_TRUE(judge(gooseFrame(link, {}), destinations("01:0c:cd:01:00:01")));
        EXPECT_FALSE(judge(svFrame(link, {}), destinations("01:0c:cd:01:00:01")));
    }
}

TEST(ParsePacketSimple, SwitchedOffProtocolIsTrueWhateverTheFrame) {
    Filter filter = destinations("no such address");
    filter.parseGoose = false;
    filter.parseSv = false;
    for (Ethernet const& link : linkLayers()) {
        for (Bytes const& frame : {gooseFrame(link, {}), svFrame(link, {})}) {
            EXPECT_TRUE(judge(frame, switchedOff()));
            EXPECT_TRUE(judge(frame, filter));
            EXPECT_TRUE(judge(prefix(frame, payloadOffset(link)), filter));
        }
    }
}

TEST(ParsePacketSimple, ProtocolsAreSwitchedOffApart) {
    Filter filter;
    filter.parseGoose = false;
    EXPECT_TRUE(judge(gooseFrame({}, {}), filter));
    EXPECT_FALSE(judge(svFrame({}, {}), filter));
    EXPECT_TRUE(judge(prefix(gooseFrame({}, {}), 14), filter));
    filter = {.parseSv = false, .parseGoose = true, .svFilters = {}, .gooseFilters = {}};
    EXPECT_TRUE(judge(gooseFrame({}, {}), filter));
    EXPECT_TRUE(judge(svFrame({}, {}), filter));
    EXPECT_TRUE(judge(prefix(svFrame({}, {}), 14), filter));
    EXPECT_FALSE(judge(prefix(gooseFrame({}, {}), 14), filter));
}

TEST(ParsePacketSimple, LinkLayerRejectionIsFalseForBoth) {
    for (Filter const& filter :
         {destinations("01:0c:cd:01:00:02"), destinations("01:0C:CD:01:00:01"),
          sources("02:00:00:00:00:02"), vlans(6), hsrLans('B'), prpLans('B')}) {
        Ethernet const link = Ethernet().withVlan(5).withHsr('A').withPrp('A');
        EXPECT_FALSE(judge(gooseFrame(link, {}), filter));
        EXPECT_FALSE(judge(svFrame(link, {}), filter));
        // Before anything after the link layer is looked at.
        Bytes const cut = prefix(svFrame(Ethernet().withVlan(5).withHsr('A'), {}), 24);
        EXPECT_EQ(judge(cut, filter), !filter.svFilters[0].prp ? false : true);
    }
}

TEST(ParsePacketSimple, RejectionByThePduIsFalseForGooseAndTrueForSv) {
    Filter const names = [] {
        Filter filter = gooseFilter({wanted(&GooseIdentifer::goID, "other")});
        filter.svFilters = {wanted(&SvIdentifer::svID, "other")};
        return filter;
    }();
    for (Ethernet const& link : linkLayers()) {
        for (Filter const& filter :
             {appIds(9), names, both(&GooseIdentifer::confRev, &SvIdentifer::confRev, 9U),
              both(&GooseIdentifer::reserved1Bit0, &SvIdentifer::reserved1Bit0, 1)}) {
            EXPECT_FALSE(judge(gooseFrame(link, {}), filter));
            EXPECT_TRUE(judge(svFrame(link, {}), filter));
        }
    }
}

TEST(ParsePacketSimple, TooShortForAPduIsFalseForGooseAndTrueForSv) {
    for (Ethernet const& link : linkLayers()) {
        if (link.padded || link.prpLan) continue;
        Bytes const goose = gooseFrame(link, {});
        Bytes const sv = svFrame(link, {});
        for (std::size_t size = payloadOffset(link); size <= goose.size(); ++size) {
            // One octet after the eight of the header is enough, even if it is no element.
            bool const enough = size > payloadOffset(link) + 8;
            EXPECT_EQ(judge(prefix(goose, size)), enough) << size;
            EXPECT_EQ(judge(prefix(sv, size)), !enough) << size;
        }
    }
}

TEST(ParsePacketSimple, MalformedPduCountsAsWanted) {
    Filter const filter = both(&GooseIdentifer::confRev, &SvIdentifer::confRev, 9U);
    for (Bytes const& pdu : {Bytes{0x61}, Bytes{0x60, 0x7F, 0x80}, Bytes{0x61, 0x85, 0, 0, 0, 0, 0},
                             Bytes{0x00}, Bytes{0xFF, 0xFF}}) {
        EXPECT_TRUE(judge(ethernetFrame({}, etherTypeGoose, apdu({}, pdu)), filter));
        EXPECT_FALSE(judge(ethernetFrame({}, etherTypeSampledValues, apdu({}, pdu)), filter));
    }
}

// --- Criteria of the link layer ----------------------------------------------------------------

TEST(ParsePacketSimpleFilter, TagThatTheFrameLacksIsNoCriterion) {
    Ethernet const plain;
    for (Filter const& filter : {vlans(6), hsrLans('B'), prpLans('B')}) {
        EXPECT_TRUE(judge(gooseFrame(plain, {}), filter));
        EXPECT_FALSE(judge(svFrame(plain, {}), filter));
    }
}

TEST(ParsePacketSimpleFilter, EachTagIsMatched) {
    Ethernet const link = Ethernet().withVlan(5, 7, true).withHsr('A').withPrp('B');
    for (Filter const& filter : {vlans(5), hsrLans('A'), prpLans('B')}) {
        EXPECT_TRUE(judge(gooseFrame(link, {}), filter));
    }
    // A tag that is asked for without a number admits any.
    Filter const anyTag = both(&GooseIdentifer::vlan, &SvIdentifer::vlan, VlanInfo());
    EXPECT_TRUE(judge(gooseFrame(link, {}), anyTag));
    for (Filter const& filter : {vlans(0x105), vlans(0), hsrLans('B'), prpLans('A')}) {
        EXPECT_FALSE(judge(gooseFrame(link, {}), filter));
    }
}

TEST(ParsePacketSimpleFilter, EachCriterionIsMatchedOverTheWholeList) {
    Bytes const frame = gooseFrame({}, {});
    Filter filter =
        gooseFilter({wanted(&GooseIdentifer::srcMac, "A"), wanted(&GooseIdentifer::dstMac, "B")});
    EXPECT_TRUE(judge(frame, filter));
    filter = gooseFilter({wanted(&GooseIdentifer::srcMac, "A"),
                          wanted(&GooseIdentifer::srcMac, "02:00:00:00:00:01")});
    EXPECT_TRUE(judge(frame, filter));
    filter.gooseFilters.pop_back();
    EXPECT_FALSE(judge(frame, filter));
}

TEST(ParsePacketSimpleFilter, ListsAreThoseOfTheirProtocol) {
    Filter filter = appIds(9);
    filter.gooseFilters.clear();
    EXPECT_TRUE(judge(gooseFrame({}, {}), filter));
    filter = appIds(9);
    filter.svFilters.clear();
    EXPECT_FALSE(judge(svFrame({}, {}), filter));
}

// --- Where the link layer ends -------------------------------------------------------------------

TEST(ParsePacketSimpleSize, VlanTagIsReadAboveSeventeenOctets) {
    for (std::uint8_t const low : Bytes{0xB8, 0xBA}) {
        Bytes const frame = behindAddresses({0x81, 0x00, 0x00, 0x05, 0x88, low, 0, 0});
        for (std::size_t size = 0; size <= frame.size(); ++size) {
            expectLooksLike(size >= 18, prefix(frame, size));
            // Too short for a PDU; rejected by its tag only where there is one.
            EXPECT_EQ(judge(prefix(frame, size)), size >= 18 && low == 0xBA) << size;
            EXPECT_FALSE(judge(prefix(frame, size), vlans(6))) << size;
        }
    }
}

TEST(ParsePacketSimpleSize, HsrTagMustBeWhole) {
    for (std::uint8_t const low : Bytes{0xB8, 0xBA}) {
        Bytes const hsr = {0x89, 0x2F, 0x10, 0x00, 0x00, 0x01, 0x88, low, 0, 0};
        Bytes const untagged = behindAddresses(hsr);
        for (std::size_t size = 0; size <= untagged.size(); ++size) {
            expectLooksLike(size >= 20, prefix(untagged, size));
            EXPECT_EQ(judge(prefix(untagged, size), hsrLans('B')), size >= 20 && low == 0xBA);
            EXPECT_FALSE(judge(prefix(untagged, size), hsrLans('A')));
        }
        Bytes const tagged = behindAddresses(concat({{0x81, 0x00, 0x00, 0x05}, hsr}));
        for (std::size_t size = 0; size <= tagged.size(); ++size) {
            expectLooksLike(size >= 24, prefix(tagged, size));
        }
    }
}

TEST(ParsePacketSimpleSize, PrpTrailerIsReadAboveSeventeenOctets) {
    for (std::size_t size = 16; size <= 22; ++size) {
        Bytes frame = behindAddresses({0x88, 0xBA});
        frame.resize(size - 2, 0x10);
        append(frame, {0x88, 0xFB});
        char const lan = size == 16 ? 'A' : (frame[size - 4] & 0x10) != 0 ? 'B' : 'A';
        EXPECT_TRUE(judge(frame, prpLans(lan))) << size;
        EXPECT_EQ(judge(frame, prpLans(lan == 'A' ? 'B' : 'A')), size <= 17) << size;
    }
}

TEST(ParsePacketSimpleSize, PrpTrailerIsToldByTheLastTwoOctetsAlone) {
    for (Bytes const& end :
         {Bytes{0x88, 0xFA}, Bytes{0x89, 0xFB}, Bytes{0xFB, 0x88}, Bytes{0x88, 0xFB, 0x00}}) {
        EXPECT_TRUE(judge(concat({gooseFrame({}, {}), {0, 0, 0x10, 0}, end}), prpLans('A')));
    }
    EXPECT_FALSE(judge(concat({gooseFrame({}, {}), {0x10, 0, 0x88, 0xFB}}), prpLans('A')));
}

TEST(ParsePacketSimpleSize, SecondTagsAreNotRead) {
    Bytes const vlan = {0x81, 0x00, 0x00, 0x05};
    Bytes const service = {0x88, 0xA8, 0x00, 0x05};
    Bytes const hsr = {0x89, 0x2F, 0x10, 0x00, 0x00, 0x01};
    Bytes const goose = concat({bigEndian(etherTypeGoose, 2), gooseApdu({})});
    expectLooksLike(true, behindAddresses(concat({vlan, hsr, goose})));
    for (Bytes const& tags : {concat({vlan, vlan}), concat({hsr, vlan}), concat({hsr, hsr}),
                              service, concat({service, vlan}), concat({vlan, service})}) {
        expectLooksLike(false, behindAddresses(concat({tags, goose})));
    }
}

TEST(ParsePacketSimpleSize, EveryCutOfAFrameHasItsAnswer) {
    for (Ethernet const& link : linkLayers()) {
        for (bool const isGoose : {true, false}) {
            Bytes const frame = isGoose ? gooseFrame(link, {}) : svFrame(link, {});
            for (std::size_t size = 0; size <= frame.size(); ++size) {
                Bytes const cut = prefix(frame, size);
                bool const read = size > payloadOffset(link) + 8;
                bool const known = size >= payloadOffset(link);
                EXPECT_EQ(judge(cut), isGoose ? read : known && !read) << size;
                expectLooksLike(known, cut);
                // Cut inside, a PDU says nothing that a filter could reject, but its frame does.
                EXPECT_EQ(judge(cut, appIds(9)), !isGoose && known) << size;
            }
        }
    }
}

TEST(ParsePacketSimpleNesting, NeedsNoStack) {
    if (isSanitized) GTEST_SKIP() << "a sanitizer needs the stack itself";
    for (std::uint8_t const tag : Bytes{0x30, 0xA2}) {
        Bytes const payload = apdu({.length = 0}, nested(tag, kMillion, ber(0x80, "x")));
        Bytes const goose = ethernetFrame({}, etherTypeGoose, payload);
        Bytes const sv = ethernetFrame({}, etherTypeSampledValues, payload);
        // Criteria that pass: without any there would be nothing to walk for.
        Filter const any = both(&GooseIdentifer::confRev, &SvIdentifer::confRev, 9U);
        Filter const other = svFilter({wanted(&SvIdentifer::svID, "other")});
        bool gooseAnswer = false;
        bool svAnswer = true;
        bool otherAnswer = false;
        runOnSmallStack([&] {
            gooseAnswer = judge(goose, any);
            svAnswer = judge(sv, any);
            otherAnswer = judge(sv, other);
        });
        EXPECT_TRUE(gooseAnswer);
        EXPECT_FALSE(svAnswer);
        EXPECT_EQ(otherAnswer, tag == 0x30);
    }
}

}  // namespace
}  // namespace TalTest::ParsePacketSimpleTest
