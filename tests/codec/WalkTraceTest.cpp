// What the walk says it did not look at, for elements made by hand.

#include <gtest/gtest.h>

#include <TalIec61850Parser/codec/BerWalk.hpp>
#include <TalIec61850Parser/codec/WalkTrace.hpp>
#include <cstddef>
#include <cstdint>
#include <string>

#include "codec/TraceText.hpp"
#include "support/Ber.hpp"
#include "support/Bytes.hpp"

namespace TalTest::WalkTraceTest {
namespace {

using TalIec61850Parser::detail::BerElement;
using TalIec61850Parser::detail::kMaxTailSize;
using TalIec61850Parser::detail::Octets;
using TalIec61850Parser::detail::walkElements;
using TalIec61850Parser::detail::WalkLevel;
using TalIec61850Parser::detail::WalkStep;
using TalIec61850Parser::detail::WalkTrace;
using TalTest::lookedAt;

constexpr std::uint8_t kLevel = 0x30;
constexpr std::uint8_t kLooked = 0x01;
constexpr std::uint8_t kSkipped = 0x02;
constexpr std::uint8_t kRejected = 0x03;
constexpr std::uint8_t kEnd = 0x04;
constexpr std::uint8_t kNumber = 0x05;
constexpr std::uint8_t kMark = 0x06;

/// Walks the elements as their tags say.
WalkTrace traceOf(Bytes const& data, WalkLevel const& level = {}) {
    WalkTrace trace;
    trace.begin(data);
    bool rejected = false;
    auto const handle = [&](BerElement const& element, std::size_t, WalkLevel& current) {
        switch (element.tag) {
            case kLevel:
                return WalkStep::descend;
            case kRejected:
                rejected = true;
                return WalkStep::reject;
            case kEnd:
                return WalkStep::endLevel;
            case kNumber:
                trace.readAgain(element.value);
                return WalkStep::next;
            case kMark:
                current.inAsdu = true;
                return WalkStep::next;
            default:
                return element.tag == kLooked ? WalkStep::next : WalkStep::skip;
        }
    };
    bool const accepted = walkElements(data, level, handle, &trace);
    EXPECT_EQ(accepted, !rejected);
    return trace;
}

std::string lookedAt(Bytes const& data, WalkLevel const& level = {}) {
    return lookedAt(traceOf(data, level));
}

Bytes const threeOctets = {7, 8, 9};
Bytes const damaged = {0x07, 0x7F, 0x00, 0x00};

TEST(WalkTrace, BeginsWithAllLookedAt) {
    WalkTrace trace;
    EXPECT_TRUE(trace.frame().empty());
    Bytes const frame(4);
    trace.begin(frame);
    EXPECT_EQ(trace.frame().data(), frame.data());
    EXPECT_EQ(lookedAt(trace), "XXXX");
    EXPECT_EQ(text(trace.number()), "0+0");
    EXPECT_EQ(text(trace.tail()), "0+0");
}

TEST(WalkTrace, KeepsWhatIsSaidUntilItBeginsAgain) {
    Bytes const frame(8);
    Octets const octets(frame);
    WalkTrace trace;
    trace.begin(frame);
    trace.passOver(octets.subspan(1, 2));
    trace.readAgain(octets.subspan(4, 2));
    trace.endAt(octets.subspan(7));
    trace.passOver({});
    EXPECT_EQ(lookedAt(trace), "X..X..X.");
    EXPECT_EQ(text(trace.number()), "4+2");
    EXPECT_EQ(text(trace.tail()), "7+1");
    trace.readAgain({});
    EXPECT_EQ(text(trace.number()), "0+0");
    Bytes const next(3);
    trace.begin(next);
    EXPECT_EQ(lookedAt(trace), "XXX");
    EXPECT_EQ(text(trace.number()), "0+0");
    EXPECT_EQ(text(trace.tail()), "0+0");
    trace.reset();
    EXPECT_TRUE(trace.frame().empty());
}

TEST(WalkTrace, LeavesOutSkippedValuesAlone) {
    EXPECT_EQ(lookedAt(concat({ber(kLooked, threeOctets), ber(kSkipped, threeOctets),
                               ber(kLooked, threeOctets)})),
              "XXXXXXX...XXXXX");
    EXPECT_EQ(lookedAt(concat({ber(kLooked, {}), ber(kSkipped, {}), ber(kLooked, {})})), "XXXXXX");
    EXPECT_EQ(lookedAt(ber(kSkipped, {1}, LengthForm::twoOctets)), "XXXX.");
}

TEST(WalkTrace, LeavesOutSkippedValuesOfEveryLevel) {
    Bytes const inner = concat({ber(kSkipped, {1}), ber(kLooked, {2})});
    EXPECT_EQ(lookedAt(concat({ber(kLevel, concat({ber(kLevel, inner), ber(kSkipped, {1, 2})})),
                               ber(kSkipped, {3}), ber(kLooked, {4})})),
              "XX"
              "XX"
              "XX."
              "XXX"
              "XX.."
              "XX."
              "XXX");
}

TEST(WalkTrace, LeavesOutWhatIsAfterADamagedElement) {
    EXPECT_EQ(lookedAt(concat({ber(kLooked, {}), ber(kLooked, {}), damaged})), "XXXXXX..");
    EXPECT_EQ(lookedAt(concat({ber(kLevel, damaged), ber(kLooked, {1})})), "XXXX..XXX");
    EXPECT_EQ(lookedAt(damaged), "XX..");
}

TEST(WalkTrace, LooksAtAllOfALengthThatCannotBe) {
    auto const inLevel = [](Bytes const& broken) {
        return lookedAt(ber(kLevel, broken)).substr(2);
    };
    EXPECT_EQ(inLevel({kLooked}), "X");
    EXPECT_EQ(inLevel({kLooked, 0x01}), "XX");
    EXPECT_EQ(inLevel({kLooked, 0x85, 0, 0, 0, 0, 0, 0}), "XX......");
    EXPECT_EQ(inLevel({kLooked, 0xFF, 0, 0}), "XX..");
    EXPECT_EQ(inLevel({kLooked, 0x84, 0, 0, 0}), "XX...");
    EXPECT_EQ(inLevel({kLooked, 0x81, 9, 0, 0}), "XXX..");
    EXPECT_EQ(inLevel({kLooked, 0x82, 0, 9, 0}), "XXXX.");
    EXPECT_EQ(inLevel({kLooked, 0x83, 0, 9, 0, 0}), "XXXXX.");
    EXPECT_EQ(inLevel({kLooked, 0x84, 0, 0, 0, 2, 0}), "XXXXXX.");
}

TEST(WalkTrace, LeavesOutWhatIsAfterFiftyElements) {
    Bytes elements;
    for (int i = 0; i < 50; ++i) append(elements, ber(kLooked, {}));
    std::string const all(100, 'X');
    EXPECT_EQ(lookedAt(elements), all);
    EXPECT_EQ(lookedAt(concat({elements, ber(kLooked, {1})})), all + "...");
    Bytes const level = ber(kLevel, concat({elements, ber(kRejected, {})}));
    EXPECT_EQ(lookedAt(concat({level, ber(kLooked, {1})})), "XX" + all + ".." + "XXX");
}

TEST(WalkTrace, LooksAtWhatIsAfterAFiftiethElementThatIsALevel) {
    // That level is not come back to, so nobody says that what is after it is passed over.
    Bytes elements;
    for (int i = 0; i < 49; ++i) append(elements, ber(kLooked, {}));
    append(elements, ber(kLevel, ber(kSkipped, {1})));
    EXPECT_EQ(lookedAt(concat({elements, ber(kLooked, {1})})),
              std::string(98, 'X') + "XX" + "XX." + "XXX");
}

TEST(WalkTrace, LeavesOutWhatIsAfterAFiftiethElementThatIsAnEmptyLevel) {
    Bytes elements;
    for (int i = 0; i < 49; ++i) append(elements, ber(kLooked, {}));
    append(elements, ber(kLevel, {}));
    EXPECT_EQ(lookedAt(concat({elements, ber(kLooked, {1})})), std::string(100, 'X') + "...");
}

TEST(WalkTrace, LeavesOutAllAfterARejectedElement) {
    EXPECT_EQ(lookedAt(concat({ber(kLooked, {}), ber(kRejected, {7}), ber(kLooked, {1})})),
              "XXXXX...");
    Bytes const level = ber(kLevel, concat({ber(kRejected, {7}), ber(kLooked, {1})}));
    WalkTrace const trace = traceOf(concat({level, ber(kLooked, {1}), damaged}));
    EXPECT_EQ(lookedAt(trace),
              "XXXXX"
              "..."
              "..."
              "....");
    EXPECT_EQ(trace.tail().size, 0U);
}

TEST(WalkTrace, LooksAtWhatIsAfterTheEndOfALevel) {
    EXPECT_EQ(lookedAt(concat(
                  {ber(kLevel, concat({ber(kEnd, {}), ber(kSkipped, {1})})), ber(kLooked, {1})})),
              "XX"
              "XX"
              "XXX"
              "XXX");
}

TEST(WalkTrace, NamesTheLastNumberToReadAgain) {
    Bytes const two = {1, 2};
    WalkTrace const one = traceOf(concat({ber(kLooked, {}), ber(kNumber, two), ber(kLooked, {})}));
    EXPECT_EQ(lookedAt(one), "XXXX..XX");
    EXPECT_EQ(text(one.number()), "4+2");
    WalkTrace const several = traceOf(concat({ber(kNumber, two), ber(kLevel, ber(kNumber, {5}))}));
    EXPECT_EQ(lookedAt(several), "XX..XXXX.");
    EXPECT_EQ(text(several.number()), "8+1");
    WalkTrace const empty = traceOf(concat({ber(kNumber, two), ber(kNumber, {})}));
    EXPECT_EQ(lookedAt(empty), "XX..XX");
    EXPECT_EQ(text(empty.number()), "0+0");
}

// --- After the PDU -----------------------------------------------------------------------------

TEST(WalkTraceTail, IsWhatCannotBeReadAfterTheFirstElement) {
    Bytes const pdu = ber(kLevel, ber(kLooked, {1}));
    for (Bytes const& tail : {damaged, Bytes{0x07}, Bytes{0x07, 0x01}, Bytes{0x00, 0x85, 0x00},
                              Bytes{0x00, 0x82, 0x01, 0x00, 0x00}}) {
        WalkTrace const trace = traceOf(concat({pdu, tail}));
        EXPECT_EQ(lookedAt(trace), "XXXXX" + std::string(tail.size(), '.'));
        EXPECT_EQ(text(trace.tail()), "5+" + std::to_string(tail.size()));
    }
    WalkTrace const afterValue = traceOf(concat({ber(kSkipped, {1}), damaged}));
    EXPECT_EQ(lookedAt(afterValue), "XX.....");
    EXPECT_EQ(text(afterValue.tail()), "3+4");
}

TEST(WalkTraceTail, IsNoneWhereNothingFollows) {
    EXPECT_EQ(text(traceOf(ber(kLevel, ber(kLooked, {1}))).tail()), "0+0");
    EXPECT_EQ(text(traceOf(ber(kSkipped, {1})).tail()), "0+0");
    EXPECT_EQ(text(traceOf({}).tail()), "0+0");
}

TEST(WalkTraceTail, BeginsWithElementsThatAreSkipped) {
    WalkTrace const trace = traceOf(concat({ber(kLevel, {}), ber(kSkipped, {1}), damaged}));
    EXPECT_EQ(lookedAt(trace), "XX" + std::string(7, '.'));
    EXPECT_EQ(text(trace.tail()), "2+7");
    WalkTrace const whole = traceOf(concat({ber(kLevel, {}), ber(kSkipped, {1})}));
    EXPECT_EQ(lookedAt(whole), "XX...");
    EXPECT_EQ(text(whole.tail()), "2+3");
    WalkTrace const largest = traceOf(concat({ber(kLevel, {}), Bytes(98)}));
    EXPECT_EQ(lookedAt(largest), "XX" + std::string(98, '.'));
    EXPECT_EQ(text(largest.tail()), "2+98");
}

TEST(WalkTraceTail, IsNoneWhereAnElementIsLookedAt) {
    Bytes const skipped = ber(kSkipped, {1});
    for (Bytes const& element : {ber(kLooked, {1}), ber(kLevel, {}), ber(kLevel, ber(kSkipped, {})),
                                 ber(kEnd, {}), ber(kMark, {})}) {
        for (Bytes const& after : {Bytes{}, skipped, damaged}) {
            WalkTrace const first = traceOf(concat({ber(kLevel, {}), element, after}));
            EXPECT_EQ(lookedAt(first).substr(0, 4), "XXXX");
            EXPECT_EQ(text(first.tail()), "0+0");
            WalkTrace const second = traceOf(concat({ber(kLevel, {}), skipped, element, after}));
            EXPECT_EQ(lookedAt(second).substr(0, 7), "XXXX.XX");
            EXPECT_EQ(text(second.tail()), "0+0");
        }
    }
}

TEST(WalkTraceTail, IsNoneWhereAnElementRejects) {
    WalkTrace const trace =
        traceOf(concat({ber(kLevel, {}), ber(kSkipped, {1}), ber(kRejected, {2}), damaged}));
    EXPECT_EQ(lookedAt(trace), "XXXX.XXX....");
    EXPECT_EQ(text(trace.tail()), "0+0");
}

TEST(WalkTraceTail, IsNoneInFrontOfThePdu) {
    WalkTrace const trace = traceOf(damaged);
    EXPECT_EQ(lookedAt(trace), "XX..");
    EXPECT_EQ(text(trace.tail()), "0+0");
}

TEST(WalkTraceTail, IsNoneInsideOfLevels) {
    WalkTrace const trace = traceOf(ber(kLevel, concat({ber(kLooked, {}), damaged})));
    EXPECT_EQ(lookedAt(trace), "XXXXXX..");
    EXPECT_EQ(text(trace.tail()), "0+0");
}

TEST(WalkTraceTail, IsNoneOnAnotherFirstLevel) {
    Bytes const data = concat({ber(kLooked, {}), damaged});
    EXPECT_EQ(text(traceOf(data).tail()), "2+4");
    for (WalkLevel const& level :
         {WalkLevel{.depth = 2, .inAsdu = false}, WalkLevel{.depth = 1, .inAsdu = true}}) {
        WalkTrace const trace = traceOf(data, level);
        EXPECT_EQ(lookedAt(trace), "XXXX..");
        EXPECT_EQ(text(trace.tail()), "0+0");
    }
}

TEST(WalkTraceTail, IsNoneWhereTheFirstElementChangedTheLevel) {
    WalkTrace const trace = traceOf(concat({ber(kMark, {}), damaged}));
    EXPECT_EQ(lookedAt(trace), "XXXX..");
    EXPECT_EQ(text(trace.tail()), "0+0");
}

TEST(WalkTraceTail, IsOfFewerElementsThanAreLookedAt) {
    Bytes const pdu = ber(kLevel, ber(kLooked, {1}));
    auto const withTail = [&](std::size_t size) {
        return traceOf(concat({pdu, {0x07, 0xFF}, Bytes(size - 2)}));
    };
    EXPECT_EQ(kMaxTailSize, 98U);
    EXPECT_EQ(text(withTail(98).tail()), "5+98");
    EXPECT_EQ(lookedAt(withTail(98)), "XXXXX" + std::string(98, '.'));
    EXPECT_EQ(text(withTail(99).tail()), "0+0");
    EXPECT_EQ(lookedAt(withTail(99)), "XXXXXXX" + std::string(97, '.'));
}

}  // namespace
}  // namespace TalTest::WalkTraceTest
