// Captures with octets changed at random, before and after they were indexed.

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <random>
#include <system_error>

#include "scl/match/DescribedTraffic.hpp"
#include "support/Data.hpp"
#include "support/TempFile.hpp"

namespace TalTest::CheckInputTest {
namespace {

using namespace TalIec61850Scl;
using TalIec61850Analysis::indexCapture;
using TalIec61850Analysis::TrafficIndex;

constexpr std::uint32_t kInputSeed = 61850;
constexpr int kRounds = 300;

/// GOOSE, and samples with all optional fields, four ASDUs in a frame.
Bytes describedCapture() {
    auto const samples = svFrames(8, [](std::size_t number, Ethernet&, SvMessage& message) {
        Asdu asdu = message.asdus.front();
        asdu.datSet = "MU1LD0/LLN0$PhsMeas1";
        asdu.refrTm = utcTime(kDescribedStart);
        asdu.smpRate = 80;
        asdu.extraLast = ber(0x89, Bytes(8));
        message.asdus.assign(4, asdu);
        for (std::size_t i = 0; i < 4; ++i) {
            message.asdus[i].smpCnt = 4 * number + i;
        }
    });
    return captureOf(together(gooseFrames(8), samples));
}

StationDescription describedStation() { return together(describedSv(), describedGoose()); }

/// Changes some octets after the header of the file.
void changeSome(Bytes& capture, std::mt19937& random) {
    constexpr std::size_t kFileHeader = 24;
    for (auto left = 1 + random() % 8; left > 0; --left) {
        std::size_t const place = kFileHeader + random() % (capture.size() - kFileHeader);
        capture[place] = static_cast<std::uint8_t>(random());
    }
}

void expectWhole(std::vector<StationRow> const& rows, TrafficIndex const& index,
                 StationDescription const& station) {
    std::vector<int> ofStream(index.streams().size(), 0);
    std::vector<int> ofBlock(station.controlBlocks.size(), 0);
    for (StationRow const& row : rows) {
        if (row.controlBlock) {
            ++ofBlock.at(*row.controlBlock);
        }
        if (row.stream) {
            ++ofStream.at(*row.stream);
        }
        EXPECT_EQ(row.result == StationResult::differs, !row.differences.empty());
        for (Difference const& difference : row.differences) {
            ASSERT_TRUE(difference.packet && row.stream);
            auto const& parts = index.streams()[*row.stream].parts;
            EXPECT_LT(difference.packet->packet, parts.at(difference.packet->part).packets.size());
        }
    }
    // Each stream has one row, and each control block has one at least.
    EXPECT_EQ(ofStream, std::vector<int>(ofStream.size(), 1));
    for (int const count : ofBlock) {
        EXPECT_GE(count, 1);
    }
}

TEST(CheckInput, TakesWhateverACaptureHolds) {
    std::mt19937 random(kInputSeed);
    Bytes const capture = describedCapture();
    auto const station = describedStation();
    for (int round = 0; round < kRounds; ++round) {
        Bytes changed = capture;
        changeSome(changed, random);
        TempFile const file(changed);
        auto const index = indexCapture(file.path());
        expectWhole(checkStation(index, station), index, station);
    }
}

TEST(CheckInput, TakesOrRefusesACaptureThatWasChangedSince) {
    std::mt19937 random(kInputSeed + 1);
    Bytes const capture = describedCapture();
    auto const station = describedStation();
    TempFile const file(capture);
    auto const index = indexCapture(file.path());
    int refused = 0;
    for (int round = 0; round < kRounds; ++round) {
        Bytes changed = capture;
        changeSome(changed, random);
        changed.resize(round % 3 == 0 ? random() % changed.size() : changed.size());
        std::ofstream(file.path(), std::ios::binary)
            .write(reinterpret_cast<char const*>(changed.data()),
                   static_cast<std::streamsize>(changed.size()));
        try {
            expectWhole(checkStation(index, station), index, station);
        } catch (std::system_error const& failure) {
            EXPECT_EQ(failure.code().value(), ESTALE);
            ++refused;
        }
    }
    EXPECT_GT(refused, kRounds / 4);
    EXPECT_LT(refused, kRounds);
}

}  // namespace
}  // namespace TalTest::CheckInputTest
