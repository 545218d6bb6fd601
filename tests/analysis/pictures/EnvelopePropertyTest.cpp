// Envelopes of any samples, against a plain count of each column.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/pictures/EnvelopeBuilder.hpp>
#include <TalIec61850Analysis/pictures/JoinedQuality.hpp>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>

#include "analysis/pictures/SampleBlocks.hpp"

namespace TalTest::EnvelopePropertyTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kAxisStart = 1'700'000'000'000'000'000;

/// Runs of samples, one at any time before or after another.
std::vector<std::vector<PlainSample>> randomSamples() {
    std::vector<std::vector<PlainSample>> blocks;
    auto const count = *rc::gen::inRange(0, 6);
    for (int i = 0; i < count; ++i) {
        std::vector<PlainSample> samples;
        std::int64_t time = kAxisStart + *rc::gen::inRange<std::int64_t>(0, 4'000'000);
        auto const rows = *rc::gen::inRange(0, 40);
        auto const step = *rc::gen::element<std::int64_t>(1, 250, 62'500, 250'000);
        for (int row = 0; row < rows; ++row) {
            auto const value = *rc::gen::inRange(-1000, 1000);
            auto const word =
                *rc::gen::weightedElement<std::uint32_t>({{8, 0U}, {1, 1U}, {1, 3U}, {1, 0x802U}});
            samples.push_back({.time = time,
                               .values = {static_cast<double>(value), -2.0 * value},
                               .qualities = {word, 0x2000},
                               .isMissing = *rc::gen::inRange(0, 6) == 0});
            time += step;
        }
        blocks.push_back(std::move(samples));
    }
    return blocks;
}

/// A column, counted sample by sample.
struct PlainColumn {
    std::uint64_t received = 0;
    std::uint64_t missing = 0;
    std::optional<double> least;
    double largest = 0;
    std::uint32_t quality = 0;
};

PlainColumn columnOf(std::vector<PlainSample> const& samples, std::size_t channel,
                     std::int64_t from, std::int64_t end) {
    PlainColumn column;
    for (PlainSample const& sample : samples) {
        if (sample.time < from || sample.time >= end) continue;
        if (sample.isMissing) {
            ++column.missing;
            continue;
        }
        ++column.received;
        double const value = sample.values[channel];
        column.largest = column.least ? std::max(column.largest, value) : value;
        column.least = column.least ? std::min(*column.least, value) : value;
        column.quality = detail::joinedQuality(column.quality, sample.qualities[channel]);
    }
    return column;
}

void assertColumns(Envelopes const& made, EnvelopeLevel const& level,
                   std::vector<PlainSample> const& samples) {
    for (std::size_t column = 0; column < level.size(); ++column) {
        std::int64_t const from = made.start + static_cast<std::int64_t>(column) * level.width;
        for (std::size_t channel = 0; channel < level.channels.size(); ++channel) {
            PlainColumn const plain = columnOf(samples, channel, from, from + level.width);
            EnvelopeChannel const& is = level.channels[channel];
            RC_ASSERT(level.received[column] == plain.received);
            RC_ASSERT(level.missing[column] == plain.missing);
            RC_ASSERT(is.counts[column] == plain.received);
            RC_ASSERT(is.qualities[column] == plain.quality);
            if (plain.least) {
                RC_ASSERT(is.least[column] == *plain.least);
                RC_ASSERT(is.largest[column] == plain.largest);
                RC_ASSERT(is.least[column] <= is.first[column]);
                RC_ASSERT(is.last[column] <= is.largest[column]);
            } else {
                RC_ASSERT(std::isnan(is.least[column]));
            }
        }
    }
}

RC_GTEST_PROP(EnvelopeProperty, EveryLevelOfAnyWindowHoldsAllSamples, ()) {
    auto const blocks = randomSamples();
    EnvelopeOptions options;
    options.columns = *rc::gen::inRange<std::size_t>(0, 70);
    options.fewestColumns = 4;
    auto const bound = [] {
        return captureTimeOf(kAxisStart + *rc::gen::inRange<std::int64_t>(-1'000'000, 15'000'000));
    };
    if (*rc::gen::arbitrary<bool>()) options.from = bound();
    if (*rc::gen::arbitrary<bool>()) options.end = bound();
    EnvelopeBuilder builder(options);
    std::vector<PlainSample> inWindow;
    for (auto const& samples : blocks) {
        builder.add(blockOf(samples, PlainType::int32, 4000));
        for (PlainSample const& sample : samples) {
            CaptureTime const time{std::chrono::nanoseconds(sample.time)};
            if ((!options.from || *options.from <= time) && (!options.end || time < *options.end)) {
                inWindow.push_back(sample);
            }
        }
    }
    Envelopes const made = builder.take();
    RC_ASSERT(made.untimed == 0U);
    if (made.levels.empty()) {
        RC_ASSERT(inWindow.empty());
        return;
    }
    std::uint64_t all = 0;
    for (EnvelopeLevel const& level : made.levels) {
        RC_ASSERT(level.size() <= std::max<std::size_t>(options.columns, 16));
        assertColumns(made, level, inWindow);
        std::uint64_t rows = 0;
        for (std::size_t i = 0; i < level.size(); ++i) rows += level.received[i] + level.missing[i];
        RC_ASSERT(rows == inWindow.size());
        RC_ASSERT(all == 0U || rows == all);
        all = rows;
    }
}

RC_GTEST_PROP(EnvelopeProperty, LevelsAgree, ()) {
    auto const blocks = randomSamples();
    EnvelopeBuilder builder({.columns = 64, .fewestColumns = 4});
    for (auto const& samples : blocks) builder.add(blockOf(samples));
    Envelopes const made = builder.take();
    for (std::size_t level = 1; level < made.levels.size(); ++level) {
        EnvelopeLevel const& fine = made.levels[level - 1];
        EnvelopeLevel const& coarse = made.levels[level];
        RC_ASSERT(coarse.width == 2 * fine.width);
        RC_ASSERT(coarse.size() == (fine.size() + 1) / 2);
        for (std::size_t channel = 0; channel < fine.channels.size(); ++channel) {
            EnvelopeChannel const& a = fine.channels[channel];
            EnvelopeChannel const& b = coarse.channels[channel];
            for (std::size_t i = 0; i < fine.size(); ++i) {
                if (a.counts[i] == 0) continue;
                RC_ASSERT(b.least[i / 2] <= a.least[i]);
                RC_ASSERT(b.largest[i / 2] >= a.largest[i]);
                bool const isFirst = i % 2 == 0 || a.counts[i - 1] == 0;
                RC_ASSERT(!isFirst || b.first[i / 2] == a.first[i]);
                bool const isLast = i % 2 == 1 || i + 1 == fine.size() || a.counts[i + 1] == 0;
                RC_ASSERT(!isLast || b.last[i / 2] == a.last[i]);
            }
        }
    }
}

}  // namespace
}  // namespace TalTest::EnvelopePropertyTest
