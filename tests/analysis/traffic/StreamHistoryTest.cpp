// Attributes over time, windows of time, and the rate that a stream is to have.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/traffic/FileIndexer.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "analysis/traffic/TrafficCaptures.hpp"
#include "support/Ber.hpp"

namespace TalIec61850Analysis::StreamHistoryTest {
namespace {

using namespace TalTest;

/// The packets from which on an attribute has values, and these.
template <typename Value>
std::vector<std::pair<std::uint32_t, Value>> valuesOf(TrafficIndex const& index,
                                                      Value StreamAttributes::*member) {
    std::vector<std::pair<std::uint32_t, Value>> values;
    for (auto const& each : index.history(index.streams()[0], member))
        values.emplace_back(each.from.packet, *each.value);
    return values;
}

using Number = std::optional<Readable<std::uint64_t>>;
using Changes = std::vector<std::pair<std::uint32_t, Number>>;

TEST(TrafficHistories, SayFromWhichPacketOnAValueHolds) {
    TrafficCapture capture;
    GooseMessage message;
    for (std::uint64_t const confRev : {1U, 1U, 2U, 2U, 2U, 1U}) {
        message.confRev = confRev;
        capture.add(Ethernet(), message);
    }
    message.confRev = {0x0100000000, 6};
    message.ndsCom = true;
    capture.add(Ethernet(), message);
    message.confRev.reset();
    message.extraLast = ber(0x88, Bytes(9, 0x11));
    message.goID = "other";
    capture.add(Ethernet(), message);
    TrafficIndex const index = capture.index();
    EXPECT_EQ(valuesOf(index, &StreamAttributes::confRev), (Changes{{0, std::uint64_t{1}},
                                                                    {2, std::uint64_t{2}},
                                                                    {5, std::uint64_t{1}},
                                                                    {6, std::uint64_t{1} << 32U},
                                                                    {7, OctetString(9, 0x11)}}));
    EXPECT_EQ(index.history(index.streams()[0], &StreamAttributes::datSet).size(), 1U);
    EXPECT_EQ(index.history(index.streams()[0], &StreamAttributes::goID).back().from.packet, 7U);
    EXPECT_EQ(index.history(index.streams()[0], &StreamAttributes::ndsCom).back().from.packet, 6U);
}

TEST(TrafficHistories, TakeEachValueOnceHoweverOftenItComes) {
    TrafficCapture capture;
    for (int i = 0; i < 1000; ++i) {
        GooseMessage message;
        message.reserved1 = i % 2 == 0 ? 0x8000 : 0;
        message.simulation = i % 2 == 0;
        capture.add(Ethernet(), message);
    }
    TrafficIndex const index = capture.index();
    EXPECT_EQ(index.files()[0].attributes.size(), 2U);
    EXPECT_EQ(index.history(index.streams()[0], &StreamAttributes::simulatedBit).size(), 1000U);
    PacketColumns const& packets = index.streams()[0].parts[0].packets;
    EXPECT_TRUE(packets.flags()[0].isSimulated());
    EXPECT_FALSE(packets.flags()[1].isSimulated());
}

TEST(TrafficHistories, LeaveOutWhatWasCutOff) {
    GooseMessage const message;
    Bytes const frame = gooseFrame(Ethernet(), message);
    TrafficCapture capture;
    capture.add(frame).addSnapped(60, frame).add(frame);
    TrafficIndex const index = capture.index();
    EXPECT_EQ(index.streams()[0].packets, 3U);
    EXPECT_EQ(index.history(index.streams()[0], &StreamAttributes::confRev).size(), 1U);
    EXPECT_EQ(index.history(index.streams()[0], &StreamAttributes::datSet).size(), 1U);
}

TEST(TrafficHistories, OfSvHaveRateUnitAndNumberOfAsdus) {
    TrafficCapture capture;
    SvMessage message;
    capture.add(svEthernet(), message);
    message.asdus.push_back(message.asdus[0]);
    message.asdus[0].smpRate = message.asdus[1].smpRate = 80;
    message.asdus[0].smpMod = message.asdus[1].smpMod = 0;
    capture.add(svEthernet(), message);
    TrafficIndex const index = capture.index();
    EXPECT_EQ(valuesOf(index, &StreamAttributes::smpRate),
              (Changes{{0, std::nullopt}, {1, std::uint64_t{80}}}));
    EXPECT_EQ(valuesOf(index, &StreamAttributes::asdus),
              (std::vector<std::pair<std::uint32_t, std::uint32_t>>{{0, 1}, {1, 2}}));
}

std::vector<std::int64_t> timesIn(TrafficStream const& stream, TimeWindow const& window) {
    std::vector<std::int64_t> times;
    stream.visit(window, [&](PacketRef const& ref) {
        times.push_back(stream.parts[ref.part].packets.times()[ref.packet]);
    });
    return times;
}

RC_GTEST_PROP(TrafficWindows, AreThoseOfASearchOneByOne,
              (std::vector<std::vector<std::uint8_t>> const& files, std::uint8_t from,
               std::uint8_t to)) {
    TempDir const folder;
    std::vector<std::string> paths;
    std::vector<std::int64_t> all;
    for (std::size_t file = 0; file < files.size(); ++file) {
        TrafficCapture capture;
        for (std::size_t i = 0; i < files[file].size(); ++i) {
            GooseMessage message;
            // No two frames are the same.
            message.stNum = file * 1000 + i + 1;
            capture.addAt(files[file][i], gooseFrame(Ethernet(), message));
            all.push_back(trafficTime(files[file][i]));
        }
        paths.push_back(folder.write(std::to_string(file), capture.bytes()));
    }
    TrafficIndex const index = indexCaptures(paths);
    RC_PRE(!all.empty());
    TrafficStream const& stream = index.streams()[0];
    std::sort(all.begin(), all.end());
    RC_ASSERT(timesIn(stream, {}) == all);
    auto const time = [](std::uint8_t offset) { return captureTimeOf(trafficTime(offset)); };
    for (TimeWindow const& window :
         {TimeWindow{time(from), time(to)}, TimeWindow{time(from), std::nullopt},
          TimeWindow{std::nullopt, time(to)}}) {
        std::vector<std::int64_t> inside;
        for (std::int64_t const each : all)
            if (window.contains(captureTimeOf(each))) inside.push_back(each);
        RC_ASSERT(timesIn(stream, window) == inside);
    }
}

TEST(TrafficWindows, HaveNoPacketsWithoutATime) {
    Bytes const frame = gooseFrame(Ethernet(), GooseMessage());
    std::function<bool(StreamKey const&)> const keepsAll;
    detail::FileIndexer indexer(keepsAll);
    RecordView view;
    view.frame = frame;
    view.record.capturedSize = view.record.originalSize = static_cast<std::uint32_t>(frame.size());
    std::vector<std::optional<std::int64_t>> const times = {std::nullopt, 5, std::nullopt, 3, 5};
    for (std::size_t i = 0; i < times.size(); ++i) {
        view.record.frameOffset = 100 * i;
        view.record.time.reset();
        if (times[i]) view.record.time = captureTimeOf(*times[i]);
        indexer.add(view);
    }
    auto const streams = indexer.takeStreams(0);
    ASSERT_EQ(streams.size(), 1U);
    PacketColumns const& packets = streams[0].parts[0].packets;
    EXPECT_EQ(packets.size(), 5U);
    EXPECT_EQ(packets.time(0), std::nullopt);
    EXPECT_EQ(packets.timedSize(), 3U);
    EXPECT_EQ(timesIn(streams[0], {}), (std::vector<std::int64_t>{3, 5, 5}));
    EXPECT_EQ(packets.inTimeOrder(1), 1U);
    EXPECT_EQ(packets.inTimeOrder(2), 4U);
    IndexedFile const file = indexer.takeFile();
    EXPECT_EQ(file.summary.first, captureTimeOf(3));
    EXPECT_EQ(file.summary.last, captureTimeOf(5));
}

std::optional<double> rateOf(std::vector<Asdu> const& asdus) {
    TrafficCapture capture;
    for (Asdu const& asdu : asdus) {
        SvMessage message;
        message.asdus = {asdu};
        capture.add(svEthernet(), message);
    }
    TrafficIndex const index = capture.index();
    return index.nominalRate(index.streams()[0]);
}

std::vector<Asdu> countedAsdus(std::vector<std::uint16_t> const& counts, Asdu const& like = {}) {
    std::vector<Asdu> asdus(counts.size(), like);
    for (std::size_t i = 0; i < counts.size(); ++i) asdus[i].smpCnt = counts[i];
    return asdus;
}

TEST(NominalRates, AreThoseThatTheStreamSays) {
    Asdu asdu;
    asdu.smpRate = 4800;
    asdu.smpMod = 1;
    EXPECT_EQ(rateOf({asdu}), 4800);
    asdu.smpRate = 10;
    asdu.smpMod = 2;
    EXPECT_EQ(rateOf({asdu}), 0.1);
}

TEST(NominalRates, AreElseTheLargestCountAndOneWhereItBeginsAgain) {
    Asdu perPeriod;
    perPeriod.smpRate = 80;
    perPeriod.smpMod = 0;
    for (Asdu const& like : {Asdu(), perPeriod}) {
        EXPECT_EQ(rateOf(countedAsdus({3997, 3998, 3999, 0, 1}, like)), 4000);
        EXPECT_EQ(rateOf(countedAsdus({3999, 3, 4}, like)), 4000);
        EXPECT_EQ(rateOf(countedAsdus({0, 1, 2, 3}, like)), std::nullopt);
        EXPECT_EQ(rateOf(countedAsdus({2001, 2002, 2000}, like)), std::nullopt);
    }
    Asdu none;
    none.smpRate = 0;
    none.smpMod = 1;
    EXPECT_EQ(rateOf({none}), std::nullopt);
}

TEST(NominalRates, AreNoneOfGoose) {
    TrafficCapture capture;
    capture.add(Ethernet(), GooseMessage());
    TrafficIndex const index = capture.index();
    EXPECT_EQ(index.nominalRate(index.streams()[0]), std::nullopt);
}

}  // namespace
}  // namespace TalIec61850Analysis::StreamHistoryTest
