// Recorded captures cut after every octet, and with every octet made every other: each is indexed
// by both lanes, and every packet decoded again.
//   changed-captures [--slice] [CAPTURE...]
// Without captures: those that are recorded. --slice: a part that takes seconds.

#include <TalIec61850Parser/store/Db.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "fuzz/CaptureInput.hpp"
#include "fuzz/Check.hpp"
#include "fuzz/DecodedPacket.hpp"
#include "index/Indexing.hpp"
#include "lanes/BothLanes.hpp"
#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"

namespace {

using namespace TalTest;

/// How CTest is told that a test was skipped.
constexpr int kSkipped = 77;

/// What is done to a capture, by its size in octets.
struct Extent {
    std::size_t cutUpTo;
    /// Each octet gets every other value, and in larger captures this many others.
    std::size_t wholeUpTo;
    std::size_t changedUpTo;
    unsigned fewValues;

    [[nodiscard]] unsigned valuesFor(std::size_t size) const {
        if (size > changedUpTo) return 0;
        return size > wholeUpTo ? fewValues : 255;
    }
};
constexpr Extent kAll = {
    .cutUpTo = 16'000, .wholeUpTo = 2'000, .changedUpTo = 6'000, .fewValues = 15};
constexpr Extent kSlice = {.cutUpTo = 1'500, .wholeUpTo = 0, .changedUpTo = 500, .fewValues = 3};

void indexAndDecode(ScratchFile& file, Bytes const& capture) {
    file.assign(capture);
    auto const outcome = indexByBothLanes(file.path());
    TalFuzz::requireNone(outcome.difference);
    TalIec61850Parser::Db db;
    indexInto(db, file.path());
    for (auto const& [position, packet] : packetsByPosition(db)) {
        if (packet.goose != nullptr)
            TalFuzz::isGooseDecodedRightly(file.path(), capture, position);
        else
            TalFuzz::isSvDecodedRightly(file.path(), capture, position);
    }
}

std::size_t cutEverywhere(ScratchFile& file, Bytes const& capture) {
    for (std::size_t size = 0; size <= capture.size(); ++size)
        indexAndDecode(file, TalFuzz::withoutLongClaim(prefix(capture, size)));
    return capture.size() + 1;
}

std::size_t changeEverywhere(ScratchFile& file, Bytes const& capture, unsigned values) {
    for (std::size_t at = 0; at < capture.size(); ++at) {
        for (unsigned value = 1; value <= values; ++value) {
            Bytes changed = capture;
            changed[at] = static_cast<std::uint8_t>(capture[at] + value * (255 / values));
            indexAndDecode(file, TalFuzz::withoutLongClaim(std::move(changed)));
        }
    }
    return capture.size() * values;
}

void tryOut(std::string const& path, Extent const& extent) {
    ScratchFile file;
    Bytes const capture = readFile(path);
    if (capture.size() > extent.cutUpTo) return;
    std::size_t const cuts = cutEverywhere(file, capture);
    std::size_t const changes = changeEverywhere(file, capture, extent.valuesFor(capture.size()));
    std::cout << std::filesystem::path(path).filename().string() << ": " << cuts << " cuts, "
              << changes << " changes" << std::endl;
}

std::vector<std::string> recordedCaptures() {
    std::vector<std::string> paths;
    auto const folder = capturesFolder();
    if (!folder) return paths;
    for (auto const& entry : std::filesystem::directory_iterator(*folder))
        if (entry.path().extension() == ".pcap") paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace

int main(int argc, char** argv) try {
    std::vector<std::string> paths(argv + 1, argv + argc);
    bool const isSlice = !paths.empty() && paths.front() == "--slice";
    if (isSlice) paths.erase(paths.begin());
    if (paths.empty()) paths = recordedCaptures();
    if (paths.empty()) {
        std::cout << "skipped: there are no recorded captures, see TAL_CAPTURES\n";
        return kSkipped;
    }
    TalFuzz::muteErrors();
    for (std::string const& path : paths) tryOut(path, isSlice ? kSlice : kAll);
    return 0;
} catch (std::exception const& error) {
    std::cout << error.what() << '\n';
    return 1;
}
