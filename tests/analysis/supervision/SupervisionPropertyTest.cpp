// Whatever random faults a stream has, what is found adds up.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "analysis/supervision/FoundIn.hpp"

namespace TalTest::SupervisionPropertyTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kInterval = 250'000;

/// What is done to a stream: faults by the number of the frame, apart from one another.
struct WalkFaults {
    std::uint64_t dropped = 0;
    std::uint64_t repeated = 0;
    std::uint64_t late = 0;
};

WalkFaults doFaults(FaultyStation& station, std::size_t frames) {
    WalkFaults done;
    std::size_t number = 1 + *rc::gen::inRange<std::size_t>(0, 20);
    while (number + 30 < frames) {
        switch (*rc::gen::inRange(0, 3)) {
            case 0: {
                auto const count = *rc::gen::inRange<std::size_t>(1, 20);
                station.drop(0, number, count);
                done.dropped += count;
                number += count;
                break;
            }
            case 1:
                station.repeat(0, number, kInterval * *rc::gen::inRange(0, 5) + kInterval / 3);
                ++done.repeated;
                break;
            default:
                station.delay(0, number, kInterval * *rc::gen::inRange(1, 10) + kInterval / 3);
                ++done.late;
                break;
        }
        number += 12 + *rc::gen::inRange<std::size_t>(0, 200);
    }
    return done;
}

RC_GTEST_PROP(SupervisionProperty, LostIsWhatWasDropped, ()) {
    constexpr std::size_t kFrames = 800;
    FaultyStation station;
    station.add(SvPlan{.firstCount = *rc::gen::inRange<std::uint32_t>(0, 4000), .frames = kFrames});
    WalkFaults const done = doFaults(station, kFrames);
    WalkFaults found;
    std::size_t others = 0;
    auto const captures = station.captures();
    for (Finding const& finding : findingsIn(captures)) {
        RC_LOG() << lineOf(finding, station) << '\n';
        found.dropped += finding.lost;
        if (finding.kind == FindingKind::repeated) {
            found.repeated += finding.count;
        } else if (finding.kind == FindingKind::late) {
            found.late += finding.count;
        } else if (finding.kind != FindingKind::sampleGap) {
            ++others;
        }
    }
    RC_ASSERT(found.dropped == done.dropped);
    RC_ASSERT(found.repeated == done.repeated);
    RC_ASSERT(found.late == done.late);
    RC_ASSERT(others == 0U);
}

RC_GTEST_PROP(SupervisionProperty, FilesMakeNoDifference, ()) {
    constexpr std::size_t kFrames = 500;
    FaultyStation station;
    station.add(SvPlan{.firstCount = *rc::gen::inRange<std::uint32_t>(0, 4000), .frames = kFrames});
    doFaults(station, kFrames);
    FaultyStation split = station;
    auto const lines = foundIn(station);
    auto const cuts = *rc::gen::inRange(1, 4);
    for (int i = 0; i < cuts; ++i) {
        split.splitAt(kInterval * *rc::gen::inRange<std::int64_t>(1, kFrames));
    }
    RC_ASSERT(foundIn(split) == lines);
}

RC_GTEST_PROP(SupervisionProperty, LostMessagesAreThoseDropped, ()) {
    constexpr std::size_t kMessages = 400;
    constexpr std::int64_t kHeartbeat = 100'000'000;
    FaultyStation station;
    station.add(GoosePlan{.firstMessage = *rc::gen::inRange<std::uint32_t>(10, 0xFFFF'0000),
                          .states = {kMessages}});
    WalkFaults done;
    std::size_t number = 2;
    while (number + 25 < kMessages) {
        switch (*rc::gen::inRange(0, 3)) {
            case 0: {
                auto const count = *rc::gen::inRange<std::size_t>(1, 5);
                station.drop(0, number, count);
                done.dropped += count;
                number += count;
                break;
            }
            case 1:
                station.repeat(0, number, kHeartbeat * *rc::gen::inRange(0, 5) + kHeartbeat / 3);
                ++done.repeated;
                break;
            default:
                station.delay(0, number, kHeartbeat * *rc::gen::inRange(1, 10) + kHeartbeat / 3);
                ++done.late;
                break;
        }
        number += 12 + *rc::gen::inRange<std::size_t>(0, 50);
    }
    WalkFaults found;
    std::size_t others = 0;
    auto const captures = station.captures();
    for (Finding const& finding : findingsIn(captures)) {
        RC_LOG() << lineOf(finding, station) << '\n';
        found.dropped += finding.lost;
        bool const isAgain =
            finding.kind == FindingKind::repeated || finding.kind == FindingKind::replay;
        found.repeated += isAgain ? 1U : 0U;
        found.late += finding.kind == FindingKind::late ? 1U : 0U;
        others += finding.kind == FindingKind::expired || finding.kind == FindingKind::sqNumGap ||
                          isAgain || finding.kind == FindingKind::late
                      ? 0U
                      : 1U;
    }
    RC_ASSERT(found.dropped == done.dropped);
    RC_ASSERT(found.repeated == done.repeated);
    RC_ASSERT(found.late == done.late);
    RC_ASSERT(others == 0U);
}

RC_GTEST_PROP(SupervisionProperty, AnyCountersAndTimesEnd, ()) {
    FaultyStation station;
    station.add(SvPlan{.frames = 200});
    station.add(GoosePlan{.states = {100}});
    for (StationFrame& frame : station.frames()) {
        if (*rc::gen::inRange(0, 4) == 0) {
            frame.clock = *rc::gen::inRange<std::int64_t>(-2'000'000'000, 2'000'000'000);
        }
        if (auto* const sv = std::get_if<SvMessage>(&frame.message)) {
            if (*rc::gen::inRange(0, 3) == 0) {
                sv->asdus.front().smpCnt = Unsigned<2>(*rc::gen::inRange<std::uint64_t>(0, 65536));
            }
        } else if (*rc::gen::inRange(0, 3) == 0) {
            auto& goose = std::get<GooseMessage>(frame.message);
            goose.stNum = *rc::gen::inRange<std::uint64_t>(0, 4);
            goose.sqNum = *rc::gen::arbitrary<std::uint32_t>();
        }
    }
    std::int64_t last = kNoTime;
    for (Finding const& finding : findingsIn(station.captures())) {
        RC_ASSERT(finding.from >= last);
        last = finding.from;
    }
}

}  // namespace
}  // namespace TalTest::SupervisionPropertyTest
