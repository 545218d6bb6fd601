#include <TalIec61850Analysis/pictures/CycleFit.hpp>
#include <TalIec61850Analysis/pictures/FindFrequency.hpp>
#include <TalIec61850Analysis/pictures/JoinedQuality.hpp>
#include <TalIec61850Analysis/pictures/MeasureCycle.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace TalIec61850Analysis {

namespace {

constexpr double kNanosecond = 1e-9;

/// Times may be any numbers, those of one run are near each other.
double nanosecondsFrom(std::int64_t first, std::int64_t last) {
    return static_cast<double>(static_cast<std::int64_t>(static_cast<std::uint64_t>(last) -
                                                         static_cast<std::uint64_t>(first)));
}

bool areAllFinite(std::span<double const> values) {
    return std::all_of(values.begin(), values.end(),
                       [](double value) { return std::isfinite(value); });
}

/// Not set where squares of the values are more than a double holds.
std::optional<ChannelCycle> cycleOf(detail::CycleFit const& fit, std::span<double const> values,
                                    double rate, double frequency, double after) {
    detail::CycleContent const content = fit.fit(values);
    if (!std::isfinite(content.meanSquare)) {
        return std::nullopt;
    }
    double const sinceMiddle = static_cast<double>(fit.samples() - 1) / 2 / rate + after;
    double const turns = frequency * sinceMiddle;
    double const angle = std::atan2(-content.sine, content.cosine) +
                         2 * std::numbers::pi * std::remainder(turns, 1.0);
    return ChannelCycle{
        .mean = content.mean,
        .rms = std::sqrt(content.meanSquare),
        .fundamental = {.magnitude = std::hypot(content.cosine, content.sine) / std::numbers::sqrt2,
                        .angle = foldedAngle(angle)},
        .quality = 0};
}

/// Rows of a waveform, the last one excluded.
struct RowRange {
    std::size_t first = 0;
    std::size_t end = 0;

    [[nodiscard]] std::size_t size() const { return end - first; }
};

/// The rows of one run that came, one after the other, around the one that an instant is at.
class RunAround {
public:
    RunAround(Waveform const& waveform, RowRange run, std::size_t row, SampleRate rate)
        : waveform_(waveform), run_(run), row_(row), rate_(rate) {}

    [[nodiscard]] double rate() const { return rate_.perSecond(); }
    [[nodiscard]] std::size_t row() const { return row_; }

    /// So many rows of which the last is this one, all in the run and none of them missing.
    [[nodiscard]] std::optional<RowRange> rowsUntil(std::size_t end, std::size_t count) const {
        if (count == 0 || end > run_.end || end < run_.first || end - run_.first < count) {
            return std::nullopt;
        }
        RowRange const rows{.first = end - count, .end = end};
        return isWhole(rows) ? std::optional(rows) : std::nullopt;
    }

    /// Rows around others, as many as were asked for or as there are one after the other: those
    /// before, then those after.
    [[nodiscard]] RowRange extended(RowRange rows, std::size_t count) const {
        auto const came = [&](std::size_t row) {
            return waveform_.states[row] != SampleState::missing;
        };
        RowRange all = rows;
        while (all.size() < count && all.first > run_.first && came(all.first - 1)) {
            --all.first;
        }
        while (all.size() < count && all.end < run_.end && came(all.end)) {
            ++all.end;
        }
        return isWhole(all) ? all : rows;
    }

private:
    /// Whether none is missing, neither as a row nor by time.
    [[nodiscard]] bool isWhole(RowRange rows) const {
        auto const states = std::span(waveform_.states).subspan(rows.first, rows.size());
        if (std::find(states.begin(), states.end(), SampleState::missing) != states.end()) {
            return false;
        }
        std::int64_t const first = waveform_.times[rows.first];
        std::int64_t const last = waveform_.times[rows.end - 1];
        double const due = static_cast<double>(rows.size() - 1) * rate_.interval();
        return first != kNoTime && last != kNoTime &&
               std::abs(nanosecondsFrom(first, last) - due) < rate_.interval() / 2;
    }

    Waveform const& waveform_;
    RowRange run_;
    std::size_t row_;
    SampleRate rate_;
};

/// Whether all lists have a value for each row, and all runs are of these rows.
bool isSound(Waveform const& waveform) {
    std::size_t const rows = waveform.size();
    return waveform.states.size() == rows &&
           std::all_of(waveform.channels.begin(), waveform.channels.end(),
                       [rows](WaveformChannel const& channel) {
                           return channel.values.size() == rows && channel.qualities.size() == rows;
                       }) &&
           std::is_sorted(waveform.runs.begin(), waveform.runs.end(),
                          [](WaveformRun const& a, WaveformRun const& b) {
                              return a.firstRow < b.firstRow;
                          }) &&
           (waveform.runs.empty() || waveform.runs.back().firstRow <= rows);
}

/// The last run that has a sample within one interval before an instant.
std::optional<RunAround> runAt(Waveform const& waveform, std::int64_t instant) {
    for (std::size_t i = waveform.runs.size(); i-- > 0;) {
        WaveformRun const& run = waveform.runs[i];
        bool const isLast = i + 1 == waveform.runs.size();
        RowRange const rows{.first = run.firstRow,
                            .end = isLast ? waveform.size() : waveform.runs[i + 1].firstRow};
        auto const times = std::span(waveform.times).subspan(rows.first, rows.size());
        auto const after = std::upper_bound(times.begin(), times.end(), instant);
        if (!run.rate.isKnown() || after == times.begin() || *(after - 1) == kNoTime) {
            continue;
        }
        if (nanosecondsFrom(*(after - 1), instant) <= run.rate.interval()) {
            std::size_t const row =
                rows.first + static_cast<std::size_t>(after - times.begin()) - 1;
            return RunAround(waveform, rows, row, run.rate);
        }
    }
    return std::nullopt;
}

std::span<double const> valuesIn(WaveformChannel const& channel, RowRange rows) {
    return std::span(channel.values).subspan(rows.first, rows.size());
}

/// The end of the rows of a cycle.
std::size_t cycleEnd(RunAround const& run, std::size_t count, CyclePlace place) {
    return run.row() + 1 + (place == CyclePlace::centred ? count / 2 : 0);
}

/// The frequency in the channel that has the most of a fundamental, or in the reference.
std::optional<double> frequencyIn(Waveform const& waveform, RunAround const& run, RowRange rows,
                                  CycleOptions const& options) {
    std::optional<double> best;
    double mostPart = 0;
    for (std::size_t channel = 0; channel < waveform.channels.size(); ++channel) {
        auto const values = valuesIn(waveform.channels[channel], rows);
        if ((options.reference && *options.reference != channel) || !areAllFinite(values)) {
            continue;
        }
        auto const found = findFrequency(values, run.rate(), options.nominal);
        if (!found) {
            continue;
        }
        std::size_t const count = cycleSamples(run.rate(), *found);
        auto const cycle =
            measureCycle(values.last(std::min(count, values.size())), run.rate(), *found);
        double const part = cycle ? cycle->fundamental.magnitude / cycle->rms : 0;
        if (part > mostPart) {
            mostPart = part;
            best = found;
        }
    }
    return best;
}

struct UsedFrequency {
    double frequency = 0;
    FrequencySource source = FrequencySource::nominal;
};

std::optional<UsedFrequency> frequencyAt(Waveform const& waveform, RunAround const& run,
                                         CycleOptions const& options) {
    if (options.frequency) {
        return UsedFrequency{*options.frequency, FrequencySource::given};
    }
    double const expected = options.nominal > 0 ? options.nominal : 50;
    std::size_t const count = cycleSamples(run.rate(), expected);
    if (auto const rows = run.rowsUntil(cycleEnd(run, count, options.place), count)) {
        std::size_t const most = count * std::max<std::size_t>(options.frequencyCycles, 2);
        if (auto const found = frequencyIn(waveform, run, run.extended(*rows, most), options)) {
            return UsedFrequency{*found, FrequencySource::found};
        }
    }
    return options.nominal > 0
               ? std::optional(UsedFrequency{options.nominal, FrequencySource::nominal})
               : std::nullopt;
}

}  // namespace

std::size_t cycleSamples(double rate, double frequency) noexcept {
    double const perCycle = rate / frequency;
    return frequency > 0 && detail::CycleFit::isMeasurable(perCycle)
               ? detail::CycleFit::samplesIn(perCycle)
               : 0;
}

std::optional<ChannelCycle> measureCycle(std::span<double const> values, double rate,
                                         double frequency, double after) {
    std::size_t const count = cycleSamples(rate, frequency);
    if (count == 0 || values.size() != count || !areAllFinite(values)) {
        return std::nullopt;
    }
    return cycleOf(detail::CycleFit(rate / frequency), values, rate, frequency, after);
}

std::optional<CycleReading> measureCycleAt(Waveform const& waveform, CaptureTime instant,
                                           CycleOptions const& options) {
    if (!isSound(waveform)) {
        return std::nullopt;
    }
    std::int64_t const time = nanosecondsOf(instant);
    auto const run = runAt(waveform, time);
    if (!run) {
        return std::nullopt;
    }
    auto const used = frequencyAt(waveform, *run, options);
    if (!used) {
        return std::nullopt;
    }
    std::size_t const count = cycleSamples(run->rate(), used->frequency);
    auto const rows = run->rowsUntil(cycleEnd(*run, count, options.place), count);
    if (!rows) {
        return std::nullopt;
    }
    CycleReading reading{.from = waveform.times[rows->first],
                         .to = waveform.times[rows->end - 1],
                         .frequency = used->frequency,
                         .frequencySource = used->source,
                         .channels = {}};
    detail::CycleFit const fit(run->rate() / used->frequency);
    double const after = nanosecondsFrom(reading.to, time) * kNanosecond;
    for (WaveformChannel const& channel : waveform.channels) {
        auto const values = valuesIn(channel, *rows);
        auto& measured = reading.channels.emplace_back();
        if (areAllFinite(values)) {
            measured = cycleOf(fit, values, run->rate(), used->frequency, after);
            for (std::size_t row = rows->first; measured && row < rows->end; ++row) {
                measured->quality =
                    detail::joinedQuality(measured->quality, channel.qualities[row]);
            }
        }
    }
    return reading;
}

}  // namespace TalIec61850Analysis
