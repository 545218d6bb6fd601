#pragma once

#include <TalIec61850Analysis/pictures/Envelope.hpp>
#include <cstddef>

#include "tools/selection/ChannelMeaning.hpp"

namespace TalIec61850Tools {

/// The least and the largest of some values.
struct ValueRange {
    double least = 0;
    double largest = 0;
    /// Whether there is a value at all.
    bool hasValues = false;

    /// @param value  counts where it is finite
    void add(double value);
    /// Takes the values of another one in.
    void add(ValueRange const& other);
};

/// The values of a channel in one column of a level, scaled.
/// @param channel  its place among the channels of the level
[[nodiscard]] ValueRange valuesIn(TalIec61850Analysis::EnvelopeLevel const& level,
                                  std::size_t column, std::size_t channel,
                                  ChannelScale const& scale);

/// The values of a channel in all columns, scaled.
[[nodiscard]] ValueRange valuesOf(TalIec61850Analysis::Envelopes const& envelopes,
                                  std::size_t channel, ChannelScale const& scale);

}  // namespace TalIec61850Tools
