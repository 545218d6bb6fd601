#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/Bytes.hpp"
#include "support/ComtradeReader.hpp"
#include "support/WaveformStream.hpp"
#include "tools/CompanionRows.hpp"

// What the tests of `samples` and `comtrade` have in common.

namespace TalTest {

/// Frames that are enough for a layout to be inferred.
inline constexpr std::size_t kWaveFrames = 300;

/// One capture of several streams, its frames in the order of their times.
[[nodiscard]] Bytes captureOf(std::vector<WaveformStream const*> const& streams);
/// The same, with frames of others between.
/// @param others  times in nanoseconds since 1970, and frames
[[nodiscard]] Bytes captureOf(std::vector<WaveformStream const*> const& streams,
                              std::vector<WaveformStream::Captured> const& others);

/// What `samples -f json` writes. It must succeed; the complaints are given back if wanted, else
/// there must be none.
[[nodiscard]] std::vector<Json> samplesOf(Arguments const& arguments, std::string* notes = nullptr);

/// Settings of a stream of 9-2LE that declares its rate, and in whose window nothing is noted.
[[nodiscard]] WaveformSettings declaredWave(std::uint32_t rate = 4000, std::uint32_t asdus = 1);

/// Expects that rows of json are those of a stream, without its name.
void expectWaveform(std::vector<Json> const& rows, std::vector<WaveformRow> const& expected,
                    WaveformSettings const& settings);

/// The number that a value of the oracle is.
[[nodiscard]] double toReal(WaveMember member, std::int64_t value);

/// Members that are channels.
[[nodiscard]] std::vector<WaveMember> valuesAmong(std::vector<WaveMember> const& members);

/// Reads BASE.cfg and BASE.dat, or BASE.cff.
[[nodiscard]] ReadComtrade recordAt(std::string const& base);

/// The text of a file.
[[nodiscard]] std::string textOf(std::string const& path);

/// The names of what is in a folder, in their order.
[[nodiscard]] std::vector<std::string> namesIn(std::string const& folder);

}  // namespace TalTest
