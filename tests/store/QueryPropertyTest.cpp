#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "capture/Indexing.hpp"
#include "index/RandomPicks.hpp"
#include "store/StoredTimes.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"

// The queries of generated streams against plain scans, and of streams indexed from captures.

namespace TalIec61850Parser {

inline bool operator==(FilteredPackagesResult const& a, FilteredPackagesResult const& b) {
    return a.packages == b.packages && a.previousPackage == b.previousPackage &&
           a.nextPackage == b.nextPackage;
}

}  // namespace TalIec61850Parser

namespace TalTest::QueryPropertyTest {
namespace {

using namespace TalIec61850Parser;
using GooseWindow = std::map<PackageFile const*, FilteredPackagesResult>;
using SvWindow = std::map<PackageFile const*, std::vector<Package const*>>;
using Places = std::map<PackageFile const*, PackageIterator>;

/// One of 24 times next to each other, or, seldom, any time.
Timest anyTime() {
    if (oneIn(20)) {
        return {*rc::gen::arbitrary<std::uint32_t>(), *rc::gen::arbitrary<std::uint32_t>()};
    }
    constexpr std::array<std::uint32_t, 4> seconds{0, 1, 0x80000000U, kMax};
    constexpr std::array<std::uint32_t, 6> nanoseconds{0, 1, 2, 999'999'999, 1'000'000'000, kMax};
    return {oneOf(seconds), oneOf(nanoseconds)};
}

/// Packet times of up to five files.
std::vector<Times> anyFiles() {
    std::vector<Times> files(below(6));
    for (Times& times : files) {
        times.resize(below(40));
        for (Timest& time : times) time = anyTime();
    }
    return files;
}

std::vector<Times> sortedFiles() {
    std::vector<Times> files = anyFiles();
    for (Times& times : files) std::sort(times.begin(), times.end());
    return files;
}

template <typename Stream>
Stream streamOf(std::vector<Times> const& files) {
    Stream stream;
    for (std::size_t i = 0; i < files.size(); ++i) fill(stream, files[i], std::to_string(i));
    return stream;
}

GooseWindow scannedWindow(PackageFileSet const& files, Timest const& from, Timest const& to) {
    GooseWindow window;
    for (PackageFile const& file : files) {
        for (Package const& package : file.packages) {
            FilteredPackagesResult& result = window[&file];
            if (package.time < from) {
                result.previousPackage = &package;
            } else if (package.time <= to) {
                result.packages.push_back(&package);
            } else if (result.nextPackage == nullptr) {
                result.nextPackage = &package;
            }
        }
    }
    return window;
}

/// The same without neighbours, and without the files that hold nothing of the window.
SvWindow insideOf(GooseWindow const& window) {
    SvWindow inside;
    for (auto const& [file, result] : window) {
        if (!result.packages.empty()) inside[file] = result.packages;
    }
    return inside;
}

GooseWindow searchedWindow(PackageFileSet const& files, Timest const& from, Timest const& to) {
    GooseWindow window;
    for (PackageFile const& file : files) {
        auto const& packages = file.packages;
        if (packages.empty()) continue;
        auto const first = std::lower_bound(packages.begin(), packages.end(), from, isBefore);
        auto const behind = std::upper_bound(packages.begin(), packages.end(), to, isBehind);
        FilteredPackagesResult& result = window[&file];
        for (auto i = first; i < behind; ++i) result.packages.push_back(&*i);
        if (first != packages.begin()) result.previousPackage = &*std::prev(first);
        if (behind != packages.end()) result.nextPackage = &*behind;
    }
    return window;
}

/// The last packet before a time in each file that has one.
Places scannedPlaces(PackageFileSet const& files, Timest const& time) {
    Places places;
    for (PackageFile const& file : files) {
        for (auto i = file.packages.begin(); i != file.packages.end(); ++i) {
            if (i->time < time) places[&file] = i;
        }
    }
    return places;
}

template <typename Stream>
void checkNearestPackages() {
    auto const stream = streamOf<Stream>(sortedFiles());
    Timest const time = anyTime();
    Places const expected = scannedPlaces(stream.files, time);
    RC_ASSERT(stream.findFilesNearestPackageIterator(time) == expected);
    for (PackageFile const& file : stream.files) {
        auto const place = expected.find(&file);
        RC_ASSERT(stream.findFileNearestPackageIterator(&file, time) ==
                  (place == expected.end() ? file.packages.end() : place->second));
    }
}

RC_GTEST_PROP(GooseQueries, FindTheWindowThatAScanFinds, ()) {
    auto const goose = streamOf<Goose>(sortedFiles());
    auto const [from, to] = std::minmax({anyTime(), anyTime()});
    RC_ASSERT(goose.getfilteredPackages(from, to) == scannedWindow(goose.files, from, to));
}

RC_GTEST_PROP(SvQueries, FindTheWindowThatAScanFinds, ()) {
    auto const sv = streamOf<Sv>(sortedFiles());
    auto const [from, to] = std::minmax({anyTime(), anyTime()});
    RC_ASSERT(sv.getfilteredPackages(from, to) == insideOf(scannedWindow(sv.files, from, to)));
}

RC_GTEST_PROP(GooseQueries, FindTheNearestPacketsThatAScanFinds, ()) {
    checkNearestPackages<Goose>();
}

RC_GTEST_PROP(SvQueries, FindTheNearestPacketsThatAScanFinds, ()) { checkNearestPackages<Sv>(); }

RC_GTEST_PROP(GooseQueries, OfAnyListAndWindowAreThoseOfTheBinarySearches, ()) {
    auto const goose = streamOf<Goose>(anyFiles());
    Timest const from = anyTime();
    Timest const to = anyTime();
    RC_ASSERT(goose.getfilteredPackages(from, to) == searchedWindow(goose.files, from, to));
}

RC_GTEST_PROP(SvQueries, OfAnyListAndWindowAreThoseOfTheBinarySearches, ()) {
    auto const sv = streamOf<Sv>(anyFiles());
    Timest const from = anyTime();
    Timest const to = anyTime();
    RC_ASSERT(sv.getfilteredPackages(from, to) == insideOf(searchedWindow(sv.files, from, to)));
}

RC_GTEST_PROP(GooseQueries, FindTheSamePacketBeforeAWindowAndBeforeItsBegin, ()) {
    auto const goose = streamOf<Goose>(anyFiles());
    Timest const from = anyTime();
    Places const nearest = goose.findFilesNearestPackageIterator(from);
    std::size_t withPrevious = 0;
    for (auto const& [file, result] : goose.getfilteredPackages(from, anyTime())) {
        if (result.previousPackage == nullptr) continue;
        ++withPrevious;
        RC_ASSERT(nearest.contains(file));
        RC_ASSERT(&*nearest.at(file) == result.previousPackage);
    }
    RC_ASSERT(withPrevious == nearest.size());
}

/// Two captures that overlap in time, indexed in one store; they differ in byte order and unit.
class QueriesOfTwoCaptures : public testing::Test {
protected:
    QueriesOfTwoCaptures() {
        CaptureBuilder first(CaptureVariant::nanoBig);
        first.add(100, 1, goose).add(100, 500'000'000, sv).add(101, 1, goose).add(103, 7, sv);
        CaptureBuilder second(CaptureVariant::microLittle);
        second.add(100, 999'999'000, goose).add(101, 2'000, sv).add(104, 0, goose);
        firstPath = directory.write("first.pcap", first.bytes());
        secondPath = directory.write("second.pcap", second.bytes());
        for (auto const& path : {firstPath, secondPath}) {
            PcapParser::parseFile(path, db, {}, std::atomic<bool>(false), {});
        }
    }

    /// The only packet of a window's list, with the octet that its position leads to.
    static std::pair<Timest, int> read(PackageFile const& file,
                                       std::vector<Package const*> const& packages) {
        Package const& package = *only(packages);
        return {package.time, readFile(file.fileName).at(package.position)};
    }

    Bytes const goose = gooseFrame({}, {});
    Bytes const sv = svFrame(svEthernet(), {});
    TempDir const directory;
    std::string firstPath;
    std::string secondPath;
    Db db;
};

TEST_F(QueriesOfTwoCaptures, FindTheWindowInBoth) {
    Goose const& stream = only(db.gooseProto.streams);
    auto const window = stream.getfilteredPackages({100, 1}, {100, 999'999'000});
    ASSERT_EQ(window.size(), 2U);
    for (auto const& [file, result] : window) {
        bool const isFirst = file->fileName == firstPath;
        EXPECT_EQ(read(*file, result.packages),
                  std::pair(Timest{100, isFirst ? 1U : 999'999'000U}, 0x61));
        EXPECT_EQ(result.previousPackage, nullptr);
        EXPECT_EQ(result.nextPackage, &file->packages[1]);
    }

    Sv const& sampled = only(db.svProto.streams);
    auto const samples = sampled.getfilteredPackages({100, 500'000'001}, {103, 7});
    ASSERT_EQ(samples.size(), 2U);
    for (auto const& [file, packages] : samples) {
        EXPECT_EQ(
            read(*file, packages),
            std::pair(file->fileName == firstPath ? Timest{103, 7} : Timest{101, 2'000}, 0xA2));
    }
}

TEST_F(QueriesOfTwoCaptures, FindAWindowThatOneOfThemHoldsNothingOf) {
    Sv const& sampled = only(db.svProto.streams);
    auto const samples = sampled.getfilteredPackages({102, 0}, {200, 0});
    EXPECT_EQ(only(samples).first->fileName, firstPath);
    EXPECT_TRUE(sampled.getfilteredPackages({103, 8}, kLastTime).empty());

    Goose const& stream = only(db.gooseProto.streams);
    auto const window = stream.getfilteredPackages({102, 0}, {200, 0});
    EXPECT_EQ(window.size(), 2U);
    EXPECT_TRUE(window.at(stream.addFile(firstPath)).packages.empty());
    EXPECT_EQ(window.at(stream.addFile(firstPath)).previousPackage->time, (Timest{101, 1}));
}

TEST_F(QueriesOfTwoCaptures, FindTheNearestPacketsInBoth) {
    Goose const& stream = only(db.gooseProto.streams);
    Places const places = stream.findFilesNearestPackageIterator({101, 1});
    ASSERT_EQ(places.size(), 2U);
    EXPECT_EQ(places.at(stream.addFile(firstPath))->time, (Timest{100, 1}));
    EXPECT_EQ(places.at(stream.addFile(secondPath))->time, (Timest{100, 999'999'000}));
    EXPECT_EQ(stream.findFilesNearestPackageIterator({100, 2}).size(), 1U);
    EXPECT_TRUE(stream.findFilesNearestPackageIterator({100, 1}).empty());

    Places const samples = only(db.svProto.streams).findFilesNearestPackageIterator({101, 2'000});
    EXPECT_EQ(only(samples).second->time, (Timest{100, 500'000'000}));
}

TEST_F(QueriesOfTwoCaptures, FindTheOtherOnceOneIsCleared) {
    Goose const& stream = only(db.gooseProto.streams);
    auto const before = stream.getfilteredPackages(kFirstTime, kLastTime);
    PackageFile const* const second = stream.addFile(secondPath);
    db.clearByFileName(firstPath);
    auto const after = stream.getfilteredPackages(kFirstTime, kLastTime);
    EXPECT_EQ(only(after).first, second);
    EXPECT_EQ(after.at(second).packages, before.at(second).packages);
    EXPECT_EQ(before.at(second).packages.front()->time, (Timest{100, 999'999'000}));
    EXPECT_EQ(only(stream.findFilesNearestPackageIterator(kLastTime)).first, second);
}

}  // namespace
}  // namespace TalTest::QueryPropertyTest
