// Captures that are indexed while they grow.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/traffic/TrafficFollower.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <system_error>

#include "analysis/traffic/TrafficCaptures.hpp"
#include "index/RandomPicks.hpp"
#include "support/GrowingFile.hpp"
#include "support/OwnCaptures.hpp"

namespace TalIec61850Analysis::TrafficFollowerTest {
namespace {

using namespace TalTest;

/// So many messages of one stream, a millisecond apart.
TrafficCapture& addMessages(TrafficCapture& capture, std::uint64_t first, std::uint64_t count) {
    for (std::uint64_t i = 0; i < count; ++i) {
        GooseMessage message;
        message.stNum = 1;
        message.sqNum = first + i;
        capture.add(Ethernet(), message);
    }
    return capture;
}

std::size_t packetsIn(TrafficIndex const& index) {
    std::size_t count = 0;
    for (TrafficStream const& stream : index.streams()) count += stream.packets;
    return count;
}

RC_GTEST_PROP(FollowedCaptures, GiveTheIndexOfTheWholeFile, ()) {
    auto const paths = ownCapturePaths();
    std::string const& path = paths[below(static_cast<unsigned>(paths.size()))];
    Bytes const content = readFile(path);
    GrowingFile growing(content, below(40));
    TrafficFollower follower(growing.path());
    TrafficIndex all;
    for (bool isFirst = true; isFirst || growing.left() > 0; isFirst = false) {
        if (!isFirst) {
            auto const most = static_cast<unsigned>(std::min<std::size_t>(growing.left(), 200'000));
            growing.grow(1 + below(most));
        }
        if (auto added = follower.readOn()) all.append(std::move(*added));
    }
    TrafficFollower atOnce(growing.path());
    auto const whole = atOnce.readOn();
    RC_ASSERT(whole && all == *whole);
    RC_ASSERT(packetsIn(all) == packetsIn(indexCapture(growing.path())));
}

TEST(TrafficFollower, GivesWhatWasAddedOnce) {
    TrafficCapture capture;
    addMessages(capture, 0, 3);
    std::size_t const first = capture.bytes().size();
    addMessages(capture, 3, 4);
    GrowingFile growing(capture.bytes(), first + 7);
    TrafficFollower follower(growing.path());
    auto index = follower.readOn();
    ASSERT_TRUE(index);
    EXPECT_EQ(packetsIn(*index), 3U);
    EXPECT_EQ(index->files()[0].summary.startOffset, 0U);
    EXPECT_EQ(index->files()[0].summary.damage, std::nullopt) << "a record is being written";
    EXPECT_EQ(index->files()[0].summary.damageCount, 0U);
    EXPECT_FALSE(follower.readOn());
    growing.grow(growing.left());
    index = follower.readOn();
    ASSERT_TRUE(index);
    EXPECT_EQ(packetsIn(*index), 4U);
    EXPECT_EQ(index->files()[0].summary.startOffset, first);
    EXPECT_EQ(index->streams()[0].parts[0].packets.sqNums()[0], 3U);
    EXPECT_FALSE(follower.readOn());
    EXPECT_FALSE(follower.isDamaged());
}

TEST(TrafficFollower, WaitsForAFileAndForItsHeader) {
    TempDir const folder;
    TrafficFollower follower(folder.file("later.pcap"));
    EXPECT_FALSE(follower.readOn());
    TrafficCapture capture;
    Bytes const content = addMessages(capture, 0, 2).bytes();
    for (std::size_t const size : {0U, 3U, 4U, 23U}) {
        folder.write("later.pcap", prefix(content, size));
        EXPECT_FALSE(follower.readOn()) << size;
    }
    folder.write("later.pcap", content);
    auto const index = follower.readOn();
    ASSERT_TRUE(index);
    EXPECT_EQ(packetsIn(*index), 2U);
}

TEST(TrafficFollower, ReadsTheFileThatTakesTheName) {
    TempDir const folder;
    TrafficCapture first;
    TrafficCapture second;
    auto const path = folder.write("bay1.pcap", addMessages(first, 0, 3).bytes());
    TrafficFollower follower(path);
    auto index = follower.readOn();
    ASSERT_TRUE(index);
    auto const other = folder.write("other.pcap", addMessages(second, 10, 5).bytes());
    std::filesystem::rename(other, path);
    auto added = follower.readOn();
    ASSERT_TRUE(added);
    EXPECT_EQ(packetsIn(*added), 5U);
    EXPECT_EQ(added->files()[0].summary.startOffset, 0U);
    index->append(std::move(*added));
    EXPECT_EQ(index->files().size(), 2U);
}

TEST(TrafficFollower, ReadsAFileThatBeginsAnew) {
    TempDir const folder;
    TrafficCapture capture;
    auto const path = folder.write("bay1.pcap", addMessages(capture, 0, 30).bytes());
    TrafficFollower follower(path);
    ASSERT_TRUE(follower.readOn());
    TrafficCapture shorter;
    folder.write("bay1.pcap", addMessages(shorter, 7, 2).bytes());
    auto const index = follower.readOn();
    ASSERT_TRUE(index);
    EXPECT_EQ(packetsIn(*index), 2U);
    EXPECT_EQ(index->streams()[0].parts[0].packets.sqNums()[0], 7U);
}

TEST(TrafficFollower, GoesOnInAFileThatIsRemoved) {
    TrafficCapture capture;
    Bytes const content = addMessages(capture, 0, 3).bytes();
    TempDir const folder;
    auto const path = folder.write("bay1.pcap", content);
    TrafficFollower follower(path);
    ASSERT_TRUE(follower.readOn());
    std::filesystem::remove(path);
    EXPECT_FALSE(follower.readOn());
}

TEST(TrafficFollower, SaysThatDamageEndsAFile) {
    TrafficCapture capture;
    Bytes content = addMessages(capture, 0, 3).bytes();
    // A record that claims more than any has, and has it.
    append(content, Bytes{1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0x40, 0, 0, 0, 0x40, 0});
    TempFile const file(content);
    TrafficFollower follower(file.path());
    auto const index = follower.readOn();
    ASSERT_TRUE(index);
    EXPECT_EQ(packetsIn(*index), 3U);
    EXPECT_FALSE(follower.isDamaged()) << "its octets may come yet";
    TempFile const folderless(Bytes(100, 'x'));
    TrafficFollower never(folderless.path());
    EXPECT_FALSE(never.readOn()) << "no capture";
}

TEST(TrafficFollower, FailsWhereTheSystemDoes) {
    TempDir const folder;
    TrafficFollower follower(folder.path());
    EXPECT_THROW(static_cast<void>(follower.readOn()), std::system_error);
}

TEST(GrownIndex, HasTheAttributesOfItsPackets) {
    TrafficCapture capture;
    GooseMessage message;
    std::vector<std::size_t> sizes;
    for (std::uint64_t const confRev : {1U, 1U, 2U, 2U, 1U, 3U}) {
        message.confRev = confRev;
        capture.add(Ethernet(), message);
        sizes.push_back(capture.bytes().size());
    }
    GrowingFile growing(capture.bytes(), sizes[0]);
    TrafficFollower follower(growing.path());
    TrafficIndex all;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        if (i > 0) growing.grow(sizes[i] - sizes[i - 1]);
        all.append(std::move(follower.readOn().value()));
    }
    EXPECT_TRUE(all == indexCapture(growing.path()));
    EXPECT_EQ(all.history(all.streams()[0], &StreamAttributes::confRev).size(), 4U);
}

TEST(GrownIndex, CanForgetItsStart) {
    TrafficCapture capture;
    GooseMessage message;
    std::vector<std::uint64_t> offsets;
    for (std::uint64_t i = 0; i < 6; ++i) {
        offsets.push_back(capture.bytes().size() + 16);
        message.confRev = i / 2;
        message.sqNum = i;
        capture.add(Ethernet(), message);
    }
    offsets.push_back(capture.bytes().size() + 16);
    TempFile const file(capture.bytes());
    for (std::size_t first = 0; first < 6; ++first) {
        TrafficIndex index = indexCapture(file.path());
        index.forgetBefore(0, offsets[first]);
        ASSERT_EQ(index.streams().size(), 1U);
        EXPECT_EQ(index.streams()[0].packets, 6 - first);
        StreamPart const& part = index.streams()[0].parts[0];
        EXPECT_EQ(part.packets.sqNums()[0], first);
        ASSERT_EQ(part.changes.size(), 3 - first / 2);
        EXPECT_EQ(part.changes[0].firstPacket, 0U);
        EXPECT_EQ(index.attributes(part, part.changes[0]).confRev,
                  Readable<std::uint64_t>(first / 2));
        if (part.changes.size() > 1) {
            EXPECT_EQ(part.changes[1].firstPacket, 2 - first % 2);
        }
        EXPECT_EQ(index.files()[0].summary.startOffset, first == 0 ? offsets[0] : offsets[first]);
    }
    TrafficIndex index = indexCapture(file.path());
    index.forgetBefore(0, offsets[6]);
    EXPECT_TRUE(index.streams().empty());
    EXPECT_EQ(index.files().size(), 1U);
}

TEST(GrownIndex, KeepsCountersThatNoColumnHolds) {
    TrafficCapture capture;
    GooseMessage message;
    std::vector<std::size_t> sizes;
    for (std::uint64_t i = 0; i < 4; ++i) {
        message.stNum = (std::uint64_t{1} << 40U) + i;
        capture.add(Ethernet(), message);
        sizes.push_back(capture.bytes().size());
    }
    GrowingFile growing(capture.bytes(), sizes[1]);
    TrafficFollower follower(growing.path());
    TrafficIndex all = std::move(follower.readOn().value());
    growing.grow(growing.left());
    all.append(std::move(follower.readOn().value()));
    all.forgetBefore(0, sizes[0] + 16);
    auto const& packets = all.streams().front().parts.front().packets;
    ASSERT_EQ(packets.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(std::get<std::uint64_t>(packets.firstCounter(i).value()),
                  (std::uint64_t{1} << 40U) + i + 1);
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::TrafficFollowerTest
