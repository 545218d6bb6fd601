// Samples in columns: of any number of channels, however many are decoded at once.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/ChannelDecoder.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "support/Bytes.hpp"

namespace TalIec61850Analysis::detail::ChannelDecoderTest {
namespace {

using namespace TalTest;

constexpr std::size_t kRows = 40;
constexpr std::uint32_t kUntouched = 0xA5A5A5A5;

/// Value and quality, so many times, of either type in turn.
SampleLayout valuesWithQuality(std::size_t channels) {
    std::vector<SampleType> members;
    for (std::size_t i = 0; i < channels; ++i) {
        members.push_back(i % 3 == 2 ? SampleType::float32 : SampleType::int32);
        members.push_back(SampleType::quality);
    }
    return SampleLayout(members);
}

/// What the word of a sample is: no two are the same.
std::uint32_t wordOf(std::size_t sample, std::size_t word) {
    return static_cast<std::uint32_t>(0x01'00'F0'80U + (sample << 24U) + (word << 16U) + sample);
}

/// Each at an address of another kind.
std::vector<Bytes> samplesOf(std::size_t words, std::size_t count) {
    std::vector<Bytes> samples;
    for (std::size_t i = 0; i < count; ++i) {
        Bytes octets(i % 7, 0xEE);
        for (std::size_t word = 0; word < words; ++word) {
            std::uint32_t const value = wordOf(i, word);
            for (unsigned shift : {24U, 16U, 8U, 0U})
                octets.push_back(static_cast<std::uint8_t>(value >> shift));
        }
        samples.push_back(octets);
    }
    return samples;
}

struct Columns {
    explicit Columns(SampleLayout const& layout) {
        for (SampleChannel const& channel : layout.channels())
            channels.push_back({.values = noValues(channel.valueType()), .qualities = {}});
        decoder.emplace(layout, channels, kRows);
        for (ChannelColumn& channel : channels) {
            std::fill(channel.qualities.begin(), channel.qualities.end(), kUntouched);
            for (std::size_t row = 0; row < kRows; ++row) {
                std::visit(
                    [&](auto& values) {
                        std::memcpy(&values[row], &kUntouched, sizeof kUntouched);
                    },
                    channel.values);
            }
        }
    }

    [[nodiscard]] std::uint32_t value(std::size_t channel, std::size_t row) const {
        std::uint32_t bits = 0;
        std::visit([&](auto const& values) { std::memcpy(&bits, &values[row], sizeof bits); },
                   channels[channel].values);
        return bits;
    }

    std::vector<ChannelColumn> channels;
    std::optional<ChannelDecoder> decoder;
};

TEST(DecodedRows, AreThoseOfTheSamplesAndNoOthers) {
    for (std::size_t channels = 1; channels <= 9; ++channels) {
        SampleLayout const layout = valuesWithQuality(channels);
        for (std::size_t count = 0; count <= 13; ++count) {
            SCOPED_TRACE(std::to_string(count) + " of " + std::to_string(channels));
            auto const samples = samplesOf(2 * channels, count);
            std::vector<std::uint8_t const*> octets;
            for (std::size_t i = 0; i < count; ++i) octets.push_back(samples[i].data() + i % 7);
            std::size_t const first = 1 + count % 5;
            Columns columns(layout);
            columns.decoder->decodeRows(octets, first);
            for (std::size_t channel = 0; channel < channels; ++channel) {
                for (std::size_t row = 0; row < kRows; ++row) {
                    bool const isDecoded = first <= row && row < first + count;
                    EXPECT_EQ(columns.value(channel, row),
                              isDecoded ? wordOf(row - first, 2 * channel) : kUntouched);
                    EXPECT_EQ(columns.channels[channel].qualities[row],
                              isDecoded ? wordOf(row - first, 2 * channel + 1) : kUntouched);
                }
            }
        }
    }
}

TEST(DecodedRows, AreThoseThatAreDecodedOneByOne) {
    std::vector<std::vector<SampleType>> const layouts{
        {SampleType::int32, SampleType::quality, SampleType::float32, SampleType::quality},
        {SampleType::int32, SampleType::int32, SampleType::quality, SampleType::quality},
        {SampleType::int16, SampleType::quality, SampleType::int32, SampleType::quality},
        {SampleType::float32, SampleType::timestamp, SampleType::quality}};
    for (auto const& members : layouts) {
        SampleLayout const layout(members);
        auto const samples = samplesOf(6, 11);
        std::vector<std::uint8_t const*> octets;
        Columns single(layout);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            octets.push_back(samples[i].data() + i % 7);
            single.decoder->decode(octets[i], i);
        }
        Columns together(layout);
        together.decoder->decodeRows(octets, 0);
        for (std::size_t channel = 0; channel < layout.channels().size(); ++channel) {
            EXPECT_EQ(together.channels[channel].qualities, single.channels[channel].qualities);
            for (std::size_t row = 0; row < samples.size(); ++row)
                EXPECT_EQ(together.value(channel, row), single.value(channel, row)) << row;
        }
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::detail::ChannelDecoderTest
