#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/pictures/Phasor.hpp>
#include <TalIec61850Analysis/pictures/Waveform.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace TalIec61850Analysis {

/// What one channel is over one cycle. Nothing is scaled.
struct ChannelCycle {
    /// The direct component.
    double mean = 0;
    /// True root mean square, with the direct component, harmonics and noise.
    double rms = 0;
    /// The fundamental, its angle at the instant that was asked for.
    Phasor fundamental;
    /// Quality words of the samples, see SampleQuality: all bits that any of them has, and of the
    /// validities the worst.
    std::uint32_t quality = 0;

    /// Member by member.
    friend bool operator==(ChannelCycle const&, ChannelCycle const&) = default;
};

/// Measures one cycle, by a Fourier transform of one cycle, or a fit by least squares where that is
/// no whole number of samples. Harmonics below the 26th do not change the fundamental.
/// @param values     samples one after the other, finite: as many as cycleSamples(rate, frequency)
/// @param rate       samples a second
/// @param frequency  of the fundamental, in hertz; one that is off by a part of x gives a phasor
///                   that is off by about as much
/// @param after      from the last sample to the instant that the angle is of, in seconds
/// @return without quality; not set where values are not as many, or not finite, or so large that
///         a double does not hold their squares
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<ChannelCycle> measureCycle(
    std::span<double const> values, double rate, double frequency, double after = 0);

/// How many samples measureCycle takes for a cycle.
/// @param rate       samples a second
/// @param frequency  in hertz
/// @return the nearest to a cycle; 0 where that is less than four, or more than 16,384
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::size_t cycleSamples(double rate,
                                                                  double frequency) noexcept;

/// Which samples make the cycle of an instant.
enum class CyclePlace : std::uint8_t {
    ending,  ///< the newest is the last one that was taken until then: what comes later is not seen
    centred,  ///< as many before as after
};

/// Where a frequency comes from.
enum class FrequencySource : std::uint8_t {
    given,    ///< the caller
    found,    ///< the samples
    nominal,  ///< samples do not tell: it is the nominal one
};

/// How cycles are measured.
struct CycleOptions {
    /// In hertz; 0 where it may be 50 or 60.
    double nominal = 0;
    /// In hertz; not set where it is to be found in the samples. It is found in the channel that
    /// has the most of a fundamental, or in the reference. With one that is not above 0, nothing is
    /// measured.
    std::optional<double> frequency = {};
    /// The place in Waveform::channels of the channel to find the frequency in; not set for any.
    std::optional<std::size_t> reference = {};
    /// As many cycles are looked at to find the frequency, at most; at least 2.
    std::size_t frequencyCycles = 5;
    /// Which samples make the cycle.
    CyclePlace place = CyclePlace::ending;
};

/// All channels of a waveform over one cycle.
struct CycleReading {
    /// When the first sample of the cycle was taken, in nanoseconds since 1970.
    std::int64_t from = 0;
    /// When the last one was.
    std::int64_t to = 0;
    /// What the cycle is measured with, in hertz.
    double frequency = 0;
    /// Where that comes from.
    FrequencySource frequencySource = FrequencySource::nominal;
    /// In the order of Waveform::channels; not set where a value is not there, not finite, or so
    /// large that a double does not hold its square.
    std::vector<std::optional<ChannelCycle>> channels;
};

/// Measures the cycle of an instant.
///
/// Its samples are of one run, and counted by the rate of the run, so that jitter of their times
/// does not count. The sample that is the newest at the instant must have been taken within one
/// interval of it.
/// @param waveform  samples
/// @param instant   any
/// @param options   how to measure
/// @return not set where samples of the cycle are missing, where it is not all in the waveform,
///         where the rate is not known, or the frequency is neither found nor nominal; nor where
///         lists of the waveform do not have a value for each row, or runs begin beyond its rows
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<CycleReading> measureCycleAt(
    Waveform const& waveform, CaptureTime instant, CycleOptions const& options = {});

}  // namespace TalIec61850Analysis
