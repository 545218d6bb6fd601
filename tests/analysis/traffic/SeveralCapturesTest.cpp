// Several files in one index: the order, threads, packets that came twice.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <stop_token>
#include <string>
#include <system_error>
#include <vector>

#include "analysis/traffic/IndexContent.hpp"
#include "analysis/traffic/TrafficCaptures.hpp"
#include "support/Captures.hpp"
#include "support/OctetsRead.hpp"
#include "support/OwnCaptures.hpp"

namespace TalIec61850Analysis::SeveralCapturesTest {
namespace {

using namespace TalTest;

Bytes counted(std::uint64_t stNum, Ethernet const& ethernet = {}) {
    GooseMessage message;
    message.stNum = stNum;
    return gooseFrame(ethernet, message);
}

/// All captures that there are, but those of hundreds of thousands of frames.
std::vector<std::string> allCaptures() {
    auto paths = recordedCapturePaths();
    auto const own = ownCapturePaths();
    paths.insert(paths.end(), own.begin(), own.end());
    return paths;
}

TEST(ManyCaptures, GiveTheSameIndexHoweverTheyAreReadAndOnHoweverManyThreads) {
    auto const paths = allCaptures();
    TrafficIndex const one = indexCaptures(paths);
    EXPECT_EQ(one.files().size(), paths.size());
    EXPECT_FALSE(one.streams().empty());
    for (std::size_t const jobs : {0U, 1U, 2U, 4U})
        for (ReadMode const mode : {ReadMode::plain, ReadMode::ahead})
            EXPECT_TRUE(indexCaptures(paths, {.jobs = jobs, .read = mode}) == one)
                << jobs << (mode == ReadMode::ahead ? ", read ahead" : "");
}

TEST(ManyCaptures, GiveTheSameIndexHoweverTheyAreMerged) {
    auto const paths = allCaptures();
    TrafficIndex const one = indexCaptures(paths);
    TrafficIndex byOne;
    for (std::string const& path : paths) byOne.merge(indexCaptures(std::span(&path, 1)));
    EXPECT_TRUE(byOne == one);
    std::size_t const half = paths.size() / 2;
    TrafficIndex halves = indexCaptures(std::span(paths).first(half));
    TrafficIndex rest;
    for (std::string const& path : std::span(paths).subspan(half))
        rest.merge(indexCaptures(std::span(&path, 1)));
    halves.merge(std::move(rest));
    EXPECT_TRUE(halves == one);
}

TEST(ManyCaptures, HaveTheSameContentInAnyOrder) {
    constexpr std::uint32_t kSeed = 7;
    auto paths = allCaptures();
    IndexContent const one = contentOf(indexCaptures(paths));
    EXPECT_EQ(one.files.size(), paths.size());
    std::mt19937 random(kSeed);
    for (std::size_t round = 0; round < 3; ++round) {
        std::shuffle(paths.begin(), paths.end(), random);
        ReadMode const mode = round % 2 == 0 ? ReadMode::ahead : ReadMode::plain;
        EXPECT_TRUE(contentOf(indexCaptures(paths, {.jobs = round + 1, .read = mode})) == one)
            << "seed " << kSeed << ", round " << round;
    }
}

TEST(Indexing, ReadsOnAnotherThreadWhereItIsToReadAhead) {
    TrafficCapture capture;
    for (std::uint64_t i = 0; i < 10'000; ++i) capture.add(counted(i));
    TempFile const file(capture.bytes());
    auto const readHere = [&](ReadMode mode) {
        std::uint64_t const before = TalTest::octetsReadHere();
        EXPECT_EQ(indexCapture(file.path(), {.read = mode}).streams()[0].packets, 10'000U);
        return TalTest::octetsReadHere() - before;
    };
    EXPECT_GE(readHere(ReadMode::plain), capture.bytes().size());
    EXPECT_LT(readHere(ReadMode::ahead), capture.bytes().size() / 10);
}

TEST(ManyCaptures, TellWhichCannotBeReadAndIndexTheOthers) {
    TrafficCapture capture;
    capture.add(counted(1));
    TempDir const folder;
    std::vector<std::string> const paths = {folder.file("missing"),
                                            folder.write("good", capture.bytes()),
                                            folder.write("none", Bytes(40, 0x11)), folder.path()};
    TrafficIndex const index = indexCaptures(paths, {.jobs = 2});
    EXPECT_EQ(index.files()[0].summary.error, std::errc::no_such_file_or_directory);
    EXPECT_FALSE(index.files()[1].summary.error);
    ASSERT_TRUE(index.files()[2].summary.damage);
    EXPECT_EQ(index.files()[2].summary.damage->kind, CaptureDamageKind::notCapture);
    EXPECT_TRUE(index.files()[3].summary.error);
    ASSERT_EQ(index.streams().size(), 1U);
    EXPECT_EQ(index.streams()[0].parts[0].file, 1U);
    EXPECT_THROW(static_cast<void>(indexCapture(paths[0])), std::system_error);
}

TEST(ManyCaptures, HaveAPacketOnceThatTwoFilesHave) {
    TrafficCapture first;
    TrafficCapture second;
    for (std::uint64_t i = 0; i < 10; ++i) first.addAt(1000 * i, counted(i + 1));
    for (std::uint64_t i = 5; i < 15; ++i) second.addAt(1000 * i, counted(i + 1));
    // Another time, another tap; and other octets than the first file has at that time.
    second.addAt(7001, counted(8));
    GooseMessage other;
    other.stNum = 3;
    other.t = Bytes(8, 0x01);
    second.addAt(2000, gooseFrame(Ethernet(), other));
    TempDir const folder;
    std::vector<std::string> const paths = {folder.write("1", first.bytes()),
                                            folder.write("2", second.bytes())};
    TrafficIndex const index = indexCaptures(paths);
    ASSERT_EQ(index.streams().size(), 1U);
    TrafficStream const& stream = index.streams()[0];
    EXPECT_EQ(stream.size(), 22U);
    EXPECT_EQ(stream.duplicates, 5U);
    EXPECT_EQ(stream.packets, 17U);
    auto const flags = stream.parts[1].packets.flags();
    for (std::size_t i = 0; i < flags.size(); ++i) EXPECT_EQ(flags[i].isDuplicate(), i < 5) << i;
    std::size_t visited = 0;
    stream.visit({}, [&](PacketRef const& ref) {
        ++visited;
        EXPECT_FALSE(stream.parts[ref.part].packets.flags()[ref.packet].isDuplicate());
    });
    EXPECT_EQ(visited, 17U);
}

TEST(ManyCaptures, HaveAPacketOfEveryFileThatIsThereTwiceOnce) {
    TrafficCapture capture;
    SvMessage message;
    message.asdus = {Asdu(), Asdu()};
    // The same frame at the same time, twice in each file.
    capture.addAt(1000, svFrame(svEthernet(), message));
    capture.addAt(1000, svFrame(svEthernet(), message));
    TempFile const file(capture.bytes());
    TrafficIndex const index =
        indexCaptures(std::vector<std::string>{file.path(), file.path(), file.path()});
    ASSERT_EQ(index.streams().size(), 1U);
    EXPECT_EQ(index.streams()[0].size(), 12U);
    EXPECT_EQ(index.streams()[0].packets, 4U);
    EXPECT_EQ(index.streams()[0].duplicates, 8U);
}

TEST(RedundantPackets, AreMarkedWhereTheyComeAgainOverTheOtherWay) {
    constexpr std::uint64_t kMillisecond = 1'000'000;
    struct Sent {
        std::uint64_t time;
        char lan;
        std::uint16_t sequence;
        bool isCopy;
    };
    std::vector<Sent> const sent = {
        {0, 'A', 1, false},
        {1, 'B', 1, true},
        {10 * kMillisecond, 'B', 2, false},
        {410 * kMillisecond, 'A', 2, true},
        {500 * kMillisecond, 'A', 3, false},
        {501 * kMillisecond, 'A', 3, false},
        {900 * kMillisecond + 1, 'A', 4, false},
        {1300 * kMillisecond + 2, 'B', 4, false},
        {1300 * kMillisecond + 3, 'A', 4, true},
        {1300 * kMillisecond + 4, 'B', 4, false},
    };
    for (bool const isHsr : {false, true}) {
        TrafficCapture capture;
        for (std::size_t i = 0; i < sent.size(); ++i) {
            Ethernet const ethernet = isHsr ? Ethernet().withHsr(sent[i].lan, sent[i].sequence)
                                            : Ethernet().withPrp(sent[i].lan, sent[i].sequence);
            capture.addAt(sent[i].time, counted(i + 1, ethernet));
        }
        TrafficIndex const index = capture.index();
        ASSERT_EQ(index.streams().size(), 1U);
        auto const flags = index.streams()[0].parts[0].packets.flags();
        for (std::size_t i = 0; i < sent.size(); ++i)
            EXPECT_EQ(flags[i].isCopy(), sent[i].isCopy) << i << (isHsr ? " HSR" : " PRP");
        EXPECT_EQ(index.streams()[0].copies, 3U);
        EXPECT_EQ(index.streams()[0].packets, 7U);
    }
}

TEST(RedundantPackets, AreMarkedHoweverManyAreBetween) {
    // All numbers over one LAN, then over the other, each within 400 ms.
    constexpr std::size_t kNumbers = 0x10000;
    TrafficCapture capture;
    std::uint64_t time = 0;
    for (char const lan : {'A', 'B'}) {
        Bytes frame = counted(1, Ethernet().withPrp(lan));
        std::size_t const trailer = frame.size() - 6;
        for (std::size_t number = 0; number < kNumbers; ++number) {
            frame[trailer] = static_cast<std::uint8_t>(number >> 8U);
            frame[trailer + 1] = static_cast<std::uint8_t>(number & 0xFFU);
            capture.addAt(time += 5'000, frame);
        }
    }
    TrafficIndex const index = capture.index();
    ASSERT_EQ(index.streams().size(), 1U);
    EXPECT_EQ(index.streams()[0].packets, kNumbers);
    EXPECT_EQ(index.streams()[0].copies, kNumbers);
    auto const flags = index.streams()[0].parts[0].packets.flags();
    for (std::size_t i = 0; i < 2 * kNumbers; ++i) ASSERT_EQ(flags[i].isCopy(), i >= kNumbers) << i;
}

TEST(RedundantPackets, AreNoCopiesOfThoseOfTheOtherProtocol) {
    TrafficCapture capture;
    for (auto const number : std::vector<std::uint16_t>{0, 7, 0xFFFF}) {
        capture.add(counted(1, Ethernet().withHsr('A', number)));
        capture.add(counted(1, Ethernet().withPrp('B', number)));
    }
    TrafficIndex const index = capture.index();
    ASSERT_EQ(index.streams().size(), 1U);
    EXPECT_EQ(index.streams()[0].packets, 6U);
    EXPECT_EQ(index.streams()[0].copies, 0U);
}

TEST(RedundantPackets, AreMarkedWithAllTheirAsdusAndOverFiles) {
    SvMessage message;
    message.asdus = {Asdu(), Asdu(), Asdu()};
    TrafficCapture a;
    TrafficCapture b;
    for (std::uint16_t i = 0; i < 50; ++i) {
        a.addAt(250'000U * i, svFrame(svEthernet().withPrp('A', i), message));
        b.addAt(250'000U * i + 900, svFrame(svEthernet().withPrp('B', i), message));
    }
    TempDir const folder;
    std::vector<std::string> const paths = {folder.write("b", b.bytes()),
                                            folder.write("a", a.bytes())};
    TrafficIndex const index = indexCaptures(paths);
    TrafficStream const& stream = index.streams()[0];
    EXPECT_EQ(stream.packets, 150U);
    EXPECT_EQ(stream.copies, 150U);
    for (PacketFlags const& flag : stream.parts[0].packets.flags()) EXPECT_TRUE(flag.isCopy());
    for (PacketFlags const& flag : stream.parts[1].packets.flags()) EXPECT_FALSE(flag.isCopy());
}

TEST(Indexing, TellsItsProgressUpToTheEnd) {
    TrafficCapture capture;
    for (std::uint64_t i = 0; i < 20'000; ++i) capture.add(counted(i));
    TempFile const file(capture.bytes());
    std::vector<std::string> const paths(3, file.path());
    std::uint64_t last = 0;
    std::size_t calls = 0;
    TrafficIndex const index =
        indexCaptures(paths, {.progress =
                                  [&](std::uint64_t done, std::uint64_t all) {
                                      EXPECT_EQ(all, 3 * capture.bytes().size());
                                      EXPECT_GE(done, last);
                                      EXPECT_LE(done, all);
                                      last = done;
                                      ++calls;
                                  },
                              .jobs = 2});
    EXPECT_EQ(last, 3 * capture.bytes().size());
    EXPECT_GE(calls, 9U);
}

TEST(Indexing, EndsSoonWhenItIsStopped) {
    TrafficCapture capture;
    for (std::uint64_t i = 0; i < 50'000; ++i) capture.add(counted(i));
    std::stop_source source;
    TrafficIndex const index = capture.index(
        {.stop = source.get_token(), .progress = [&](auto, auto) { source.request_stop(); }});
    EXPECT_TRUE(index.files()[0].summary.stopped);
    ASSERT_EQ(index.streams().size(), 1U);
    EXPECT_LT(index.streams()[0].packets, 20'000U);
    EXPECT_EQ(index.streams()[0].packets, index.files()[0].summary.records);
}

}  // namespace
}  // namespace TalIec61850Analysis::SeveralCapturesTest
