// Several streams of one capture, gone through together.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <algorithm>
#include <cstdint>
#include <utility>
#include <variant>
#include <vector>

#include "analysis/samples/ReadRows.hpp"
#include "support/CaptureFile.hpp"
#include "support/OctetsRead.hpp"
#include "support/WaveformStream.hpp"

namespace TalIec61850Analysis::SamplesTogetherTest {
namespace {

using namespace TalTest;

constexpr std::size_t kStreams = 8;

/// Streams of one capture, a frame of each after the other.
Bytes captureOfStreams(std::size_t frames) {
    std::vector<WaveformStream::Captured> all;
    for (std::size_t number = 0; number < kStreams; ++number) {
        WaveformSettings settings;
        settings.svID = "MU0" + std::to_string(number);
        settings.delay = 100'000 + static_cast<std::int64_t>(number) * 10'000;
        settings.firstCount = static_cast<std::uint32_t>(number) * 37;
        WaveformStream stream(settings);
        stream.send(frames / 2).lose(number).send(frames / 2);
        all.insert(all.end(), stream.captured().begin(), stream.captured().end());
    }
    std::stable_sort(all.begin(), all.end(),
                     [](auto const& a, auto const& b) { return a.time < b.time; });
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (WaveformStream::Captured const& one : all) {
        capture.add(static_cast<std::uint32_t>(one.time / 1'000'000'000),
                    static_cast<std::uint32_t>(one.time % 1'000'000'000), one.frame);
    }
    return capture.bytes();
}

/// smpCnt and the first value of each row.
using Rows = std::vector<std::pair<std::uint32_t, std::int32_t>>;

void addRows(Rows& rows, SampleBlock const& block) {
    auto const& values = std::get<std::vector<std::int32_t>>(block.channels.at(0).values);
    for (std::size_t row = 0; row < block.size(); ++row) {
        rows.emplace_back(block.smpCnts[row], values[row]);
    }
}

std::vector<Rows> readAlone(TrafficIndex const& index) {
    std::vector<Rows> rows;
    for (TrafficStream const& stream : index.streams()) {
        SampleReader reader(index, stream);
        rows.emplace_back();
        while (SampleBlock const* const block = reader.next()) {
            addRows(rows.back(), *block);
        }
    }
    return rows;
}

std::vector<Rows> readTogether(TrafficIndex const& index) {
    SampleOptions options;
    options.together = kStreams;
    std::vector<SampleReader> readers;
    for (TrafficStream const& stream : index.streams()) {
        readers.push_back(readers.empty() ? SampleReader(index, stream, options)
                                          : SampleReader(index, stream, options, readers.front()));
    }
    std::vector<Rows> rows(readers.size());
    for (bool isMore = true; isMore;) {
        isMore = false;
        for (std::size_t i = 0; i < readers.size(); ++i) {
            if (SampleBlock const* const block = readers[i].next()) {
                addRows(rows[i], *block);
                isMore = true;
            }
        }
    }
    return rows;
}

TEST(SamplesTogether, AreThoseOfEachStreamAlone) {
    IndexedWaveform const indexed({captureOfStreams(3000)});
    ASSERT_EQ(indexed.index().streams().size(), kStreams);
    auto const rows = readAlone(indexed.index());
    EXPECT_EQ(rows.back().size(), 3000U);
    EXPECT_TRUE(readTogether(indexed.index()) == rows);
}

TEST(SamplesTogether, ReadTheCaptureOnce) {
    Bytes const capture = captureOfStreams(6000);
    IndexedWaveform const indexed({capture});
    std::uint64_t const begin = octetsReadHere();
    static_cast<void>(readAlone(indexed.index()));
    std::uint64_t const alone = octetsReadHere() - begin;
    static_cast<void>(readTogether(indexed.index()));
    std::uint64_t const together = octetsReadHere() - begin - alone;
    // Both look here and there for layouts; apart from that, the one reads it once, not eight
    // times.
    EXPECT_LT(together + 6 * capture.size(), alone);
}

}  // namespace
}  // namespace TalIec61850Analysis::SamplesTogetherTest
