#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include "bench/CaptureOnDisk.hpp"
#include "bench/Passes.hpp"
#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "bench/Workloads.hpp"

namespace TalBench {

namespace {

constexpr std::array<std::string_view, 3> aheadWorkloads = {"sv16", "goose64", "mix1000"};
/// Against indexing without: more would be worse than nothing.
constexpr double aheadLimit = 1.0;

/// @return whether all is within its limits
bool measureAheadOf(std::string_view name, Settings const& settings) {
    Workload const listed = workload(name);
    Workload const whole = withFrames(listed, listed.frames / settings.divisor);
    CaptureOnDisk const capture(whole);
    Race race(fmt::format("ahead-{}", name));
    race.add("read", capture.frames(), readPass(capture.path()));
    race.add("index", capture.frames(), indexPass(capture.path(), whole.filter, capture.packets()));
    race.add("ahead", capture.frames(),
             indexPass(capture.path(), whole.filter, capture.packets(), {}, {.readAhead = true}));
    race.add("disk-read", capture.frames(), fromDisk(capture.path(), readPass(capture.path())));
    race.add("disk-index", capture.frames(),
             fromDisk(capture.path(), indexPass(capture.path(), whole.filter, capture.packets())));
    race.add("disk-ahead", capture.frames(),
             fromDisk(capture.path(), indexPass(capture.path(), whole.filter, capture.packets(), {},
                                                {.readAhead = true})));
    auto taken = race.run(settings.rounds);
    printRatio(fmt::format("{}: index, read ahead / read(2)", name), taken["ahead"], taken["read"]);
    printRatio(fmt::format("{}: index, read ahead / read(2), from disk", name), taken["disk-ahead"],
               taken["disk-read"]);
    printRatio(fmt::format("{}: index / read(2), from disk", name), taken["disk-index"],
               taken["disk-read"]);
    return printBound(fmt::format("{}: index, read ahead / without", name), taken["ahead"],
                      taken["index"], aheadLimit);
}

}  // namespace

void measureAhead(Settings const& settings) {
    if (!settings.countsRealTime) {
        return;  // the time of this thread alone says nothing
    }
    bool const isWithin = std::ranges::count_if(aheadWorkloads, [&](std::string_view name) {
                              return measureAheadOf(name, settings);
                          }) == std::ssize(aheadWorkloads);
    if (!isWithin) {
        throw std::runtime_error("reading ahead takes longer than not to");
    }
}

}  // namespace TalBench
