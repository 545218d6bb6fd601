// What an index of a million streams, or of a million ASDUs, takes from the heap: four times as
// much for four times as many. This program counts it.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <string>

#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/Sanitized.hpp"
#include "support/TempFile.hpp"
#include "support/WatchedHeap.hpp"

namespace TalIec61850Analysis::IndexGrowthTest {
namespace {

using namespace TalTest;

/// Sanitizers take several times the time and the memory.
constexpr std::uint32_t kMany = isSanitized ? 40'000 : 1'000'000;
/// Of what takes more than a stream or an ASDU.
constexpr std::uint32_t kSome = kMany / 5;
/// A part that is compared with the whole.
constexpr std::uint32_t kShare = 4;
constexpr std::size_t kDigits = 7;

/// Writes a number over the octets at a place.
void putDigits(Bytes& frame, std::size_t place, std::uint32_t number) {
    for (std::size_t digit = kDigits; digit-- > 0; number /= 10)
        frame[place + digit] = static_cast<std::uint8_t>('0' + number % 10);
}

/// Where the digits of a name are in a frame.
std::size_t digitsIn(Bytes const& frame, std::size_t from = 0) {
    Bytes const rest(frame.begin() + static_cast<std::ptrdiff_t>(from), frame.end());
    return from + find(rest, text(std::string(kDigits, '#'))).value();
}

/// A capture of frames that are made one after the other.
/// @param next  makes the next frame of the one before
std::string writeFrames(TempDir const& folder, std::uint32_t frames, Bytes frame,
                        std::function<void(Bytes&, std::uint32_t)> const& next) {
    std::string const path = folder.file(std::to_string(frames));
    std::ofstream out(path, std::ios::binary);
    CaptureWriter writer(out, CaptureVariant::nanoLittle);
    for (std::uint32_t i = 0; i < frames; ++i) {
        next(frame, i);
        writer.add(1'700'000'000 + i / 1000, i % 1000 * 1'000'000, frame);
    }
    return path;
}

struct Grown {
    std::size_t streams = 0;
    std::uint64_t packets = 0;
    std::size_t attributes = 0;
    std::size_t allocations = 0;
};

Grown grownBy(std::string const& path) {
    std::size_t const before = heapAllocations();
    TrafficIndex const index = indexCapture(path);
    Grown grown;
    grown.allocations = heapAllocations() - before;
    grown.streams = index.streams().size();
    grown.attributes = index.files()[0].attributes.size();
    for (TrafficStream const& stream : index.streams()) grown.packets += stream.packets;
    return grown;
}

/// Whether allocations grow no faster than what is indexed.
void expectLinear(Grown const& part, Grown const& whole) {
    constexpr std::size_t kFixed = 200;
    EXPECT_LE(whole.allocations, kShare * part.allocations + kFixed);
}

TEST(IndexGrowth, IsLinearInStreams) {
    SvMessage message;
    message.asdus[0].svID = "MU" + std::string(kDigits, '#');
    message.asdus[0].seqData = Bytes(8);
    Bytes const frame = svFrame(svEthernet(), message);
    TempDir const folder;
    auto const of = [&](std::uint32_t streams) {
        return grownBy(writeFrames(folder, streams, frame,
                                   [place = digitsIn(frame)](Bytes& next, std::uint32_t i) {
                                       putDigits(next, place, i);
                                   }));
    };
    Grown const part = of(kMany / kShare);
    Grown const whole = of(kMany);
    EXPECT_EQ(part.streams, kMany / kShare);
    EXPECT_EQ(whole.streams, kMany);
    EXPECT_EQ(whole.packets, kMany);
    EXPECT_EQ(whole.attributes, 1U);
    expectLinear(part, whole);
}

TEST(IndexGrowth, IsLinearInAsdusOfOneStream) {
    constexpr std::uint32_t kAsdus = 1000;
    SvMessage message;
    Asdu asdu;
    asdu.seqData.reset();
    message.asdus.assign(kAsdus, asdu);
    Bytes const frame = svFrame(svEthernet(), message);
    TempDir const folder;
    auto const of = [&](std::uint32_t asdus) {
        return grownBy(
            writeFrames(folder, asdus / kAsdus, frame, [](Bytes const&, std::uint32_t) {}));
    };
    Grown const part = of(kMany / kShare);
    Grown const whole = of(kMany);
    EXPECT_EQ(part.packets, kMany / kShare);
    EXPECT_EQ(whole.packets, kMany);
    EXPECT_EQ(whole.streams, 1U);
    expectLinear(part, whole);
    // The columns grow by their share, and nothing is taken for a single ASDU.
    EXPECT_LT(whole.allocations, kMany / 10);
}

TEST(IndexGrowth, IsLinearInAsdusThatAreEachOfAnotherStream) {
    constexpr std::uint32_t kAsdus = 100;
    SvMessage message;
    Asdu asdu;
    asdu.svID = "MU" + std::string(kDigits, '#');
    asdu.seqData.reset();
    message.asdus.assign(kAsdus, asdu);
    Bytes const frame = svFrame(svEthernet(), message);
    std::size_t const first = digitsIn(frame);
    std::size_t const step = digitsIn(frame, first + 1) - first;
    TempDir const folder;
    auto const of = [&](std::uint32_t asdus) {
        return grownBy(
            writeFrames(folder, asdus / kAsdus, frame, [&](Bytes& next, std::uint32_t i) {
                for (std::uint32_t k = 0; k < kAsdus; ++k)
                    putDigits(next, first + k * step, i * kAsdus + k);
            }));
    };
    Grown const part = of(kSome / kShare);
    Grown const whole = of(kSome);
    EXPECT_EQ(part.streams, kSome / kShare);
    EXPECT_EQ(whole.streams, kSome);
    EXPECT_EQ(whole.packets, kSome);
    expectLinear(part, whole);
}

TEST(IndexGrowth, IsLinearInAttributesThatAreNeverTheSame) {
    GooseMessage message;
    message.simulation.reset();
    // More octets than a boolean has.
    message.extraLast = ber(0x87, text(std::string(kDigits, '#')));
    Bytes const frame = gooseFrame({}, message);
    TempDir const folder;
    auto const of = [&](std::uint32_t packets) {
        return grownBy(writeFrames(folder, packets, frame,
                                   [place = digitsIn(frame)](Bytes& next, std::uint32_t i) {
                                       putDigits(next, place, i);
                                   }));
    };
    Grown const part = of(kSome / kShare);
    Grown const whole = of(kSome);
    EXPECT_EQ(part.attributes, kSome / kShare);
    EXPECT_EQ(whole.attributes, kSome);
    EXPECT_EQ(whole.streams, 1U);
    EXPECT_EQ(whole.packets, kSome);
    expectLinear(part, whole);
}

}  // namespace
}  // namespace TalIec61850Analysis::IndexGrowthTest
