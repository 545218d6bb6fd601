// Which values differ between two data sets.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/events/MemberChanges.hpp>

#include "analysis/events/EventsIn.hpp"
#include "support/Data.hpp"

namespace TalTest::MemberChangesTest {
namespace {

using namespace TalIec61850Analysis;
using namespace TalIec61850Analysis::detail;

struct Compared {
    std::string line;
    bool isSameMake = true;
};

Bytes joinedValues(std::vector<Bytes> const& values) {
    Bytes all;
    for (Bytes const& value : values) {
        append(all, value);
    }
    return all;
}

Compared comparedData(std::vector<Bytes> const& before, std::vector<Bytes> const& now) {
    Bytes const was = joinedValues(before);
    Bytes const is = joinedValues(now);
    auto const found = findMemberChanges(Elements(was), Elements(is));
    return {.line = changesLine(found.changes), .isSameMake = found.isSameMake};
}

TEST(MemberChanges, AreNoneOfTheSameValues) {
    std::vector<Bytes> const values = {dataBoolean(true), dataStructure({dataInteger(5)})};
    auto const compared = comparedData(values, values);
    EXPECT_EQ(compared.line, "");
    EXPECT_TRUE(compared.isSameMake);
    EXPECT_EQ(comparedData({}, {}).line, "");
}

TEST(MemberChanges, AreThoseOfSingleValues) {
    EXPECT_EQ(comparedData({dataBoolean(true), dataInteger(5), dataInteger(6)},
                           {dataBoolean(false), dataInteger(5), dataInteger(-7)})
                  .line,
              " 0 true->false 2 6->-7");
}

TEST(MemberChanges, AreFoundInsideStructuresAndArrays) {
    auto const compared = comparedData(
        {dataStructure({dataBoolean(true), dataArray({dataInteger(1), dataInteger(2)})}),
         dataQuality()},
        {dataStructure({dataBoolean(true), dataArray({dataInteger(1), dataInteger(3)})}),
         dataQuality(0x4000)});
    EXPECT_EQ(compared.line, " 0.1.1 2->3 1 x0000->x4000");
    EXPECT_TRUE(compared.isSameMake);
}

TEST(MemberChanges, ListTimeStampsToo) {
    EXPECT_EQ(comparedData({dataUtcTime(1'700'000'001)}, {dataUtcTime(1'700'000'002)}).line,
              " 0 t1->t2");
    // The quality of a stamp is part of it.
    EXPECT_EQ(
        comparedData({dataUtcTime(1'700'000'001)}, {dataUtcTime(1'700'000'001, 0, 0x4A)}).line,
        " 0 t1->t1");
}

TEST(MemberChanges, SeeAnotherLengthOfTheSameNumber) {
    EXPECT_EQ(comparedData({ber(0x85, {5})}, {ber(0x85, {0, 5})}).line, " 0 5->5");
}

TEST(MemberChanges, AreAllValuesWhereTheirNumberIsAnother) {
    auto const more = comparedData({dataInteger(1)}, {dataInteger(1), dataInteger(2)});
    EXPECT_EQ(more.line, " 0 1->1 1 none->2");
    EXPECT_FALSE(more.isSameMake);
    auto const fewer = comparedData({dataInteger(1), dataInteger(2)}, {dataInteger(3)});
    EXPECT_EQ(fewer.line, " 0 1->3");
    EXPECT_FALSE(fewer.isSameMake);
    EXPECT_EQ(comparedData({dataInteger(1)}, {}).line, "");
    EXPECT_FALSE(comparedData({dataInteger(1)}, {}).isSameMake);
}

TEST(MemberChanges, AreAllValuesWhereATypeIsAnother) {
    auto const compared =
        comparedData({dataInteger(1), dataInteger(2)}, {dataUnsigned(1), dataInteger(2)});
    EXPECT_EQ(compared.line, " 0 none->1 1 2->2");
    EXPECT_FALSE(compared.isSameMake);
}

TEST(MemberChanges, AreAllValuesWhereNestingIsAnother) {
    auto const deeper = comparedData(
        {dataInteger(1), dataInteger(2), dataInteger(9)},
        {dataStructure({dataInteger(1), dataInteger(2)}), dataInteger(2), dataInteger(9)});
    EXPECT_EQ(deeper.line, " 0.0 none->1 0.1 none->2 1 2->2 2 9->9");
    EXPECT_FALSE(deeper.isSameMake);
    auto const flatter =
        comparedData({dataStructure({dataInteger(1)}), dataInteger(4)}, {dataInteger(1)});
    EXPECT_EQ(flatter.line, " 0 none->1");
    auto const other =
        comparedData({dataStructure({dataInteger(1)})}, {dataArray({dataInteger(1)})});
    EXPECT_EQ(other.line, " 0.0 1->1");
    EXPECT_FALSE(other.isSameMake);
}

TEST(MemberChanges, TakeAnEmptyGroupForAValue) {
    EXPECT_EQ(
        comparedData({dataStructure({}), dataInteger(1)}, {dataStructure({}), dataInteger(2)}).line,
        " 1 1->2");
    EXPECT_FALSE(comparedData({dataStructure({})}, {dataStructure({dataInteger(1)})}).isSameMake);
}

TEST(MemberChanges, GoAsDeepAsValuesAreRead) {
    Bytes was = dataInteger(1);
    Bytes is = dataInteger(2);
    for (std::size_t level = 1; level < kMaxDataDepth; ++level) {
        was = dataStructure({was});
        is = dataStructure({is});
    }
    auto const deepest = findMemberChanges(Elements(was), Elements(is));
    ASSERT_EQ(deepest.changes.size(), 1U);
    EXPECT_EQ(deepest.changes[0].member.size(), kMaxDataDepth);
    was = dataStructure({was});
    is = dataStructure({is});
    auto const tooDeep = findMemberChanges(Elements(was), Elements(is));
    ASSERT_EQ(tooDeep.changes.size(), 1U);
    EXPECT_EQ(tooDeep.changes[0].member.size(), kMaxDataDepth);
    EXPECT_EQ(tooDeep.changes[0].to.fault, FaultKind::tooDeep);
}

TEST(MemberChanges, TakeOctetsThatMakeNoElementForAValue) {
    // A length of five octets is not read.
    auto const compared =
        comparedData({dataInteger(1), {0x85, 0x85, 1}}, {dataInteger(1), {0x85, 0x85, 2}});
    EXPECT_EQ(compared.line, " 1 x858501->x858502");
    EXPECT_TRUE(compared.isSameMake);
}

TEST(MemberChanges, TellWhereAValueIsInTheFrame) {
    Bytes const was = concat({dataInteger(1), dataInteger(2)});
    Bytes const is = concat({dataInteger(1), dataInteger(3)});
    auto const found = findMemberChanges(Elements(was, 50), Elements(is, 70));
    ASSERT_EQ(found.changes.size(), 1U);
    EXPECT_EQ(found.changes[0].from->offset, 53U);
    EXPECT_EQ(found.changes[0].to.offset, 73U);
}

}  // namespace
}  // namespace TalTest::MemberChangesTest
