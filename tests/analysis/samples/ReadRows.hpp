#pragma once

// The rows of a stream of samples one by one, and whether they are those of a known waveform.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/TempFile.hpp"
#include "support/WaveformStream.hpp"

namespace TalTest {

/// A row as it was read.
struct ReadRow {
    std::int64_t time = 0;
    TalIec61850Analysis::SampleTimeSource source = {};
    std::int64_t arrival = 0;
    std::uint32_t smpCnt = 0;
    std::uint16_t smpSynch = 0;
    TalIec61850Analysis::SampleState state = {};
    TalIec61850Analysis::SamplePlace place = {};
    /// From 0; and why it begins.
    std::size_t run = 0;
    TalIec61850Analysis::RunStart start = {};
    std::vector<std::int64_t> values = {};
    std::vector<std::uint32_t> qualities = {};
    std::vector<std::uint8_t> octets = {};

    bool operator==(ReadRow const&) const = default;
};

/// All that a stream gives.
struct ReadStream {
    std::vector<ReadRow> rows = {};
    std::vector<TalIec61850Analysis::SampleRun> runs = {};
    TalIec61850Analysis::SampleCounts counts = {};
    /// Of each block.
    std::vector<TalIec61850Analysis::FoundLayout> layouts = {};
    std::vector<std::size_t> blockSizes = {};
};

[[nodiscard]] ReadStream readRows(TalIec61850Analysis::TrafficIndex const& index,
                                  TalIec61850Analysis::TrafficStream const& stream,
                                  TalIec61850Analysis::SampleOptions const& options = {});

/// What is left of a reader.
[[nodiscard]] ReadStream readRows(TalIec61850Analysis::SampleReader& reader);

/// The files of a stream, and their index.
class IndexedWaveform {
public:
    /// @param captures  the files, in their order
    explicit IndexedWaveform(std::vector<Bytes> const& captures);
    explicit IndexedWaveform(WaveformStream const& stream) : IndexedWaveform(stream.captures()) {}

    [[nodiscard]] TalIec61850Analysis::TrafficIndex const& index() const { return index_; }
    /// The only stream.
    [[nodiscard]] TalIec61850Analysis::TrafficStream const& stream() const {
        return index_.streams().front();
    }
    [[nodiscard]] ReadStream read(TalIec61850Analysis::SampleOptions const& options = {}) const {
        return readRows(index_, stream(), options);
    }
    [[nodiscard]] std::vector<std::string> const& paths() const { return paths_; }

private:
    TempDir folder_;
    std::vector<std::string> paths_;
    TalIec61850Analysis::TrafficIndex index_;
};

/// The layout of a waveform.
[[nodiscard]] TalIec61850Analysis::SampleLayout layoutOf(std::vector<WaveMember> const& members);

/// How rows are compared.
struct RowBounds {
    /// How far a fitted time may be from arrival without its jitter.
    std::int64_t fit = 1'000;
    /// Whether places must be those of the waveform's own files.
    bool havePlaces = true;
};

/// Whether the rows that were read are those of the waveform.
[[nodiscard]] testing::AssertionResult areRowsOf(WaveformSettings const& settings,
                                                 std::vector<WaveformRow> const& expected,
                                                 ReadStream const& read,
                                                 RowBounds const& bounds = {});

/// Reads a waveform with missing rows and without; expects its rows and counts.
void expectRowsOf(WaveformStream const& stream,
                  TalIec61850Analysis::SampleOptions const& options = {},
                  RowBounds const& bounds = {});

}  // namespace TalTest
