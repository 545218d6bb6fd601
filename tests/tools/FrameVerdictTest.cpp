// The verdict on single frames, against the plain reading of their link layer.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <ostream>
#include <set>

#include "index/PlainVerdict.hpp"
#include "index/RandomPicks.hpp"
#include "index/TrafficGenerators.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "tools/library/FrameVerdict.hpp"

namespace TalIec61850Tools {

std::ostream& operator<<(std::ostream& out, FrameVerdict const& verdict) {
    auto const* const protocol =
        !verdict.protocol ? "other" : (verdict.protocol == Protocol::sv ? "SV" : "GOOSE");
    return out << protocol << " " << toText(verdict.verdict) << " " << verdict.answer;
}

}  // namespace TalIec61850Tools

namespace TalIec61850Tools::FrameVerdictTest {
namespace {

using namespace TalTest;

using TalIec61850Parser::EthernetParser;
using TalIec61850Parser::Filter;

/// What the table of the library's answers, the plain link layer and the answer itself make of a
/// frame.
FrameVerdict plainVerdict(Bytes const& frame, Filter const& filter) {
    FrameVerdict expected;
    expected.answer = EthernetParser::parsePacketSimple(frame, filter);
    auto const link = readLink(frame);
    bool const isGoose = link && link->etherType == etherTypeGoose;
    if (!link || (!isGoose && link->etherType != etherTypeSampledValues)) {
        return expected;
    }
    expected.protocol = isGoose ? Protocol::goose : Protocol::sv;
    if (isGoose ? !filter.parseGoose : !filter.parseSv) {
        expected.verdict = Verdict::switchedOff;
    } else if (!isAdmitted(frame, *link, filter)) {
        expected.verdict = Verdict::rejectedByLinkLayer;
    } else {
        expected.verdict = expected.answer == isGoose ? Verdict::wanted : Verdict::rejectedByPdu;
    }
    return expected;
}

rc::Gen<Bytes> theFrame() { return rc::gen::oneOf(validFrame(), frameOfRandomBer(), anyFrame()); }

RC_GTEST_PROP(AnyVerdict, IsThatOfThePlainReading, ()) {
    Bytes const frame = *theFrame();
    Filter const filter = *anyFilter();
    FrameVerdict const verdict = judgeFrame(frame, filter);
    RC_TAG(std::string(toText(verdict.verdict)));
    RC_ASSERT(verdict == plainVerdict(frame, filter));
}

RC_GTEST_PROP(AnyVerdict, IsThatOfThePlainReadingWhereverTheFrameIsCut, ()) {
    Bytes const whole = *validFrame();
    Bytes const frame = prefix(whole, below(oneIn(2) ? 48 : static_cast<unsigned>(whole.size())));
    Filter const filter = *anyFilter();
    RC_ASSERT(judgeFrame(frame, filter) == plainVerdict(frame, filter));
}

RC_GTEST_PROP(AnyVerdict, IsOneOfThoseThatAreCounted, ()) {
    auto const all = allVerdicts();
    auto const verdict = judgeFrame(*theFrame(), *anyFilter());
    RC_ASSERT(std::count(all.begin(), all.end(), verdict) == 1);
}

/// A frame of nothing but a link layer and so many octets before a PRP trailer.
Bytes trailerBehind(std::uint16_t etherType, std::size_t octets) {
    return ethernetFrame(Ethernet().withPrp('A'), etherType, Bytes(octets));
}

TEST(Verdict, CountsThePrpTrailerOfAFrameTooShortForAHeader) {
    Filter filter;
    filter.gooseFilters.emplace_back().prp.emplace().lanId = 'B';
    filter.svFilters.emplace_back().prp.emplace().lanId = 'B';
    filter.svFilters[0].appId.reset();
    for (std::size_t octets = 0; octets < 12; ++octets) {
        for (auto const etherType : {etherTypeGoose, etherTypeSampledValues}) {
            Bytes const frame = trailerBehind(etherType, octets);
            ASSERT_EQ(plainVerdict(frame, filter).verdict, Verdict::rejectedByLinkLayer);
            ASSERT_EQ(judgeFrame(frame, filter), plainVerdict(frame, filter)) << octets;
        }
    }
}

TEST(Verdict, OnAnyFrameIsOneOfNine) {
    auto const all = allVerdicts();
    EXPECT_EQ(all.size(), 9U);
    EXPECT_EQ(std::set<FrameVerdict>(all.begin(), all.end()).size(), 9U);
    std::set<std::string_view> words;
    for (auto const& verdict : all) {
        words.insert(toText(verdict.verdict));
    }
    EXPECT_EQ(words, (std::set<std::string_view>{"wanted", "rejectedByLinkLayer", "rejectedByPdu",
                                                 "switchedOff", "otherProtocol"}));
}

}  // namespace
}  // namespace TalIec61850Tools::FrameVerdictTest
