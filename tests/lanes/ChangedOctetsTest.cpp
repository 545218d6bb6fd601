// Frames and their likes with octets changed: every frame but one octet is one that is remembered.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "lanes/BothLanes.hpp"
#include "lanes/LaneFrames.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"
#include "support/Sanitized.hpp"

namespace TalTest::ChangedOctetsTest {
namespace {

using namespace TalIec61850Parser;

std::uint8_t flipped(std::uint8_t octet, unsigned bit) {
    return static_cast<std::uint8_t>(octet ^ (1U << bit));
}

/// Values that make of an octet another tag, length, letter or type of frame.
Bytes const values = {0x00, 0x01, 0x30, 0x60, 0x61, 0x80, 0x81, 0x82,
                      0x83, 0x84, 0x85, 0xA2, 0xB8, 0xBA, 0xFF};

/// The frame, between its versions with the octet at each position changed to each of those and by
/// one bit. Each version comes twice, and again after the frame.
Bytes everyOctetChanged(Bytes const& frame, bool thoroughly) {
    CaptureBuilder capture;
    std::uint32_t seconds = 0;
    auto const add = [&](Bytes const& changed) {
        ++seconds;
        capture.add(seconds, 1000, changed).add(seconds, 2000, changed);
        capture.add(seconds, 3000, frame).add(seconds, 4000, changed);
    };
    for (std::size_t i = 0; i < frame.size(); ++i) {
        Bytes changed = frame;
        for (unsigned bit = 0; bit < 8; bit += thoroughly ? 1 : 3) {
            changed[i] = flipped(frame[i], bit);
            add(changed);
        }
        for (std::uint8_t const value : values) {
            changed[i] = value;
            if (thoroughly || value >= 0x80) add(changed);
        }
    }
    return capture.bytes();
}

/// The odd frames; fewer of them where each takes longer.
std::vector<NamedFrame> someOddFrames() {
    std::vector<NamedFrame> frames;
    std::size_t next = 0;
    for (NamedFrame const& frame : oddFrames())
        if (!isSanitized || next++ % 4 == 0) frames.push_back(frame);
    return frames;
}

void expectEqual(Bytes const& capture, NamedFilter const& filter, std::string const& name) {
    LaneOutcome const outcome =
        indexByBothLanes(capture, {.filter = filter.filter, .progress = {}});
    EXPECT_EQ(outcome.difference, "") << name << ", " << filter.name;
}

TEST(ChangedOctets, OneAtATimeOfDevicesFrames) {
    for (auto const& [name, frame] : deviceFrames()) {
        LaneOutcome const outcome = indexByBothLanes(everyOctetChanged(frame, !isSanitized));
        EXPECT_EQ(outcome.difference, "") << name;
        EXPECT_GT(outcome.share(), 0.7) << name << ": " << outcome;
    }
}

TEST(ChangedOctets, OneAtATimeOfDevicesFramesThroughFilters) {
    for (auto const& [name, frame] : deviceFrames()) {
        Bytes const capture = everyOctetChanged(frame, false);
        for (NamedFilter const& filter : laneFilters()) expectEqual(capture, filter, name);
    }
}

TEST(ChangedOctets, OneAtATimeOfOddFrames) {
    std::uint64_t remembered = 0;
    std::uint64_t records = 0;
    for (auto const& [name, frame] : someOddFrames()) {
        LaneOutcome const outcome = indexByBothLanes(everyOctetChanged(frame, false));
        EXPECT_EQ(outcome.difference, "") << name;
        remembered += outcome.remembered;
        records += outcome.records;
    }
    EXPECT_GT(static_cast<double>(remembered), 0.6 * static_cast<double>(records));
}

TEST(ChangedOctets, OneAtATimeOfOddFramesThroughFilters) {
    auto const filters = laneFilters();
    std::size_t next = 0;
    for (auto const& [name, frame] : someOddFrames()) {
        Bytes const capture = everyOctetChanged(frame, false);
        for (int i = 0; i < 2; ++i) expectEqual(capture, filters[next++ % filters.size()], name);
    }
}

/// Frames that are changed more and more, next to their likes with what is free changed.
Bytes drifting(std::mt19937& random, std::vector<NamedFrame> const& frames, std::uint32_t records) {
    auto const below = [&random](std::size_t bound) { return random() % bound; };
    std::vector<Bytes> pool;
    for (int i = 0; i < 6; ++i) pool.push_back(frames[below(frames.size())].octets);
    auto const change = [&](Bytes& octets) {
        if (octets.empty()) return;
        std::uint8_t& octet = octets[below(octets.size())];
        octet = below(2) == 0 ? values[below(values.size())]
                              : static_cast<std::uint8_t>(octet + (below(2) == 0 ? 1 : random()));
    };
    CaptureBuilder capture(captureVariants[below(captureVariants.size())]);
    for (std::uint32_t i = 0; i < records; ++i) {
        Bytes& frame = pool[below(4) == 0 ? below(pool.size()) : i % pool.size()];
        Bytes changed = frame;
        for (std::size_t changes = below(3); changes > 0; --changes) change(changed);
        capture.add(i, 0, changed);
        if (below(40) == 0) frame = changed;
        if (below(400) == 0) frame = frames[below(frames.size())].octets;
    }
    return capture.bytes();
}

TEST(ChangedOctets, AtRandomMoreAndMore) {
    std::mt19937 random(1);
    auto const frames = allFrames();
    auto const filters = laneFilters();
    std::uint64_t remembered = 0;
    constexpr int runs = 60;
    constexpr std::uint32_t records = 3000;
    for (int i = 0; i < runs; ++i) {
        NamedFilter const& filter = filters[random() % filters.size()];
        LaneOutcome const outcome =
            indexByBothLanes(drifting(random, frames, records),
                             {.filter = i % 2 == 0 ? Filter{} : filter.filter, .progress = {}});
        ASSERT_EQ(outcome.difference, "") << "run " << i << ", " << filter.name;
        remembered += outcome.remembered;
    }
    EXPECT_GT(remembered, runs * records / 3) << "of " << runs * records;
}

}  // namespace
}  // namespace TalTest::ChangedOctetsTest
