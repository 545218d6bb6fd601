#pragma once

// Waves whose phasors are known, as samples and as waveforms.

#include <TalIec61850Analysis/pictures/Waveform.hpp>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

namespace TalTest {

/// One part of a wave: amplitude * cos(2 pi frequency * order * t + angle).
struct WavePart {
    double order = 1;
    double amplitude = 1;
    double angle = 0;
};

/// A wave of which time 0 is a full second.
struct AnalyticWave {
    double frequency = 50;
    double mean = 0;
    std::vector<WavePart> parts = {WavePart{}};

    [[nodiscard]] double at(double seconds) const {
        double value = mean;
        for (WavePart const& part : parts) {
            // Whole turns are taken off first: they would cost digits.
            double const turns = std::remainder(frequency * part.order * seconds, 1.0);
            value += part.amplitude * std::cos(2 * std::numbers::pi * turns + part.angle);
        }
        return value;
    }
    /// Of the whole cycle.
    [[nodiscard]] double rms() const {
        double square = mean * mean;
        for (WavePart const& part : parts) square += part.amplitude * part.amplitude / 2;
        return std::sqrt(square);
    }
    [[nodiscard]] std::vector<double> samples(double rate, std::size_t count,
                                              std::size_t first = 0) const {
        std::vector<double> values;
        for (std::size_t i = first; i < first + count; ++i) {
            values.push_back(at(static_cast<double>(i) / rate));
        }
        return values;
    }
};

/// When the waveforms begin, in nanoseconds since 1970.
inline constexpr std::int64_t kWaveformStart = 1'700'000'000'000'000'000;

/// A waveform of one run, a channel for each wave.
[[nodiscard]] inline TalIec61850Analysis::Waveform waveformOf(
    std::vector<AnalyticWave> const& waves, std::uint32_t rate, std::size_t rows) {
    using namespace TalIec61850Analysis;
    Waveform made;
    SampleRate const sampleRate{.samples = rate};
    for (std::size_t row = 0; row < rows; ++row) {
        made.times.push_back(kWaveformStart + sampleRate.timeOf(static_cast<std::int64_t>(row)));
    }
    made.states.assign(rows, SampleState::received);
    for (AnalyticWave const& wave : waves) {
        made.channelNumbers.push_back(made.channels.size());
        made.channels.push_back(
            {.values = wave.samples(rate, rows), .qualities = std::vector<std::uint32_t>(rows)});
    }
    made.channelsOfStream = waves.size();
    made.runs.push_back({.firstRow = 0, .rate = sampleRate, .start = RunStart::first});
    return made;
}

}  // namespace TalTest
