#pragma once

// Blocks of samples made by hand.

#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <vector>

namespace TalTest {

/// One sample; of a missing one, values and qualities do not count.
struct PlainSample {
    std::int64_t time = 0;
    /// A value for each channel, in the type of the block.
    std::vector<double> values = {};
    /// A word for each channel, or none.
    std::vector<std::uint32_t> qualities = {};
    bool isMissing = false;
};

/// In which type a block has its values.
enum class PlainType : std::uint8_t { int32, int64, float32, float64 };

/// A block of one run of that rate, with as many channels as its first sample that came.
[[nodiscard]] TalIec61850Analysis::SampleBlock blockOf(std::vector<PlainSample> const& samples,
                                                       PlainType type = PlainType::int32,
                                                       std::uint32_t rate = 1000);

/// Samples of one channel, one millisecond after the other from a time on, all with this quality.
[[nodiscard]] std::vector<PlainSample> plainSamples(std::int64_t firstTime,
                                                    std::initializer_list<double> values,
                                                    std::optional<std::uint32_t> quality = 0);

}  // namespace TalTest
