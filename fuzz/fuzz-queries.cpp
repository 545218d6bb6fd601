// Windows of time and nearest packets: what the standard library's searches find in the same lists,
// in order or not.

#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/PackageFile.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/Check.hpp"
#include "fuzz/FuzzInput.hpp"

namespace {

using namespace TalIec61850Parser;
using TalFuzz::FuzzInput;
using TalFuzz::require;

/// So many that the library looks ahead in its searches.
constexpr std::uint32_t kManyPackets = (1U << 19U) + 1000;
constexpr std::size_t kMaxPackets = 24;

/// What the queries must find in one file.
struct Expected {
    std::vector<Package const*> inside;
    Package const* previous = nullptr;
    Package const* next = nullptr;
    PackageIterator nearest;
};

Expected expectedIn(PackageFile const& file, Timest const& from, Timest const& to) {
    auto const& packages = file.packages;
    auto const first = std::partition_point(packages.begin(), packages.end(),
                                            [&](Package const& p) { return p.time < from; });
    auto const behind = std::partition_point(packages.begin(), packages.end(),
                                             [&](Package const& p) { return !(to < p.time); });
    Expected expected;
    for (auto it = first; it < behind; ++it) expected.inside.push_back(&*it);
    if (first != packages.begin()) expected.previous = &*std::prev(first);
    if (behind != packages.end()) expected.next = &*behind;
    expected.nearest = first == packages.begin() ? packages.end() : std::prev(first);
    return expected;
}

void requireSpan(PackageFile const& file) {
    bool const isEmpty = file.packages.empty();
    require(file.getBeginTime() == (isEmpty ? Timest{} : file.packages.front().time),
            "when a file begins");
    require(file.getEndTime() == (isEmpty ? Timest{} : file.packages.back().time),
            "when a file ends");
}

/// Of two streams that hold the same files and packets.
void requireWindow(Goose const& goose, Sv const& sv, Timest const& from, Timest const& to) {
    auto const gooseWindow = goose.getfilteredPackages(from, to);
    auto const gooseNearest = goose.findFilesNearestPackageIterator(from);
    for (PackageFile const& file : goose.files) {
        requireSpan(file);
        Expected const expected = expectedIn(file, from, to);
        auto const found = gooseWindow.find(&file);
        require((found == gooseWindow.end()) == file.packages.empty(), "a file with packets");
        require(goose.findFileNearestPackageIterator(&file, from) == expected.nearest, "nearest");
        require(gooseNearest.contains(&file) == (expected.nearest != file.packages.end()),
                "a file with a nearest packet");
        if (found == gooseWindow.end()) continue;
        require(found->second.packages == expected.inside, "the packets inside");
        require(found->second.previousPackage == expected.previous, "the packet before");
        require(found->second.nextPackage == expected.next, "the packet after");
    }
    auto const svWindow = sv.getfilteredPackages(from, to);
    auto const svNearest = sv.findFilesNearestPackageIterator(from);
    for (PackageFile const& file : sv.files) {
        Expected const expected = expectedIn(file, from, to);
        auto const found = svWindow.find(&file);
        require((found == svWindow.end()) == expected.inside.empty(), "a file of the window");
        require(found == svWindow.end() || found->second == expected.inside, "the packets inside");
        require(sv.findFileNearestPackageIterator(&file, from) == expected.nearest, "nearest");
        require(svNearest.contains(&file) == (expected.nearest != file.packages.end()),
                "a file with a nearest packet");
    }
}

/// Few seconds and few nanoseconds, so that times meet; steps that mostly go forward.
Timest step(Timest time, std::uint8_t octet) {
    if (octet == 0xFF) return {0, 0};
    if (octet == 0xFE) return {0xFFFFFFFF, 0xFFFFFFFF};
    if (octet >= 0xF0) return {time.seconds - (octet & 0xFU), time.nanoseconds};
    return {time.seconds + (octet >> 6U), time.nanoseconds + (octet & 0x3FU)};
}

PackageFile const& manyPackets(Goose const& stream) {
    PackageFile const& file = *stream.addFile("many");
    for (std::uint32_t i = 0; i < kManyPackets; ++i) {
        file.addPackage(1000 + i / 4000, i % 4000 * 250'000, i);
    }
    return file;
}

/// The long list, asked about a few packets around some place: the others are as they were.
void requireWindowOfMany(FuzzInput& input) {
    static Goose const stream{};
    static PackageFile const& file = manyPackets(stream);
    std::uint32_t const place = input.number() * 16U;
    Timest const from = step({1000 + place / 4000, place % 4000 * 250'000}, input.octet());
    Timest const to = step(from, input.octet());
    bool const isShort = to < Timest{from.seconds + 3, 0};
    if (!isShort) return;
    Expected const expected = expectedIn(file, from, to);
    auto const found = stream.getfilteredPackages(from, to).at(&file);
    require(found.packages == expected.inside, "the packets inside, of many");
    require(found.previousPackage == expected.previous, "the packet before, of many");
    require(found.nextPackage == expected.next, "the packet after, of many");
    require(stream.findFileNearestPackageIterator(&file, from) == expected.nearest,
            "the nearest of many");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    FuzzInput input({data, size});
    requireWindowOfMany(input);
    Goose const goose{};
    Sv const sv{};
    std::size_t const numWindows = 1 + input.octet() % 2U;
    std::vector<std::uint8_t> windows = input.octets(2 * numWindows);
    windows.resize(2 * numWindows);
    std::size_t const numFiles = input.octet() % 3U;
    for (std::size_t f = 0; f < numFiles; ++f) {
        Timest time{100, 0};
        std::string const name = std::to_string(f);
        PackageFile const& inGoose = *goose.addFile(name);
        PackageFile const& inSv = *sv.addFile(name);
        std::size_t const count = std::min<std::size_t>(input.octet(), kMaxPackets);
        for (std::size_t i = 0; i < count && !input.isEmpty(); ++i) {
            time = step(time, input.octet());
            inGoose.addPackage(time.seconds, time.nanoseconds, i);
            inSv.addPackage(time.seconds, time.nanoseconds, i);
        }
    }
    for (std::size_t i = 0; i < numWindows; ++i) {
        Timest const from = step({101, windows[2 * i]}, windows[2 * i]);
        requireWindow(goose, sv, from, step(from, windows[2 * i + 1]));
    }
    return 0;
}
