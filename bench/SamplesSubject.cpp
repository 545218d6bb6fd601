#include <benchmark/benchmark.h>

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
    Race race("samples");
    race.add("read", capture.frames(), readPass(capture.path()));
    race.add("columns", capture.frames(), samples(true));
    race.add("times", capture.frames(), samples(false));
    race.add("index", capture.frames(), trafficPass({capture.path()}, {}, capture.packets()));
    auto taken = race.run(settings.rounds);
    printRatio("samples: columns of 8 channels / read(2)", taken["columns"], taken["read"]);
    printRatio("samples: columns of 8 channels / true index", taken["columns"], taken["index"]);
    printRatio("samples: times alone / true index", taken["times"], taken["index"]);
}

}  // namespace TalBench
