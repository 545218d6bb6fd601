#include <TalIec61850Analysis/pictures/Envelope.hpp>
#include <TalIec61850Analysis/pictures/JoinedQuality.hpp>
#include <algorithm>

namespace TalIec61850Analysis {

namespace {

/// Appends the column that two columns of a channel make.
void appendJoined(EnvelopeChannel const& fine, std::size_t a, std::size_t b,
                  EnvelopeChannel& coarse) {
    std::size_t const from = fine.counts[a] != 0 ? a : b;
    std::size_t const to = fine.counts[b] != 0 ? b : a;
    // Where one has no value, from and to are the other one.
    coarse.least.push_back(std::min(fine.least[from], fine.least[to]));
    coarse.largest.push_back(std::max(fine.largest[from], fine.largest[to]));
    coarse.first.push_back(fine.first[from]);
    coarse.last.push_back(fine.last[to]);
    coarse.counts.push_back(a == b ? fine.counts[a] : fine.counts[a] + fine.counts[b]);
    coarse.qualities.push_back(detail::joinedQuality(fine.qualities[a], fine.qualities[b]));
}

/// Whether all lists have a value for each column.
bool areOfOneLength(EnvelopeLevel const& level) {
    std::size_t const columns = level.size();
    return level.missing.size() == columns &&
           std::all_of(
               level.channels.begin(), level.channels.end(),
               [columns](EnvelopeChannel const& channel) {
                   return channel.least.size() == columns && channel.largest.size() == columns &&
                          channel.first.size() == columns && channel.last.size() == columns &&
                          channel.counts.size() == columns && channel.qualities.size() == columns;
               });
}

void reserveColumns(EnvelopeChannel& channel, std::size_t columns) {
    for (auto* const values : {&channel.least, &channel.largest, &channel.first, &channel.last}) {
        values->reserve(columns);
    }
    channel.counts.reserve(columns);
    channel.qualities.reserve(columns);
}

}  // namespace

EnvelopeLevel joinColumns(EnvelopeLevel const& fine) {
    std::size_t const columns = fine.size();
    EnvelopeLevel coarse{.width = 2 * fine.width, .received = {}, .missing = {}, .channels = {}};
    if (!areOfOneLength(fine)) {
        return coarse;
    }
    for (std::size_t a = 0; a < columns; a += 2) {
        bool const isLast = a + 1 == columns;
        coarse.received.push_back(fine.received[a] + (isLast ? 0 : fine.received[a + 1]));
        coarse.missing.push_back(fine.missing[a] + (isLast ? 0 : fine.missing[a + 1]));
    }
    coarse.channels.resize(fine.channels.size());
    for (std::size_t channel = 0; channel < fine.channels.size(); ++channel) {
        reserveColumns(coarse.channels[channel], coarse.size());
        for (std::size_t a = 0; a < columns; a += 2) {
            appendJoined(fine.channels[channel], a, std::min(a + 1, columns - 1),
                         coarse.channels[channel]);
        }
    }
    return coarse;
}

std::size_t Envelopes::levelFor(std::int64_t width) const noexcept {
    std::size_t level = 0;
    while (level + 1 < levels.size() && levels[level + 1].width <= width) {
        ++level;
    }
    return level;
}

}  // namespace TalIec61850Analysis
