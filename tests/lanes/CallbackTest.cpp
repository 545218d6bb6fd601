// What a progress call does to the store, the lanes do not tell apart.

#include <gtest/gtest.h>

#include <TalIec61850Parser/store/Sv.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "lanes/BothLanes.hpp"
#include "lanes/LaneFrames.hpp"
#include "lanes/StoreActions.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/Sanitized.hpp"

namespace TalTest::CallbackTest {
namespace {

using namespace TalIec61850Parser;

constexpr std::uint32_t kRecordsPerCall = 1000;
constexpr std::uint32_t kCalls = 12;

/// A capture of the frames in turn, with some at random between; as many as give `kCalls` calls
/// before the last one.
Bytes captureOf(std::vector<NamedFrame> const& frames) {
    std::minstd_rand random(1);
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < kCalls * kRecordsPerCall; ++i) {
        std::size_t const next = random() % 8 == 0 ? random() : i;
        capture.add(i, 0, frames[next % frames.size()].octets);
    }
    return capture.bytes();
}

TEST(LanesInCallback, EveryAction) {
    Bytes const capture = captureOf(deviceFrames());
    for (auto const& [name, act] : storeActions()) {
        LaneOutcome const outcome = indexByBothLanes(capture, {.filter = {}, .progress = act});
        EXPECT_EQ(outcome.difference, "") << name;
        EXPECT_GT(outcome.share(), 0.9) << name << ": " << outcome;
    }
}

TEST(LanesInCallback, EveryActionOnOddFramesThroughFilters) {
    Bytes const capture = captureOf(allFrames());
    for (auto const& [name, act] : storeActions())
        for (auto const& [filterName, filter] : laneFilters())
            EXPECT_EQ(indexByBothLanes(capture, {.filter = filter, .progress = act}).difference, "")
                << name << ", " << filterName;
}

TEST(LanesInCallback, ActionsAtRandom) {
    Bytes const capture = captureOf(deviceFrames());
    for (std::uint32_t seed = 0; seed < (isSanitized ? 20U : 60U); ++seed) {
        LaneOutcome const outcome =
            indexByBothLanes(capture, {.filter = {}, .progress = randomActions(seed)});
        EXPECT_EQ(outcome.difference, "") << "seed " << seed;
        EXPECT_GT(outcome.share(), 0.9) << "seed " << seed;
    }
}

TEST(LanesInCallback, EveryActionWhileSmpCntFalls) {
    // A stream that is found again has to begin with the smpCnt of its next frame.
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < kCalls * kRecordsPerCall; ++i) {
        auto const smpCnt = static_cast<std::uint16_t>(60'000 - i);
        capture.add(i, 0, svFrame(svEthernet(), message92le(i % 2 == 0 ? "MU01" : "MU02", smpCnt)));
    }
    for (auto const& [name, act] : storeActions()) {
        LaneOutcome const outcome =
            indexByBothLanes(capture.bytes(), {.filter = {}, .progress = act});
        EXPECT_EQ(outcome.difference, "") << name;
        EXPECT_GT(outcome.share(), 0.9) << name << ": " << outcome;
    }
}

TEST(LanesInCallback, MoreStreamsThanAreKept) {
    // So many that some of them can only be found again by their frames, of which two come at once.
    constexpr std::uint32_t streams = 7000;
    constexpr std::uint32_t records = 2 * 2 * streams;
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < records; ++i) {
        SvMessage message = message92le(std::to_string(100'000 + i / 2 % streams), 1);
        message.asdus[0].smpCnt = records - i;
        capture.add(i, 0, svFrame(svEthernet(), message));
    }
    for (auto const& [name, act] : storeActions()) {
        bool const isChosen = name == "clear" || name == "replace by copy" || name == "swap";
        if (!isChosen) continue;
        LaneOutcome const outcome =
            indexByBothLanes(capture.bytes(), {.filter = {}, .progress = act});
        EXPECT_EQ(outcome.difference, "") << name;
        EXPECT_GT(outcome.share(), 0.2) << name << ": " << outcome;
    }
}

TEST(LanesInCallback, OneActionInEachOfTheCalls) {
    Bytes const capture = captureOf(deviceFrames());
    for (auto const& [name, act] : storeActions())
        for (int chosen = 0; chosen <= static_cast<int>(kCalls); chosen += 3) {
            auto const once = [&, &action = act](WatchedStore& store, int call) {
                if (call == chosen) action(store, call);
            };
            EXPECT_EQ(indexByBothLanes(capture, {.filter = {}, .progress = once}).difference, "")
                << name << " in call " << chosen;
        }
}

TEST(LanesInCallback, StopsBothAtOneRecord) {
    Bytes const capture = captureOf(deviceFrames());
    for (int chosen = 0; chosen <= static_cast<int>(kCalls); chosen += 2) {
        auto const stop = [chosen](WatchedStore& store, int call) { store.stop = call == chosen; };
        LaneOutcome const outcome = indexByBothLanes(capture, {.filter = {}, .progress = stop});
        EXPECT_EQ(outcome.difference, "");
        EXPECT_EQ(outcome.records, chosen == static_cast<int>(kCalls)
                                       ? kCalls * kRecordsPerCall
                                       : static_cast<std::uint32_t>(chosen) * kRecordsPerCall + 1);
    }
}

TEST(LanesInCallback, StoreThatHoldsTheStreamsAlready) {
    Bytes const capture = captureOf(deviceFrames());
    // The first call comes before the first record: the store is then what an earlier file left.
    auto const fill = [](WatchedStore& store, int call) {
        if (call != 0) return;
        for (char const* const name : {"MU01", "MU02"}) {
            Sv known;
            known.svID = name;
            known.maxSmpCnt = 3000;
            known.maxNoASDU = 2;
            static_cast<void>(store.db.svProto.addSv(std::move(known)).addFile("earlier"));
        }
    };
    EXPECT_EQ(indexByBothLanes(capture, {.filter = {}, .progress = fill}).difference, "");
}

TEST(LanesInCallback, FilterThatChanges) {
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < kCalls * kRecordsPerCall; ++i) {
        GooseMessage message;
        message.goID = i % 2 == 0 ? "one" : "other";
        capture.add(i, 0, gooseFrame(Ethernet().withVlan(5), message));
    }
    std::vector<std::pair<std::string, std::function<void(Filter&)>>> const changes = {
        {"no criteria", [](Filter& filter) { filter = Filter(); }},
        {"another name", [](Filter& filter) { filter.gooseFilters[0].goID = "one"; }},
        {"no name", [](Filter& filter) { filter.gooseFilters[0].goID.reset(); }},
        {"another VLAN", [](Filter& filter) { filter.gooseFilters[0].vlan.emplace().vlanId = 6; }},
        {"one more", [](Filter& filter) { filter.gooseFilters.emplace_back().goID = "one"; }},
        {"no GOOSE", [](Filter& filter) { filter.parseGoose = false; }},
    };
    for (auto const& [name, change] : changes) {
        LaneSettings settings;
        settings.filter.gooseFilters.emplace_back().goID = "other";
        settings.progress = [&change = change](WatchedStore& store, int call) {
            if (call == 3) change(store.filter);
        };
        LaneOutcome const outcome = indexByBothLanes(capture.bytes(), settings);
        EXPECT_EQ(outcome.difference, "") << name;
        EXPECT_GT(outcome.remembered, 0U) << name;
    }
}

}  // namespace
}  // namespace TalTest::CallbackTest
