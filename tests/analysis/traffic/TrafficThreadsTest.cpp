// Indexes that several threads make: of several files, of the same files at once, and stopped by
// another thread. The program is also built for a sanitizer that watches for races.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "support/Station.hpp"
#include "support/TempFile.hpp"
#include "threads/Together.hpp"

namespace TalIec61850Analysis::TrafficThreadsTest {
namespace {

using namespace TalTest;

constexpr std::size_t kFiles = 5;
constexpr std::uint64_t kFrames = 9000;

/// Files of a station, all but the first shorter than it: their packets are duplicates.
class TrafficThreads : public testing::Test {
protected:
    TrafficThreads() {
        for (std::size_t i = 0; i < kFiles; ++i) {
            std::ostringstream out;
            writeStation(out, CaptureVariant::nanoLittle, kFrames - 1700 * i);
            paths_.push_back(folder_.write(std::to_string(i), text(out.str())));
        }
        alone_ = indexCaptures(paths_);
    }

    [[nodiscard]] std::vector<std::string> const& paths() const { return paths_; }
    /// Of one thread.
    [[nodiscard]] TrafficIndex const& alone() const { return alone_; }

private:
    TempDir folder_;
    std::vector<std::string> paths_;
    TrafficIndex alone_;
};

TEST_F(TrafficThreads, GiveTheIndexOfOneWithEitherModeOfReading) {
    ASSERT_FALSE(alone().streams().empty());
    for (std::size_t const jobs : {2U, 4U, 16U})
        for (ReadMode const mode : {ReadMode::plain, ReadMode::ahead})
            EXPECT_TRUE(indexCaptures(paths(), {.jobs = jobs, .read = mode}) == alone()) << jobs;
}

TEST_F(TrafficThreads, ShareFunctionsThatAreCalledByOneOfThemAtATime) {
    std::uint64_t last = 0;
    std::size_t calls = 0;
    std::atomic<std::size_t> asked = 0;
    TrafficIndex const index =
        indexCaptures(paths(), {.keeps =
                                    [&](StreamKey const& key) {
                                        ++asked;
                                        return key.protocol == StreamProtocol::sv;
                                    },
                                .progress =
                                    [&](std::uint64_t done, std::uint64_t) {
                                        last = done;
                                        ++calls;
                                    },
                                .jobs = 3,
                                .read = ReadMode::ahead});
    std::uint64_t all = 0;
    std::size_t parts = 0;
    for (IndexedFile const& file : alone().files()) all += file.summary.fileSize;
    for (TrafficStream const& stream : alone().streams()) {
        parts += stream.parts.size();
        EXPECT_EQ(index.find(stream.key) != nullptr, stream.key.protocol == StreamProtocol::sv);
    }
    EXPECT_EQ(last, all);
    EXPECT_GE(calls, kFiles);
    EXPECT_EQ(asked, parts);
}

TEST_F(TrafficThreads, EndIndexingByAStopOfAnotherOne) {
    // Later each time.
    for (std::size_t yields = 0; yields < 200; yields += 20) {
        ReadMode const mode = yields % 40 == 0 ? ReadMode::ahead : ReadMode::plain;
        std::stop_source source;
        std::atomic<bool> begun = false;
        std::thread other([&] {
            while (!begun) std::this_thread::yield();
            for (std::size_t i = 0; i < yields; ++i) std::this_thread::yield();
            source.request_stop();
        });
        TrafficIndex const index = indexCaptures(paths(), {.keeps =
                                                               [&](StreamKey const&) {
                                                                   begun = true;
                                                                   return true;
                                                               },
                                                           .stop = source.get_token(),
                                                           .jobs = 2,
                                                           .read = mode});
        other.join();
        for (std::size_t i = 0; i < kFiles; ++i) {
            CaptureSummary const& summary = index.files()[i].summary;
            std::uint64_t const records = alone().files()[i].summary.records;
            EXPECT_FALSE(summary.error);
            EXPECT_LE(summary.records, records);
            EXPECT_EQ(summary.records < records, summary.stopped);
        }
    }
}

TEST_F(TrafficThreads, IndexTheSameFilesAtOnce) {
    constexpr std::size_t kThreads = 4;
    std::vector<TrafficIndex> indexes(kThreads);
    together(kThreads, [&](std::size_t i) {
        indexes[i] = indexCaptures(
            paths(), {.jobs = i + 1, .read = i % 2 == 0 ? ReadMode::ahead : ReadMode::plain});
    });
    for (TrafficIndex const& index : indexes) EXPECT_TRUE(index == alone());
}

}  // namespace
}  // namespace TalIec61850Analysis::TrafficThreadsTest
