// Files that claim more than they hold, hold much of nothing, or are many.

#include <fmt/format.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <atomic>
#include <filesystem>
#include <fstream>

#include "bench/HostileInput.hpp"
#include "support/CaptureFile.hpp"
#include "support/SampledValues.hpp"
#include "support/StationDevice.hpp"

namespace TalBench {

using TalIec61850Parser::Db;
using TalIec61850Parser::Timest;
using TalTest::Bytes;

namespace {

constexpr std::uint64_t maxPadding = std::uint64_t{16} << 20U;
constexpr std::size_t numFiles = 10'000;

void write(std::string const& path, Bytes const& octets) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<char const*>(octets.data()),
              static_cast<std::streamsize>(octets.size()));
    out.close();
    requireSo(out.good(), "cannot write " + path);
}

/// A record that claims 4 GiB, of which the file holds a frame's first octets.
void writeCutShort(std::string const& path) {
    write(path, TalTest::CaptureBuilder()
                    .addClaiming(TalTest::stationStart, 0, 0xFFFFFFFF, gooseFrameOf({}))
                    .bytes());
}

/// One record that really holds 256 MiB; on the disk it is a hole.
void writeLargeRecord(std::string const& path) {
    constexpr std::uint32_t size = std::uint32_t{256} << 20U;
    write(path, TalTest::CaptureBuilder()
                    .addClaiming(TalTest::stationStart, 0, size, gooseFrameOf({}))
                    .bytes());
    std::filesystem::resize_file(path,
                                 TalTest::captureHeaderSize + TalTest::recordHeaderSize + size);
}

std::string filePath(std::string const& path, std::size_t file) {
    return fmt::format("{}.{}", path, file);
}

void writeManyFiles(std::string const& path) {
    Bytes const frame = svFrame(TalTest::svEthernet(), TalTest::message92le("BAY0000MU1", 0));
    for (std::size_t file = 0; file < numFiles; ++file) {
        auto const second = static_cast<std::uint32_t>(file);
        write(filePath(path, file),
              TalTest::CaptureBuilder().add(TalTest::stationStart + second, 0, frame).bytes());
    }
}

void indexFiles(std::string const& path, Db& db) {
    std::atomic<bool> const neverStop = false;
    for (std::size_t file = 0; file < numFiles; ++file) {
        TalIec61850Parser::PcapParser::parseFile(filePath(path, file), db, {}, neverStop, {});
    }
    requireSo(db.svProto.getSvCount() == 1 && db.svProto.streams.begin()->files.size() == numFiles,
              "files are missing");
}

void queryFiles(std::string const& path) {
    Db db;
    indexFiles(path, db);
    constexpr int times = 10;
    for (int i = 0; i < times; ++i) {
        auto const found = db.svProto.streams.begin()->getfilteredPackages(
            Timest{}, {.seconds = 0xFFFFFFFF, .nanoseconds = 0});
        requireSo(found.size() == numFiles, "a window misses files");
    }
}

/// Each clearing looks at all files of each stream, so that this grows with the square of their
/// number.
void clearFiles(std::string const& path) {
    Db db;
    indexFiles(path, db);
    for (std::size_t file = 0; file < numFiles; ++file) {
        requireSo(db.svProto.getSvCount() == 1, "the stream went before its last file");
        db.clearByFileName(filePath(path, file));
    }
    requireSo(db.svProto.getSvCount() == 0, "files are left behind");
}

}  // namespace

void addFileInputs(std::vector<HostileInput>& inputs) {
    inputs.push_back({.name = "cut-short-of-4-gib",
                      .write = writeCutShort,
                      .use = indexes(1, 1),
                      .limits = HostileLimits{.time = 2, .memory = 17},
                      .extraOctets = maxPadding});
    inputs.push_back({.name = "record-of-256-mib",
                      .write = writeLargeRecord,
                      .use = indexes(1, 1),
                      .limits = HostileLimits{.time = 25, .memory = 35}});
    inputs.push_back({.name = "10000-files-index",
                      .write = writeManyFiles,
                      .use =
                          [](std::string const& path) {
                              Db db;
                              indexFiles(path, db);
                          },
                      .limits = HostileLimits{.time = 600, .memory = 85}});
    inputs.push_back({.name = "10000-files-index-and-10-windows",
                      .write = writeManyFiles,
                      .use = queryFiles,
                      .limits = HostileLimits{.time = 900, .memory = 92}});
    inputs.push_back({.name = "10000-files-index-and-clear-each",
                      .write = writeManyFiles,
                      .use = clearFiles,
                      .limits = HostileLimits{.time = 600, .memory = 85}});
}

}  // namespace TalBench
