#include <fmt/format.h>

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <array>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench/CaptureOnDisk.hpp"
#include "bench/MemoryProbe.hpp"
#include "bench/Passes.hpp"
#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "bench/Workloads.hpp"

namespace TalBench {

namespace {

using TalIec61850Analysis::indexCaptures;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficStream;

/// Packets of all streams, as frames count them: the first ASDU of each.
std::uint64_t framesIn(TrafficIndex const& index) {
    std::uint64_t frames = 0;
    for (auto const& file : index.files()) {
        frames += file.summary.gooseFrames + file.summary.svFrames;
    }
    return frames;
}

/// Indexes captures true to the wire; the index is destroyed outside the time.
Race::Body trafficPass(std::vector<std::string> const& paths, std::size_t jobs,
                       std::uint64_t frames) {
    return [=](benchmark::State& state) {
        for (auto _ : state) {
            auto index = std::make_unique<TrafficIndex>(indexCaptures(paths, {.jobs = jobs}));
            state.PauseTiming();
            if (framesIn(*index) != frames) {
                state.SkipWithError("the index does not hold what it should");
                return;
            }
            index.reset();
            state.ResumeTiming();
        }
    };
}

/// The true index against the given library's, both on one thread.
void compareIndexes(std::string_view name, Settings const& settings) {
    Workload const listed = workload(name);
    CaptureOnDisk const capture(withFrames(listed, listed.frames / settings.divisor));
    Race race(fmt::format("traffic-{}", name));
    race.add("given", capture.frames(), indexPass(capture.path(), {}, capture.packets()));
    race.add("true", capture.frames(), trafficPass({capture.path()}, 1, capture.packets()));
    auto taken = race.run(settings.rounds);
    printRatio(fmt::format("{}: true index / index", name), taken["true"], taken["given"]);
    printNumber(fmt::format("{}: octets resident per packet, true index", name),
                residentPerTruePacket(capture.path()));
}

/// Moves all records of a capture in time. They are little-endian, as those of all workloads that
/// are used here.
void shiftTimes(std::string const& path, std::uint32_t seconds) {
    constexpr std::streamoff kFirstRecord = 24;
    constexpr std::streamoff kRecordHeader = 16;
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    std::array<std::uint32_t, 4> header{};
    std::streamoff offset = kFirstRecord;
    while (file.seekg(offset) && file.read(reinterpret_cast<char*>(header.data()), sizeof header)) {
        header[0] += seconds;
        file.seekp(offset);
        file.write(reinterpret_cast<char const*>(header.data()), sizeof header[0]);
        offset += kRecordHeader + header[2];
    }
}

/// Eight files on two cores against the same on one.
void compareJobs(Settings const& settings) {
    constexpr std::size_t kFiles = 8;
    Workload const listed = workload("sv16");
    std::vector<std::unique_ptr<CaptureOnDisk>> captures;
    std::vector<std::string> paths;
    std::uint64_t frames = 0;
    for (std::size_t i = 0; i < kFiles; ++i) {
        captures.push_back(std::make_unique<CaptureOnDisk>(withFrames(
            workload(i % 2 == 0 ? "sv16" : "goose64"), listed.frames / kFiles / settings.divisor)));
        paths.push_back(captures.back()->path());
        // As files of a recorder are: one after the other.
        constexpr std::uint32_t kSecondsApart = 100'000;
        shiftTimes(paths.back(), kSecondsApart * static_cast<std::uint32_t>(i));
        frames += captures.back()->packets();
    }
    Race race("traffic-jobs");
    race.add("one", frames, trafficPass(paths, 1, frames));
    race.add("two", frames, trafficPass(paths, 2, frames));
    auto taken = race.run(settings.rounds);
    printRatio("eight files: two threads / one", taken["two"], taken["one"]);
}

}  // namespace

void measureTraffic(Settings const& settings) {
    for (std::string_view const name : {"sv16", "goose64", "mix1000"}) {
        compareIndexes(name, settings);
    }
    compareJobs(settings);
}

}  // namespace TalBench
