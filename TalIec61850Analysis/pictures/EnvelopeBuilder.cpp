#include <TalIec61850Analysis/pictures/EnvelopeBuilder.hpp>
#include <TalIec61850Analysis/pictures/JoinedQuality.hpp>
#include <TalIec61850Analysis/pictures/RowTime.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <type_traits>
#include <utility>
#include <variant>

namespace TalIec61850Analysis {

namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();
/// The year 2115: differences of earlier times, and columns over all of them, are within 64 bits.
constexpr std::int64_t kAxisEnd = 4'600'000'000'000'000'000;
constexpr std::size_t kLeastColumns = 16;
constexpr std::size_t kMostColumns = 1'048'576;
constexpr std::size_t kLeastFewestColumns = 4;

constexpr bool isOnAxis(std::int64_t time) { return time >= 0 && time < kAxisEnd; }

std::int64_t axisTime(std::optional<CaptureTime> const& time) {
    return time ? std::clamp<std::int64_t>(nanosecondsOf(*time), 0, kAxisEnd) : 0;
}

void resizeColumns(EnvelopeChannel& channel, std::size_t columns) {
    for (auto* const values : {&channel.least, &channel.largest, &channel.first, &channel.last}) {
        values->resize(columns, kNoValue);
    }
    channel.counts.resize(columns);
    channel.qualities.resize(columns);
}

void resizeColumns(EnvelopeLevel& level, std::size_t columns) {
    level.received.resize(columns);
    level.missing.resize(columns);
    for (EnvelopeChannel& channel : level.channels) {
        resizeColumns(channel, columns);
    }
}

/// Inserts empty columns at the start, or erases columns there.
template <typename Value>
void moveColumns(std::vector<Value>& values, std::ptrdiff_t columns, Value empty) {
    if (columns < 0) {
        values.erase(values.begin(), values.begin() - columns);
    } else {
        values.insert(values.begin(), static_cast<std::size_t>(columns), empty);
    }
}

void moveColumns(EnvelopeLevel& level, std::ptrdiff_t columns) {
    moveColumns(level.received, columns, std::uint64_t{0});
    moveColumns(level.missing, columns, std::uint64_t{0});
    for (EnvelopeChannel& channel : level.channels) {
        for (auto* const values :
             {&channel.least, &channel.largest, &channel.first, &channel.last}) {
            moveColumns(*values, columns, kNoValue);
        }
        moveColumns(channel.counts, columns, std::uint64_t{0});
        moveColumns(channel.qualities, columns, std::uint32_t{0});
    }
}

template <typename Value>
struct ValueBounds {
    Value least;
    Value largest;
};

/// The least and the largest of some finite values; there is one at least.
template <typename Value>
ValueBounds<Value> boundsOf(std::span<Value const> values) {
    // Several at once, so that none waits for the one before.
    constexpr std::size_t kAtOnce = 8;
    std::array<Value, kAtOnce> least{};
    std::array<Value, kAtOnce> largest{};
    least.fill(values[0]);
    largest.fill(values[0]);
    std::size_t row = 0;
    for (; row + kAtOnce <= values.size(); row += kAtOnce) {
        for (std::size_t i = 0; i < kAtOnce; ++i) {
            Value const value = values[row + i];
            least[i] = value < least[i] ? value : least[i];
            largest[i] = largest[i] < value ? value : largest[i];
        }
    }
    for (; row < values.size(); ++row) {
        least[0] = std::min(least[0], values[row]);
        largest[0] = std::max(largest[0], values[row]);
    }
    return {*std::min_element(least.begin(), least.end()),
            *std::max_element(largest.begin(), largest.end())};
}

/// Whether all are finite.
template <typename Value>
bool areFinite(std::span<Value const> values) {
    if constexpr (std::is_floating_point_v<Value>) {
        Value sum = 0;
        for (Value const value : values) {
            sum += value * Value{0};  // 0, or NaN
        }
        return sum == 0;
    }
    return true;
}

/// Adds finite values to a column; there is one at least.
template <typename Value>
void addFinite(EnvelopeChannel& channel, std::size_t column, std::span<Value const> values) {
    auto const bounds = boundsOf(values);
    auto const least = static_cast<double>(bounds.least);
    auto const largest = static_cast<double>(bounds.largest);
    if (channel.counts[column] == 0) {
        channel.least[column] = least;
        channel.largest[column] = largest;
        channel.first[column] = static_cast<double>(values.front());
    } else {
        channel.least[column] = std::min(channel.least[column], least);
        channel.largest[column] = std::max(channel.largest[column], largest);
    }
    channel.last[column] = static_cast<double>(values.back());
    channel.counts[column] += values.size();
}

template <typename Value>
void addValues(EnvelopeChannel& channel, std::size_t column, std::span<Value const> values) {
    if (areFinite(values)) [[likely]] {
        addFinite(channel, column, values);
        return;
    }
    for (std::size_t row = 0; row < values.size(); ++row) {
        if (std::isfinite(static_cast<double>(values[row]))) {
            addFinite(channel, column, values.subspan(row, 1));
        }
    }
}

std::uint32_t joinedQualities(std::span<std::uint32_t const> words) {
    std::uint32_t any = 0;
    std::uint32_t all = ~std::uint32_t{0};
    for (std::uint32_t const word : words) {
        any |= word;
        all &= word;
    }
    if (any == all) [[likely]] {
        return any;
    }
    std::uint32_t joined = 0;
    for (std::uint32_t const word : words) {
        joined = detail::joinedQuality(joined, word);
    }
    return joined;
}

}  // namespace

EnvelopeBuilder::EnvelopeBuilder(EnvelopeOptions options)
    : options_(std::move(options)),
      choice_(options_.channels),
      isStartOpen_(!options_.from),
      isEndOpen_(!options_.end),
      start_(axisTime(options_.from)),
      end_(axisTime(options_.end)) {
    options_.columns = std::clamp(options_.columns, kLeastColumns, kMostColumns) / 2 * 2;
    options_.fewestColumns = std::max(options_.fewestColumns, kLeastFewestColumns);
    level_.width = 1;
    if (isStartOpen_ || isEndOpen_) {
        return;
    }
    std::int64_t const span = std::max<std::int64_t>(end_ - start_, 0);
    auto const most = static_cast<std::int64_t>(options_.columns);
    level_.width = std::max<std::int64_t>(span / most + (span % most != 0 ? 1 : 0), 1);
    isPlaced_ = true;
    resizeColumns(level_, static_cast<std::size_t>((span + level_.width - 1) / level_.width));
}

void EnvelopeBuilder::matchChannels() {
    level_.channels.resize(choice_.numbers().size());
    for (EnvelopeChannel& channel : level_.channels) {
        resizeColumns(channel, level_.size());
    }
}

/// The end of the rows that are in the column of the first one, and missing as it is or not. Rows
/// that go by arrival end earlier.
std::size_t EnvelopeBuilder::endOfRows(SampleBlock const& block, Rows const& rows) const {
    std::int64_t const columnStart = start_ + static_cast<std::int64_t>(rows.column) * level_.width;
    std::int64_t const width =
        isEndOpen_ ? level_.width : std::min(level_.width, end_ - columnStart);
    auto const start = static_cast<std::uint64_t>(columnStart);
    std::int64_t const* const times = block.sampleTimes.data();
    SampleState const* const states = block.states.data();
    std::size_t end = rows.first + 1;
    while (end < block.size() &&
           // Earlier times are very late ones without a sign.
           static_cast<std::uint64_t>(times[end]) - start < static_cast<std::uint64_t>(width) &&
           (states[end] == SampleState::missing) == rows.areMissing) {
        ++end;
    }
    return end;
}

/// Whether a time that is not before the columns is after them.
bool EnvelopeBuilder::isBeyond(std::int64_t time) const {
    return (static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(start_)) /
               static_cast<std::uint64_t>(level_.width) >=
           level_.size();
}

void EnvelopeBuilder::widen() {
    std::size_t const columns = level_.size();
    level_ = joinColumns(level_);
    resizeColumns(level_, columns);
}

/// The columns that would be lost are empty.
void EnvelopeBuilder::shiftRight(std::size_t columns) {
    std::size_t const all = level_.size();
    start_ -= static_cast<std::int64_t>(columns) * level_.width;
    moveColumns(level_, static_cast<std::ptrdiff_t>(columns));
    resizeColumns(level_, all);
}

/// Makes columns such that there is one for a time.
/// @return false where there is none
bool EnvelopeBuilder::reach(std::int64_t time, SampleBlock const& block) {
    bool const isOut = (!isStartOpen_ && time < start_) || (!isEndOpen_ && time >= end_);
    if (!isOnAxis(time) || isOut) {
        return false;
    }
    if (!isPlaced_) {
        isPlaced_ = true;
        start_ = isStartOpen_ ? time : start_;
        level_.width =
            std::max<std::int64_t>(std::llround(std::min(block.run.rate.interval(), 1e9)), 1);
        resizeColumns(level_, options_.columns);
    }
    while (time < start_) {
        widen();
        shiftRight(level_.size() / 2);
    }
    while (isBeyond(time)) {
        widen();
    }
    return true;
}

void EnvelopeBuilder::addRows(SampleBlock const& block, Rows const& rows) {
    std::size_t const count = rows.end - rows.first;
    if (rows.areMissing) {
        level_.missing[rows.column] += count;
        return;
    }
    level_.received[rows.column] += count;
    for (std::size_t chosen = 0; chosen < level_.channels.size(); ++chosen) {
        ChannelColumn const* const column = choice_.in(block, chosen);
        if (column == nullptr) {
            continue;
        }
        EnvelopeChannel& channel = level_.channels[chosen];
        std::visit(
            [&](auto const& values) {
                addValues(channel, rows.column, std::span(values).subspan(rows.first, count));
            },
            column->values);
        if (!column->qualities.empty()) {
            std::span const words(column->qualities);
            std::uint32_t& quality = channel.qualities[rows.column];
            quality =
                detail::joinedQuality(quality, joinedQualities(words.subspan(rows.first, count)));
        }
    }
}

void EnvelopeBuilder::add(SampleBlock const& block) {
    if (isTaken_) {
        return;
    }
    std::size_t const before = choice_.numbers().size();
    choice_.addChannelsOf(block);
    if (choice_.numbers().size() != before || level_.channels.size() != before) {
        matchChannels();
    }
    for (std::size_t row = 0; row < block.size();) {
        std::int64_t const time = detail::rowTime(block, row);
        if (!reach(time, block)) {
            untimed_ += isOnAxis(time) ? 0 : 1;
            ++row;
            continue;
        }
        Rows rows{.first = row};
        rows.column = static_cast<std::size_t>(
            (static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(start_)) /
            static_cast<std::uint64_t>(level_.width));
        rows.areMissing = block.states[row] == SampleState::missing;
        rows.end = endOfRows(block, rows);
        addRows(block, rows);
        row = rows.end;
    }
}

/// Leaves out columns at an open end of the window that no sample is in.
void EnvelopeBuilder::trim() {
    auto const isUsed = [&](std::size_t column) {
        return level_.received[column] != 0 || level_.missing[column] != 0;
    };
    std::size_t size = level_.size();
    while (isEndOpen_ && size > 0 && !isUsed(size - 1)) {
        --size;
    }
    std::size_t first = 0;
    while (isStartOpen_ && first < size && !isUsed(first)) {
        ++first;
    }
    resizeColumns(level_, size);
    moveColumns(level_, -static_cast<std::ptrdiff_t>(first));
    start_ += static_cast<std::int64_t>(first) * level_.width;
}

Envelopes EnvelopeBuilder::take() {
    if (std::exchange(isTaken_, true)) {
        return {};
    }
    matchChannels();
    trim();
    Envelopes made{.start = start_,
                   .levels = {},
                   .channelNumbers = choice_.numbers(),
                   .channelsOfStream = choice_.channelsOfStream(),
                   .untimed = untimed_};
    if (level_.size() == 0) {
        return made;
    }
    made.levels.push_back(std::move(level_));
    while (made.levels.back().size() > options_.fewestColumns) {
        made.levels.push_back(joinColumns(made.levels.back()));
    }
    return made;
}

}  // namespace TalIec61850Analysis
