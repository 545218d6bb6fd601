// The events of recorded captures against what tshark tells, and against known figures.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/events/FindEvents.hpp>
#include <algorithm>
#include <filesystem>
#include <map>

#include "index/Tshark.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"

namespace TalTest::EventCapturesTest {
namespace {

using namespace TalIec61850Analysis;

std::vector<GooseEvent> eventsOf(TrafficIndex const& index) {
    std::vector<GooseEvent> events;
    findEvents(index, {}, [&](GooseEvent const& event) { events.push_back(event); });
    return events;
}

/// How many events each stream has, by its gocbRef.
std::map<std::string, std::size_t> countsOf(TrafficIndex const& index) {
    std::map<std::string, std::size_t> counts;
    for (GooseEvent const& event : eventsOf(index)) {
        ++counts[index.streams()[event.stream].key.name];
    }
    return counts;
}

std::optional<TrafficIndex> recordedIndex(std::string const& name) {
    auto const path = capture(name);
    return path ? std::optional(indexCapture(*path)) : std::nullopt;
}

TEST(EventsOfCaptures, AreAsManyAsStNumChanges) {
    auto const program = tsharkProgram();
    if (!program) {
        GTEST_SKIP() << "no tshark on PATH";
    }
    auto paths = recordedCapturePaths();
    if (paths.empty()) {
        GTEST_SKIP() << "no recorded captures";
    }
    for (std::string const& path : paths) {
        std::string const name = std::filesystem::path(path).filename();
        // No capture that tshark reads to its end; and a publisher that begins its counters anew
        // in state 1, see below.
        if (name.starts_with("reject-") || name.starts_with("goose-relay-retransmission")) {
            continue;
        }
        SCOPED_TRACE(name);
        std::map<std::string, std::string> last;
        std::map<std::string, std::size_t> told;
        for (TsharkFields const& fields :
             dissect(*program, path, {"eth.src", "vlan.id", "goose.gocbRef", "goose.stNum"})) {
            std::string const& stNum = fields.at("goose.stNum");
            if (stNum.empty()) {
                continue;
            }
            std::string const& gocbRef = fields.at("goose.gocbRef");
            auto const [known, isNew] = last.try_emplace(
                fields.at("eth.src") + " " + fields.at("vlan.id") + " " + gocbRef, stNum);
            if (!isNew && known->second != stNum) {
                ++told[gocbRef];
                known->second = stNum;
            }
        }
        EXPECT_EQ(countsOf(indexCapture(path)), told);
    }
}

TEST(EventsOfCaptures, AreThoseOfTheInterlocking) {
    auto const index = recordedIndex("goose-interlocking-three-publishers-vlan0.pcap");
    if (!index) {
        GTEST_SKIP() << "no recorded captures";
    }
    EXPECT_EQ(countsOf(*index),
              (std::map<std::string, std::size_t>{{"AA1C1Q01A1LD0/LLN0$GO$gcb_A", 63},
                                                  {"AA1C1Q05A1LD0/LLN0$GO$gcb_A", 99},
                                                  {"AA1C1Q07A1LD0/LLN0$GO$gcb_A", 88}}));
    for (GooseEvent const& event : eventsOf(*index)) {
        EXPECT_EQ(event.sqNum, 0U);
        EXPECT_EQ(event.stNum, event.previousStNum + 1);
        EXPECT_EQ(event.timeAllowedtoLive, 15'000);
        EXPECT_EQ(event.data, EventData::compared);
        EXPECT_FALSE(event.isRestart);
        EXPECT_LT(event.longestPartOfLife().value_or(0), 0.35);
    }
}

TEST(EventsOfCaptures, HaveTheBurstsOfTheTestbed) {
    auto const index = recordedIndex("goose-testbed-viewpoint-a.pcap");
    if (!index) {
        GTEST_SKIP() << "no recorded captures";
    }
    auto const events = eventsOf(*index);
    ASSERT_EQ(events.size(), 2U);
    std::vector<double> const burst = {8.6, 16.7, 33, 64, 128, 257};
    GooseEvent const& event = events[0];
    ASSERT_GE(event.retransmissions.size(), burst.size());
    std::int64_t before = 0;
    for (std::size_t i = 0; i < burst.size(); ++i) {
        double const interval = static_cast<double>(event.retransmissions[i] - before) / 1e6;
        EXPECT_NEAR(interval, burst[i], 0.03 * burst[i]) << i;
        before = event.retransmissions[i];
    }
    for (GooseEvent const& each : events) {
        EXPECT_EQ(each.timeAllowedtoLive, 2000);
        EXPECT_NEAR(each.longestPartOfLife().value_or(0), 0.5, 0.01);
    }
}

TEST(EventsOfCaptures, HaveTheBurstOfABayUnit) {
    auto const index = recordedIndex("goose-mms-mixed-station-bus.pcap");
    if (!index) {
        GTEST_SKIP() << "no recorded captures";
    }
    auto const events = eventsOf(*index);
    ASSERT_EQ(events.size(), 7U);
    // A breaker is on, on its way, and off.
    EXPECT_EQ(events[0].changes.at(0).member, std::vector<std::uint32_t>{7});
    EXPECT_EQ(events[3].changes.at(0).member, std::vector<std::uint32_t>{7});
    EXPECT_EQ(events[3].changes.at(0).from, events[0].changes.at(0).to);
    EXPECT_EQ(events[2].retransmissions,
              (std::vector<std::int64_t>{3'684'000, 11'703'000, 43'712'000, 171'726'000}));
    EXPECT_NEAR(events[6].longestPartOfLife().value_or(0), 0.19, 0.01);
}

TEST(EventsOfCaptures, TellARestartInStateOne) {
    auto const index = recordedIndex("goose-relay-retransmission-untagged.pcap");
    if (!index) {
        GTEST_SKIP() << "no recorded captures";
    }
    auto const events = eventsOf(*index);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_TRUE(events[0].isRestart);
    EXPECT_EQ(events[0].stNum, 1U);
    EXPECT_EQ(events[0].previousStNum, 1U);
    EXPECT_EQ(events[0].sqNum, 1U);
    EXPECT_EQ(events[0].timeAllowedtoLive, 1000);
}

TEST(EventsOfCaptures, AreTheSameInEveryFormat) {
    // The same frames, over an HSR ring.
    auto const ring = recordedIndex("derived-goose-hsr-both-ring-directions.pcap");
    auto const plain = recordedIndex("reencoded-be-us-goose-interlocking.pcap");
    if (!ring || !plain) {
        GTEST_SKIP() << "no recorded captures";
    }
    EXPECT_EQ(countsOf(*ring), countsOf(*plain));
}

TEST(EventsOfCaptures, EndForAllOfTheProjectsOwn) {
    std::size_t all = 0;
    for (std::string const& path : ownCapturePaths()) {
        SCOPED_TRACE(path);
        TrafficIndex const index = indexCapture(path);
        std::int64_t last = kNoTime;
        for (GooseEvent const& event : eventsOf(index)) {
            EXPECT_TRUE(event.arrival == kNoTime || event.arrival >= last);
            last = event.arrival;
            ++all;
        }
    }
    EXPECT_GT(all, 10U);
}

}  // namespace
}  // namespace TalTest::EventCapturesTest
