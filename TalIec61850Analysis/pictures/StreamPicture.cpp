#include <TalIec61850Analysis/pictures/RowTime.hpp>
#include <TalIec61850Analysis/pictures/StreamPicture.hpp>
#include <algorithm>
#include <cstddef>
#include <utility>

namespace TalIec61850Analysis {

void SampleExtent::add(SampleBlock const& block) {
    if (!layout) {
        layout = block.layout.layout;
    }
    auto const lost = static_cast<std::uint64_t>(
        std::count(block.states.begin(), block.states.end(), SampleState::missing));
    missing += lost;
    received += block.size() - lost;
    for (std::size_t row = 0; row < block.size(); ++row) {
        if (std::int64_t const time = detail::rowTime(block, row); time != kNoTime) {
            first = first == kNoTime ? time : std::min(first, time);
            last = last == kNoTime ? time : std::max(last, time);
        }
    }
}

StreamPictureBuilder::StreamPictureBuilder(StreamPictureOptions const& options)
    : envelopes_({.from = options.samples.from,
                  .end = options.samples.end,
                  .columns = options.columns,
                  .fewestColumns = options.fewestColumns,
                  .channels = options.channels}),
      spans_({.qualityBits = options.qualityBits,
              .mostSpans = options.mostSpans,
              .channels = options.channels}),
      waveform_(options.mostSamples, options.channels) {}

void StreamPictureBuilder::add(SampleBlock const& block) {
    envelopes_.add(block);
    spans_.add(block);
    waveform_.add(block);
    extent_.add(block);
}

StreamPicture StreamPictureBuilder::take() {
    return {.envelopes = envelopes_.take(),
            .spans = spans_.take(),
            .waveform = waveform_.take(),
            .extent = std::move(extent_),
            .counts = {}};
}

StreamPicture readStreamPicture(TrafficIndex const& index, TrafficStream const& stream,
                                StreamPictureOptions options) {
    options.samples.rows = SampleRows::everySample;
    options.samples.withValues = true;
    StreamPictureBuilder builder(options);
    SampleReader reader(index, stream, std::move(options.samples));
    while (SampleBlock const* const block = reader.next()) {
        builder.add(*block);
    }
    StreamPicture picture = builder.take();
    picture.counts = reader.counts();
    return picture;
}

}  // namespace TalIec61850Analysis
