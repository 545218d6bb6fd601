// What seqData is made of: given, or inferred.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/DecodeSample.hpp>
#include <TalIec61850Analysis/samples/LayoutInference.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <bit>
#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "support/Bytes.hpp"
#include "support/Data.hpp"

namespace TalIec61850Analysis::SampleLayoutTest {
namespace {

using namespace TalTest;
using enum SampleType;

constexpr std::uint32_t kCaptured = 1'700'000'000;
CaptureTime const kArrival = makeCaptureTime(kCaptured, 999'999'999);

Bytes wordOf(std::uint32_t value) { return bigEndian(value, 4); }
Bytes floatOf(float value) { return wordOf(std::bit_cast<std::uint32_t>(value)); }

/// What is inferred from these.
FoundLayout foundOf(std::vector<Bytes> const& asdus,
                    std::optional<CaptureTime> arrival = kArrival) {
    LayoutInference inference(asdus.front().size());
    for (Bytes const& asdu : asdus) inference.add(asdu, arrival);
    EXPECT_EQ(inference.asdus(), asdus.size());
    return inference.result();
}

std::vector<SampleType> layoutIn(FoundLayout const& found) {
    if (!found.layout) return {};
    return {found.layout->members().begin(), found.layout->members().end()};
}

std::vector<SampleType> const kTwoIntegers = {int32, quality, int32, quality};
std::vector<SampleType> const kTwoFloats = {float32, quality, float32, quality};

TEST(SampleLayouts, HaveTheSizesOfTheirMembers) {
    std::vector<std::pair<SampleType, std::size_t>> const sizes = {
        {boolean, 1}, {int8, 1},    {int16, 2},   {int24, 3},      {int32, 4},
        {int64, 8},   {int8u, 1},   {int16u, 2},  {int24u, 3},     {int32u, 4},
        {float32, 4}, {float64, 8}, {quality, 4}, {enumerated, 4}, {timestamp, 8}};
    std::vector<SampleType> all;
    std::size_t size = 0;
    for (auto const& [type, octets] : sizes) {
        EXPECT_EQ(sizeOf(type), octets) << static_cast<int>(type);
        all.push_back(type);
        size += octets;
        EXPECT_EQ(SampleLayout(all).size(), size);
    }
}

TEST(SampleLayouts, GiveAQualityToTheValueDirectlyBeforeIt) {
    SampleLayout const layout(
        {quality, int16, quality, quality, float64, timestamp, quality, boolean, int24u, quality});
    EXPECT_TRUE(layout.hasQuality());
    std::vector<SampleChannel> const expected = {
        {.type = int16, .offset = 4, .qualityOffset = 6},
        {.type = float64, .offset = 14, .qualityOffset = {}, .timeOffset = 22},
        {.type = boolean, .offset = 34, .qualityOffset = {}},
        {.type = int24u, .offset = 35, .qualityOffset = 38}};
    EXPECT_EQ(std::vector<SampleChannel>(layout.channels().begin(), layout.channels().end()),
              expected);
    EXPECT_EQ(layout.size(), 42U);
    EXPECT_FALSE(SampleLayout({int32, timestamp, quality}).hasQuality());
    EXPECT_EQ(SampleLayout().size(), 0U);
}

TEST(SampleLayouts, GiveATimeToTheValueBeforeItAndItsQuality) {
    SampleLayout const layout({timestamp, int8, timestamp, timestamp, int16, quality, timestamp});
    ASSERT_EQ(layout.channels().size(), 2U);
    EXPECT_EQ(layout.channels()[0].timeOffset, 9U);
    EXPECT_EQ(layout.channels()[1].timeOffset, 31U);
}

TEST(DecodedSample, HasValuesQualitiesAndTimes) {
    Bytes const octets = concat({Bytes{0xFF, 0xFE}, wordOf(0x3FC00000), wordOf(0x2001),
                                 wordOf(1'700'000'000), wordOf(0x8000000A)});
    auto const sample = decodeSample(SampleLayout({int16, float32, quality, timestamp}), octets);
    ASSERT_EQ(sample.size(), 2U);
    EXPECT_EQ(std::get<std::int32_t>(sample[0].value), -2);
    EXPECT_FALSE(sample[0].quality);
    EXPECT_FALSE(sample[0].time);
    EXPECT_EQ(std::get<float>(sample[1].value), 1.5F);
    EXPECT_EQ(sample[1].quality, SampleQuality{0x2001});
    EXPECT_EQ(sample[1].time,
              (UtcTime{.seconds = 1'700'000'000, .fraction = 0x800000, .quality = 0x0A}));
}

TEST(DecodedSample, IsNoneOfOctetsOfAnotherNumber) {
    EXPECT_TRUE(decodeSample(SampleLayout({int16}), Bytes(3)).empty());
    EXPECT_TRUE(decodeSample(SampleLayout({int16}), Bytes(1)).empty());
    EXPECT_TRUE(decodeSample(SampleLayout(), Bytes()).empty());
}

TEST(SampleLayouts, GiveValuesInTheSmallestTypeThatHoldsThem) {
    auto const typeOf = [](SampleType type) {
        return SampleChannel{.type = type, .offset = 0, .qualityOffset = {}}.valueType();
    };
    for (SampleType const type :
         {boolean, int8, int16, int24, int32, int8u, int16u, int24u, enumerated})
        EXPECT_EQ(typeOf(type), ValueType::int32);
    EXPECT_EQ(typeOf(int32u), ValueType::int64);
    EXPECT_EQ(typeOf(int64), ValueType::int64);
    EXPECT_EQ(typeOf(float32), ValueType::float32);
    EXPECT_EQ(typeOf(float64), ValueType::float64);
}

TEST(InferredLayout, IsIntegerAndQuality) {
    Bytes const one = concat({wordOf(100), wordOf(0), wordOf(0xFFFFFF00), wordOf(0x2000)});
    Bytes const other = concat({wordOf(200), wordOf(0x3FFF), wordOf(7), wordOf(1)});
    FoundLayout const found = foundOf({one, other});
    EXPECT_EQ(found.source, LayoutSource::inferred);
    EXPECT_EQ(layoutIn(found), kTwoIntegers);
    EXPECT_EQ(found.asdus, 2U);
    EXPECT_TRUE(found.isIntegerAndQuality);
    EXPECT_FALSE(found.isFloatAndQuality || found.isFloat || found.isValueAndTime || found.isZero);
}

TEST(InferredLayout, HasNoQualityWithAnyOfTheUpperBits) {
    for (unsigned bit = 0; bit < 32; ++bit) {
        Bytes const good = concat({wordOf(100), wordOf(0), wordOf(0xFFFFFF00), wordOf(0)});
        Bytes const odd =
            concat({wordOf(100), wordOf(0), wordOf(0xFFFFFF00), wordOf(std::uint32_t{1} << bit)});
        FoundLayout const found = foundOf({good, odd, good});
        EXPECT_EQ(found.isIntegerAndQuality, bit < 14) << bit;
        EXPECT_EQ(found.source, bit < 14 ? LayoutSource::inferred : LayoutSource::none) << bit;
        EXPECT_EQ(found.layout.has_value(), bit < 14) << bit;
    }
}

TEST(InferredLayout, IsFloatAndQuality) {
    Bytes const one = concat({floatOf(-0.5F), wordOf(0), floatOf(0), wordOf(0x800)});
    Bytes const other = concat({floatOf(1000), wordOf(0), floatOf(-0.0F), wordOf(0)});
    FoundLayout const found = foundOf({one, other});
    EXPECT_EQ(found.source, LayoutSource::inferred);
    EXPECT_EQ(layoutIn(found), kTwoFloats);
    EXPECT_TRUE(found.isFloatAndQuality);
}

TEST(InferredLayout, IsFloat) {
    Bytes const one = concat({floatOf(-0.5F), floatOf(3.5F), floatOf(0)});
    Bytes const other = concat({floatOf(1000), floatOf(1), floatOf(-7)});
    FoundLayout const found = foundOf({one, other}, {});
    EXPECT_EQ(found.source, LayoutSource::inferred);
    EXPECT_EQ(layoutIn(found), std::vector<SampleType>(3, float32));
    EXPECT_TRUE(found.isFloat);
    EXPECT_FALSE(found.isIntegerAndQuality);
}

TEST(InferredLayout, IsNoFloatWhereAWordIsNone) {
    float const infinity = std::numeric_limits<float>::infinity();
    Bytes const good = concat({floatOf(0.5F), floatOf(1000)});
    for (float const odd : {std::numeric_limits<float>::quiet_NaN(), infinity, -infinity, 2e9F,
                            -2e9F, 5e-7F, -5e-7F, std::numeric_limits<float>::denorm_min()}) {
        for (bool const isFirst : {true, false}) {
            Bytes const bad =
                isFirst ? concat({floatOf(odd), floatOf(1)}) : concat({floatOf(1), floatOf(odd)});
            FoundLayout const found = foundOf({good, good, bad, good});
            EXPECT_FALSE(found.isFloat) << odd;
            EXPECT_EQ(found.source, LayoutSource::none) << odd;
            EXPECT_FALSE(found.layout) << odd;
        }
    }
    for (float const edge : {1e9F, -1e9F, 1e-6F, -1e-6F}) {
        Bytes const limit = concat({floatOf(edge), floatOf(1)});
        EXPECT_TRUE(foundOf({good, limit}).isFloat) << edge;
    }
}

TEST(InferredLayout, IsNoFloatWhereExponentsAreAllTheSame) {
    Bytes const one = concat({floatOf(1.25F), floatOf(1.5F)});
    Bytes const other = concat({floatOf(-1.75F), floatOf(1)});
    FoundLayout const found = foundOf({one, other});
    EXPECT_FALSE(found.isFloat);
    EXPECT_EQ(found.source, LayoutSource::none);
    Bytes const integers = concat({floatOf(1.25F), wordOf(0), floatOf(1.5F), wordOf(0)});
    EXPECT_EQ(layoutIn(foundOf({integers, integers})), kTwoIntegers);
}

TEST(InferredLayout, IsIntegerAndQualityWhereOneWordIsNoFloat) {
    Bytes const one = concat({floatOf(0.5F), wordOf(0), floatOf(1000), wordOf(0)});
    Bytes const odd = concat({wordOf(5), wordOf(0), floatOf(1000), wordOf(0)});
    EXPECT_EQ(layoutIn(foundOf({one, one})), kTwoFloats);
    EXPECT_EQ(layoutIn(foundOf({one, odd})), kTwoIntegers);
}

TEST(InferredLayout, IsValueAndTime) {
    Bytes const one = concat({wordOf(100), utcTime(kCaptured, 5)});
    Bytes const other = concat({wordOf(0xFFFFFFFF), utcTime(kCaptured + 1, 0xFFFFFF)});
    FoundLayout const found = foundOf({one, other});
    EXPECT_EQ(found.source, LayoutSource::inferred);
    EXPECT_EQ(layoutIn(found), (std::vector<SampleType>{int32, timestamp}));
    EXPECT_TRUE(found.isValueAndTime);

    Bytes const real = concat({floatOf(0.5F), utcTime(kCaptured, 5)});
    Bytes const realToo = concat({floatOf(900), utcTime(kCaptured, 9)});
    EXPECT_EQ(layoutIn(foundOf({real, realToo})), (std::vector<SampleType>{float32, timestamp}));
}

TEST(InferredLayout, HasNoTimeThatIsMoreThanAnHourOff) {
    Bytes const good = concat({wordOf(100), utcTime(kCaptured)});
    for (std::int32_t const off : {-7200, -3601, -3600, -1, 0, 3600, 3601, 7200}) {
        auto const second = static_cast<std::uint32_t>(std::int64_t{kCaptured} + off);
        FoundLayout const found = foundOf({good, concat({wordOf(1), utcTime(second)}), good});
        bool const isTime = off >= -3600 && off <= 3600;
        EXPECT_EQ(found.isValueAndTime, isTime) << off;
        EXPECT_EQ(found.source, isTime ? LayoutSource::inferred : LayoutSource::none) << off;
    }
    EXPECT_FALSE(foundOf({good, good}, {}).isValueAndTime);
}

TEST(InferredLayout, IsUndecidedByOneAsdu) {
    Bytes const one = concat({floatOf(-0.5F), floatOf(3.5F), floatOf(0), floatOf(900)});
    FoundLayout const found = foundOf({one});
    EXPECT_EQ(found.source, LayoutSource::undecided);
    EXPECT_FALSE(found.layout);
    EXPECT_EQ(found.asdus, 1U);
}

TEST(InferredLayout, OfOneAsduIsThatOf92LeWhereItsLengthIsAndNoValueLooksLikeAFloat) {
    Bytes integers;
    Bytes floats;
    for (std::uint32_t i = 0; i < 8; ++i) {
        integers = concat({integers, wordOf(100'000 - 50'000 * i), wordOf(0)});
        floats = concat({floats, floatOf(1.5F), wordOf(0)});
    }
    FoundLayout const ofIntegers = foundOf({integers});
    EXPECT_EQ(ofIntegers.source, LayoutSource::undecided);
    EXPECT_EQ(ofIntegers.layout->channels().size(), 8U);
    FoundLayout const ofFloats = foundOf({floats});
    EXPECT_EQ(ofFloats.source, LayoutSource::undecided);
    EXPECT_FALSE(ofFloats.layout);
    Bytes others = integers;
    others[4] = 1;  // no quality has a bit there
    FoundLayout const ofOthers = foundOf({others});
    EXPECT_EQ(ofOthers.source, LayoutSource::undecided);
    EXPECT_FALSE(ofOthers.layout);
}

TEST(InferredLayout, OfZerosIsUndecidedAndThatOf92LeByItsLengthAlone) {
    for (std::size_t const size : {4U, 8U, 12U, 24U, 32U, 56U, 63U, 64U, 65U, 72U, 128U}) {
        FoundLayout const found = foundOf({Bytes(size), Bytes(size), Bytes(size)});
        EXPECT_TRUE(found.isZero);
        EXPECT_EQ(found.source, LayoutSource::undecided) << size;
        EXPECT_EQ(found.layout.has_value(), size == 64) << size;
        if (size == 64) {
            ASSERT_EQ(found.layout->channels().size(), 8U);
            EXPECT_EQ(found.layout->members()[0], int32);
            EXPECT_EQ(found.layout->members()[15], quality);
        }
    }
}

TEST(InferredLayout, OfNothingIsNone) {
    EXPECT_EQ(LayoutInference(64).result().source, LayoutSource::none);
    LayoutInference empty(0);
    empty.add(Octets(), kArrival);
    EXPECT_EQ(empty.result().source, LayoutSource::none);
    EXPECT_FALSE(empty.result().layout);
}

TEST(InferredLayout, TakesNoAsdusOfAnotherSize) {
    LayoutInference inference(8);
    inference.add(Bytes(16, 0xFF), kArrival);
    inference.add(Bytes(7, 0xFF), kArrival);
    EXPECT_EQ(inference.asdus(), 0U);
}

TEST(InferredLayout, OfSizesThatNoneHasIsNone) {
    for (std::size_t const size : {1U, 2U, 3U, 5U, 7U, 9U, 13U, 66U}) {
        FoundLayout const found = foundOf({Bytes(size, 1), Bytes(size, 2)});
        EXPECT_EQ(found.source, LayoutSource::none);
        EXPECT_FALSE(found.layout);
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::SampleLayoutTest
