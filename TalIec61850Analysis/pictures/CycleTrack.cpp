#include <TalIec61850Analysis/pictures/CycleFit.hpp>
#include <TalIec61850Analysis/pictures/CycleTrack.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace TalIec61850Analysis {

namespace {

constexpr double kNotMeasured = std::numeric_limits<double>::quiet_NaN();

/// The first multiple of a step that is not before a time.
std::int64_t instantFrom(std::int64_t time, std::int64_t step) {
    std::int64_t const part = time % step;
    return part == 0 ? time : time - part + step;
}

}  // namespace

CycleTrackBuilder::CycleTrackBuilder(TrackOptions options)
    : options_(std::move(options)),
      rows_(std::numeric_limits<std::size_t>::max(), options_.channels) {
    options_.step = std::max<std::chrono::nanoseconds>(options_.step, std::chrono::milliseconds(1));
    options_.cycle.place = CyclePlace::ending;
}

/// The cycles that a frequency is found in, at the lowest one that may be.
std::size_t CycleTrackBuilder::rowsToKeep(SampleBlock const& block) const {
    constexpr double kLowest = 40;
    double lowest = options_.cycle.nominal > 0 ? options_.cycle.nominal / 2 : kLowest;
    lowest = std::min(lowest, options_.cycle.frequency.value_or(lowest));
    double const perCycle =
        std::min(block.run.rate.perSecond() / lowest, detail::CycleFit::kMostPerCycle);
    std::size_t const cycles = std::clamp<std::size_t>(options_.cycle.frequencyCycles, 2, 100) + 1;
    return perCycle > 0 ? static_cast<std::size_t>(perCycle * static_cast<double>(cycles)) + 1 : 0;
}

void CycleTrackBuilder::matchChannels() {
    track_.channelNumbers = rows_.waveform().channelNumbers;
    track_.channelsOfStream = rows_.waveform().channelsOfStream;
    track_.channels.resize(track_.channelNumbers.size());
    for (TrackChannel& channel : track_.channels) {
        for (auto* const values : {&channel.rms, &channel.magnitudes, &channel.angles}) {
            values->resize(track_.instants.size(), kNotMeasured);
        }
    }
}

void CycleTrackBuilder::measureAt(std::int64_t instant) {
    if (track_.instants.size() >= options_.mostInstants) {
        ++track_.leftOut;
        return;
    }
    auto const reading = measureCycleAt(rows_.waveform(), captureTimeOf(instant), options_.cycle);
    track_.instants.push_back(instant);
    track_.frequencies.push_back(reading ? reading->frequency : kNotMeasured);
    for (std::size_t i = 0; i < track_.channels.size(); ++i) {
        TrackChannel& channel = track_.channels[i];
        bool const isMeasured = reading && reading->channels[i];
        ChannelCycle const cycle = isMeasured ? *reading->channels[i] : ChannelCycle{};
        channel.rms.push_back(isMeasured ? cycle.rms : kNotMeasured);
        channel.magnitudes.push_back(isMeasured ? cycle.fundamental.magnitude : kNotMeasured);
        channel.angles.push_back(isMeasured ? cycle.fundamental.angle : kNotMeasured);
    }
}

void CycleTrackBuilder::add(SampleBlock const& block) {
    std::size_t const before = rows_.waveform().size();
    rows_.add(block);
    matchChannels();
    std::int64_t const step = options_.step.count();
    double const interval = block.run.rate.interval();
    auto const& times = rows_.waveform().times;
    for (std::size_t row = before; row < times.size(); ++row) {
        constexpr std::int64_t kLatest = 4'600'000'000'000'000'000;
        if (times[row] < 0 || times[row] > kLatest) {
            continue;
        }
        std::int64_t const instant = instantFrom(times[row], step);
        bool const isBeforeNext = static_cast<double>(instant - times[row]) < interval &&
                                  (row + 1 == times.size() || instant < times[row + 1]);
        bool const isNew = track_.instants.empty() || track_.instants.back() != instant;
        if (isBeforeNext && isNew) {
            measureAt(instant);
        }
    }
    rows_.keepLast(rowsToKeep(block));
}

CycleTrack CycleTrackBuilder::take() { return std::move(track_); }

}  // namespace TalIec61850Analysis
