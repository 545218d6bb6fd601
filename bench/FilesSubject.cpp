#include <fmt/format.h>

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
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
#include "support/Bytes.hpp"
#include "support/PcapngMaker.hpp"
#include "support/TempFile.hpp"

namespace TalBench {

namespace {

using TalIec61850Analysis::CaptureFile;
using TalIec61850Analysis::RecordView;

/// Writes the records of a capture as blocks of a next-generation one.
void writeNextGeneration(std::string const& from, std::string const& to) {
    CaptureFile capture(from);
    std::ofstream out(to, std::ios::binary);
    constexpr std::size_t kMuch = std::size_t{1} << 20U;
    TalTest::PcapngMaker maker;
    auto const put = [&] {
        out.write(reinterpret_cast<char const*>(maker.bytes().data()),
                  static_cast<std::streamsize>(maker.bytes().size()));
        maker = TalTest::PcapngMaker();
    };
    constexpr std::uint8_t kNanoseconds = 9;
    maker.section().interface(1, 0, maker.timeOptions(kNanoseconds));
    while (RecordView const* const view = capture.next()) {
        auto const time = view->record.time.value().time_since_epoch().count();
        maker.packet({.time = static_cast<std::uint64_t>(time),
                      .frame = {view->frame.begin(), view->frame.end()}});
        if (maker.position() > kMuch) {
            put();
        }
    }
    put();
    if (!out) {
        throw std::runtime_error("cannot write " + to);
    }
}

/// Walks over all records.
Race::Body recordsPass(std::string const& path, std::uint64_t frames) {
    return [=](benchmark::State& state) {
        for (auto _ : state) {
            CaptureFile capture(path);
            std::uint64_t records = 0;
            while (capture.next() != nullptr) {
                ++records;
            }
            if (records != frames) {
                state.SkipWithError("not all records were read");
                return;
            }
        }
    };
}

/// The same frames in either format.
void compareFormats(std::string_view name, Settings const& settings) {
    Workload const listed = workload(name);
    CaptureOnDisk const capture(withFrames(listed, listed.frames / settings.divisor));
    TalTest::TempDir const folder;
    std::string const next = folder.file("same.pcapng");
    writeNextGeneration(capture.path(), next);
    Race race(fmt::format("formats-{}", name));
    race.add("classic", capture.frames(), recordsPass(capture.path(), capture.frames()));
    race.add("next", capture.frames(), recordsPass(next, capture.frames()));
    race.add("classic-index", capture.frames(),
             trafficPass({capture.path()}, {}, capture.packets()));
    race.add("next-index", capture.frames(), trafficPass({next}, {}, capture.packets()));
    auto taken = race.run(settings.rounds);
    printRatio(fmt::format("{}: records, pcapng / the same frames as classic", name), taken["next"],
               taken["classic"]);
    printRatio(fmt::format("{}: true index, pcapng / classic", name), taken["next-index"],
               taken["classic-index"]);
}

/// Opens a capture for each record, and finds it by an offset drawn in the file.
Race::Body recordAtPass(std::string const& path) {
    return [path, size = std::filesystem::file_size(path)](benchmark::State& state) {
        constexpr std::uint64_t kFirstRecord = 24;
        std::mt19937_64 random(61850);
        for (auto _ : state) {
            CaptureFile capture(path);
            auto record = capture.recordAt(kFirstRecord + random() % (size - kFirstRecord));
            if (!record) {
                state.SkipWithError("no record was found");
                return;
            }
            benchmark::DoNotOptimize(*record);
        }
    };
}

void compareSizes(Settings const& settings) {
    constexpr std::uint64_t kSmall = 4'000'000;
    constexpr std::uint64_t kLarge = 1000 * kSmall;
    // What a frame of this workload takes in the file.
    constexpr std::uint64_t kRecord = 142;
    Workload const listed = workload("sv16");
    CaptureOnDisk const small(withFrames(listed, kSmall / kRecord));
    CaptureOnDisk const large(withFrames(listed, kLarge / kRecord / settings.divisor));
    Race race("record-at");
    race.addShort("small", recordAtPass(small.path()));
    race.addShort("large", recordAtPass(large.path()));
    auto taken = race.run(settings.rounds);
    printRatio("recordAt on 4 GB / on 4 MB", taken["large"], taken["small"]);
    printNumber("recordAt on 4 GB: MiB at most", peakOfRecordAt(large.path()));
}

}  // namespace

void measureFiles(Settings const& settings) {
    for (std::string_view const name : {"sv16", "goose64"}) {
        compareFormats(name, settings);
    }
    compareSizes(settings);
}

}  // namespace TalBench
