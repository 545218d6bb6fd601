// Captures that are supervised while they grow.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/supervision/LiveSupervision.hpp>
#include <TalIec61850Analysis/traffic/TrafficFollower.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "analysis/supervision/FoundIn.hpp"
#include "support/GrowingFile.hpp"
#include "support/TempFile.hpp"

namespace TalTest::LiveSupervisionTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kMillisecond = 1'000'000;
constexpr std::int64_t kSecond = 1'000'000'000;

/// What stays the same of a finding, whenever it is told.
using Told = std::tuple<FindingKind, std::string, std::uint64_t, std::uint64_t, LossCause>;

Told toldOf(Finding const& finding, TrafficIndex const& index) {
    return {finding.kind, finding.stream ? index.streams()[*finding.stream].key.name : "",
            finding.place ? finding.place->fileOffset : 0, finding.lost, finding.cause};
}

/// A capture that is supervised piece by piece.
class WatchedCapture {
public:
    explicit WatchedCapture(Bytes const& capture)
        : growing_(capture, 24), follower_(growing_.path()) {}

    [[nodiscard]] std::size_t left() const { return growing_.left(); }
    [[nodiscard]] LiveSupervision const& supervision() const { return supervision_; }
    [[nodiscard]] std::vector<Told> const& told() const { return told_; }

    void grow(std::size_t octets) {
        growing_.grow(std::min(octets, growing_.left()));
        auto added = follower_.readOn();
        supervision_.add(added ? std::move(*added) : TrafficIndex(),
                         [this](Finding const& finding) { take(finding); });
    }
    void finish() {
        supervision_.finish([this](Finding const& finding) { take(finding); });
    }

    [[nodiscard]] std::ptrdiff_t countOf(FindingKind kind) const {
        return std::count_if(told_.begin(), told_.end(),
                             [&](Told const& each) { return std::get<0>(each) == kind; });
    }

private:
    void take(Finding const& finding) { told_.push_back(toldOf(finding, supervision_.index())); }

    GrowingFile growing_;
    TrafficFollower follower_;
    LiveSupervision supervision_;
    std::vector<Told> told_;
};

std::vector<Told> toldAtOnce(Bytes const& capture) {
    TempFile const file(capture);
    TrafficIndex const index = indexCapture(file.path());
    std::vector<Told> told;
    superviseTraffic(index, {}, [&](Finding const& each) { told.push_back(toldOf(each, index)); });
    return told;
}

RC_GTEST_PROP(LiveSupervisionProperty, TellsWhatIsFoundAtOnce, ()) {
    FaultyStation station;
    station.add(SvPlan{.frames = 1500});
    station.add(SvPlan{.svID = "MU02", .source = "02:00:00:00:00:02", .frames = 1500});
    station.add(GoosePlan{.states = {6, 5, 7}, .heartbeat = 20 * kMillisecond});
    for (std::size_t number = 20; number + 60 < 1500; number += 40) {
        std::size_t const stream = *rc::gen::inRange<std::size_t>(0, 2);
        switch (*rc::gen::inRange(0, 4)) {
            case 0:
                station.drop(stream, number, *rc::gen::inRange<std::size_t>(1, 20));
                break;
            case 1:
                station.repeat(stream, number, 80'000);
                break;
            case 2:
                station.delay(stream, number, 900'000);
                break;
            default:
                break;
        }
    }
    if (*rc::gen::inRange(0, 2) == 1) station.drop(2, 8);
    Bytes const capture = station.captures().at(0);
    WatchedCapture watched(capture);
    while (watched.left() > 0) watched.grow(*rc::gen::inRange<std::size_t>(10'000, 90'000));
    watched.finish();
    auto told = watched.told();
    auto atOnce = toldAtOnce(capture);
    std::sort(told.begin(), told.end());
    std::sort(atOnce.begin(), atOnce.end());
    RC_ASSERT(told == atOnce);
}

TEST(LiveSupervision, TellsAGapOneCallAfterThePacketThatShowsIt) {
    FaultyStation station;
    station.add(SvPlan{.frames = 1000});
    station.drop(0, 500, 3);
    Bytes const capture = station.captures().at(0);
    WatchedCapture watched(capture);
    watched.grow(capture.size() * 6 / 10);
    EXPECT_EQ(watched.told().size(), 0U);
    watched.grow(0);
    ASSERT_EQ(watched.told().size(), 1U);
    EXPECT_EQ(std::get<0>(watched.told()[0]), FindingKind::sampleGap);
    EXPECT_EQ(std::get<3>(watched.told()[0]), 3U);
    watched.grow(watched.left());
    watched.grow(0);
    watched.finish();
    EXPECT_EQ(watched.told().size(), 1U);
}

TEST(LiveSupervision, TellsAtOnceThatAStateHasExpiredAndOnlyOnce) {
    FaultyStation station;
    station.add(SvPlan{.rate = 100, .frames = 1000});
    // Ten seconds; the GOOSE stream pauses in the middle.
    std::size_t const goose =
        station.add(GoosePlan{.states = {100}, .heartbeat = 100 * kMillisecond});
    std::size_t const first = 40;
    station.drop(goose, first, 30);
    Bytes const capture = station.captures().at(0);
    auto const atOnce = toldAtOnce(capture);
    WatchedCapture watched(capture);
    std::optional<std::size_t> leftWhenTold;
    while (watched.left() > 0) {
        watched.grow(capture.size() / 50);
        if (!leftWhenTold && watched.countOf(FindingKind::expired) > 0) {
            leftWhenTold = watched.left();
        }
    }
    watched.finish();
    EXPECT_EQ(watched.countOf(FindingKind::expired),
              std::count_if(atOnce.begin(), atOnce.end(), [](Told const& each) {
                  return std::get<0>(each) == FindingKind::expired;
              }));
    EXPECT_GE(watched.countOf(FindingKind::expired), 1);
    ASSERT_TRUE(leftWhenTold);
    EXPECT_GT(*leftWhenTold, capture.size() * 4 / 10) << "told when it returned";
    EXPECT_EQ(watched.countOf(FindingKind::sqNumGap), 1);
}

TEST(LiveSupervision, ForgetsWhatIsOldAndFindsOnAllTheSame) {
    FaultyStation station;
    station.add(SvPlan{.rate = 50, .frames = 10'000});  // 200 s
    std::size_t const goose = station.add(
        GoosePlan{.states = {24}, .heartbeat = 20 * kSecond, .timeAllowedtoLive = 60'000});
    station.drop(0, 8000, 2);
    station.drop(goose, 20);
    Bytes const capture = station.captures().at(0);
    WatchedCapture watched(capture);
    std::uint64_t most = 0;
    while (watched.left() > 0) {
        watched.grow(capture.size() / 200);
        std::uint64_t all = 0;
        for (auto const& stream : watched.supervision().index().streams()) all += stream.size();
        most = std::max(most, all);
    }
    watched.finish();
    EXPECT_LT(most, 50U * 40U);
    EXPECT_EQ(watched.countOf(FindingKind::sampleGap), 1);
    EXPECT_EQ(watched.countOf(FindingKind::sqNumGap), 1) << "four messages take more than a minute";
    EXPECT_EQ(watched.countOf(FindingKind::silent), 1) << "when SV has ended";
    EXPECT_EQ(watched.told().size(), 3U);
}

TEST(LiveSupervision, GoesOnWhereTheClockIsSetBack) {
    FaultyStation station;
    station.add(SvPlan{.rate = 100, .frames = 20'000});  // 200 s
    station.add(SvPlan{.svID = "MU02", .rate = 100, .frames = 20'000, .start = kMillisecond});
    station.stepClock(50 * kSecond + 5 * kMillisecond, -3600 * kSecond);
    station.drop(0, 15'000, 2);
    Bytes const capture = station.captures().at(0);
    WatchedCapture watched(capture);
    std::uint64_t atEnd = 0;
    while (watched.left() > 0) watched.grow(capture.size() / 150);
    for (auto const& stream : watched.supervision().index().streams()) atEnd += stream.size();
    watched.finish();
    EXPECT_LT(atEnd, 2U * 100U * 40U);
    EXPECT_EQ(watched.countOf(FindingKind::clockStep), 1);
    EXPECT_EQ(watched.countOf(FindingKind::sampleGap), 1);
    EXPECT_EQ(watched.told().size(), 2U);
}

TEST(LiveSupervision, TellsACopyThatIsMissingWhereTheWriterPausesAfterIt) {
    FaultyStation station;
    station.add(SvPlan{.frames = 8000, .prpDelay = 20'000});
    std::erase_if(station.frames(), [](StationFrame const& frame) {
        return frame.ethernet.prpLan == 'B' && frame.number == 4000;
    });
    Bytes const capture = station.captures().at(0);
    WatchedCapture watched(capture);
    // 200 ms after the frame.
    watched.grow(capture.size() * 6 / 10);
    watched.grow(0);
    watched.grow(0);
    EXPECT_EQ(watched.countOf(FindingKind::copyMissing), 0);
    watched.grow(watched.left());
    watched.grow(0);
    EXPECT_EQ(watched.countOf(FindingKind::copyMissing), 1);
    watched.finish();
    EXPECT_EQ(watched.told(), toldAtOnce(capture));
}

TEST(LiveSupervision, TellsARestartWhereTheWriterPausesAfterItsFirstMessage) {
    FaultyStation station;
    station.add(GoosePlan{.firstState = 9, .firstMessage = 5, .states = {20}});
    FaultyStation after;
    after.add(GoosePlan{
        .firstState = 1, .states = {20}, .start = station.frame(0, 19).time + 50 * kMillisecond});
    std::size_t const before = station.captures().at(0).size();
    for (StationFrame frame : after.frames()) {
        frame.number += 20;
        station.frames().push_back(frame);
    }
    station.delay(0, 21, 2 * kMillisecond);
    Bytes const capture = station.captures().at(0);
    WatchedCapture watched(capture);
    watched.grow(before - 24 + (capture.size() - before) / 20);
    watched.grow(0);
    watched.grow(0);
    EXPECT_EQ(watched.told().size(), 0U);
    watched.grow(watched.left());
    watched.grow(0);
    watched.finish();
    EXPECT_EQ(watched.countOf(FindingKind::counterRestart), 1);
    EXPECT_EQ(watched.told(), toldAtOnce(capture));
}

/// A ring of files in a folder.
class WatchedRing {
public:
    void add(std::string const& name, Bytes const& capture) {
        TrafficFollower follower(directory_.write(name, capture));
        look(*follower.readOn());
    }
    void replace(std::string const& name, Bytes const& capture) {
        // Another file, not other octets of the same one.
        std::filesystem::rename(directory_.write("new", capture), directory_.file(name));
        look({});
    }
    void remove(std::string const& name) {
        std::filesystem::remove(directory_.file(name));
        look({});
    }
    [[nodiscard]] std::vector<FindingKind> const& told() const { return told_; }
    [[nodiscard]] TrafficIndex const& index() const { return supervision_.index(); }

private:
    void look(TrafficIndex added) {
        supervision_.add(std::move(added),
                         [this](Finding const& finding) { told_.push_back(finding.kind); });
    }

    TempDir directory_;
    LiveSupervision supervision_;
    std::vector<FindingKind> told_;
};

/// Messages of one state.
Bytes ringFile(std::size_t first, std::optional<std::size_t> missing = {}) {
    FaultyStation station;
    station.add(GoosePlan{.firstMessage = static_cast<std::uint32_t>(100 + first),
                          .states = {20},
                          .start = static_cast<std::int64_t>(first) * 100 * kMillisecond});
    if (missing) station.drop(0, *missing);
    return station.captures().at(0);
}

TEST(LiveSupervision, GoesOnWhereARingRemovesAFile) {
    WatchedRing ring;
    ring.add("a", ringFile(0));
    ring.remove("a");
    ring.add("b", ringFile(20, 10));
    ring.remove("c");
    EXPECT_EQ(ring.told(), std::vector{FindingKind::sqNumGap});
    for (auto const& stream : ring.index().streams()) EXPECT_EQ(stream.size(), 19U);
}

TEST(LiveSupervision, GoesOnWhereARingWritesAFileAnew) {
    WatchedRing ring;
    ring.add("a", ringFile(0));
    ring.replace("a", ringFile(20));
    EXPECT_TRUE(ring.index().streams().empty());
    ring.add("b", ringFile(40, 10));
    ring.remove("c");
    EXPECT_EQ(ring.told(), std::vector{FindingKind::sqNumGap});
}

TEST(LiveSupervision, ForgetsFilesThatDoNotGrowAnyMore) {
    WatchedRing ring;
    for (std::size_t number = 0; number < 4; ++number) {
        // More than ten minutes apart.
        ring.add("a" + std::to_string(number), ringFile(7000 * number));
    }
    ring.remove("none");
    ring.remove("none");
    ASSERT_EQ(ring.index().streams().size(), 1U);
    EXPECT_LE(ring.index().streams()[0].parts.size(), 2U);
}

TEST(LiveSupervision, OfNothingTellsNothing) {
    LiveSupervision supervision;
    std::size_t count = 0;
    auto const sink = [&](Finding const& /*finding*/) { ++count; };
    supervision.add({}, sink);
    supervision.add({}, sink);
    supervision.finish(sink);
    EXPECT_EQ(count, 0U);
    EXPECT_TRUE(supervision.index().streams().empty());
}

TEST(LiveSupervision, LeavesOutAFileThatVanishesWhileItIsAdded) {
    FaultyStation station;
    station.add({.frames = 2000});
    station.drop(0, 500, 3).drop(0, 1500, 5);
    station.splitAt(250 * kMillisecond).overlap(200 * kMillisecond, 250 * kMillisecond);
    auto const captures = station.captures();
    TempDir const folder;
    auto const first = folder.write("1", captures[0]);
    auto const second = folder.write("2", captures[1]);
    for (std::string const& gone : {first, second}) {
        folder.write("1", captures[0]);
        folder.write("2", captures[1]);
        TrafficIndex added = indexCapture(first);
        TrafficIndex more = indexCapture(second);
        std::filesystem::remove(gone);
        EXPECT_THROW(added.merge(std::move(more)), std::system_error);
        LiveSupervision supervision;
        std::vector<std::uint64_t> lost;
        auto const take = [&](Finding const& finding) {
            if (finding.kind == FindingKind::sampleGap) lost.push_back(finding.lost);
        };
        supervision.add(std::move(added), take);
        supervision.finish(take);
        EXPECT_EQ(lost, std::vector<std::uint64_t>{gone == first ? 5U : 3U});
    }
}

}  // namespace
}  // namespace TalTest::LiveSupervisionTest
