// The data of a record: octets, marks, losses, blocks.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/comtrade/ComtradeConfiguration.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeRows.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "analysis/comtrade/EncodedComtrade.hpp"
#include "support/Bytes.hpp"
#include "support/WatchedHeap.hpp"

namespace TalTest::ComtradeRowsTest {
namespace {

using namespace TalIec61850Analysis;

constexpr ComtradeFormat kText1999{ComtradeEdition::of1999, ComtradeData::ascii};
constexpr ComtradeFormat kText2013{ComtradeEdition::of2013, ComtradeData::ascii};
constexpr ComtradeFormat kBinary{ComtradeEdition::of2013, ComtradeData::binary};
constexpr ComtradeFormat kBinary32{ComtradeEdition::of2013, ComtradeData::binary32};

std::string textOf(Bytes const& octets) { return {octets.begin(), octets.end()}; }

template <typename Raw>
ComtradeSamples samplesOf(std::vector<Raw> const& samples) {
    return std::span<Raw const>(samples);
}

/// A record with one analog channel, encoded.
template <typename Raw>
EncodedComtrade encodedSamples(ComtradeFormat format, std::vector<Raw> const& samples,
                               std::vector<std::uint8_t> const& missing = {},
                               ComtradeStep step = {}) {
    ComtradeRecord record = recordOf(format, 1, 0, samples.size());
    record.analogs[0].step = step;
    return encoded(
        record, {.analogs = {{.samples = samplesOf(samples), .missing = missing}}, .digitals = {}});
}

/// What is stored of one analog channel.
template <typename Raw>
std::vector<std::optional<std::int64_t>> storedSamples(
    ComtradeFormat format, std::vector<Raw> const& samples,
    std::vector<std::uint8_t> const& missing = {}, ComtradeStep step = {}) {
    ComtradeRecord record = recordOf(format, 1, 0, samples.size());
    record.analogs[0].step = step;
    ReadComtrade const read = readBack(
        record, {.analogs = {{.samples = samplesOf(samples), .missing = missing}}, .digitals = {}});
    std::vector<std::optional<std::int64_t>> stored;
    for (ReadComtradeRow const& row : read.rows) {
        stored.push_back(row.analogs.at(0));
    }
    return stored;
}

using Stored = std::vector<std::optional<std::int64_t>>;

TEST(ComtradeRows, OfBinary32HaveTheseOctets) {
    std::vector<std::int32_t> const first{-1, 7845};
    std::vector<std::int32_t> const second{1, 5};
    std::vector<std::uint8_t> const missing{0, 1};
    std::vector<std::uint8_t> const states{0, 1};
    EncodedComtrade const data =
        encoded(recordOf(kBinary32, 2, 1, 2),
                {.analogs = {{.samples = samplesOf(first), .missing = {}},
                             {.samples = samplesOf(second), .missing = missing}},
                 .digitals = {states}});
    EXPECT_EQ(data.octets, (Bytes{0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xFF,
                                  0xFF, 0xFF, 0xFF, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00,  //
                                  0x02, 0x00, 0x00, 0x00, 0xFA, 0x00, 0x00, 0x00, 0xA5,
                                  0x1E, 0x00, 0x00, 0x00, 0x00, 0x00, 0x80, 0x01, 0x00}));
}

TEST(ComtradeRows, OfBinaryHaveTheseOctets) {
    std::vector<std::int32_t> const samples{-2, 258, 0};
    std::vector<std::uint8_t> const missing{0, 0, 1};
    EXPECT_EQ(encodedSamples(kBinary, samples, missing).octets,
              (Bytes{0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xFE, 0xFF,  //
                     0x02, 0x00, 0x00, 0x00, 0xFA, 0x00, 0x00, 0x00, 0x02, 0x01,  //
                     0x03, 0x00, 0x00, 0x00, 0xF4, 0x01, 0x00, 0x00, 0x00, 0x80}));
}

TEST(ComtradeRows, OfTextHaveTheseLines) {
    std::vector<std::int32_t> const samples{-99'999, 99'998};
    std::vector<float> const others{1.25F, -7.5F};
    std::vector<std::uint8_t> const missing{1, 0};
    std::vector<std::uint8_t> const on{1, 0};
    std::vector<std::uint8_t> const off{0, 255};
    for (ComtradeFormat const format : {kText1999, kText2013}) {
        EncodedComtrade const data =
            encoded(recordOf(format, 2, 2, 2),
                    {.analogs = {{.samples = samplesOf(samples), .missing = {}},
                                 {.samples = samplesOf(others), .missing = missing}},
                     .digitals = {on, off}});
        EXPECT_EQ(textOf(data.octets), "1,0,-99999,99999,1,0\r\n2,250,99998,-8,0,1\r\n");
    }
}

TEST(ComtradeRows, KeepSamplesBitForBitInBinary32) {
    std::vector<std::int32_t> const samples{2147483647, -2147483647, 0, -1, 65536};
    EXPECT_EQ(storedSamples(kBinary32, samples), (Stored{2147483647, -2147483647, 0, -1, 65536}));
    EXPECT_EQ(encodedSamples(kBinary32, samples).losses[0], ComtradeLosses{});
}

TEST(ComtradeRows, MarkAMissingSampleInEveryFormat) {
    for (ComtradeFormat const format : everyFormat()) {
        std::vector<std::uint8_t> const missing{0, 1, 200, 0};
        Stored const expected{1, std::nullopt, std::nullopt, 4};
        EXPECT_EQ(storedSamples<std::int32_t>(format, {1, 2, 3, 4}, missing), expected);
        EXPECT_EQ(storedSamples<std::int64_t>(format, {1, 2, 3, 4}, missing), expected);
        EXPECT_EQ(storedSamples<float>(format, {1, 2, 3, 4}, missing), expected);
        EXPECT_EQ(storedSamples<double>(format, {1, 2, 3, 4}, missing), expected);
    }
}

TEST(ComtradeRows, NeverStoreASampleAsTheMissingMark) {
    EXPECT_EQ(storedSamples<std::int32_t>(kBinary32, {std::numeric_limits<std::int32_t>::min()}),
              Stored{-2147483647});
    EXPECT_EQ(storedSamples<std::int32_t>(kBinary, {-32768}), Stored{-32767});
    EXPECT_EQ(storedSamples<std::int32_t>(kText1999, {99'999}), Stored{99'998});
    EXPECT_EQ(storedSamples<std::int32_t>(kText2013, {99'999}), Stored{99'998});
}

TEST(ComtradeRows, CountWhatIsClamped) {
    for (ComtradeFormat const format : everyFormat()) {
        ComtradeRange const range = comtradeRange(format);
        std::vector<std::int64_t> const samples{range.lowest - 1,
                                                range.lowest,
                                                range.highest,
                                                range.highest + 1,
                                                std::numeric_limits<std::int64_t>::min(),
                                                std::numeric_limits<std::int64_t>::max()};
        Stored const expected{range.lowest,  range.lowest, range.highest,
                              range.highest, range.lowest, range.highest};
        EXPECT_EQ(storedSamples(format, samples), expected);
        ComtradeLosses const four{.clamped = 4, .notANumber = 0};
        EXPECT_EQ(encodedSamples(format, samples).losses[0], four);
        std::vector<double> const reals(samples.begin(), samples.end());
        EXPECT_EQ(storedSamples(format, reals), expected);
        EXPECT_EQ(encodedSamples(format, reals).losses[0], four);
    }
}

TEST(ComtradeRows, CountTheLossesOfEachChannel) {
    std::vector<std::int32_t> const fine{1};
    std::vector<std::int32_t> const wide{32768};
    EncodedComtrade const data = encoded(recordOf(kBinary, 2, 0, 1),
                                         {.analogs = {{.samples = samplesOf(fine), .missing = {}},
                                                      {.samples = samplesOf(wide), .missing = {}}},
                                          .digitals = {}});
    EXPECT_EQ(data.losses, (std::vector<ComtradeLosses>{{}, {.clamped = 1, .notANumber = 0}}));
}

TEST(ComtradeRows, DoNotCountWhatAMissingSampleHolds) {
    EXPECT_EQ(encodedSamples<std::int32_t>(kBinary, {100'000}, {1}).losses[0], ComtradeLosses{});
    double const none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(encodedSamples<double>(kBinary, {none}, {1}).losses[0], ComtradeLosses{});
}

TEST(ComtradeRows, TakeWhatIsNoNumberAsMissing) {
    double const none = std::numeric_limits<double>::quiet_NaN();
    double const infinite = std::numeric_limits<double>::infinity();
    for (ComtradeFormat const format : everyFormat()) {
        ComtradeRange const range = comtradeRange(format);
        std::vector<double> const samples{none, infinite, -infinite};
        EXPECT_EQ(storedSamples(format, samples),
                  (Stored{std::nullopt, range.highest, range.lowest}));
        EXPECT_EQ(encodedSamples(format, samples).losses[0],
                  (ComtradeLosses{.clamped = 2, .notANumber = 1}));
    }
}

TEST(ComtradeRows, RoundToTheNearestStep) {
    ComtradeStep const step{.size = 10, .middle = 100};
    Stored const expected{0, 0, 1, -1, 1};
    EXPECT_EQ(storedSamples<std::int32_t>(kBinary, {100, 104, 106, 94, 110}, {}, step), expected);
    EXPECT_EQ(storedSamples<std::int64_t>(kBinary, {100, 104, 106, 94, 110}, {}, step), expected);
    EXPECT_EQ(storedSamples<float>(kBinary, {100, 104, 106, 94, 110}, {}, step), expected);
    EXPECT_EQ(storedSamples<double>(kBinary, {100, 104, 106, 94, 110}, {}, step), expected);
}

TEST(ComtradeRows, TakeAMiddleThatIsNoInteger) {
    ComtradeStep const step{.size = 0.5, .middle = 0.25};
    EXPECT_EQ(storedSamples<std::int32_t>(kBinary, {0, 1, -1}, {}, step), (Stored{-1, 2, -3}));
}

TEST(ComtradeRows, ShiftWideIntegersExactly) {
    // Numbers of double precision differ by 1024 here.
    std::int64_t const middle = std::int64_t{1} << 62U;
    ComtradeStep const step{.size = 1, .middle = static_cast<double>(middle)};
    EXPECT_EQ(storedSamples<std::int64_t>(kBinary, {middle + 3, middle - 7}, {}, step),
              (Stored{3, -7}));
    EXPECT_EQ(
        storedSamples<std::int64_t>(kBinary, {std::numeric_limits<std::int64_t>::min()}, {}, step),
        Stored{-32767});
}

class ComtradeDigitals : public testing::TestWithParam<std::size_t> {};

INSTANTIATE_TEST_SUITE_P(AtTheBordersOfWords, ComtradeDigitals,
                         testing::Values(1, 15, 16, 17, 32, 33));

TEST_P(ComtradeDigitals, AreReadBackInEveryFormat) {
    std::size_t const channels = GetParam();
    // In each row, one channel alone differs from the others.
    std::vector<std::vector<std::uint8_t>> states(channels);
    std::vector<ComtradeDigitalColumn> columns;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        for (std::size_t row = 0; row < 2 * channels; ++row) {
            states[channel].push_back((row % channels == channel) == (row < channels) ? 200 : 0);
        }
        columns.emplace_back(states[channel]);
    }
    for (ComtradeFormat const format : everyFormat()) {
        ReadComtrade const read = readBack(recordOf(format, 0, channels, 2 * channels),
                                           {.analogs = {}, .digitals = columns});
        for (std::size_t row = 0; row < 2 * channels; ++row) {
            for (std::size_t channel = 0; channel < channels; ++channel) {
                EXPECT_EQ(read.rows[row].digitals[channel], states[channel][row] != 0)
                    << row << ' ' << channel;
            }
        }
    }
}

/// Rows of three analog channels and one digital, many enough for several pieces.
struct ManyRows {
    std::vector<std::int32_t> counted;
    std::vector<double> halves;
    std::vector<std::uint8_t> missing;
    std::vector<std::uint8_t> states;

    explicit ManyRows(std::size_t rows) {
        for (std::size_t row = 0; row < rows; ++row) {
            counted.push_back(static_cast<std::int32_t>(row % 65'000) - 32'000);
            halves.push_back(static_cast<double>(row % 1000) / 2);
            missing.push_back(row % 7 == 0 ? 1 : 0);
            states.push_back(row % 3 == 0 ? 1 : 0);
        }
    }
    [[nodiscard]] ComtradeColumns columns() const {
        return {.analogs = {{.samples = samplesOf(counted), .missing = missing},
                            {.samples = samplesOf(halves), .missing = {}},
                            {.samples = samplesOf(counted), .missing = {}}},
                .digitals = {states}};
    }
};

TEST(ComtradeRows, AreTheSameHoweverTheyAreDividedIntoBlocks) {
    std::size_t const rows = 20'000;
    ManyRows const made(rows);
    for (ComtradeFormat const format : everyFormat()) {
        ComtradeRecord const record = recordOf(format, 3, 1, rows);
        Bytes const whole = encoded(record, made.columns(), rows).octets;
        EXPECT_EQ(encoded(record, made.columns(), 7).octets, whole);
        EXPECT_EQ(encoded(record, made.columns(), 9973).octets, whole);
    }
}

TEST(ComtradeRows, HaveRoomForTheLongestNumbersOfText) {
    std::vector<std::int64_t> const samples(10'000, -999'999'999'999);
    ComtradeAnalogColumn const column{.samples = samplesOf(samples), .missing = {}};
    ComtradeRecord record = recordOf(kText2013, 8, 0, samples.size());
    record.rate = {.samples = 1, .seconds = 900};
    std::string const text = textOf(
        encoded(record, {.analogs = std::vector<ComtradeAnalogColumn>(8, column), .digitals = {}},
                samples.size())
            .octets);
    std::string expected;
    for (std::size_t row = 0; row < samples.size(); ++row) {
        expected += std::to_string(row + 1) + "," + std::to_string(row * 900'000'000);
        for (std::size_t analog = 0; analog < 8; ++analog) {
            expected += ",-999999999999";
        }
        expected += "\r\n";
    }
    EXPECT_EQ(text.size(), expected.size());
    EXPECT_TRUE(text == expected);
}

TEST(ComtradeRows, ComeInFewPieces) {
    std::size_t const rows = 20'000;
    ManyRows const made(rows);
    EncodedComtrade const data = encoded(recordOf(kBinary32, 3, 1, rows), made.columns(), 10);
    EXPECT_EQ(data.octets.size(), rows * 22);
    EXPECT_LE(data.pieces, 5U);
}

TEST(ComtradeRows, OfMoreChannelsThanTheBufferHoldsAreEncoded) {
    std::vector<std::int32_t> const samples{1, 2};
    ComtradeAnalogColumn const column{.samples = samplesOf(samples), .missing = {}};
    for (ComtradeFormat const format : {kText2013, kBinary32}) {
        ReadComtrade const read = readBack(
            recordOf(format, 40'000, 0, 2),
            {.analogs = std::vector<ComtradeAnalogColumn>(40'000, column), .digitals = {}});
        EXPECT_EQ(read.rows[1].analogs[39'999], 2);
    }
}

TEST(ComtradeRows, TakeNothingFromTheHeap) {
    std::size_t const rows = 20'000;
    ManyRows const made(rows);
    ComtradeColumns const columns = made.columns();
    for (ComtradeFormat const format : {kText2013, kBinary32}) {
        std::size_t octets = 0;
        ComtradeRows writer(
            recordOf(format, 3, 1, rows),
            [&octets](std::span<std::uint8_t const> piece) { octets += piece.size(); });
        std::size_t const before = heapAllocations();
        writer.add(columns.analogs, columns.digitals);
        writer.finish();
        EXPECT_EQ(heapAllocations(), before);
        EXPECT_GE(octets, rows * 16);
    }
}

TEST(ComtradeRows, MayBeAddedInABlockOfNone) {
    ComtradeRows writer(recordOf(kBinary, 1, 1, 1), [](std::span<std::uint8_t const>) {});
    std::array<ComtradeAnalogColumn, 1> const analogs{};
    std::array<ComtradeDigitalColumn, 1> const digitals{};
    writer.add(analogs, digitals);
    EXPECT_EQ(writer.rows(), 0U);
}

/// A writer of three rows with an analog and a digital channel.
class ThreeRows : public testing::Test {
protected:
    void add(std::size_t rows, std::size_t missing = 0) {
        ComtradeColumns const columns{
            .analogs = {{.samples = std::span<std::int32_t const>(samples_).first(rows),
                         .missing = std::span<std::uint8_t const>(states_).first(missing)}},
            .digitals = {std::span<std::uint8_t const>(states_).first(rows)}};
        writer_.add(columns.analogs, columns.digitals);
    }

    std::vector<std::int32_t> samples_ = std::vector<std::int32_t>(8);
    std::vector<std::uint8_t> states_ = std::vector<std::uint8_t>(8);
    std::size_t taken_ = 0;
    ComtradeRows writer_{recordOf(kBinary, 1, 1, 3),
                         [this](std::span<std::uint8_t const> piece) { taken_ += piece.size(); }};
};

TEST_F(ThreeRows, AreNoMoreThanThree) {
    add(2);
    EXPECT_THROW(add(2), std::length_error);
    EXPECT_EQ(writer_.rows(), 2U);
    add(1);
    writer_.finish();
    EXPECT_EQ(taken_, 3U * 12U);
}

TEST_F(ThreeRows, AreNoFewerThanThree) {
    add(2);
    EXPECT_THROW(writer_.finish(), std::length_error);
    EXPECT_EQ(taken_, 0U);
}

TEST_F(ThreeRows, HaveColumnsOfOneLength) {
    EXPECT_THROW(add(2, 1), std::invalid_argument);
    std::array<ComtradeAnalogColumn, 1> const analogs{
        {{.samples = std::span<std::int32_t const>(samples_).first(1), .missing = {}}}};
    std::array<ComtradeDigitalColumn, 1> const digitals{
        {std::span<std::uint8_t const>(states_).first(2)}};
    EXPECT_THROW(writer_.add(analogs, digitals), std::invalid_argument);
    EXPECT_EQ(writer_.rows(), 0U);
}

TEST_F(ThreeRows, HaveAColumnForEachChannel) {
    std::array<ComtradeAnalogColumn, 2> const analogs{};
    std::array<ComtradeDigitalColumn, 2> const digitals{};
    std::span const oneAnalog = std::span(analogs).first(1);
    std::span const oneDigital = std::span(digitals).first(1);
    EXPECT_THROW(writer_.add(analogs, oneDigital), std::invalid_argument);
    EXPECT_THROW(writer_.add(oneAnalog, digitals), std::invalid_argument);
    EXPECT_THROW(writer_.add({}, oneDigital), std::invalid_argument);
    EXPECT_THROW(writer_.add(oneAnalog, {}), std::invalid_argument);
}

TEST(ComtradeRows, AreNotMadeForRecordsThatCannotBeWritten) {
    EXPECT_THROW(ComtradeRows(recordOf(kBinary, 0, 0, 1), [](std::span<std::uint8_t const>) {}),
                 std::invalid_argument);
}

TEST(ComtradeRows, LetThroughWhatTheirTakerThrows) {
    std::vector<std::int32_t> const samples{1};
    ComtradeRows writer(recordOf(kBinary, 1, 0, 1),
                        [](std::span<std::uint8_t const>) { throw std::runtime_error("full"); });
    std::array<ComtradeAnalogColumn, 1> const analogs{
        {{.samples = samplesOf(samples), .missing = {}}}};
    writer.add(analogs, {});
    EXPECT_THROW(writer.finish(), std::runtime_error);
}

}  // namespace
}  // namespace TalTest::ComtradeRowsTest
