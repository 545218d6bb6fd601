// Pictures of whole captures, the project's own and recorded ones.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/events/FindEvents.hpp>
#include <TalIec61850Analysis/pictures/MeasureCycle.hpp>
#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <TalIec61850Analysis/pictures/StreamPicture.hpp>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <set>

#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"

namespace TalTest::RecordedPicturesTest {
namespace {

using namespace TalIec61850Analysis;

std::vector<std::string> picturedCaptures() {
    auto paths = ownCapturePaths();
    auto const recorded = recordedCapturePaths();
    paths.insert(paths.end(), recorded.begin(), recorded.end());
    return paths;
}

TEST(RecordedPictures, HaveEverySampleInOneColumn) {
    for (std::string const& path : picturedCaptures()) {
        SCOPED_TRACE(path);
        TrafficIndex const index = indexCapture(path);
        for (TrafficStream const& stream : index.streams()) {
            if (stream.key.protocol != StreamProtocol::sv) continue;
            auto const picture = readStreamPicture(index, stream, {.columns = 200});
            std::uint64_t untimed = picture.envelopes.untimed;
            for (EnvelopeLevel const& level : picture.envelopes.levels) {
                std::uint64_t const received =
                    std::accumulate(level.received.begin(), level.received.end(), std::uint64_t{0});
                std::uint64_t const missing =
                    std::accumulate(level.missing.begin(), level.missing.end(), std::uint64_t{0});
                EXPECT_EQ(received + missing + untimed,
                          picture.counts.received + picture.counts.lost);
            }
            std::uint64_t spans = 0;
            for (SampleSpan const& span : picture.spans.missing) spans += span.samples;
            EXPECT_LE(spans, picture.counts.lost);
        }
    }
}

TEST(RecordedPictures, HaveLanesThatChangeWithEvents) {
    for (std::string const& path : picturedCaptures()) {
        SCOPED_TRACE(path);
        TrafficIndex const index = indexCapture(path);
        std::vector<std::set<std::int64_t>> events(index.streams().size());
        findEvents(index, {},
                   [&](GooseEvent const& event) { events[event.stream].insert(event.arrival); });
        for (std::size_t stream = 0; stream < events.size(); ++stream) {
            auto const made = readMemberLanes(index, stream);
            for (MemberLane const& lane : made.lanes) {
                for (std::size_t i = 1; i < lane.intervals.size(); ++i) {
                    LaneInterval const& before = lane.intervals[i - 1];
                    LaneInterval const& now = lane.intervals[i];
                    ASSERT_LE(before.to, now.from);
                    // One value after another is an event.
                    bool const areValues =
                        before.state == LaneState::known && now.state == LaneState::known;
                    EXPECT_TRUE(!areValues || events[stream].contains(now.from));
                }
            }
        }
    }
}

TEST(RecordedPictures, HaveAThreePhaseSystem) {
    auto const path = capture("sv-92le-4000hz-three-phase-fault.pcap");
    if (!path) GTEST_SKIP() << "no recorded capture";
    TrafficIndex const index = indexCapture(*path);
    TrafficStream const& stream = index.streams().front();
    SampleOptions options;
    options.rows = SampleRows::everySample;
    auto const waveform = readWaveform(index, stream, options, std::size_t{1} << 20U);
    ASSERT_FALSE(waveform.isTooLong);
    ASSERT_GE(waveform.size(), 200U);
    ASSERT_EQ(waveform.channels.size(), 8U);
    auto const reading = measureCycleAt(waveform, captureTimeOf(waveform.times[200]));
    ASSERT_TRUE(reading.has_value());
    EXPECT_NEAR(reading->frequency, 50, 0.5);
    // Voltages before the fault: as large as each other, and a third of a turn apart.
    std::vector<ChannelCycle> volts;
    for (std::size_t i = 4; i < 7; ++i) volts.push_back(reading->channels[i].value());
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(volts[i].fundamental.magnitude / volts[0].fundamental.magnitude, 1, 0.02);
        double const apart =
            angleAgainst(volts[(i + 1) % 3].fundamental.angle, volts[i].fundamental.angle);
        EXPECT_NEAR(std::abs(apart), 2 * std::numbers::pi / 3, 0.02);
    }
}

}  // namespace
}  // namespace TalTest::RecordedPicturesTest
