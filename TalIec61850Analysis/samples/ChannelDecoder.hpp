#pragma once

// Internal: from the octets of seqData into columns.

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace TalIec61850Analysis::detail {

/// A column of a type, without a row.
[[nodiscard]] ChannelValues noValues(ValueType type);

/// Writes samples into the columns of a block, a row at a time.
class ChannelDecoder {
public:
    /// @param layout   of the samples; must outlive the decoder
    /// @param columns  one for each channel; get `rows` rows, and must stay where they are
    ChannelDecoder(SampleLayout const& layout, std::vector<ChannelColumn>& columns,
                   std::size_t rows);

    /// @param seqData  of the layout's size; zeros are written where it is null
    void decode(std::uint8_t const* seqData, std::size_t row) const {
        if (isPlain_ && seqData != nullptr) [[likely]] {
            decodePlain(seqData, row);
        } else {
            decodeAny(seqData, row);
        }
    }

    /// The same for rows that follow each other.
    /// @param seqData  none of them null
    void decodeRows(std::span<std::uint8_t const* const> seqData, std::size_t row) const {
        if (isPlain_) [[likely]] {
            decodePlainRows(seqData, row);
            return;
        }
        for (std::uint8_t const* const octets : seqData) {
            decodeAny(octets, row++);
        }
    }

private:
    /// Four octets of value and four of quality.
    struct PlainChannel {
        std::uint8_t* value = nullptr;
        std::uint32_t* quality = nullptr;
    };
    /// Where values of a channel go.
    struct Target {
        SampleChannel channel;
        void* values = nullptr;
        std::uint32_t* qualities = nullptr;
    };

    void decodePlain(std::uint8_t const* seqData, std::size_t row) const;
    void decodePlainFrom(std::size_t first, std::uint8_t const* seqData, std::size_t row) const;
    void decodePlainRows(std::span<std::uint8_t const* const> seqData, std::size_t row) const;
    void decodeAny(std::uint8_t const* seqData, std::size_t row) const;

    bool isPlain_ = false;
    std::vector<PlainChannel> plain_;
    std::vector<Target> targets_;
};

}  // namespace TalIec61850Analysis::detail
