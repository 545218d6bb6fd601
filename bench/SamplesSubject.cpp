#include <benchmark/benchmark.h>

#include <TalIec61850Analysis/pictures/EnvelopeBuilder.hpp>
#include <TalIec61850Analysis/pictures/SampleSpans.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "bench/CaptureOnDisk.hpp"
#include "bench/Passes.hpp"
#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "bench/Workloads.hpp"

namespace TalBench {

using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleOptions;
using TalIec61850Analysis::SampleReader;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficStream;

namespace {

/// Reads the samples of all streams.
void readSamples(TrafficIndex const& index, std::uint64_t samples, bool withValues) {
    SampleOptions options;
    options.withValues = withValues;
    std::uint64_t rows = 0;
    for (TrafficStream const& stream : index.streams()) {
        SampleReader reader(index, stream, options);
        while (SampleBlock const* const block = reader.next()) {
            rows += block->size();
        }
    }
    if (rows != samples) {
        throw std::runtime_error("other samples were read than the capture has");
    }
}

/// Makes envelopes of all streams, and the spans of what is missing or of bad quality.
void pictureSamples(TrafficIndex const& index, std::uint64_t samples, bool withSpans) {
    std::uint64_t rows = 0;
    for (TrafficStream const& stream : index.streams()) {
        TalIec61850Analysis::EnvelopeBuilder envelopes;
        TalIec61850Analysis::SampleSpanBuilder spans;
        SampleReader reader(index, stream);
        while (SampleBlock const* const block = reader.next()) {
            rows += block->size();
            envelopes.add(*block);
            if (withSpans) {
                spans.add(*block);
            }
        }
        benchmark::DoNotOptimize(envelopes.take());
        benchmark::DoNotOptimize(spans.take());
    }
    if (rows != samples) {
        throw std::runtime_error("other samples were pictured than the capture has");
    }
}

}  // namespace

void measureSamples(Settings const& settings) {
    Workload const listed = workload("streams-1");
    constexpr std::uint64_t kFrames = 4'000'000;
    CaptureOnDisk const capture(withFrames(listed, kFrames / settings.divisor));
    TrafficIndex const index = TalIec61850Analysis::indexCapture(capture.path());
    auto const samples = [&](bool withValues) {
        return [&, withValues](benchmark::State& state) {
            for ([[maybe_unused]] auto const iteration : state) {
                readSamples(index, capture.packets(), withValues);
            }
        };
    };
    auto const pictures = [&](bool withSpans) {
        return [&, withSpans](benchmark::State& state) {
            for ([[maybe_unused]] auto const iteration : state) {
                pictureSamples(index, capture.packets(), withSpans);
            }
        };
    };
    Race race("samples");
    race.add("read", capture.frames(), readPass(capture.path()));
    race.add("columns", capture.frames(), samples(true));
    race.add("envelopes", capture.frames(), pictures(false));
    race.add("pictures", capture.frames(), pictures(true));
    race.add("times", capture.frames(), samples(false));
    race.add("index", capture.frames(), trafficPass({capture.path()}, {}, capture.packets()));
    auto taken = race.run(settings.rounds);
    printRatio("samples: columns of 8 channels / read(2)", taken["columns"], taken["read"]);
    printRatio("samples: columns of 8 channels / true index", taken["columns"], taken["index"]);
    printRatio("samples: envelopes of 8 channels / columns", taken["envelopes"], taken["columns"]);
    printRatio("samples: envelopes and spans / columns", taken["pictures"], taken["columns"]);
    printRatio("samples: times alone / true index", taken["times"], taken["index"]);
}

}  // namespace TalBench
