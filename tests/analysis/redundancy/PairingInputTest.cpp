// Captures as no network makes them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "analysis/redundancy/RedundantTraffic.hpp"
#include "support/CaptureFile.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"

namespace TalTest::PairingInputTest {
namespace {

using namespace TalIec61850Analysis;

/// Frames in an order that is not that of their times.
Bytes capturedInOrder(std::vector<std::pair<std::int64_t, Bytes>> const& frames) {
    CaptureBuilder builder(CaptureVariant::nanoLittle);
    for (auto const& [time, octets] : frames) {
        builder.add(static_cast<std::uint32_t>(time / kWholeSecond),
                    static_cast<std::uint32_t>(time % kWholeSecond), octets);
    }
    return builder.bytes();
}

TEST(PairingInput, TakesTimesThatRunBackwards) {
    std::vector<std::pair<std::int64_t, Bytes>> frames;
    for (std::uint16_t number = 0; number < 500; ++number) {
        std::int64_t const time = (1000 - number) * kWholeSecond / 100;
        for (char const lan : {'A', 'B'}) {
            frames.emplace_back(
                time - (lan == 'B' ? 1000 : 0),
                svFrame(svEthernet().withPrp(lan, number), message92le("MU01", number)));
        }
    }
    auto const counts = pairIn(std::vector<Bytes>{capturedInOrder(frames)}).counts();
    EXPECT_EQ(counts.both, 500U);
    EXPECT_EQ(counts.firstB, 500U);
}

TEST(PairingInput, GoesOnAfterTheClockWasSetBack) {
    std::vector<std::pair<std::int64_t, Bytes>> frames;
    for (std::uint16_t number = 0; number < 500; ++number) {
        std::int64_t const clock = number < 250 ? 100 * kWholeSecond : 0;
        for (char const lan : {'A', 'B'}) {
            frames.emplace_back(
                clock + number * kMillisecond + (lan == 'B' ? 1000 : 0),
                svFrame(svEthernet().withPrp(lan, number), message92le("MU01", number)));
        }
    }
    auto const paired = pairIn(std::vector<Bytes>{capturedInOrder(frames)});
    EXPECT_EQ(paired.counts().both, 500U);
    EXPECT_EQ(paired.faultLines(), FaultLines());
}

TEST(PairingInput, TakesOneSequenceNumberForAll) {
    std::vector<std::pair<std::int64_t, Bytes>> frames;
    for (std::uint16_t number = 0; number < 5000; ++number) {
        frames.emplace_back(kWholeSecond,
                            svFrame(svEthernet().withPrp('A', 7), message92le("MU01", number)));
    }
    auto const counts = pairIn(std::vector<Bytes>{capturedInOrder(frames)}).counts();
    EXPECT_EQ(counts.more, 1U);
    EXPECT_EQ(counts.frames(), 1U);
}

TEST(PairingInput, TakesAFloodOfSources) {
    constexpr std::uint32_t kSources = 20'000;
    std::vector<std::pair<std::int64_t, Bytes>> frames;
    Bytes octets = svFrame(svEthernet().withPrp('A', 1), message92le("MU01", 1));
    for (std::uint32_t source = 0; source < kSources; ++source) {
        constexpr std::size_t kSourceEnd = 12;
        for (std::size_t i = 0; i < 4; ++i) {
            octets[kSourceEnd - 1 - i] = static_cast<std::uint8_t>(source >> 8U * i);
        }
        frames.emplace_back(kWholeSecond + source, octets);
    }
    auto const paired = pairIn(std::vector<Bytes>{capturedInOrder(frames)});
    EXPECT_EQ(paired.redundancy.sources.size(), kSources);
    EXPECT_EQ(paired.redundancy.streams.size(), kSources);
    EXPECT_EQ(paired.redundancy.streams.back().counts.onlyA, 1U);
}

TEST(PairingInput, GivesAFrameOfManyStreamsToEach) {
    SvMessage message;
    message.asdus.clear();
    for (char const* name : {"MU03", "MU01", "MU02", "MU01"}) {
        Asdu asdu;
        asdu.svID = name;
        message.asdus.push_back(asdu);
    }
    std::vector<std::pair<std::int64_t, Bytes>> frames;
    for (std::uint16_t number = 0; number < 20; ++number) {
        for (char const lan : {'A', 'B'}) {
            frames.emplace_back(number * kMillisecond,
                                svFrame(svEthernet().withPrp(lan, number), message));
        }
    }
    auto const paired = pairIn(std::vector<Bytes>{capturedInOrder(frames)});
    ASSERT_EQ(paired.redundancy.streams.size(), 3U);
    for (StreamRedundancy const& each : paired.redundancy.streams) {
        EXPECT_EQ(each.counts.both, 20U);
        EXPECT_EQ(each.counts.frames(), 20U);
    }
    EXPECT_EQ(paired.redundancy.sources.at(0).counts.both, 20U);
}

TEST(PairingInput, TellsStreamsThatTheOtherCopyIsNotOf) {
    std::vector<std::pair<std::int64_t, Bytes>> frames;
    for (std::uint16_t number = 0; number < 20; ++number) {
        for (char const lan : {'A', 'B'}) {
            frames.emplace_back(number * kMillisecond,
                                svFrame(svEthernet().withPrp(lan, number),
                                        message92le(lan == 'A' ? "MU01" : "MU02", number)));
        }
    }
    auto const paired = pairIn(std::vector<Bytes>{capturedInOrder(frames)});
    EXPECT_EQ(paired.counts("MU01").differs, 20U);
    EXPECT_EQ(paired.counts("MU02").both, 20U);
    EXPECT_EQ(paired.faultLines(),
              (FaultLines{"copyDiffers A #0 count 20", "copyDiffers B #0 count 20"}));
}

TEST(PairingInput, RefusesACaptureThatIsAnotherOneMeanwhile) {
    TempDir const directory;
    std::string const path =
        directory.write("capture.pcap", capturesOf(sendBoth({.frames = 50})).front());
    TrafficIndex const index = indexCapture(path);
    std::ofstream(path, std::ios_base::trunc | std::ios_base::binary).close();
    EXPECT_THROW(static_cast<void>(pairCopies(index, {}, [](RedundancyFault const&) {})),
                 std::system_error);
    std::remove(path.c_str());
    EXPECT_THROW(static_cast<void>(pairCopies(index, {}, [](RedundancyFault const&) {})),
                 std::system_error);
}

TEST(PairingInput, StopsWhenAskedTo) {
    TempDir const directory;
    std::string const path =
        directory.write("capture.pcap", capturesOf(sendBoth({.frames = 50})).front());
    std::stop_source source;
    source.request_stop();
    auto const stopped = pairCopies(indexCapture(path), {.window = {}, .stop = source.get_token()},
                                    [](RedundancyFault const&) {});
    EXPECT_EQ(stopped.streams.at(0).counts.frames(), 0U);
}

}  // namespace
}  // namespace TalTest::PairingInputTest
