// Members of a data set laid over the octets of a sample.

#include <gtest/gtest.h>

#include "scl/match/DescribedTraffic.hpp"

namespace TalTest::BindSamplesTest {
namespace {

using namespace TalIec61850Scl;
using TalIec61850Analysis::SampleType;

DataSet setOf(std::vector<BasicType> const& types) {
    DataSet dataSet;
    for (BasicType const type : types) {
        dataSet.members.push_back(
            memberOf({static_cast<std::uint32_t>(dataSet.members.size())}, type));
    }
    return dataSet;
}

TEST(BindSamples, TakesTheWidthOfEachType) {
    struct Width {
        BasicType type;
        SampleType sample;
        std::size_t octets;
    };
    for (Width const& width : {Width{BasicType::boolean, SampleType::boolean, 1},
                               Width{BasicType::int8, SampleType::int8, 1},
                               Width{BasicType::int16, SampleType::int16, 2},
                               Width{BasicType::int24, SampleType::int24, 3},
                               Width{BasicType::int32, SampleType::int32, 4},
                               Width{BasicType::int64, SampleType::int64, 8},
                               Width{BasicType::int8u, SampleType::int8u, 1},
                               Width{BasicType::int16u, SampleType::int16u, 2},
                               Width{BasicType::int24u, SampleType::int24u, 3},
                               Width{BasicType::int32u, SampleType::int32u, 4},
                               Width{BasicType::float32, SampleType::float32, 4},
                               Width{BasicType::float64, SampleType::float64, 8},
                               Width{BasicType::enumerated, SampleType::enumerated, 4},
                               Width{BasicType::quality, SampleType::quality, 4},
                               Width{BasicType::timestamp, SampleType::timestamp, 8}}) {
        DataSet const dataSet = setOf({width.type});
        EXPECT_EQ(sampleSize(dataSet), width.octets);
        auto const binding = bindSamples(dataSet, width.octets);
        ASSERT_TRUE(binding.has_value());
        ASSERT_EQ(binding->layout.members().size(), 1U);
        EXPECT_EQ(binding->layout.members()[0], width.sample);
        EXPECT_EQ(binding->channelMembers.size(), binding->layout.channels().size());
    }
}

TEST(BindSamples, NumbersTheMembersThatAreChannels) {
    DataSet const dataSet =
        setOf({BasicType::int32, BasicType::quality, BasicType::timestamp, BasicType::quality,
               BasicType::float32, BasicType::boolean, BasicType::quality});
    auto const binding = bindSamples(dataSet, 4 + 4 + 8 + 4 + 4 + 1 + 4);
    ASSERT_TRUE(binding.has_value());
    EXPECT_EQ(binding->channelMembers, (std::vector<std::size_t>{0, 4, 5}));
    EXPECT_EQ(binding->bound, dataSet.members.size());
    EXPECT_EQ(binding->layout.rest(), 0U);
    ASSERT_EQ(binding->layout.channels().size(), 3U);
    EXPECT_EQ(binding->layout.channels()[0].qualityOffset, 4U);
    EXPECT_EQ(binding->layout.channels()[0].timeOffset, 8U);
    EXPECT_EQ(binding->layout.channels()[1].offset, 20U);
    EXPECT_EQ(binding->layout.channels()[1].qualityOffset, std::nullopt);
    EXPECT_EQ(binding->layout.channels()[2].qualityOffset, 25U);
}

TEST(BindSamples, BindsNothingOfAnotherSize) {
    DataSet const dataSet = describedSv().dataSets[0];
    EXPECT_EQ(sampleSize(dataSet), 32U);
    EXPECT_TRUE(bindSamples(dataSet, 32).has_value());
    EXPECT_FALSE(bindSamples(dataSet, 31).has_value());
    EXPECT_FALSE(bindSamples(dataSet, 64).has_value());
    EXPECT_FALSE(bindSamples(dataSet, 0).has_value());
}

/// Types whose width in a sample is not known.
std::vector<BasicType> const kWithoutWidth = {
    BasicType::unknown,     BasicType::int128,    BasicType::dbpos,    BasicType::visibleString,
    BasicType::octetString, BasicType::entryTime, BasicType::structure};

TEST(BindSamples, BindsTheMembersBeforeATypeOfUnknownWidth) {
    for (BasicType const type : kWithoutWidth) {
        DataSet const dataSet = setOf({BasicType::int32, BasicType::quality, BasicType::float32,
                                       type, BasicType::int32, BasicType::quality});
        EXPECT_EQ(sampleSize(dataSet), std::nullopt);
        for (std::size_t size = 0; size < 64; ++size) {
            auto const binding = bindSamples(dataSet, size);
            ASSERT_EQ(binding.has_value(), size >= leastSampleSize(dataSet)) << size;
            if (binding) {
                EXPECT_EQ(binding->bound, 3U);
                EXPECT_EQ(binding->channelMembers, (std::vector<std::size_t>{0, 2}));
                EXPECT_EQ(binding->layout.size(), size);
                EXPECT_EQ(binding->layout.rest(), size - 12);
                EXPECT_EQ(binding->layout.channels().size(), 2U);
            }
        }
    }
}

TEST(BindSamples, BindsNothingWhereTheFirstWidthIsUnknown) {
    for (BasicType const type : kWithoutWidth) {
        for (std::size_t size = 0; size < 32; ++size) {
            EXPECT_FALSE(bindSamples(setOf({type, BasicType::int32}), size).has_value());
        }
    }
}

TEST(BindSamples, KnowsWhatMembersOfKnownWidthTakeAtLeast) {
    EXPECT_EQ(leastSampleSize(setOf({BasicType::int32, BasicType::unknown, BasicType::quality})),
              8U);
    EXPECT_EQ(leastSampleSize(setOf({BasicType::unknown})), 0U);
    EXPECT_EQ(leastSampleSize(describedSv().dataSets[0]), 32U);
}

TEST(BindSamples, TakesNoMembersForNoOctets) {
    EXPECT_EQ(sampleSize({}), 0U);
    EXPECT_TRUE(bindSamples({}, 0).has_value());
    EXPECT_FALSE(bindSamples({}, 1).has_value());
}

}  // namespace
}  // namespace TalTest::BindSamplesTest
