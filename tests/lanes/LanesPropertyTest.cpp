// What holds in both lanes for any traffic: one store.

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <TalIec61850Parser/capture/Filter.hpp>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "index/RandomPicks.hpp"
#include "index/TrafficGenerators.hpp"
#include "lanes/BothLanes.hpp"
#include "lanes/StoreActions.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"

namespace TalTest::LanesPropertyTest {
namespace {

using namespace TalIec61850Parser;

struct Tally {
    std::uint64_t records = 0;
    std::uint64_t remembered = 0;
};

/// Checks a property that indexes by `requireEqual`; of all its cases together the fast lane has to
/// remember this share.
template <typename Property>
void checkLanes(double share, Property const& property) {
    Tally tally;
    EXPECT_TRUE(rc::check([&] { property(tally); }));
    EXPECT_GT(static_cast<double>(tally.remembered), share * static_cast<double>(tally.records))
        << "of " << tally.records;
}

void requireEqual(Tally& tally, Bytes const& capture, LaneSettings const& settings = {}) {
    LaneOutcome const outcome = indexByBothLanes(capture, settings);
    tally.records += outcome.records;
    tally.remembered += outcome.remembered;
    RC_ASSERT(outcome.difference == "");
}

/// Frames to draw from.
rc::Gen<std::vector<Bytes>> poolOf(rc::Gen<Bytes> const& frames) {
    return rc::gen::exec([frames] {
        std::vector<Bytes> pool(1 + below(6));
        for (Bytes& frame : pool) frame = *frames;
        return pool;
    });
}

/// The pool over and over, now and then with octets changed, for a while or for one record.
std::vector<Bytes> sequenceOf(std::vector<Bytes> pool, std::uint32_t seed, std::size_t count) {
    std::mt19937 random(seed);
    auto const below = [&random](std::size_t bound) { return random() % bound; };
    std::size_t const restlessness = 2 + below(30);
    bool const inTurn = below(2) == 0;
    std::vector<Bytes> frames;
    for (std::size_t i = 0; i < count; ++i) {
        Bytes& chosen = pool[inTurn ? i % pool.size() : below(pool.size())];
        Bytes frame = chosen;
        if (below(restlessness) == 0 && !frame.empty()) {
            std::uint8_t& octet = frame[below(frame.size())];
            octet = static_cast<std::uint8_t>(below(2) == 0 ? octet ^ (1U << below(8)) : random());
            if (below(4) == 0) chosen = frame;
        }
        frames.push_back(frame);
    }
    return frames;
}

/// A capture of these frames; after each `gap` of them nothing for so many records that a progress
/// call follows.
Bytes captureOf(std::vector<Bytes> const& frames, CaptureVariant variant, std::size_t gap) {
    CaptureBuilder capture(variant);
    std::uint32_t number = 0;
    for (Bytes const& frame : frames) {
        capture.add(number, number * 1000, frame);
        if (++number % gap == 0)
            for (int i = 0; i < 1000; ++i) capture.add(0, 0, {});
    }
    return capture.bytes();
}

/// As captureOf, without gaps.
Bytes plainCaptureOf(std::vector<Bytes> const& frames, CaptureVariant variant) {
    return captureOf(frames, variant, frames.size() + 1);
}

constexpr std::size_t kFrames = 300;

TEST(LanesProperty, OfAnyFrames) {
    checkLanes(0.5, [](Tally& tally) {
        auto const frames =
            sequenceOf(*poolOf(anyFrame()), *rc::gen::arbitrary<std::uint32_t>(), kFrames);
        requireEqual(tally, plainCaptureOf(frames, *anyVariant()));
    });
}

TEST(LanesProperty, OfRandomBer) {
    checkLanes(0.5, [](Tally& tally) {
        auto const frames =
            sequenceOf(*poolOf(frameOfRandomBer()), *rc::gen::arbitrary<std::uint32_t>(), kFrames);
        requireEqual(tally, plainCaptureOf(frames, *anyVariant()));
    });
}

TEST(LanesProperty, OfValidFrames) {
    checkLanes(0.6, [](Tally& tally) {
        auto const frames =
            sequenceOf(*poolOf(validFrame()), *rc::gen::arbitrary<std::uint32_t>(), kFrames);
        requireEqual(tally, plainCaptureOf(frames, *anyVariant()));
    });
}

TEST(LanesProperty, ThroughAnyFilter) {
    checkLanes(0.4, [](Tally& tally) {
        auto const frames =
            sequenceOf(*poolOf(anyFrame()), *rc::gen::arbitrary<std::uint32_t>(), kFrames);
        requireEqual(tally, plainCaptureOf(frames, *anyVariant()),
                     {.filter = *anyFilter(), .progress = watch});
    });
}

TEST(LanesProperty, WhenTheFileEndsAnywhere) {
    checkLanes(0.3, [](Tally& tally) {
        auto const frames =
            sequenceOf(*poolOf(anyFrame()), *rc::gen::arbitrary<std::uint32_t>(), 100);
        Bytes const capture = plainCaptureOf(frames, *anyVariant());
        requireEqual(tally, prefix(capture, *rc::gen::inRange<std::size_t>(0, capture.size() + 1)));
    });
}

TEST(LanesProperty, WhenTheLastRecordClaimsAnySize) {
    checkLanes(0.3, [](Tally& tally) {
        CaptureVariant const variant = *anyVariant();
        auto const pool = *poolOf(anyFrame());
        auto const frames = sequenceOf(pool, *rc::gen::arbitrary<std::uint32_t>(), 100);
        Bytes capture = plainCaptureOf(frames, variant);
        // As long as one that is known, or nearly.
        Bytes const& like = pool[*rc::gen::inRange<std::size_t>(0, pool.size())];
        auto const size =
            static_cast<std::uint32_t>(like.size()) + *rc::gen::inRange<std::uint32_t>(0, 4);
        auto const header = recordHeader(variant, 1, 0, size, size);
        capture.insert(capture.end(), header.begin(), header.end());
        append(capture, prefix(like, *rc::gen::inRange<std::size_t>(0, like.size() + 1)));
        requireEqual(tally, capture);
    });
}

TEST(LanesProperty, WhateverIsDoneToTheStore) {
    checkLanes(0.3, [](Tally& tally) {
        auto const seed = *rc::gen::arbitrary<std::uint32_t>();
        auto const frames = sequenceOf(*poolOf(anyFrame()), seed, 120);
        Filter const filter = *rc::gen::oneOf(rc::gen::just(Filter{}), anyFilter());
        // Records that hold nothing are not counted as any that could be remembered.
        Bytes const capture =
            captureOf(frames, *anyVariant(), *rc::gen::inRange<std::size_t>(15, 60));
        LaneOutcome const outcome =
            indexByBothLanes(capture, {.filter = filter, .progress = randomActions(seed)});
        tally.records += frames.size();
        tally.remembered += outcome.remembered;
        RC_ASSERT(outcome.difference == "");
    });
}

}  // namespace
}  // namespace TalTest::LanesPropertyTest
