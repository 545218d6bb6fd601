#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/Ber.hpp"
#include "support/Ethernet.hpp"
#include "support/Station.hpp"

namespace TalTest::StationTest {
namespace {

using Protocol = StationStream::Protocol;

/// A second and a quarter: every stream, the first fault, and smpCnt back at 0.
constexpr std::uint64_t enoughFrames = 21'000;

struct Station {
    StationSummary summary;
    Bytes bytes;
    std::vector<CaptureRecord> records;
};

Station station(std::uint64_t frames, CaptureVariant variant = CaptureVariant::nanoLittle) {
    std::ostringstream out;
    auto summary = writeStation(out, variant, frames);
    Bytes const bytes = text(out.str());
    return {std::move(summary), bytes, readCapture(bytes)};
}

Station const& sharedStation() {
    static Station const shared = station(enoughFrames);
    return shared;
}

std::uint64_t timeOf(CaptureRecord const& record) {
    return std::uint64_t{record.seconds} * 1'000'000'000 + record.nanoseconds;
}

/// The octets of the frame that tell its stream: addresses, and the lane where there are two.
Bytes laneKey(Bytes const& frame) {
    Bytes key = prefix(frame, 12);
    if (frame[16] == 0x89 && frame[17] == 0x2F) {
        key.push_back(frame[18] & 0x10);
    }
    if (frame.end()[-2] == 0x88 && frame.end()[-1] == 0xFB) {
        key.push_back(frame.end()[-4] & 0xF0);
    }
    return key;
}

Bytes laneKey(StationStream const& stream) {
    Bytes key = concat({macAddress(stream.destination), macAddress(stream.source)});
    if (stream.hsrLan) {
        key.push_back(stream.hsrLan == 'B' ? 0x10 : 0x00);
    }
    if (stream.prpLan) {
        key.push_back(stream.prpLan == 'B' ? 0xB0 : 0xA0);
    }
    return key;
}

std::vector<CaptureRecord> recordsOf(Station const& from, StationStream const& stream) {
    std::vector<CaptureRecord> records;
    std::copy_if(from.records.begin(), from.records.end(), std::back_inserter(records),
                 [&](auto const& record) { return laneKey(record.frame) == laneKey(stream); });
    return records;
}

StationStream const& streamOf(std::string const& id, std::optional<char> lan = {}) {
    for (auto const& stream : sharedStation().summary.streams) {
        if (stream.id == id && (!lan || stream.prpLan == lan || stream.hsrLan == lan)) {
            return stream;
        }
    }
    throw std::out_of_range(id);
}

/// The first value of seqData, which is the last element of an untrailed 9-2LE frame.
std::int32_t phaseACurrent(Bytes const& frame) {
    std::uint32_t value = 0;
    for (std::size_t i = frame.size() - 64; i < frame.size() - 60; ++i) {
        value = value << 8 | frame[i];
    }
    return static_cast<std::int32_t>(value);
}

TEST(Station, HoldsAsManyFramesAsAskedFor) {
    for (std::uint64_t const frames : {0U, 1U, 10U, 1'000U}) {
        auto const made = station(frames);
        EXPECT_EQ(made.records.size(), frames);
        EXPECT_EQ(made.summary.frames, frames);
        EXPECT_EQ(made.summary.size, made.bytes.size());
    }
}

TEST(Station, IsTheSameEachTime) { EXPECT_TRUE(station(3'000).bytes == station(3'000).bytes); }

TEST(Station, BeginsLikeALongerOne) {
    auto const shorter = station(3'000);
    EXPECT_TRUE(prefix(sharedStation().bytes, shorter.bytes.size()) == shorter.bytes);
}

TEST(Station, HoldsTheSameFramesInEveryVariant) {
    for (auto const variant : captureVariants) {
        EXPECT_TRUE(station(3'000, variant).records == station(3'000).records) << name(variant);
    }
}

TEST(Station, HasStrictlyOrderedTimesInMicrosecondsToo) {
    auto const& records = sharedStation().records;
    for (std::size_t i = 1; i < records.size(); ++i) {
        ASSERT_LT(timeOf(records[i - 1]) / 1'000, timeOf(records[i]) / 1'000) << "record " << i;
    }
}

TEST(Station, SendsAbout16600FramesASecond) {
    auto const& records = sharedStation().records;
    auto const seconds = static_cast<double>(timeOf(records.back()) - timeOf(records[0])) / 1e9;
    EXPECT_NEAR(static_cast<double>(enoughFrames) / seconds, 16'600, 50);
}

TEST(Station, CountsThePacketsOfEachStream) {
    auto const& summary = sharedStation().summary;
    ASSERT_EQ(summary.streamCount(Protocol::goose), 5U);
    ASSERT_EQ(summary.streamCount(Protocol::sampledValues), 5U);
    for (auto const& stream : summary.streams) {
        auto const records = recordsOf(sharedStation(), stream);
        ASSERT_EQ(records.size(), stream.packets) << stream.id;
        EXPECT_EQ(timeOf(records.front()), stream.firstTime) << stream.id;
        EXPECT_EQ(timeOf(records.back()), stream.lastTime) << stream.id;
        EXPECT_EQ(records.front().position, stream.firstPosition) << stream.id;
        EXPECT_EQ(records.back().position, stream.lastPosition) << stream.id;
    }
}

TEST(Station, CountsEveryFrameOnce) {
    auto const& summary = sharedStation().summary;
    EXPECT_GT(summary.otherFrames, 0U);
    EXPECT_EQ(summary.packetCount(Protocol::goose) + summary.packetCount(Protocol::sampledValues) +
                  summary.otherFrames,
              enoughFrames);
}

TEST(Station, ListsStreamsInTheOrderOfTheirFirstPacket) {
    auto const& streams = sharedStation().summary.streams;
    EXPECT_TRUE(std::is_sorted(streams.begin(), streams.end(), [](auto const& a, auto const& b) {
        return a.firstPosition < b.firstPosition;
    }));
}

TEST(Station, ListsNoStreamWithoutAPacket) {
    EXPECT_TRUE(station(0).summary.streams.empty());
    EXPECT_EQ(station(1).summary.streams.size(), 1U);
}

TEST(Station, TagsEveryStreamWithPriority4) {
    for (auto const& stream : sharedStation().summary.streams) {
        for (auto const& record : recordsOf(sharedStation(), stream)) {
            ASSERT_EQ(Bytes(record.frame.begin() + 12, record.frame.begin() + 16),
                      concat({{0x81, 0x00}, bigEndian(0x8000U | *stream.vlanId, 2)}));
        }
    }
}

TEST(Station, NamesInEachFrameWhatTheSummarySaysOfItsStream) {
    for (auto const& stream : sharedStation().summary.streams) {
        Bytes const frame = recordsOf(sharedStation(), stream)[0].frame;
        EXPECT_TRUE(find(frame, ber(0x80, stream.id))) << stream.id;
        EXPECT_TRUE(stream.datSet.empty() || find(frame, text(stream.datSet))) << stream.id;
        EXPECT_TRUE(stream.goID.empty() || find(frame, ber(0x83, stream.goID))) << stream.id;
        Bytes const confRev = stream.protocol == Protocol::goose
                                  ? ber(0x88, minimalUnsigned(stream.confRev))
                                  : ber(0x83, bigEndian(stream.confRev, 4));
        EXPECT_TRUE(find(frame, confRev)) << stream.id;
    }
}

TEST(Station, CountsSamplesFrom0To3999AndOn) {
    auto const records = recordsOf(sharedStation(), streamOf("FEEDER1_MU01"));
    ASSERT_GT(records.size(), 4'000U);
    for (std::size_t i = 0; i < records.size(); ++i) {
        ASSERT_TRUE(find(records[i].frame, ber(0x82, bigEndian(i % 4'000, 2)))) << "packet " << i;
    }
    EXPECT_EQ(streamOf("FEEDER1_MU01").maxSmpCnt, 3'999U);
}

TEST(Station, SendsEightSamplesInAFrameOfOneMergingUnit) {
    auto const& stream = streamOf("TRANSFORMER_MU04");
    auto const records = recordsOf(sharedStation(), stream);
    EXPECT_EQ(stream.noASDU, 8U);
    EXPECT_EQ(stream.smpRate, 4'000U);
    EXPECT_EQ(stream.maxSmpCnt, 3'999U);
    for (std::size_t i = 0; i < records.size(); ++i) {
        std::size_t last = 0;
        for (std::size_t asdu = 0; asdu < 8; ++asdu) {
            Bytes const smpCnt =
                concat({ber(0x82, bigEndian((8 * i + asdu) % 4'000, 2)), ber(0x83, {0, 0, 0, 1})});
            auto const found = find(records[i].frame, smpCnt);
            ASSERT_TRUE(found) << "packet " << i << ", ASDU " << asdu;
            ASSERT_GT(*found, last);
            last = *found;
        }
    }
}

TEST(Station, RaisesTheCurrentOfPhaseAWhileTheFaultLasts) {
    auto const& stream = streamOf("FEEDER1_MU01");
    std::int32_t healthy = 0;
    std::int32_t faulted = 0;
    for (auto const& record : recordsOf(sharedStation(), stream)) {
        auto const current = phaseACurrent(record.frame);
        auto const time = timeOf(record) - stream.firstTime;
        bool const atFault = time >= 250'000'000 && time < 350'000'000;
        (atFault ? faulted : healthy) = std::max(atFault ? faulted : healthy, std::abs(current));
    }
    EXPECT_EQ(healthy, 141'421);
    EXPECT_EQ(faulted, 12 * 141'421);
}

TEST(Station, SendsThePrpPairAlikeButForItsTrailer) {
    auto const a = recordsOf(sharedStation(), streamOf("BUSBAR_MU03", 'A'));
    auto const b = recordsOf(sharedStation(), streamOf("BUSBAR_MU03", 'B'));
    ASSERT_GE(a.size(), b.size());
    for (std::size_t i = 0; i < b.size(); ++i) {
        Bytes const sequence = bigEndian(i, 2);
        std::size_t const size = a[i].frame.size();
        ASSERT_EQ(prefix(a[i].frame, size - 6), prefix(b[i].frame, size - 6)) << "packet " << i;
        ASSERT_EQ(Bytes(a[i].frame.end() - 6, a[i].frame.end() - 4), sequence) << "packet " << i;
        ASSERT_EQ(Bytes(b[i].frame.end() - 6, b[i].frame.end() - 4), sequence) << "packet " << i;
    }
}

TEST(Station, SendsTheHsrPairAlikeButForItsLane) {
    std::string const id = "TRANSFORMER_PROTLD0/LLN0$GO$gcbTrip";
    auto const a = recordsOf(sharedStation(), streamOf(id, 'A'));
    auto const b = recordsOf(sharedStation(), streamOf(id, 'B'));
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < b.size(); ++i) {
        Bytes asA = b[i].frame;
        asA[18] = static_cast<std::uint8_t>(asA[18] & ~0x10);
        EXPECT_EQ(asA, a[i].frame) << "packet " << i;
    }
}

TEST(Station, RetransmitsAChangeAtIntervalsThatDouble) {
    auto const records = recordsOf(sharedStation(), streamOf("FEEDER1_PROTLD0/LLN0$GO$gcbTrip"));
    // The heartbeat, then the fault at 250 ms reported 18 ms later, then its end at 350 ms.
    std::vector<std::tuple<unsigned, unsigned, unsigned>> const expected = {
        {5, 1, 86'400}, {268, 2, 0}, {270, 2, 1}, {274, 2, 2}, {282, 2, 3}, {298, 2, 4},
        {330, 2, 5},    {368, 3, 0}, {370, 3, 1}, {374, 3, 2}, {382, 3, 3}, {398, 3, 4},
        {430, 3, 5},    {494, 3, 6}, {622, 3, 7}, {878, 3, 8}};
    ASSERT_GE(records.size(), expected.size());
    std::uint64_t const start = sharedStation().records[0].seconds * std::uint64_t{1'000'000'000};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        auto const [milliseconds, stNum, sqNum] = expected[i];
        EXPECT_EQ((timeOf(records[i]) - start) / 1'000'000, milliseconds) << "packet " << i;
        EXPECT_TRUE(find(records[i].frame, concat({ber(0x85, minimalUnsigned(stNum)),
                                                   ber(0x86, minimalUnsigned(sqNum))})))
            << "packet " << i;
    }
}

TEST(Station, MixesInArpIpAndPtp) {
    std::set<int> etherTypes;
    for (auto const& record : sharedStation().records) {
        etherTypes.insert(record.frame[12] << 8 | record.frame[13]);
    }
    EXPECT_EQ(etherTypes, (std::set<int>{0x0800, 0x0806, 0x8100, 0x88F7}));
}

}  // namespace
}  // namespace TalTest::StationTest
