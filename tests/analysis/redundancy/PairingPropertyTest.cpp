// Whatever copies are lost, the counts are those that were.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

#include "analysis/redundancy/RedundantTraffic.hpp"

namespace TalTest::PairingPropertyTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::size_t kSentFrames = 900;

/// What was done to frames.
struct DoneToCopies {
    WireFrames frames;
    CopyCounts expected;
};

/// Takes copies away at random: in runs, alone, of both ways.
DoneToCopies takeAtRandom() {
    DoneToCopies done;
    auto const sequence = *rc::gen::arbitrary<std::uint16_t>();
    bool const isHsr = *rc::gen::arbitrary<bool>();
    done.frames = sendBoth({.frames = kSentFrames, .firstSequence = sequence, .isHsr = isHsr});
    auto const share = *rc::gen::inRange(0, 60);
    auto const random =
        *rc::gen::container<std::vector<int>>(2 * kSentFrames, rc::gen::inRange(0, 100));
    std::size_t next = 0;
    std::vector<bool> hasA(kSentFrames);
    std::vector<bool> hasB(kSentFrames);
    WireFrames kept;
    for (WireFrame const& frame : done.frames) {
        if (random[next++] >= share) {
            (frame.way == 'A' ? hasA : hasB)[frame.number] = true;
            kept.push_back(frame);
        }
    }
    done.frames = kept;
    for (std::size_t i = 0; i < kSentFrames; ++i) {
        done.expected.both += hasA[i] && hasB[i] ? 1U : 0U;
        done.expected.onlyA += hasA[i] && !hasB[i] ? 1U : 0U;
        done.expected.onlyB += !hasA[i] && hasB[i] ? 1U : 0U;
    }
    return done;
}

RC_GTEST_PROP(PairingProperty, CountsAreThoseOfTheCopiesThatCame, ()) {
    DoneToCopies const done = takeAtRandom();
    RC_PRE(!done.frames.empty());
    auto const paired = pairIn(done.frames);
    RC_ASSERT(paired.counts().both == done.expected.both);
    RC_ASSERT(paired.counts().onlyA == done.expected.onlyA);
    RC_ASSERT(paired.counts().onlyB == done.expected.onlyB);
    RC_ASSERT(paired.counts().more + paired.counts().wrongLan + paired.counts().differs == 0U);
    std::uint64_t runs = 0;
    for (RedundancyFault const& fault : paired.faults) {
        RC_ASSERT(fault.kind == RedundancyFaultKind::copyMissing);
        ++runs;
    }
    RC_ASSERT(runs == paired.counts().missingRunsA + paired.counts().missingRunsB);
}

RC_GTEST_PROP(PairingProperty, FilesMakeNoDifferenceToPairs, ()) {
    DoneToCopies const done = takeAtRandom();
    RC_PRE(!done.frames.empty());
    auto const whole = pairIn(done.frames);
    WireFrames split = done.frames;
    auto const length = *rc::gen::inRange<std::int64_t>(100, 2000) * kMillisecond;
    for (WireFrame& frame : split) {
        frame.file = static_cast<std::size_t>(frame.time / length);
    }
    auto captures = capturesOf(split);
    std::reverse(captures.begin(), captures.end());
    auto const parts = pairIn(captures);
    RC_ASSERT(parts.counts() == whole.counts());
    RC_ASSERT(parts.faultLines() == whole.faultLines());
}

RC_GTEST_PROP(PairingProperty, AnythingIsCountedOnce, ()) {
    // Ways, numbers, times and octets of any kind: frames that came are in one place each.
    WireFrames frames = sendBoth({.frames = 200});
    for (WireFrame& frame : frames) {
        auto const what = *rc::gen::inRange(0, 12);
        if (what == 0) frame.sequence = *rc::gen::inRange<std::uint16_t>(0, 4);
        if (what == 1) frame.way = *rc::gen::element('A', 'B');
        if (what == 2) frame.time = *rc::gen::inRange<std::int64_t>(0, 2 * kWholeSecond);
        if (what == 3) frame.isMisfit = true;
        if (what == 4) frame.isHsr = true;
        if (what == 5) frame.value = 9;
        if (what == 6) frame.file = *rc::gen::inRange<std::size_t>(0, 3);
    }
    auto const paired = pairIn(frames);
    CopyCounts const& counts = paired.counts();
    RC_ASSERT(counts.frames() <= frames.size());
    RC_ASSERT(counts.firstA + counts.firstB == counts.both);
    RC_ASSERT(counts == paired.redundancy.sources.at(0).counts);
    std::uint64_t extra = 0;
    for (RedundancyFault const& fault : paired.faults) {
        RC_ASSERT(fault.from <= fault.until);
        extra += fault.kind == RedundancyFaultKind::wrongLan ? fault.count : 0;
    }
    RC_ASSERT(extra == counts.wrongLan);
}

}  // namespace
}  // namespace TalTest::PairingPropertyTest
