// When frames came, as columns: residuals against the times of samples, and distances.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/report/ArrivalPicture.hpp"

namespace TalIec61850Tools::ArrivalPictureTest {
namespace {

using TalIec61850Analysis::captureTimeOf;
using TalIec61850Analysis::EnvelopeChannel;
using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleState;

constexpr std::int64_t kStart = 1'700'000'000'000'000'000;
constexpr std::int64_t kMillisecond = 1'000'000;

void addRow(SampleBlock& block, std::int64_t time, std::int64_t arrival, std::uint16_t asdu) {
    block.sampleTimes.push_back(time);
    block.arrivals.push_back(arrival);
    block.smpCnts.push_back(0);
    block.smpSynchs.push_back(0);
    block.timeSources.push_back({});
    block.states.push_back(arrival == kNoTime ? SampleState::missing : SampleState::received);
    block.places.push_back({.fileOffset = 0, .file = 0, .asdu = asdu});
}

/// The values of the columns that have any, each of which has one.
std::vector<double> valuesOf(EnvelopeChannel const& channel) {
    std::vector<double> values;
    for (std::size_t column = 0; column < channel.least.size(); ++column) {
        if (!std::isnan(channel.least[column])) {
            EXPECT_EQ(channel.least[column], channel.largest[column]);
            values.push_back(channel.least[column]);
        }
    }
    return values;
}

TEST(ArrivalPicture, HasAResidualAndADistanceForEachFrameAfterTheFirst) {
    SampleBlock block;
    for (std::int64_t frame = 0; frame < 8; ++frame) {
        std::int64_t const time = kStart + frame * kMillisecond;
        std::int64_t const late = frame == 5 ? 40'000 : 0;
        // The fourth is lost; of the others, the second ASDU comes with the first.
        bool const isLost = frame == 3;
        std::int64_t const arrival = isLost ? kNoTime : time + 100'000 + late;
        addRow(block, time, arrival, 0);
        addRow(block, time + kMillisecond / 2, arrival, 1);
    }
    TalIec61850Analysis::SampleOptions samples;
    samples.from = captureTimeOf(kStart);
    samples.end = captureTimeOf(kStart + 8 * kMillisecond);
    ArrivalPicture picture(samples, 16);
    picture.add(block);
    auto const envelopes = picture.take();
    ASSERT_FALSE(envelopes.levels.empty());
    auto const& channels = envelopes.levels.front().channels;
    ASSERT_EQ(channels.size(), 2U);
    EXPECT_EQ(valuesOf(channels[0]),
              (std::vector<double>{100'000, 100'000, 100'000, 140'000, 100'000, 100'000}));
    EXPECT_EQ(valuesOf(channels[1]), (std::vector<double>{1'000'000, 1'000'000, 2'000'000,
                                                          1'040'000, 960'000, 1'000'000}));
}

TEST(ArrivalPicture, IsEmptyWithoutTimesOfArrival) {
    SampleBlock block;
    addRow(block, kStart, kNoTime, 0);
    addRow(block, kStart + kMillisecond, kNoTime, 0);
    ArrivalPicture picture({}, 16);
    picture.add(block);
    EXPECT_TRUE(picture.take().levels.empty());
}

}  // namespace
}  // namespace TalIec61850Tools::ArrivalPictureTest
