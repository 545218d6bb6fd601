#include <fmt/format.h>

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

/// The true index against the given library's, both on one thread.
void compareIndexes(std::string_view name, Settings const& settings) {
    Workload const listed = workload(name);
    CaptureOnDisk const capture(withFrames(listed, listed.frames / settings.divisor));
    Race race(fmt::format("traffic-{}", name));
    race.add("given", capture.frames(), indexPass(capture.path(), {}, capture.packets()));
    race.add("true", capture.frames(), trafficPass({capture.path()}, {}, capture.packets()));
    auto taken = race.run(settings.rounds);
    printRatio(fmt::format("{}: true index / index", name), taken["true"], taken["given"]);
    printNumber(fmt::format("{}: octets resident per packet, true index", name),
                residentPerTruePacket(capture.path()));
}

/// The true index with a second thread that reads, against reading the file.
void compareReadAhead(Settings const& settings) {
    Workload const listed = workload("sv16");
    CaptureOnDisk const capture(withFrames(listed, listed.frames / settings.divisor));
    Race race("traffic-ahead");
    race.add("read", capture.frames(), readPass(capture.path()));
    race.add("plain", capture.frames(), trafficPass({capture.path()}, {}, capture.packets()));
    race.add("ahead", capture.frames(),
             trafficPass({capture.path()}, {.read = TalIec61850Analysis::ReadMode::ahead},
                         capture.packets()));
    race.add("disk-read", capture.frames(), fromDisk(capture.path(), readPass(capture.path())));
    race.add("disk-ahead", capture.frames(),
             fromDisk(capture.path(),
                      trafficPass({capture.path()}, {.read = TalIec61850Analysis::ReadMode::ahead},
                                  capture.packets())));
    auto taken = race.run(settings.rounds);
    printRatio("sv16: true index with read-ahead / read(2)", taken["ahead"], taken["read"]);
    printRatio("sv16: true index with read-ahead / read(2), from disk", taken["disk-ahead"],
               taken["disk-read"]);
    printRatio("sv16: true index with read-ahead / without", taken["ahead"], taken["plain"]);
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
    race.add("one", frames, trafficPass(paths, {.jobs = 1}, frames));
    race.add("two", frames, trafficPass(paths, {.jobs = 2}, frames));
    race.add("apart", frames, processesPass(paths));
    auto taken = race.run(settings.rounds);
    printRatio("eight files: two threads / one", taken["two"], taken["one"]);
    printRatio("eight files: two processes / one thread", taken["apart"], taken["one"]);
}

}  // namespace

void measureTraffic(Settings const& settings) {
    for (std::string_view const name : {"sv16", "goose64", "mix1000"}) {
        compareIndexes(name, settings);
    }
    if (settings.countsRealTime) {  // the time of this thread alone says nothing
        compareReadAhead(settings);
        compareJobs(settings);
    }
}

}  // namespace TalBench
