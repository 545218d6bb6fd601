#include <gtest/gtest.h>

#include <TalIec61850Analysis/supervision/DataComparison.hpp>

#include "support/Bytes.hpp"
#include "support/Data.hpp"

namespace TalTest::DataComparisonTest {
namespace {

using namespace TalIec61850Analysis::detail;

/// What differs, as text: the make, the values, and each quality.
std::string differences(Bytes const& before, Bytes const& now) {
    std::string text;
    auto const compared = compareData(before, now, [&](QualityChange const& change) {
        text += " q";
        for (std::uint32_t const index : change.member) {
            text += "." + std::to_string(index);
        }
        text += ":" + std::to_string(change.before) + ">" + std::to_string(change.now);
    });
    return (compared.isSameMake ? "" : "make ") + std::string(compared.isChanged ? "data" : "") +
           text;
}

Bytes joined(std::vector<Bytes> const& all) {
    Bytes data;
    for (Bytes const& each : all) {
        data.insert(data.end(), each.begin(), each.end());
    }
    return data;
}

TEST(DataComparison, FindsNoneInEqualData) {
    Bytes const data = joined({dataBoolean(true), dataQuality(), dataUtcTime(5)});
    EXPECT_EQ(differences(data, data), "");
    EXPECT_EQ(countMembers(data), 3U);
}

TEST(DataComparison, PassesOverTimeStamps) {
    EXPECT_EQ(differences(joined({dataBoolean(true), dataUtcTime(5)}),
                          joined({dataBoolean(true), dataUtcTime(6)})),
              "");
    EXPECT_EQ(differences(dataStructure({dataBoolean(true), dataUtcTime(5)}),
                          dataStructure({dataBoolean(true), dataUtcTime(6)})),
              "");
}

TEST(DataComparison, PassesOverBinaryTimes) {
    EXPECT_EQ(differences({0x8C, 6, 0, 0, 0, 1, 0, 9}, {0x8C, 6, 0, 0, 0, 2, 0, 9}), "");
}

TEST(DataComparison, SeesValuesOfOtherSizes) {
    EXPECT_EQ(differences(dataInteger(5), dataInteger(500)), "data");
    EXPECT_EQ(differences(dataStructure({dataInteger(5)}), dataStructure({dataInteger(500)})),
              "data");
}

TEST(DataComparison, SeesAnotherMake) {
    Bytes const one = dataBoolean(true);
    EXPECT_EQ(differences(one, dataInteger(1)), "make data");
    EXPECT_EQ(differences(one, joined({one, one})), "make data");
    EXPECT_EQ(differences(joined({dataStructure({one, one}), one}),
                          joined({dataStructure({one}), one, one})),
              "make data");
}

TEST(DataComparison, TellsQualitiesByTheirMembers) {
    Bytes const before =
        joined({dataBoolean(true), dataStructure({dataBoolean(true), dataQuality()})});
    Bytes const now =
        joined({dataBoolean(true), dataStructure({dataBoolean(true), dataQuality(0x4000)})});
    std::string const change = differences(before, now);
    EXPECT_EQ(change.substr(0, 9), "data q.1.");
    // From bad to worse is no change from good.
    EXPECT_EQ(differences(now, dataStructure({})), "make data");
    EXPECT_EQ(differences(dataQuality(0x4000), dataQuality(0xC000)), "data");
}

TEST(DataComparison, EndsWithDeepNesting) {
    Bytes deep = dataBoolean(true);
    Bytes other = dataBoolean(false);
    for (int i = 0; i < 200; ++i) {
        deep = dataStructure({deep});
        other = dataStructure({other});
    }
    EXPECT_EQ(differences(deep, other), "data");
}

}  // namespace
}  // namespace TalTest::DataComparisonTest
