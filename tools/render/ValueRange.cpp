#include "tools/render/ValueRange.hpp"

#include <algorithm>
#include <cmath>

namespace TalIec61850Tools {

using TalIec61850Analysis::EnvelopeLevel;
using TalIec61850Analysis::Envelopes;

void ValueRange::add(double value) {
    if (!std::isfinite(value)) {
        return;
    }
    least = hasValues ? std::min(least, value) : value;
    largest = hasValues ? std::max(largest, value) : value;
    hasValues = true;
}

void ValueRange::add(ValueRange const& other) {
    if (other.hasValues) {
        add(other.least);
        add(other.largest);
    }
}

ValueRange valuesIn(EnvelopeLevel const& level, std::size_t column, std::size_t channel,
                    ChannelScale const& scale) {
    ValueRange range;
    range.add(scale(level.channels[channel].least[column]));
    range.add(scale(level.channels[channel].largest[column]));
    return range;
}

ValueRange valuesOf(Envelopes const& envelopes, std::size_t channel, ChannelScale const& scale) {
    ValueRange range;
    if (!envelopes.levels.empty()) {
        EnvelopeLevel const& finest = envelopes.levels.front();
        for (std::size_t column = 0; column < finest.size(); ++column) {
            range.add(valuesIn(finest, column, channel, scale));
        }
    }
    return range;
}

}  // namespace TalIec61850Tools
