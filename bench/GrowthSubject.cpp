#include <fmt/format.h>

#include <deque>
#include <string>
#include <vector>

#include "bench/CaptureOnDisk.hpp"
#include "bench/Passes.hpp"
#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "bench/Workloads.hpp"

namespace TalBench {

namespace {

/// One of the captures that are compared.
struct Size {
    std::string contender;
    /// As the table's rows call it.
    std::string text;
    Workload workload;
};

/// Indexes captures that grow in one respect, and compares nanoseconds per frame with the first.
void measureSizes(std::string const& name, std::vector<Size> const& sizes,
                  Settings const& settings) {
    // A deque, since captures do not move.
    std::deque<CaptureOnDisk> captures;
    Race race(name);
    for (Size const& size : sizes) {
        Workload const workload =
            withFrames(size.workload, size.workload.frames / settings.divisor);
        CaptureOnDisk const& capture = captures.emplace_back(workload);
        race.add(size.contender, capture.frames(),
                 indexPass(capture.path(), workload.filter, capture.packets()));
    }
    auto taken = race.run(settings.rounds);
    Size const& first = sizes.front();
    for (Size const& size : sizes) {
        if (size.contender != first.contender) {
            printRatio(fmt::format("index: {} / {}", size.text, first.text), taken[size.contender],
                       taken[first.contender]);
        }
    }
}

std::vector<Size> byFrames() {
    std::vector<Size> sizes;
    for (std::uint64_t const millions : {1U, 2U, 4U, 8U}) {
        sizes.push_back({fmt::format("{}M", millions), fmt::format("{}M frames", millions),
                         withFrames(workload("sv16"), millions * 1'000'000)});
    }
    return sizes;
}

std::vector<Size> byStreams() {
    std::vector<Size> sizes;
    for (int const streams : {1, 10, 100, 1000, 10'000}) {
        sizes.push_back({fmt::format("{}", streams),
                         fmt::format("{} stream{}", streams, streams == 1 ? "" : "s"),
                         workload(fmt::format("streams-{}", streams))});
    }
    return sizes;
}

}  // namespace

void measureGrowth(Settings const& settings) {
    measureSizes("growth-in-frames", byFrames(), settings);
    measureSizes("growth-in-streams", byStreams(), settings);
}

}  // namespace TalBench
