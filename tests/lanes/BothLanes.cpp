#include "lanes/BothLanes.hpp"

#include <TalIec61850Parser/capture/CaptureIndex.hpp>
#include <TalIec61850Parser/capture/PcapFile.hpp>
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
using detail::Lane;

namespace {

struct LaneRun {
    WatchedStore store;
    std::vector<double> progress;
    detail::IndexedRecords records;
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

void run(std::string const& path, CaptureVariant variant, LaneSettings const& settings, Lane lane,
         LaneRun& result) {
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
    result.records = detail::indexCapture(file, isNanosecond(variant), isLittleEndian(variant),
                                          result.store.db, result.store.filter, stopFlag,
                                          std::filesystem::file_size(path), progress, lane);
}

std::string differenceOf(LaneRun const& fast, LaneRun const& plain) {
    if (fast.progress != plain.progress) return "progress was told otherwise";
    if (fast.records.all != plain.records.all) return "other records were read";
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
    run(path, *variant, settings, Lane::fast, fast);
    run(path, *variant, settings, Lane::plain, plain);
    return {.difference = differenceOf(fast, plain),
            .records = fast.records.all,
            .remembered = fast.records.all - fast.records.plain,
            .packets = packetsIn(plain.store)};
}

LaneOutcome indexByBothLanes(Bytes const& capture, LaneSettings const& settings) {
    ScratchFile const file(capture);
    return indexByBothLanes(file.path(), settings);
}

}  // namespace TalTest
