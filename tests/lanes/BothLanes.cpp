#include "lanes/BothLanes.hpp"

#include <TalIec61850Parser/capture/IndexCapture.hpp>
#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <TalIec61850Parser/capture/lane/FastLane.hpp>
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <vector>

#include "index/IndexImage.hpp"
#include "index/Indexing.hpp"
#include "support/CaptureFile.hpp"

namespace TalTest {

using namespace TalIec61850Parser;
using detail::IndexedFrame;
using detail::IndexTarget;
using detail::TracedFrame;

namespace {

struct LaneRun {
    WatchedStore store;
    std::vector<double> progress;
    std::uint64_t records = 0;
    /// Those that took the plain walk.
    std::uint64_t walked = 0;
};

/// Records that took the plain walk, in either lane; several fuzzers or tests do not run at once.
std::uint64_t walkedRecords = 0;

IndexedFrame walkAndCount(wire::Octets record, std::uint64_t fileOffset, IndexTarget const& target,
                          TracedFrame* traced) {
    ++walkedRecords;
    return detail::indexRecord(record, fileOffset, target, traced);
}

/// The fast lane, its walks counted.
struct FastLane : detail::FastLane {
    explicit FastLane(IndexTarget const& target) : detail::FastLane(target, walkAndCount) {}
};

/// FastLane's interface on the plain walk alone.
class PlainLane {
public:
    explicit PlainLane(IndexTarget const& target) : target_(target) {}

    void index(wire::Octets record, std::uint64_t fileOffset) {
        walkAndCount(record, fileOffset, target_, nullptr);
    }
    void afterProgress() {}

private:
    IndexTarget target_;
};

/// A lane whose records are counted.
template <typename Lane>
struct Counted : Lane {
    using Lane::Lane;

    void index(wire::Octets record, std::uint64_t fileOffset) {
        ++records;
        Lane::index(record, fileOffset);
    }
    std::uint64_t records = 0;
};

std::optional<CaptureVariant> variantOf(std::string const& path) {
    constexpr std::size_t magicSize = 4;
    Bytes magic(magicSize);
    std::ifstream(path, std::ios_base::binary)
        .read(reinterpret_cast<char*>(magic.data()), magicSize);
    for (CaptureVariant const variant : captureVariants)
        if (magic == prefix(captureHeader(variant), magicSize)) return variant;
    return std::nullopt;
}

template <typename Lane>
void run(std::string const& path, CaptureVariant variant, LaneSettings const& settings,
         LaneRun& result, bool readAhead = false) {
    PcapFile file(path);
    std::atomic<bool> stopFlag = false;
    result.store.filter = settings.filter;
    int call = 0;
    auto const watched = [&](double fraction) {
        result.progress.push_back(fraction);
        settings.progress(result.store, call++);
        stopFlag = result.store.stop;
    };
    std::function<void(double)> progress;
    if (settings.progress) progress = watched;
    Counted<Lane> lane({.fileName = file.fileName,
                        .variant = {.isNanosecond = isNanosecond(variant),
                                    .isLittleEndian = isLittleEndian(variant)},
                        .filter = result.store.filter,
                        .db = result.store.db});
    walkedRecords = 0;
    detail::indexCapture(file, isLittleEndian(variant),
                         {.stopFlag = stopFlag,
                          .fileSize = std::filesystem::file_size(path),
                          .progress = progress,
                          .readAhead = readAhead},
                         lane);
    result.records = lane.records;
    result.walked = walkedRecords;
}

std::string differenceOf(LaneRun const& fast, LaneRun const& plain) {
    if (fast.progress != plain.progress) return "progress was told otherwise";
    if (fast.records != plain.records) return "other records were read";
    if (fast.store.aside.size() != plain.store.aside.size()) return "not as many stores";
    std::string found = difference(imageOf(fast.store.db), imageOf(plain.store.db));
    for (auto a = fast.store.aside.begin(), b = plain.store.aside.begin();
         found.empty() && a != fast.store.aside.end(); ++a, ++b) {
        found = difference(imageOf(*a), imageOf(*b));
        if (!found.empty()) found = "in a store put aside: " + found;
    }
    return found;
}

std::uint64_t packetsIn(WatchedStore const& store) {
    std::uint64_t count = 0;
    for (Goose const& stream : store.db.gooseProto.streams) count += stream.packetCount;
    for (Sv const& stream : store.db.svProto.streams) count += stream.packetCount;
    return count;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, LaneOutcome const& outcome) {
    return out << outcome.records << " records, " << outcome.remembered
               << " of them not walked by the fast lane, " << outcome.packets << " packets"
               << (outcome.difference.empty() ? "" : "; ") << outcome.difference;
}

LaneOutcome indexByBothLanes(std::string const& path, LaneSettings const& settings) {
    auto const variant = variantOf(path);
    if (!variant) return {};
    LaneRun fast;
    LaneRun plain;
    run<FastLane>(path, *variant, settings, fast);
    run<PlainLane>(path, *variant, settings, plain);
    std::string difference = differenceOf(fast, plain);
    if (difference.empty()) {
        LaneRun ahead;
        run<FastLane>(path, *variant, settings, ahead, true);
        difference = differenceOf(ahead, plain);
        if (!difference.empty()) difference = "where the file is read ahead: " + difference;
    }
    return {.difference = difference,
            .records = fast.records,
            .remembered = fast.records - fast.walked,
            .packets = packetsIn(plain.store)};
}

LaneOutcome indexByBothLanes(Bytes const& capture, LaneSettings const& settings) {
    ScratchFile const file(capture);
    return indexByBothLanes(file.path(), settings);
}

}  // namespace TalTest
