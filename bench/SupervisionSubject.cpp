#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <TalIec61850Analysis/events/FindEvents.hpp>
#include <TalIec61850Analysis/supervision/SuperviseTraffic.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "bench/CaptureOnDisk.hpp"
#include "bench/Passes.hpp"
#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "bench/Workloads.hpp"

namespace TalBench {

using TalIec61850Analysis::Finding;
using TalIec61850Analysis::GooseEvent;
using TalIec61850Analysis::TrafficIndex;

namespace {

/// Supervises all streams.
/// @param jobs  0 for all cores
void supervise(TrafficIndex const& index, bool withSamples, std::size_t jobs) {
    std::uint64_t findings = 0;
    superviseTraffic(index, {.withSamples = withSamples, .jobs = jobs},
                     [&](Finding const& /*finding*/) { ++findings; });
    benchmark::DoNotOptimize(findings);
}

/// What the command check does, rows aside.
void compareChecks(std::string_view name, Settings const& settings) {
    Workload const listed = workload(name);
    CaptureOnDisk const capture(withFrames(listed, listed.frames / settings.divisor));
    // A quick measurement counts the time of one thread.
    std::size_t const jobs = settings.divisor > 1 ? 1 : 0;
    auto const check = [&](bool withSamples) {
        return [&, withSamples](benchmark::State& state) {
            for ([[maybe_unused]] auto const iteration : state) {
                supervise(TalIec61850Analysis::indexCapture(capture.path()), withSamples, jobs);
            }
        };
    };
    Race race(fmt::format("check-{}", name));
    race.add("index", capture.frames(), trafficPass({capture.path()}, {}, capture.packets()));
    race.add("check", capture.frames(), check(true));
    race.add("plain", capture.frames(), check(false));
    race.add("events", capture.frames(), [&](benchmark::State& state) {
        for ([[maybe_unused]] auto const iteration : state) {
            TrafficIndex const index = TalIec61850Analysis::indexCapture(capture.path());
            std::uint64_t events = 0;
            findEvents(index, {}, [&](GooseEvent const& /*event*/) { ++events; });
            benchmark::DoNotOptimize(events);
        }
    });
    auto taken = race.run(settings.rounds);
    printRatio(fmt::format("{}: indexed and checked / true index", name), taken["check"],
               taken["index"]);
    printRatio(fmt::format("{}: the same without samples", name), taken["plain"], taken["index"]);
    printRatio(fmt::format("{}: indexed, and events found / true index", name), taken["events"],
               taken["index"]);
}

}  // namespace

void measureChecks(Settings const& settings) {
    compareChecks("sv16", settings);
    compareChecks("goose64", settings);
}

}  // namespace TalBench
