#include "plot/MadeSamples.hpp"

#include <TalIec61850Analysis/pictures/EnvelopeBuilder.hpp>
#include <TalIec61850Analysis/pictures/Waveform.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <string>
#include <utility>

namespace TalTest {

using TalIec61850Analysis::EnvelopeBuilder;
using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleSpanBuilder;
using TalIec61850Analysis::SampleState;
using TalIec61850Analysis::SpanOptions;
using TalIec61850Analysis::WaveformBuilder;
using TalIec61850Tools::channelPanels;
using TalIec61850Tools::PlotContent;
using TalIec61850Tools::PlottedSamples;

namespace {

SampleBlock blockOf(MadeSamples const& made) {
    SampleBlock block;
    block.run.rate = {.samples = static_cast<std::uint32_t>(1'000'000'000 / made.step),
                      .seconds = 1};
    std::vector<std::vector<double>> values(made.channels.size());
    std::vector<std::uint32_t> qualities;
    for (std::size_t i = 0; i < made.count; ++i) {
        bool const isMissing = made.isMissing && made.isMissing(i);
        std::int64_t const after = static_cast<std::int64_t>(i) * made.step;
        block.sampleTimes.push_back(kPlotStart + after);
        block.arrivals.push_back(isMissing ? kNoTime : kPlotStart + after);
        block.states.push_back(isMissing ? SampleState::missing : SampleState::received);
        block.smpCnts.push_back(static_cast<std::uint32_t>(i));
        block.smpSynchs.push_back(2);
        block.timeSources.push_back({});
        block.places.push_back({});
        qualities.push_back(made.quality && !isMissing ? made.quality(i) : 0);
        for (std::size_t channel = 0; channel < values.size(); ++channel) {
            values[channel].push_back(
                isMissing ? 0 : made.channels[channel](static_cast<double>(after) * 1e-9));
        }
    }
    for (auto& each : values) {
        block.channels.push_back({.values = std::move(each), .qualities = qualities});
    }
    return block;
}

}  // namespace

PlottedSamples madeSamples(MadeSamples const& made) {
    SampleBlock const block = blockOf(made);
    EnvelopeBuilder envelopes(
        {.columns = 2 * made.pixels, .fewestColumns = 2 * made.pixels, .channels = {}});
    SampleSpanBuilder spans(SpanOptions{.mostSpans = 2 * made.pixels, .channels = {}});
    WaveformBuilder waveform(made.pixels);
    envelopes.add(block);
    spans.add(block);
    waveform.add(block);
    PlottedSamples samples;
    samples.name = "MU01";
    samples.envelopes = envelopes.take();
    samples.spans = spans.take();
    samples.waveform = waveform.take();
    for (std::size_t channel = 0; channel < made.channels.size(); ++channel) {
        samples.channels.push_back(
            {.name = "I" + std::to_string(channel + 1), .unit = "A", .phase = "", .scale = {}});
    }
    samples.panels = channelPanels(samples.channels);
    return samples;
}

PlotContent contentOf(MadeSamples const& made) {
    PlotContent content;
    content.title = "MU01";
    content.from = kPlotStart;
    content.to = kPlotStart + static_cast<std::int64_t>(made.count) * made.step;
    content.samples.push_back(madeSamples(made));
    return content;
}

}  // namespace TalTest
