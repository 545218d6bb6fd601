// Random walks of drops, repeats, late frames, restarts and steps of the clock.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "analysis/samples/ReadRows.hpp"
#include "support/CaptureFile.hpp"
#include "support/WaveformStream.hpp"

namespace TalIec61850Analysis::SamplePropertyTest {
namespace {

using namespace TalTest;

struct WalkedRate {
    std::uint32_t rate;
    std::uint32_t asdus;
};

/// What happens, and by how much.
using Happening = std::pair<int, std::uint32_t>;

WaveformSettings randomSettings() {
    static std::vector<WalkedRate> const rates = {{4000, 1},  {4800, 1},  {4800, 2}, {5760, 1},
                                                  {12800, 8}, {14400, 6}, {15360, 8}};
    WalkedRate const rate = *rc::gen::elementOf(rates);
    WaveformSettings settings;
    settings.rate = rate.rate;
    settings.asdus = rate.asdus;
    settings.members = repeatedMembers({WaveMember::int32, WaveMember::quality}, 1);
    settings.firstCount = *rc::gen::inRange<std::uint32_t>(0, rate.rate);
    settings.copies =
        *rc::gen::weightedElement<WaveCopies>({{4, WaveCopies::none}, {1, WaveCopies::prp}});
    // Few frames of several ASDUs, late ones, long losses and steps of the clock tell a rate less
    // well.
    if (settings.asdus > 1 || *rc::gen::arbitrary<bool>()) {
        settings.smpRate = static_cast<std::uint16_t>(settings.rate);
        settings.smpMod = 1;
    }
    return settings;
}

/// A stream to which all that happens; steps of the clock only where they are asked for.
WaveformStream walkedStream(WaveformSettings const& settings,
                            std::vector<Happening> const& happenings, bool maySetClock) {
    constexpr std::int64_t kMillisecond = 1'000'000;
    bool const hasSteps = maySetClock && settings.smpRate.has_value();
    WaveformStream stream(settings);
    std::size_t const mostLate = std::max<std::size_t>(17 / settings.asdus - 1, 1);
    stream.send(150);
    for (auto const& [kind, amount] : happenings) {
        switch (kind) {
            case 0:
                stream.lose(1 + amount % 30).send();
                break;
            case 1:
                if (settings.copies == WaveCopies::none) stream.repeatLast();
                break;
            case 2:
                if (settings.smpRate) stream.sendLate(1 + amount % mostLate);
                break;
            case 3:
                // Elsewhere, and not at 0, which would be where the counter begins again.
                stream.restartAt(1 + (stream.nextCount() + 1000 + amount % (settings.rate - 2002)) %
                                         (settings.rate - 1));
                stream.send(1 + amount % 20);
                break;
            case 4:
                if (hasSteps) {
                    bool const isBack = amount % 2 == 0;
                    std::int64_t const step = (300 + amount % 400) * kMillisecond;
                    stream.stepClock(isBack ? -step : step).send(20);
                }
                break;
            case 5:
                if (hasSteps) {
                    stream.stepClock(-1'000 * kMillisecond * (1 + amount % 100)).send(20);
                }
                break;
            case 6:
                if (amount % 4 == 0 && settings.smpRate) {
                    stream.lose(settings.rate / settings.asdus * (1 + amount % 2)).send();
                }
                break;
            case 7: {
                static std::vector<std::optional<std::uint8_t>> const all = {2, 2, 1, 0, 254, {}};
                stream.synchronize(all[amount % all.size()]);
                break;
            }
            default:
                stream.send(1 + amount % 60);
        }
    }
    return stream;
}

std::vector<Happening> randomHappenings() {
    return *rc::gen::container<std::vector<Happening>>(
        rc::gen::pair(rc::gen::inRange(0, 20), rc::gen::inRange<std::uint32_t>(0, 4000)));
}

/// Rows without their places, which depend on the files.
std::vector<ReadRow> withoutPlaces(ReadStream read) {
    for (ReadRow& row : read.rows) row.place = {};
    return std::move(read.rows);
}

RC_GTEST_PROP(SamplesOfARandomWalk, AreThoseThatWereSent, ()) {
    WaveformSettings const settings = randomSettings();
    WaveformStream const stream = walkedStream(settings, randomHappenings(), true);
    IndexedWaveform const indexed(stream);
    WaveformCounts const counts = stream.counts();
    for (bool const withMissing : {false, true}) {
        SampleOptions options;
        options.rows = withMissing ? SampleRows::everySample : SampleRows::received;
        ReadStream const read = indexed.read(options);
        auto const areSame = areRowsOf(settings, stream.rows(withMissing), read);
        if (!areSame) {
            RC_FAIL(std::string(areSame.message()));
        }
        RC_ASSERT(read.counts.received == counts.received);
        RC_ASSERT(read.counts.lost == counts.lost);
        RC_ASSERT(read.counts.late == counts.late);
        RC_ASSERT(read.counts.repeated == counts.repeated);
        RC_ASSERT(read.counts.runs == counts.runs);
    }
}

RC_GTEST_PROP(SamplesOfARandomWalk, AreThoseOfReadersThatGoOnAfterEachOther, ()) {
    WaveformSettings settings = randomSettings();
    settings.hasRefrTm = *rc::gen::weightedElement<bool>({{3, false}, {1, true}});
    WaveformStream const stream = walkedStream(settings, randomHappenings(), true);
    IndexedWaveform const indexed(stream);
    SampleOptions options;
    options.rows = *rc::gen::element(SampleRows::received, SampleRows::everySample);
    CaptureTime const start{
        std::chrono::nanoseconds(stream.rows(false).front().taken - settings.delay)};
    auto const length = std::chrono::milliseconds(*rc::gen::element(1, 10, 50, 200, 1000));
    std::optional<SampleReader> before;
    for (int part = 0; part < 8; ++part) {
        options.from = start + part * length;
        options.end = *options.from + length;
        // Some parts are left out.
        if (before && part % 5 == 3) {
            continue;
        }
        SampleReader reader(indexed.index(), indexed.stream(), options);
        if (before) {
            reader.startAfter(*before);
        }
        ReadStream const read = readRows(reader);
        RC_ASSERT(read.rows == indexed.read(options).rows);
        before = std::move(reader);
    }
}

RC_GTEST_PROP(SamplesOfARandomWalk, AreTheSameHoweverTheyAreCutIntoFiles, ()) {
    WaveformSettings const settings = randomSettings();
    WaveformStream const stream = walkedStream(settings, randomHappenings(), false);
    std::size_t const all = stream.captured().size();
    std::size_t const files = *rc::gen::inRange<std::size_t>(2, 6);
    std::vector<std::size_t> cuts = {0, all};
    for (std::size_t i = 1; i < files; ++i) cuts.push_back(*rc::gen::inRange<std::size_t>(0, all));
    std::sort(cuts.begin(), cuts.end());
    std::vector<Bytes> captures;
    for (std::size_t i = 0; i + 1 < cuts.size(); ++i) {
        CaptureBuilder builder(CaptureVariant::nanoLittle);
        for (std::size_t frame = cuts[i]; frame < cuts[i + 1]; ++frame) {
            auto const time = static_cast<std::uint64_t>(stream.captured()[frame].time);
            builder.add(static_cast<std::uint32_t>(time / 1'000'000'000),
                        static_cast<std::uint32_t>(time % 1'000'000'000),
                        stream.captured()[frame].frame);
        }
        captures.push_back(builder.bytes());
    }
    // Any of them twice, and all in any order.
    captures.push_back(captures[*rc::gen::inRange<std::size_t>(0, captures.size())]);
    std::vector<std::size_t> order(captures.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    for (std::size_t i = order.size() - 1; i > 0; --i) {
        std::swap(order[i], order[*rc::gen::inRange<std::size_t>(0, i + 1)]);
    }
    std::vector<Bytes> shuffled;
    for (std::size_t const i : order) shuffled.push_back(captures[i]);
    SampleOptions options;
    options.rows = SampleRows::everySample;
    ReadStream const one = IndexedWaveform(stream).read(options);
    ReadStream const many = IndexedWaveform(shuffled).read(options);
    RC_ASSERT(one.counts == many.counts);
    RC_ASSERT(withoutPlaces(one) == withoutPlaces(many));
}

RC_GTEST_PROP(SamplesOfARandomWalk, InAWindowAreThoseOfIt, ()) {
    WaveformSettings const settings = randomSettings();
    std::vector<Happening> happenings = randomHappenings();
    std::erase_if(happenings, [](Happening const& one) { return one.first == 7; });
    WaveformStream const stream = walkedStream(settings, happenings, true);
    IndexedWaveform const indexed(stream);
    std::vector<WaveformRow> const all = stream.rows(true);
    std::int64_t const from = all[*rc::gen::inRange<std::size_t>(0, all.size())].time;
    std::int64_t const end = from + *rc::gen::inRange<std::int64_t>(0, 2'000'000'000);
    std::vector<WaveformRow> expected;
    for (WaveformRow const& row : all) {
        if (from <= row.time && row.time < end) expected.push_back(row);
    }
    SampleOptions options;
    options.from = captureTimeOf(from);
    options.end = captureTimeOf(end);
    options.rows = SampleRows::everySample;
    ReadStream read = indexed.read(options);
    // Runs without a row in the window are none of those that were read.
    std::vector<std::size_t> runs;
    for (WaveformRow& row : expected) {
        if (runs.empty() || runs.back() != row.run) runs.push_back(row.run);
        row.run = runs.size() - 1;
    }
    auto const areSame = areRowsOf(settings, expected, read);
    if (!areSame) {
        RC_FAIL(std::string(areSame.message()));
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::SamplePropertyTest
