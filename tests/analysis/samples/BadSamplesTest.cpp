// Streams that no publisher should send, files that change, and what reading takes from the heap.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/ArrivalResiduals.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include "analysis/samples/ReadRows.hpp"
#include "analysis/traffic/TrafficCaptures.hpp"
#include "support/Data.hpp"
#include "support/PcapngMaker.hpp"
#include "support/WatchedHeap.hpp"
#include "support/WaveformStream.hpp"

namespace TalIec61850Analysis::BadSamplesTest {
namespace {

using namespace TalTest;

/// Reads all in every way there is.
/// @return the rows of the samples that came
ReadStream readAllWays(IndexedWaveform const& indexed) {
    ReadStream received;
    for (TrafficStream const& stream : indexed.index().streams()) {
        ReadStream const read = readRows(indexed.index(), stream);
        received.rows.insert(received.rows.end(), read.rows.begin(), read.rows.end());
        received.counts = read.counts;
        received.layouts = read.layouts;
        received.runs.insert(received.runs.end(), read.runs.begin(), read.runs.end());
        SampleOptions options;
        options.rows = SampleRows::everySample;
        SampleReader reader(indexed.index(), stream, options);
        std::uint64_t rows = 0;
        std::uint64_t missing = 0;
        while (SampleBlock const* const block = reader.next()) {
            EXPECT_GT(block->size(), 0U);
            EXPECT_LE(block->size(), 4096U);
            rows += block->size();
            missing += static_cast<std::uint64_t>(
                std::count(block->states.begin(), block->states.end(), SampleState::missing));
        }
        EXPECT_EQ(rows - missing, read.rows.size());
        EXPECT_EQ(missing, reader.counts().lost);
        EXPECT_EQ(reader.counts(), read.counts);
        static_cast<void>(arrivalResiduals(indexed.index(), stream));
    }
    return received;
}

Asdu asduOf(std::uint32_t smpCnt) {
    Asdu asdu;
    asdu.smpCnt = Unsigned<2>(smpCnt);
    asdu.seqData = samples({{static_cast<std::int32_t>(smpCnt) * 1000 + 7, 0}});
    return asdu;
}

/// A frame of one ASDU every 250 us.
class BadCapture {
public:
    BadCapture& add(Asdu const& asdu) {
        SvMessage message;
        message.asdus = {asdu};
        return add(svFrame(svEthernet(), message));
    }
    BadCapture& add(Bytes const& frame) {
        capture_.addAt(time_, frame);
        time_ += 250'000;
        return *this;
    }
    BadCapture& goTo(std::uint64_t time) {
        time_ = time;
        return *this;
    }
    [[nodiscard]] IndexedWaveform indexed() const { return IndexedWaveform({capture_.bytes()}); }

private:
    TrafficCapture capture_;
    std::uint64_t time_ = 0;
};

/// How many rows there are with those that are missing.
std::uint64_t rowsWithMissing(IndexedWaveform const& indexed, SampleRate rate) {
    SampleOptions options;
    options.rows = SampleRows::everySample;
    options.rate = rate;
    options.withValues = false;
    SampleReader reader(indexed.index(), indexed.stream(), options);
    std::uint64_t rows = 0;
    while (SampleBlock const* const block = reader.next()) {
        rows += block->size();
    }
    EXPECT_EQ(rows, reader.counts().received + reader.counts().lost);
    return rows;
}

/// Rows that so many samples may have besides their own.
constexpr std::uint64_t mostMissing(std::uint64_t samples) {
    return (std::uint64_t{1} << 23U) + 64 * samples;
}

TEST(BadSamples, WhoseCounterLeapsInNoTimeHaveNoMoreMissingOnesThanThereIsRoomFor) {
    BadCapture capture;
    constexpr std::uint32_t kSamples = 2000;
    for (std::uint32_t i = 0; i < kSamples; ++i) {
        capture.goTo(0).add(asduOf(i * 20'000 % 65'536));
    }
    std::uint64_t const rows = rowsWithMissing(capture.indexed(), {});
    EXPECT_LE(rows, kSamples + mostMissing(kSamples));
    EXPECT_GT(rows, mostMissing(0) / 2);
}

TEST(BadSamples, WithLongPausesHaveNoMoreMissingOnesThanThereIsRoomFor) {
    constexpr std::uint64_t kInterval = 250'000;
    constexpr std::uint32_t kSamples = 20;
    constexpr std::uint64_t kPause = std::uint64_t{599} * 4000 + 1;
    BadCapture capture;
    for (std::uint64_t i = 0; i < kSamples; ++i) {
        capture.goTo(i * kPause * kInterval)
            .add(asduOf(static_cast<std::uint32_t>(i * kPause % 4000)));
    }
    IndexedWaveform const indexed = capture.indexed();
    EXPECT_LE(rowsWithMissing(indexed, {.samples = 4000, .seconds = 1}),
              kSamples + mostMissing(kSamples));
    // Three of them have room; then a pause begins a run.
    SampleOptions options;
    options.rate = {.samples = 4000, .seconds = 1};
    ReadStream const read = indexed.read(options);
    ASSERT_EQ(read.rows.size(), kSamples);
    EXPECT_EQ(read.counts.lost, 3 * (kPause - 1));
    EXPECT_EQ(read.rows[3].run, 0U);
    EXPECT_EQ(read.rows[4].run, 1U);
    EXPECT_EQ(read.rows[4].start, RunStart::pause);
}

TEST(BadSamples, BeyondTheWrapAreGivenInRunsOfTheirOwn) {
    BadCapture capture;
    for (std::uint32_t i = 0; i < 200; ++i) {
        Asdu asdu = asduOf(i % 10 == 5 ? 40'000 + i : i);
        asdu.smpRate = Unsigned<2>(4000);
        asdu.smpMod = Unsigned<2>(1);
        capture.add(asdu);
    }
    ReadStream const read = readAllWays(capture.indexed());
    ASSERT_EQ(read.rows.size(), 200U);
    for (std::uint32_t i = 0; i < 200; ++i) {
        EXPECT_EQ(read.rows[i].smpCnt, i % 10 == 5 ? 40'000 + i : i);
    }
}

TEST(BadSamples, WithoutACounterAreGivenInTheOrderInWhichTheyCame) {
    BadCapture capture;
    for (std::uint32_t i = 0; i < 100; ++i) {
        Asdu asdu = asduOf(i);
        if (i >= 30 && i < 60) asdu.smpCnt.reset();
        capture.add(asdu);
    }
    ReadStream const read = readAllWays(capture.indexed());
    ASSERT_EQ(read.rows.size(), 100U);
    EXPECT_EQ(read.counts.runs, 3U);
    EXPECT_EQ(read.counts.lost, 0U);
    for (std::size_t i = 0; i < 100; ++i) {
        bool const isCounted = i < 30 || i >= 60;
        EXPECT_EQ(read.rows[i].state, isCounted ? SampleState::received : SampleState::uncounted);
        EXPECT_EQ(read.rows[i].run, i < 30 ? 0U : i < 60 ? 1U : 2U);
        EXPECT_EQ(read.rows[i].values.at(0), static_cast<std::int64_t>(i) * 1000 + 7);
        if (!isCounted) {
            EXPECT_EQ(read.rows[i].source, SampleTimeSource::none);
            EXPECT_EQ(read.rows[i].time, kNoTime);
        }
    }
    EXPECT_EQ(read.rows[30].start, RunStart::uncounted);
    EXPECT_EQ(read.rows[60].start, RunStart::uncounted);
}

TEST(BadSamples, HaveCountersOfAnyWidth) {
    for (std::size_t const width : {1U, 2U, 3U, 4U, 5U, 8U, 9U}) {
        BadCapture capture;
        for (std::uint32_t i = 0; i < 100; ++i) {
            Asdu asdu = asduOf(i);
            asdu.smpCnt = Unsigned<2>(i, width);
            capture.add(asdu);
        }
        ReadStream const read = readAllWays(capture.indexed());
        ASSERT_EQ(read.rows.size(), 100U) << width;
        for (std::uint32_t i = 0; i < 100; ++i) {
            EXPECT_EQ(read.rows[i].values.at(0), std::int64_t{i} * 1000 + 7) << width;
            if (read.rows[i].state == SampleState::received) {
                EXPECT_EQ(read.rows[i].smpCnt, i) << width;
            }
        }
        EXPECT_EQ(read.counts.lost, 0U);
    }
    BadCapture large;
    for (std::uint32_t i = 0; i < 100; ++i) {
        Asdu asdu = asduOf(i);
        asdu.smpCnt = Unsigned<2>(0xFFFFFFF0U + i % 16, 4);
        large.add(asdu);
    }
    EXPECT_EQ(
        readAllWays(large.indexed()).rows.size() + readAllWays(large.indexed()).counts.repeated,
        100U);
}

TEST(BadSamples, OfNoOctetsAreRowsWithoutValues) {
    BadCapture capture;
    for (std::uint32_t i = 0; i < 50; ++i) {
        Asdu asdu = asduOf(i);
        if (i % 2 == 0) asdu.seqData = Bytes();
        if (i % 10 == 1) asdu.seqData.reset();
        capture.add(asdu);
    }
    ReadStream const read = readAllWays(capture.indexed());
    ASSERT_EQ(read.rows.size(), 50U);
    for (std::size_t i = 0; i < 50; ++i) {
        bool const isEmpty = i % 2 == 0 || i % 10 == 1;
        EXPECT_EQ(read.rows[i].values.size(), isEmpty ? 0U : 1U);
        EXPECT_TRUE(read.rows[i].octets.empty());
        EXPECT_EQ(read.rows[i].smpCnt, i);
    }
}

TEST(BadSamples, OfSixtyThousandOctetsAreRead) {
    BadCapture capture;
    for (std::uint32_t i = 0; i < 40; ++i) {
        Asdu asdu = asduOf(i);
        asdu.seqData = repeat(static_cast<std::uint8_t>(0x80 + i), 60'001);
        capture.add(asdu);
    }
    ReadStream const read = readAllWays(capture.indexed());
    ASSERT_EQ(read.rows.size(), 40U);
    for (std::size_t i = 0; i < 40; ++i) {
        EXPECT_EQ(read.rows[i].octets, repeat(static_cast<std::uint8_t>(0x80 + i), 60'001));
    }
}

TEST(BadSamples, ThatWereSnappedHaveWhatWasCaptured) {
    SvMessage message;
    message.asdus = {asduOf(0)};
    std::size_t const whole = svFrame(svEthernet(), message).size();
    for (std::size_t size = 14; size <= whole; ++size) {
        TrafficCapture capture;
        for (std::uint16_t i = 0; i < 20; ++i) {
            message.asdus = {asduOf(i)};
            Bytes const frame = svFrame(svEthernet(), message);
            if (i % 3 == 0) {
                capture.addSnapped(size, frame);
            } else {
                capture.add(frame);
            }
        }
        ReadStream const read = readAllWays(IndexedWaveform({capture.bytes()}));
        for (ReadRow const& row : read.rows) {
            if (!row.values.empty()) {
                EXPECT_EQ(row.values[0] % 1000, 7) << size;
            }
        }
    }
}

TEST(BadSamples, ThatWereSnappedHaveNoOctetsOfTheNextRecord) {
    SvMessage message;
    message.asdus = {asduOf(0)};
    std::size_t const whole = svFrame(svEthernet(), message).size();
    SampleOptions options;
    options.layout = SampleLayout({SampleType::int32, SampleType::quality});
    for (std::size_t missing = 1; missing <= 8; ++missing) {
        TrafficCapture capture;
        for (std::uint16_t i = 0; i < 60; ++i) {
            message.asdus = {asduOf(i)};
            Bytes const frame = svFrame(svEthernet(), message);
            if (i == 33) {
                capture.addSnapped(whole - missing, frame);
            } else {
                capture.add(frame);
            }
        }
        ReadStream const read = IndexedWaveform({capture.bytes()}).read(options);
        ASSERT_EQ(read.rows.size(), 60U);
        for (std::uint32_t i = 0; i < 60; ++i) {
            ReadRow const& row = read.rows[i];
            EXPECT_EQ(row.values.size(), i == 33 ? 0U : 1U) << missing << " " << i;
            EXPECT_TRUE(row.octets.empty()) << missing << " " << i;
            if (!row.values.empty()) {
                EXPECT_EQ(row.values[0], i * 1000 + 7);
            }
        }
    }
}

TEST(BadSamples, ThatAreDamagedCrashNothing) {
    std::mt19937 random(61850);
    for (int round = 0; round < 60; ++round) {
        BadCapture capture;
        for (std::uint32_t i = 0; i < 30; ++i) {
            SvMessage message;
            message.asdus = {asduOf(2 * i), asduOf(2 * i + 1)};
            message.asdus[1].refrTm = utcTime(kTrafficStart, i);
            Bytes frame = svFrame(svEthernet(), message);
            for (std::uint32_t change = 0; change < i % 4; ++change) {
                frame[14 + random() % (frame.size() - 14)] = static_cast<std::uint8_t>(random());
            }
            capture.add(frame);
        }
        IndexedWaveform const indexed = capture.indexed();
        std::size_t packets = 0;
        for (TrafficStream const& stream : indexed.index().streams()) {
            packets += stream.key.protocol == StreamProtocol::sv ? stream.size() : 0;
        }
        EXPECT_LE(readAllWays(indexed).rows.size(), packets);
    }
}

TEST(BadSamples, AreNotCountedForYears) {
    // Times go there and back by up to a century, with a counter that goes on.
    BadCapture capture;
    std::uint64_t const year = std::uint64_t{365} * 86'400 * 1'000'000'000;
    for (std::uint32_t i = 0; i < 200; ++i) {
        std::uint64_t const years = i % 3 == 0 ? 0 : i % 7 * 10;
        capture.goTo(years * year + i * std::uint64_t{250'000});
        capture.add(asduOf(i));
    }
    ReadStream const read = readAllWays(capture.indexed());
    EXPECT_EQ(read.rows.size(), 200U);
    EXPECT_LE(read.counts.lost, 200U);
}

TEST(BadSamples, ThatPauseForLongAreNotTakenForLost) {
    for (std::uint64_t const seconds : {601U, 86'400U, 100'000'000U}) {
        BadCapture capture;
        for (std::uint32_t i = 0; i < 100; ++i) capture.add(asduOf(i));
        capture.goTo(seconds * 1'000'000'000 + 100 * 250'000);
        for (std::uint32_t i = 100; i < 200; ++i) capture.add(asduOf(i));
        ReadStream const read = readAllWays(capture.indexed());
        ASSERT_EQ(read.rows.size(), 200U);
        EXPECT_EQ(read.counts.lost, 0U);
        EXPECT_EQ(read.counts.runs, 2U);
        EXPECT_EQ(read.rows[100].start, RunStart::pause);
    }
}

/// How many rows a stream has at most, if every sample is one and no more are looked at.
std::uint64_t rowsUpTo(IndexedWaveform const& indexed, std::uint64_t most) {
    SampleOptions options;
    options.rows = SampleRows::everySample;
    SampleReader reader(indexed.index(), indexed.stream(), options);
    std::uint64_t rows = 0;
    while (rows < most) {
        SampleBlock const* const block = reader.next();
        if (block == nullptr) break;
        rows += block->size();
    }
    return rows;
}

TEST(BadSamples, AreNotMissingByTheBillionBecauseARateIsDeclared) {
    // Few packets some minutes apart, which declare four billion samples a second.
    BadCapture capture;
    for (std::uint32_t i = 0; i < 10; ++i) {
        Asdu asdu = asduOf(i);
        asdu.smpRate = Unsigned<2>(0xFFFFFFFF, 4);
        asdu.smpMod = Unsigned<2>(1);
        capture.goTo(i * std::uint64_t{300'000'000'000}).add(asdu);
    }
    EXPECT_LT(rowsUpTo(capture.indexed(), 10'000'000), 10'000'000U);
}

TEST(BadSamples, OfAnotherShapeInEachFrameAreRead) {
    BadCapture capture;
    for (std::uint32_t i = 0; i < 500; ++i) {
        Asdu asdu = asduOf(i);
        asdu.seqData = repeat(static_cast<std::uint8_t>(i), i % 400);
        asdu.datSet = std::string(i % 3, 'x');
        capture.add(asdu);
    }
    ReadStream const read = readAllWays(capture.indexed());
    ASSERT_EQ(read.rows.size(), 500U);
    for (std::size_t i = 0; i < 500; ++i) EXPECT_EQ(read.rows[i].smpCnt, i);
}

TEST(BadSamples, OfAnotherRateInEachFrameAreRead) {
    BadCapture capture;
    for (std::uint32_t i = 0; i < 500; ++i) {
        Asdu asdu = asduOf(i);
        asdu.smpRate = Unsigned<2>(1000 + i * 7);
        asdu.smpMod = Unsigned<2>(i % 4);
        capture.add(asdu);
    }
    ReadStream const read = readAllWays(capture.indexed());
    ASSERT_EQ(read.rows.size(), 500U);
    for (std::size_t i = 0; i < 500; ++i) EXPECT_EQ(read.rows[i].smpCnt, i);
}

TEST(BadSamples, OfRevisionsAreGivenEachUnderItsOwn) {
    WaveformStream stream;
    stream.send(100).revise(2).send(50).revise(1).send(70);
    expectRowsOf(stream);
    IndexedWaveform const indexed(stream);
    SampleReader reader(indexed.index(), indexed.stream());
    std::vector<std::pair<std::uint64_t, std::size_t>> blocks;
    while (SampleBlock const* const block = reader.next()) {
        ASSERT_NE(block->attributes, nullptr);
        blocks.emplace_back(std::get<std::uint64_t>(*block->attributes->confRev), block->size());
    }
    EXPECT_EQ(blocks,
              (std::vector<std::pair<std::uint64_t, std::size_t>>{{1, 100}, {2, 50}, {1, 70}}));
}

TEST(BadSamples, OfALateRevisionAreGivenUnderTheirOwn) {
    BadCapture capture;
    for (std::uint32_t i = 0; i < 60; ++i) {
        // The last of the first revision comes after three of the second one.
        std::uint32_t const smpCnt = i >= 30 && i < 33 ? i + 1 : i == 33 ? 30 : i;
        Asdu asdu = asduOf(smpCnt);
        asdu.confRev = Unsigned<4>(smpCnt <= 30 ? 1 : 2);
        capture.add(asdu);
    }
    IndexedWaveform const indexed = capture.indexed();
    SampleReader reader(indexed.index(), indexed.stream());
    std::uint32_t next = 0;
    while (SampleBlock const* const block = reader.next()) {
        for (std::uint32_t const smpCnt : block->smpCnts) {
            EXPECT_EQ(smpCnt, next++);
            EXPECT_EQ(std::get<std::uint64_t>(*block->attributes->confRev), smpCnt <= 30 ? 1U : 2U)
                << smpCnt;
        }
    }
    EXPECT_EQ(next, 60U);
    EXPECT_EQ(reader.counts().late, 1U);
}

TEST(BadSamples, OfTwoSourcesAreTwoStreams) {
    WaveformSettings settings;
    WaveformStream one(settings);
    settings.ethernet = settings.ethernet.from("02:00:00:00:00:99");
    WaveformStream other(settings);
    one.send(100).lose(3).send(20);
    other.send(50);
    IndexedWaveform const indexed({one.captures()[0], other.captures()[0]});
    ASSERT_EQ(indexed.index().streams().size(), 2U);
    ReadStream const first = readRows(indexed.index(), indexed.index().streams()[0]);
    ReadStream const second = readRows(indexed.index(), indexed.index().streams()[1]);
    EXPECT_TRUE(areRowsOf(settings, one.rows(false), first));
    EXPECT_TRUE(areRowsOf(settings, other.rows(false), second, {.fit = 1000, .havePlaces = false}));
}

TEST(BadSamples, WithoutTimesOfArrivalAreGiven) {
    // A next-generation file of packets without a time.
    PcapngMaker maker;
    maker.section().interface();
    for (std::uint32_t i = 0; i < 300; ++i) {
        SvMessage message;
        message.asdus = {asduOf(i)};
        maker.simplePacket(svFrame(svEthernet(), message));
    }
    ReadStream const read = readAllWays(IndexedWaveform({maker.bytes()}));
    ASSERT_EQ(read.rows.size(), 300U);
    EXPECT_EQ(read.rows[7].time, kNoTime);
    EXPECT_EQ(read.rows[7].arrival, kNoTime);
    EXPECT_EQ(read.rows[7].source, SampleTimeSource::none);
    SampleOptions window;
    window.end = makeCaptureTime(4'000'000'000, 0);
    IndexedWaveform const indexed({maker.bytes()});
    EXPECT_TRUE(indexed.read(window).rows.empty());
}

TEST(BadSamples, WithTimesAtTheEndsOfWhatThereIsAreRead) {
    std::vector<std::uint64_t> const times = {0,
                                              1,
                                              1'700'000'000'000'000'000,
                                              0x7FFFFFFFFFFFFFFF,
                                              0x7FFFFFFFFFFFFFFE,
                                              0x8000000000000000,
                                              0x8000000000000001,
                                              0xFFFFFFFFFFFFFFFF};
    for (std::int64_t const offset : {std::int64_t{0}, std::int64_t{-9'000'000'000},
                                      std::int64_t{9'000'000'000}, INT64_MIN, INT64_MAX}) {
        PcapngMaker maker;
        maker.section();
        maker.interface(1, 0, maker.timeOptions(9, offset));
        std::mt19937 random(61850);
        for (std::uint32_t i = 0; i < 400; ++i) {
            SvMessage message;
            message.asdus = {asduOf(i)};
            message.asdus[0].smpSynch = Unsigned<1>(i / 100 % 2 == 0 ? 2 : 0);
            Bytes const frame = svFrame(svEthernet(), message);
            if (i % 5 == 0) {
                maker.simplePacket(frame);
            } else {
                PcapngMaker::Packet packet;
                packet.time = times[random() % times.size()] + i;
                packet.frame = frame;
                maker.packet(packet);
            }
        }
        ReadStream const read = readAllWays(IndexedWaveform({maker.bytes()}));
        EXPECT_EQ(read.counts.received + read.counts.repeated, 400U);
    }
}

TEST(ChangedFiles, ThatBecameShorterEndReading) {
    WaveformStream stream;
    stream.send(9000);
    Bytes const whole = stream.captures()[0];
    for (std::size_t const part : {0U, 1U, 3U, 7U}) {
        IndexedWaveform const indexed(stream);
        // Some of it is read before the file changes.
        SampleReader reader(indexed.index(), indexed.stream());
        ASSERT_NE(reader.next(), nullptr);
        std::filesystem::resize_file(indexed.paths()[0], whole.size() * part / 8 + 11);
        std::error_code error;
        try {
            while (reader.next() != nullptr) {
            }
        } catch (std::system_error const& thrown) {
            error = thrown.code();
        }
        EXPECT_EQ(error, std::error_code(ESTALE, std::generic_category())) << part;
        EXPECT_EQ(reader.next(), nullptr);
    }
}

TEST(ChangedFiles, OfOtherOctetsCrashNothing) {
    WaveformStream stream;
    stream.send(300);
    IndexedWaveform const indexed(stream);
    Bytes const garbage(stream.captures()[0].size(), 0xA2);
    std::ofstream(indexed.paths()[0], std::ios::binary)
        .write(reinterpret_cast<char const*>(garbage.data()),
               static_cast<std::streamsize>(garbage.size()));
    SampleReader reader(indexed.index(), indexed.stream());
    EXPECT_THROW(
        {
            while (reader.next() != nullptr) {
            }
        },
        std::system_error);
    EXPECT_EQ(reader.next(), nullptr);
}

TEST(ChangedFiles, ThatAreGoneAreErrors) {
    WaveformStream stream;
    stream.send(300);
    IndexedWaveform const indexed(stream);
    std::filesystem::remove(indexed.paths()[0]);
    SampleReader reader(indexed.index(), indexed.stream());
    EXPECT_THROW(static_cast<void>(reader.next()), std::system_error);
    EXPECT_EQ(reader.next(), nullptr);
}

/// How often memory is taken by reading a stream, after its first blocks.
std::size_t allocationsAfterTheFirstBlocks(IndexedWaveform const& indexed, SampleRows rows) {
    SampleOptions options;
    options.rows = rows;
    SampleReader reader(indexed.index(), indexed.stream(), options);
    for (int i = 0; i < 2; ++i) EXPECT_NE(reader.next(), nullptr);
    std::size_t const before = heapAllocations();
    std::size_t blocks = 0;
    while (reader.next() != nullptr) ++blocks;
    EXPECT_GE(blocks, 3U);
    return heapAllocations() - before;
}

TEST(SampleMemory, IsNotTakenForEachSample) {
    for (std::uint32_t const asdus : {1U, 8U}) {
        WaveformSettings settings;
        settings.rate = 12800;
        settings.asdus = asdus;
        WaveformStream stream(settings);
        stream.send(24'000 / asdus).lose(3).send(50).sendLate(1).send(100);
        IndexedWaveform const indexed(stream);
        // A block has a few, and some thousand rows.
        EXPECT_LE(allocationsAfterTheFirstBlocks(indexed, SampleRows::received), 200U);
        EXPECT_LE(allocationsAfterTheFirstBlocks(indexed, SampleRows::everySample), 200U);
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::BadSamplesTest
