#include "tools/plot/ReadSamples.hpp"

#include <TalIec61850Analysis/pictures/ChannelChoice.hpp>
#include <TalIec61850Analysis/pictures/StreamPicture.hpp>
#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>
#include <variant>

#include "tools/render/SampleDelay.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::kMostPictureChannels;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleReader;
using TalIec61850Analysis::SampleRows;
using TalIec61850Analysis::SampleState;
using TalIec61850Analysis::StreamPicture;
using TalIec61850Analysis::StreamPictureBuilder;
using TalIec61850Analysis::StreamPictureOptions;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficStream;

namespace {

/// Counts values that are no finite numbers.
class NotFinite {
public:
    explicit NotFinite(std::vector<std::size_t> const& channels) : channels_(channels) {}

    void add(SampleBlock const& block) {
        for (std::size_t number = 0; number < block.channels.size(); ++number) {
            bool const isDrawn = channels_.empty() ? number < kMostPictureChannels
                                                   : std::find(channels_.begin(), channels_.end(),
                                                               number) != channels_.end();
            if (isDrawn) {
                std::visit([&](auto const& values) { add(block, values); },
                           block.channels[number].values);
            }
        }
    }

    [[nodiscard]] std::uint64_t count() const { return count_; }

private:
    template <typename Values>
    void add(SampleBlock const& block, Values const& values) {
        if constexpr (std::is_floating_point_v<typename Values::value_type>) {
            for (std::size_t row = 0; row < values.size(); ++row) {
                bool const isThere = block.states[row] != SampleState::missing;
                count_ += isThere && !std::isfinite(values[row]) ? 1U : 0U;
            }
        }
    }

    std::vector<std::size_t> const& channels_;
    std::uint64_t count_ = 0;
};

StreamPictureOptions optionsOf(SamplesWish const& wish) {
    StreamPictureOptions options;
    options.samples = wish.samples;
    options.samples.rows = SampleRows::everySample;
    options.channels = wish.channels;
    options.channels.resize(std::min(wish.channels.size(), kMostPictureChannels));
    // Where the window is open, there may be half as many columns.
    options.columns = 2 * wish.pixels;
    options.fewestColumns = 2 * wish.pixels;
    options.mostSpans = 2 * wish.pixels;
    options.mostSamples = wish.pixels;
    return options;
}

}  // namespace

ReadSamplesResult readSamples(TrafficIndex const& index, TrafficStream const& stream,
                              SamplesWish const& wish) {
    StreamPictureOptions const options = optionsOf(wish);
    StreamPictureBuilder builder(options);
    NotFinite notFinite(options.channels);
    SampleDelay delay;
    SampleReader reader(index, stream, options.samples);
    while (SampleBlock const* const block = reader.next()) {
        if (!wish.admits || wish.admits(*block)) {
            builder.add(*block);
            notFinite.add(*block);
            delay.add(*block);
        }
    }
    StreamPicture picture = builder.take();
    auto const& numbers = picture.envelopes.channelNumbers;
    ReadSamplesResult result;
    result.first = picture.extent.first;
    result.last = picture.extent.last;
    result.delay = delay.least();
    result.channelsLeftOut =
        (wish.channels.empty() ? picture.envelopes.channelsOfStream : wish.channels.size()) -
        numbers.size();
    result.notFinite = notFinite.count();
    result.samples.channels =
        pictureChannels(numbers, picture.extent.layout, wish.described, wish.scales);
    result.samples.panels = channelPanels(result.samples.channels);
    result.samples.waveform = std::move(picture.waveform);
    result.samples.envelopes = std::move(picture.envelopes);
    result.samples.spans = std::move(picture.spans);
    return result;
}

}  // namespace TalIec61850Tools
