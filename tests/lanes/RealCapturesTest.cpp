// Own and recorded captures, as they are and with what is in them repeated and changed.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "lanes/BothLanes.hpp"
#include "lanes/LaneFrames.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"

namespace TalTest::RealCapturesTest {
namespace {

/// All captures: those of the folder, and the own ones.
class LanesOnCaptures : public testing::Test {
protected:
    void SetUp() override {
        recorded_ = recordedCapturePaths();
        paths_ = ownCapturePaths();
        paths_.insert(paths_.end(), recorded_.begin(), recorded_.end());
    }

    [[nodiscard]] std::vector<std::string> const& paths() const { return paths_; }

    /// Nine frames in ten are remembered ones in the long captures that are recorded; the own ones
    /// are short, and half of their frames are.
    void expectRemembered(std::uint64_t remembered, std::uint64_t packets) const {
        EXPECT_GT(remembered * 10, packets * (recorded_.empty() ? 5 : 9)) << "of " << packets;
    }

private:
    std::vector<std::string> recorded_;
    std::vector<std::string> paths_;
};

/// The first records of a capture that can be read; none of what is no capture.
std::vector<CaptureRecord> recordsIn(std::string const& path, std::size_t most) {
    std::vector<CaptureRecord> records;
    try {
        records = readCapture(path);
    } catch (std::runtime_error const&) {
        return {};
    }
    if (records.size() > most) records.resize(most);
    return records;
}

Bytes captureOf(std::vector<CaptureRecord> const& records, int rounds) {
    CaptureBuilder capture;
    for (int round = 0; round < rounds; ++round)
        for (CaptureRecord const& record : records)
            capture.add(record.seconds, record.nanoseconds, record.frame);
    return capture.bytes();
}

TEST_F(LanesOnCaptures, AsTheyAre) {
    std::uint64_t packets = 0;
    std::uint64_t remembered = 0;
    for (std::string const& path : paths()) {
        for (auto const& [name, filter] : laneFilters()) {
            LaneOutcome const outcome =
                indexByBothLanes(path, {.filter = filter, .progress = watch});
            EXPECT_EQ(outcome.difference, "") << path << ", " << name;
        }
        LaneOutcome const outcome = indexByBothLanes(path);
        packets += outcome.packets;
        remembered += outcome.remembered;
    }
    expectRemembered(remembered, packets);
}

TEST_F(LanesOnCaptures, ThreeTimesOver) {
    std::uint64_t packets = 0;
    std::uint64_t remembered = 0;
    for (std::string const& path : paths()) {
        Bytes const capture = captureOf(recordsIn(path, 3000), 3);
        LaneOutcome const outcome = indexByBothLanes(capture);
        EXPECT_EQ(outcome.difference, "") << path;
        packets += outcome.packets;
        remembered += outcome.remembered;
        for (auto const& [name, filter] : laneFilters())
            EXPECT_EQ(indexByBothLanes(capture, {.filter = filter, .progress = {}}).difference, "")
                << path << ", " << name;
    }
    expectRemembered(remembered, packets);
}

TEST_F(LanesOnCaptures, AllInOne) {
    std::vector<CaptureRecord> all;
    for (std::string const& path : paths()) {
        auto const some = recordsIn(path, 500);
        all.insert(all.end(), some.begin(), some.end());
    }
    std::shuffle(all.begin(), all.end(), std::mt19937(1));
    LaneOutcome const outcome =
        indexByBothLanes(captureOf(all, 3), {.filter = {}, .progress = watch});
    EXPECT_EQ(outcome.difference, "");
    expectRemembered(outcome.remembered, outcome.packets);
}

TEST_F(LanesOnCaptures, WithOctetsChanged) {
    std::mt19937 random(1);
    for (std::string const& path : paths()) {
        for (std::size_t const oneIn : {3U, 20U}) {
            auto records = recordsIn(path, 1500);
            for (int round = 0; round < 2; ++round) {
                for (CaptureRecord& record : records) {
                    if (record.frame.empty() || random() % oneIn != 0) continue;
                    // Mostly where link layer, lengths and names are.
                    std::size_t const bound = std::min<std::size_t>(
                        record.frame.size(), random() % 2 == 0 ? record.frame.size() : 70);
                    record.frame[random() % bound] = static_cast<std::uint8_t>(random());
                }
                ASSERT_EQ(indexByBothLanes(captureOf(records, 2)).difference, "") << path;
            }
        }
    }
}

TEST_F(LanesOnCaptures, CutShort) {
    for (std::string const& path : paths()) {
        Bytes const whole = readFile(path);
        for (std::size_t const size : {whole.size() / 3, whole.size() / 2, whole.size() - 1})
            EXPECT_EQ(indexByBothLanes(prefix(whole, size)).difference, "") << path << ", " << size;
    }
}

}  // namespace
}  // namespace TalTest::RealCapturesTest
