#include "tools/report/PictureSegments.hpp"

#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "tools/report/NumberPacker.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::EnvelopeLevel;
using TalIec61850Analysis::Envelopes;
using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::SampleRate;
using TalIec61850Analysis::SampleState;
using TalIec61850Analysis::Waveform;

namespace {

using Json = nlohmann::ordered_json;

/// More pieces than that are no waveform to look at.
constexpr std::size_t kMostSegments = 2000;
/// A sample so far from where the rate has it begins another course.
constexpr std::int64_t kFarOff = 1'000'000'000;

/// How many rows come one after the other that have a value, then how many that have none, and so
/// on; empty where all have one.
template <typename IsGone>
std::vector<double> runLengths(std::size_t first, std::size_t end, IsGone const& isGone) {
    std::vector<double> lengths;
    bool isInGap = false;
    std::size_t start = first;
    for (std::size_t row = first; row <= end; ++row) {
        if (row == end || isGone(row) != isInGap) {
            lengths.push_back(static_cast<double>(row - start));
            start = row;
            isInGap = !isInGap;
        }
    }
    if (lengths.size() == 1) {
        lengths.clear();
    }
    return lengths;
}

/// Rows of a waveform on one course of times.
class WaveformSegments {
public:
    WaveformSegments(std::string& octets, Waveform const& waveform)
        : packer_(octets), waveform_(waveform) {}

    /// @return not set where there are too many
    std::optional<Json> make() {
        auto const& runs = waveform_.runs;
        for (std::size_t i = 0; i < runs.size(); ++i) {
            std::size_t const end = i + 1 < runs.size() ? runs[i + 1].firstRow : waveform_.size();
            addRun(runs[i].firstRow, end, runs[i].rate);
            if (segments_.size() > kMostSegments) {
                return std::nullopt;
            }
        }
        return std::move(segments_);
    }

private:
    void addRun(std::size_t first, std::size_t end, SampleRate rate) {
        SampleRate const grid = rate.isKnown() ? rate : SampleRate{.samples = 1000, .seconds = 1};
        std::size_t start = first;
        std::vector<double> offsets;
        bool isOnGrid = true;
        for (std::size_t row = first; row < end && segments_.size() <= kMostSegments; ++row) {
            std::int64_t const time = waveform_.times[row];
            if (time == kNoTime) {
                addSegment(start, row, grid, isOnGrid, offsets);
                start = row + 1;
                isOnGrid = true;
                offsets.clear();
                continue;
            }
            std::int64_t offset = offsetOf(row, start, grid);
            bool const isLater = row == start || time > waveform_.times[row - 1];
            if (!isLater || std::abs(offset) > kFarOff) {
                addSegment(start, row, grid, isOnGrid, offsets);
                start = row;
                isOnGrid = true;
                offsets.clear();
                offset = 0;
            }
            isOnGrid = isOnGrid && offset == 0;
            offsets.push_back(static_cast<double>(offset));
        }
        addSegment(start, end, grid, isOnGrid, offsets);
    }

    /// From where the rate has a row to where it is.
    [[nodiscard]] std::int64_t offsetOf(std::size_t row, std::size_t start,
                                        SampleRate const& grid) const {
        return waveform_.times[row] - waveform_.times[start] -
               grid.timeOf(static_cast<std::int64_t>(row - start));
    }

    void addSegment(std::size_t first, std::size_t end, SampleRate const& grid, bool isOnGrid,
                    std::vector<double> const& offsets) {
        if (first >= end) {
            return;
        }
        Json segment = {{"start", std::to_string(waveform_.times[first])},
                        {"samples", grid.samples},
                        {"seconds", grid.seconds},
                        {"count", end - first},
                        {"isEnvelope", false}};
        if (!isOnGrid) {
            segment["times"] = packer_.pack(offsets);
        }
        auto const isGone = [&](std::size_t row) {
            return waveform_.states[row] == SampleState::missing;
        };
        segment["gone"] = packer_.pack(runLengths(first, end, isGone));
        Json channels = Json::array();
        std::vector<double> values(end - first);
        for (auto const& channel : waveform_.channels) {
            double held = 0;
            for (std::size_t row = first; row < end; ++row) {
                held = isGone(row) ? held : channel.values[row];
                values[row - first] = held;
            }
            Json packed;
            packed["values"] = packer_.packChannel(values);
            channels.push_back(std::move(packed));
        }
        segment["channels"] = std::move(channels);
        segments_.push_back(std::move(segment));
    }

    NumberPacker packer_;
    Waveform const& waveform_;
    Json segments_ = Json::array();
};

}  // namespace

Json envelopeSegments(std::string& octets, Envelopes const& envelopes) {
    Json segments = Json::array();
    if (envelopes.levels.empty()) {
        return segments;
    }
    NumberPacker packer(octets);
    EnvelopeLevel const& level = envelopes.levels.front();
    std::size_t const count = level.size();
    std::vector<bool> isGone(count, true);
    for (auto const& channel : level.channels) {
        for (std::size_t i = 0; i < count; ++i) {
            isGone[i] = isGone[i] && channel.counts[i] == 0;
        }
    }
    Json channels = Json::array();
    for (auto const& channel : level.channels) {
        std::vector<double> least = channel.least;
        std::vector<double> largest = channel.largest;
        for (std::size_t i = 0; i < count; ++i) {
            if (isGone[i]) {
                least[i] = i == 0 ? 0 : least[i - 1];
                largest[i] = i == 0 ? 0 : largest[i - 1];
            }
        }
        Json packed;
        packed["min"] = packer.packChannel(least);
        packed["max"] = packer.packChannel(largest);
        channels.push_back(std::move(packed));
    }
    auto const gone = runLengths(0, count, [&](std::size_t i) { return isGone[i]; });
    segments.push_back({{"start", std::to_string(envelopes.start)},
                        {"samples", 1'000'000'000},
                        {"seconds", level.width},
                        {"count", count},
                        {"isEnvelope", true},
                        {"gone", packer.pack(gone)},
                        {"channels", std::move(channels)}});
    return segments;
}

std::optional<nlohmann::ordered_json> waveformSegments(std::string& octets,
                                                       Waveform const& waveform) {
    return WaveformSegments(octets, waveform).make();
}

}  // namespace TalIec61850Tools
