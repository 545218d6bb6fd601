#include <fmt/format.h>

#include <cstdint>
#include <string_view>

#include "bench/CaptureOnDisk.hpp"
#include "bench/MemoryProbe.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "bench/Workloads.hpp"

namespace TalBench {

namespace {

constexpr std::uint64_t million = 1'000'000;

void printResident(std::string_view name, Settings const& settings) {
    CaptureOnDisk const capture(withFrames(workload(name), 4 * million / settings.divisor));
    printNumber(fmt::format("{}: octets resident per packet", name),
                residentPerPacket(capture.path()));
}

/// What the second half of a capture's frames adds: by then nothing is new.
void printAllocations(std::string_view name, Settings const& settings) {
    std::uint64_t const frames = million / settings.divisor;
    Workload const traffic = workload(name);
    auto const half = allocationsOfIndexing(CaptureOnDisk(withFrames(traffic, frames)).path());
    auto const whole = allocationsOfIndexing(CaptureOnDisk(withFrames(traffic, 2 * frames)).path());
    auto const perFrame = [&](std::int64_t count) {
        return static_cast<double>(count) / static_cast<double>(frames);
    };
    std::int64_t const all = whole.all - half.all;
    std::int64_t const ofDeques = whole.ofDeques - half.ofDeques;
    printNumber(fmt::format("{}: allocations per frame", name), perFrame(all));
    printNumber(fmt::format("{}: allocations per frame but the deques'", name),
                perFrame(all - ofDeques));
}

}  // namespace

void measureMemory(Settings const& settings) {
    for (std::string_view const name : {"sv16", "goose64"}) {
        printResident(name, settings);
    }
    for (std::string_view const name : {"sv16", "goose64", "mix1000"}) {
        printAllocations(name, settings);
    }
}

}  // namespace TalBench
