#include <gtest/gtest.h>
#include <malloc.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <atomic>
#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "capture/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Sanitized.hpp"
#include "support/Station.hpp"
#include "support/TempFile.hpp"

// A store that captures are added to and taken from for ever.

namespace TalTest::RepeatedRoundsTest {
namespace {

using namespace TalIec61850Parser;

TempFile stationFile(CaptureVariant variant, std::uint64_t frames) {
    std::ostringstream out;
    writeStation(out, variant, frames);
    return TempFile(text(out.str()));
}

/// Adds two captures, one of them twice after it was broken off, asks for all packets, and clears.
/// @return how many packets were found
std::size_t runRound(Db& db, TempFile const& one, TempFile const& other) {
    std::atomic<bool> stop = false;
    int calls = 0;
    PcapParser::parseFile(one.path(), db, {}, stop, [&](double) { stop = ++calls == 2; });
    stop = false;
    PcapParser::parseFile(one.path(), db, {}, stop, {});
    PcapParser::parseFile(other.path(), db, {}, stop, {});
    std::size_t packets = 0;
    for (Goose const& stream : db.gooseProto.streams)
        for (auto const& [file, result] : stream.getfilteredPackages({}, {0xFFFFFFFF, 0}))
            packets += result.packages.size();
    for (Sv const& stream : db.svProto.streams)
        for (auto const& [file, result] : stream.getfilteredPackages({}, {0xFFFFFFFF, 0}))
            packets += result.size();
    db.clearByFileName(one.path());
    db.clearByFileName(other.path());
    EXPECT_TRUE(isEmpty(db));
    return packets;
}

std::size_t liveOctets() {
    auto const heap = ::mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

TEST(RepeatedRounds, LeaveNothingOnTheHeap) {
    if (isSanitized) GTEST_SKIP() << "a sanitizer brings a heap of its own";
    TempFile const one = stationFile(CaptureVariant::microLittle, 3000);
    TempFile const other = stationFile(CaptureVariant::nanoBig, 2000);
    constexpr int warmUp = 20;
    constexpr int rounds = 400;
    // The heap counts as live what a thread keeps at hand for its next allocations.
    constexpr std::size_t allowance = std::size_t{64} << 10U;
    Db db;
    std::size_t const packets = runRound(db, one, other);
    EXPECT_GT(packets, 5000U);
    for (int round = 1; round < warmUp; ++round) runRound(db, one, other);
    std::size_t const warm = liveOctets();
    for (int round = 0; round < rounds; ++round) {
        ASSERT_EQ(runRound(db, one, other), packets);
        ASSERT_LE(liveOctets(), warm + allowance) << "after " << round + 1 << " rounds";
    }
}

}  // namespace
}  // namespace TalTest::RepeatedRoundsTest
