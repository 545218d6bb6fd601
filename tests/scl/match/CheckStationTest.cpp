// Which rows a station has, and what captures and descriptions built to hurt come to.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "scl/match/DescribedTraffic.hpp"
#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/TempFile.hpp"

namespace TalTest::CheckStationTest {
namespace {

using namespace TalIec61850Scl;
using TalIec61850Analysis::indexCapture;

std::vector<DescribedFrame> bothFrames() { return together(gooseFrames(3), svFrames(3)); }
StationDescription bothDescribed() { return together(describedSv(), describedGoose()); }

TEST(CheckStation, HasARowForEachControlBlockInTheOrderOfTheDescription) {
    EXPECT_EQ(checkLines(bothDescribed(), bothFrames()),
              (SclLines{"match MU1LD0/LLN0$MS$msvcb1", "match RELAY1LD0/LLN0$GO$gcb1"}));
}

TEST(CheckStation, TellsWhatIsMissingAndWhatIsNotDescribed) {
    EXPECT_EQ(checkLines(bothDescribed(), gooseFrames(3)),
              (SclLines{"missing MU1LD0/LLN0$MS$msvcb1", "match RELAY1LD0/LLN0$GO$gcb1"}));
    EXPECT_EQ(checkLines(describedGoose(), bothFrames()),
              (SclLines{"match RELAY1LD0/LLN0$GO$gcb1", "unexpected MU01"}));
    EXPECT_EQ(checkLines(StationDescription(), bothFrames()),
              (SclLines{"unexpected RELAY1LD0/LLN0$GO$gcb1", "unexpected MU01"}));
    EXPECT_EQ(checkLines(bothDescribed(), {}),
              (SclLines{"missing MU1LD0/LLN0$MS$msvcb1", "missing RELAY1LD0/LLN0$GO$gcb1"}));
}

TEST(CheckStation, CountsPacketsOfWhatIsNotDescribed) {
    CheckedStation const station(StationDescription(), {svFrames(7)});
    ASSERT_EQ(station.rows().size(), 1U);
    StationRow const& row = station.rows()[0];
    EXPECT_EQ(row.packets, 7U);
    EXPECT_EQ(row.packet, TalIec61850Analysis::PacketRef());
    EXPECT_EQ(row.stream, 0U);
    EXPECT_FALSE(row.controlBlock.has_value());
}

TEST(CheckStation, HasNoPacketOfWhatIsMissing) {
    CheckedStation const station(describedSv(), {gooseFrames(1)});
    ASSERT_EQ(station.rows().size(), 2U);
    EXPECT_EQ(station.rows()[0].packets, 0U);
    EXPECT_FALSE(station.rows()[0].packet.has_value());
    EXPECT_FALSE(station.rows()[0].stream.has_value());
}

TEST(CheckStation, MissesNoUnicastWithoutAddress) {
    auto station = describedSv();
    station.controlBlocks[0].multicast = false;
    EXPECT_EQ(checkLines(station, {}), SclLines{"missing MU1LD0/LLN0$MS$msvcb1"});
    station.controlBlocks[0].address.mac.reset();
    EXPECT_EQ(checkLines(station, {}), SclLines());
    EXPECT_EQ(checkLines(station, svFrames(2)), SclLines{"match MU1LD0/LLN0$MS$msvcb1"});
    station.controlBlocks[0].multicast = true;
    EXPECT_EQ(checkLines(station, {}), SclLines{"missing MU1LD0/LLN0$MS$msvcb1"});
}

TEST(CheckStation, HasARowForEachStreamOfAControlBlock) {
    auto const second = gooseFrames(3, [](std::size_t, Ethernet& ethernet, GooseMessage& message) {
        ethernet = ethernet.from("02:00:00:00:00:77");
        message.confRev = 9;
    });
    EXPECT_EQ(checkLines(describedGoose(), together(gooseFrames(3), second)),
              (SclLines{"match RELAY1LD0/LLN0$GO$gcb1",
                        "differs RELAY1LD0/LLN0$GO$gcb1: confRev 1 != 9 @0.0"}));
}

TEST(CheckStation, ComparesSomeStreamsAlone) {
    auto const frames =
        together(bothFrames(), svFrames(2, [](std::size_t, Ethernet&, SvMessage& message) {
                     message.asdus.front().svID = "MU02";
                     message.appId = 0x4002;
                 }));
    auto station = bothDescribed();
    ControlBlock absent = station.controlBlocks[0];
    absent.reference = "X";
    absent.id = "X";
    absent.address.appId = 0x4444;
    station.controlBlocks.push_back(absent);
    auto const linesOf = [&](std::vector<std::size_t> streams) {
        StationCheckOptions options;
        options.streams = std::move(streams);
        return CheckedStation(station, {frames}, options).lines();
    };
    EXPECT_EQ(linesOf({0}), (SclLines{"match RELAY1LD0/LLN0$GO$gcb1", "missing X"}));
    EXPECT_EQ(linesOf({1}), (SclLines{"match MU1LD0/LLN0$MS$msvcb1", "missing X"}));
    EXPECT_EQ(linesOf({2, 99}), (SclLines{"missing X", "unexpected MU02"}));
    EXPECT_EQ(linesOf({}), (SclLines{"missing X"}));
}

TEST(CheckStation, RefusesACaptureThatIsAnotherNow) {
    TempFile const file(captureOf(gooseFrames(5)));
    auto const index = indexCapture(file.path());
    EXPECT_EQ(checkStation(index, describedGoose()).size(), 1U);
    std::filesystem::resize_file(file.path(), std::filesystem::file_size(file.path()) - 200);
    EXPECT_THROW(static_cast<void>(checkStation(index, describedGoose())), std::system_error);
    std::filesystem::remove(file.path());
    EXPECT_THROW(static_cast<void>(checkStation(index, describedGoose())), std::system_error);
}

TEST(CheckStation, ReadsNextGenerationCapturesAlike) {
    std::vector<Bytes> frames;
    for (DescribedFrame const &frame :
         gooseFrames(5, [](std::size_t number, Ethernet&ethernet, GooseMessage&) {
             ethernet.vlanPriority = number == 3 ? 6 : 4;
         })) {
        frames.push_back(frame.octets);
    }
    TempFile const file(nextGenerationCapture(frames), "capture.pcapng");
    auto const rows = checkStation(indexCapture(file.path()), describedGoose());
    ASSERT_EQ(rows.size(), 1U);
    ASSERT_EQ(rows[0].differences.size(), 1U);
    EXPECT_EQ(static_cast<int>(rows[0].differences[0].kind),
              static_cast<int>(DifferenceKind::vlanPriority));
    EXPECT_EQ(rows[0].packet, (TalIec61850Analysis::PacketRef{.part = 0, .packet = 3}));
}

TEST(CheckStation, ComparesNoDestinationThatACaptureDoesNotHave) {
    TalIec61850Analysis::TrafficStream stream;
    stream.key.name = "RELAY1LD0/LLN0$GO$gcb1";
    stream.key.vlans = {{.tpid = 0x88A8, .id = 77}, {.tpid = 0x8100, .id = 5}};
    stream.key.appId = 1;
    std::vector<TalIec61850Analysis::TrafficStream> streams;
    streams.push_back(std::move(stream));
    auto const rows =
        checkStation(TalIec61850Analysis::TrafficIndex({}, std::move(streams)), describedGoose());
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(static_cast<int>(rows[0].result), static_cast<int>(StationResult::match));
}

TEST(CheckStation, ReadsNoCaptureThatNothingIsDescribedOf) {
    auto const index = [] {
        TempFile const file(captureOf(gooseFrames(5)));
        return indexCapture(file.path());
    }();
    EXPECT_EQ(checkStation(index, describedSv()).size(), 2U);
}

TEST(CheckStation, TakesManyStreamsOfOneFrame) {
    // 2,000 ASDUs, each a stream of its own.
    constexpr std::size_t kAsdus = 2000;
    auto const frames = svFrames(3, [](std::size_t, Ethernet& ethernet, SvMessage& message) {
        ethernet.vlanId.reset();
        Asdu like;
        like.datSet.reset();
        like.smpSynch.reset();
        like.confRev.reset();
        like.seqData = Bytes(4);
        message.asdus.assign(kAsdus, like);
        for (std::size_t i = 0; i < kAsdus; ++i) {
            message.asdus[i].svID = std::to_string(i);
        }
    });
    auto const one = describedSv();
    StationDescription station;
    station.dataSets = one.dataSets;
    station.dataSets[0].members.resize(1);
    for (std::size_t i = 0; i < kAsdus; ++i) {
        ControlBlock block = one.controlBlocks[0];
        block.reference = "R" + std::to_string(i);
        block.id = std::to_string(i);
        block.address.vlanId.reset();
        block.confRev.reset();
        block.smpRate.reset();
        block.nofASDU = kAsdus;
        block.options.reset();
        station.controlBlocks.push_back(block);
    }
    CheckedStation const checked(station, {frames});
    ASSERT_EQ(checked.rows().size(), kAsdus);
    EXPECT_TRUE(std::all_of(checked.rows().begin(), checked.rows().end(), [](auto const& row) {
        return row.result == StationResult::match && row.packets == 3;
    }));
}

TEST(CheckStation, TakesADataSetOfManyMembers) {
    auto station = describedGoose();
    constexpr std::uint32_t kMany = 100'000;
    station.dataSets[0].entries = kMany;
    station.dataSets[0].members.clear();
    station.dataSets[0].members.reserve(kMany);
    for (std::uint32_t i = 0; i < kMany; ++i) {
        station.dataSets[0].members.push_back(memberOf({i}, BasicType::boolean));
    }
    // Each message is of another make than the one before.
    auto const frames = gooseFrames(2000, [](std::size_t number, Ethernet&, GooseMessage& message) {
        message.setData({dataBoolean(true), number % 2 == 0 ? dataBoolean(true) : dataInteger(1)});
    });
    EXPECT_EQ(checkLines(station, frames),
              SclLines{"differs RELAY1LD0/LLN0$GO$gcb1: memberCount 100000 != 2 @0.0"});
    station.dataSets[0].entries = 2;
    auto const lines = checkLines(station, frames);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].substr(0, 47), "differs RELAY1LD0/LLN0$GO$gcb1: memberType [2] ");
}

}  // namespace
}  // namespace TalTest::CheckStationTest
