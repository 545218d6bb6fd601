// Values of messages bound to the members of a data set, as far as they agree.

#include <gtest/gtest.h>

#include "scl/match/DescribedTraffic.hpp"
#include "support/Data.hpp"

namespace TalTest::BindMembersTest {
namespace {

using namespace TalIec61850Scl;
using TalIec61850Analysis::DataKind;
using TalIec61850Analysis::viewGoose;
using Path = std::vector<std::uint32_t>;

/// A frame with these values, and what they bind to.
struct Bound {
    Bytes frame;
    MemberBinding binding;
};

Bound bindValues(DataSet const& dataSet, std::vector<Bytes> const& values, std::size_t cut = 0) {
    GooseMessage message;
    message.setData(values);
    message.confRev.reset();
    Bytes frame = gooseFrame(Ethernet(), message);
    std::size_t const size = frame.size();
    frame.resize(size - cut);
    auto const view = viewGoose(frame, {.originalSize = size});
    return {.frame = frame, .binding = bindMembers(dataSet, view.allData.value())};
}

DataSet exampleSet() { return describedGoose().dataSets[0]; }

void expectEnd(MemberBinding const& binding, std::size_t bound, BindingEnd end, Path const& path,
               std::optional<DataKind> found) {
    EXPECT_EQ(binding.bound, bound);
    EXPECT_EQ(static_cast<int>(binding.end), static_cast<int>(end));
    EXPECT_EQ(binding.endPath, path);
    EXPECT_EQ(binding.found, found);
}

TEST(BindMembers, BindsAllThatAgrees) {
    auto const [frame, binding] = bindValues(exampleSet(), describedValues());
    expectEnd(binding, 6, BindingEnd::none, {}, std::nullopt);
}

TEST(BindMembers, GivesEachMemberByItsPath) {
    DataSet const dataSet = exampleSet();
    auto const [frame, binding] = bindValues(dataSet, describedValues());
    for (DataSetMember const& member : dataSet.members) {
        ASSERT_NE(binding.memberAt(dataSet, member.path), nullptr);
        EXPECT_EQ(binding.memberAt(dataSet, member.path)->name, member.name);
    }
    for (Path const& path : {Path{}, Path{2}, Path{4}, Path{2, 3}, Path{0, 0}, Path{2, 1, 0}}) {
        EXPECT_EQ(binding.memberAt(dataSet, path), nullptr);
    }
}

TEST(BindMembers, NamesNothingAfterTheEnd) {
    DataSet const dataSet = exampleSet();
    auto values = describedValues();
    values[2] = dataStructure({dataInteger(7), dataInteger(1), dataUtcTime(kDescribedStart)});
    auto const [frame, binding] = bindValues(dataSet, values);
    expectEnd(binding, 3, BindingEnd::otherType, {2, 1}, DataKind::integer);
    EXPECT_NE(binding.memberAt(dataSet, Path{2, 0}), nullptr);
    EXPECT_EQ(binding.memberAt(dataSet, Path{2, 1}), nullptr);
    EXPECT_EQ(binding.memberAt(dataSet, Path{3}), nullptr);
}

TEST(BindMembers, EndsWhereValuesAreMissing) {
    auto values = describedValues();
    values.pop_back();
    expectEnd(bindValues(exampleSet(), values).binding, 5, BindingEnd::fewerValues, {3},
              std::nullopt);
    values = describedValues();
    values[2] = dataStructure({dataInteger(7)});
    expectEnd(bindValues(exampleSet(), values).binding, 3, BindingEnd::fewerValues, {2, 1},
              std::nullopt);
    values[2] = dataStructure({});
    expectEnd(bindValues(exampleSet(), values).binding, 2, BindingEnd::fewerValues, {2, 0},
              std::nullopt);
    expectEnd(bindValues(exampleSet(), {}).binding, 0, BindingEnd::fewerValues, {0}, std::nullopt);
    // The structure is not there at all.
    values.resize(2);
    expectEnd(bindValues(exampleSet(), values).binding, 2, BindingEnd::fewerValues, {2, 0},
              std::nullopt);
}

TEST(BindMembers, EndsWhereValuesAreTooMany) {
    auto values = describedValues();
    values.push_back(dataBoolean(true));
    expectEnd(bindValues(exampleSet(), values).binding, 6, BindingEnd::moreValues, {4},
              DataKind::boolean);
    values = describedValues();
    values[2] = dataStructure(
        {dataInteger(7), dataBitString({0x80}, 6), dataUtcTime(kDescribedStart), dataUnsigned(1)});
    expectEnd(bindValues(exampleSet(), values).binding, 5, BindingEnd::moreValues, {2, 3},
              DataKind::unsignedNumber);
    expectEnd(bindValues(DataSet(), {dataBoolean(true)}).binding, 0, BindingEnd::moreValues, {0},
              DataKind::boolean);
    expectEnd(bindValues(DataSet(), {}).binding, 0, BindingEnd::none, {}, std::nullopt);
}

TEST(BindMembers, EndsAtAStructureInPlaceOfAValueAndTheOtherWay) {
    auto values = describedValues();
    values[0] = dataStructure({dataBoolean(true)});
    expectEnd(bindValues(exampleSet(), values).binding, 0, BindingEnd::otherType, {0},
              DataKind::structure);
    values = describedValues();
    values[2] = dataBoolean(true);
    expectEnd(bindValues(exampleSet(), values).binding, 2, BindingEnd::otherType, {2},
              DataKind::boolean);
}

TEST(BindMembers, TellsArraysFromStructures) {
    auto values = describedValues();
    Bytes const inside =
        concat({dataInteger(7), dataBitString({0x80}, 6), dataUtcTime(kDescribedStart)});
    values[2] = ber(0xA1, inside);
    expectEnd(bindValues(exampleSet(), values).binding, 2, BindingEnd::otherType, {2},
              DataKind::array);
    DataSet withArray = exampleSet();
    for (std::size_t i = 2; i < 5; ++i) {
        withArray.members[i].arrays = 1;
    }
    expectEnd(bindValues(withArray, values).binding, 6, BindingEnd::none, {}, std::nullopt);
    values[2] = ber(0xA2, inside);
    expectEnd(bindValues(withArray, values).binding, 2, BindingEnd::otherType, {2},
              DataKind::structure);
}

TEST(BindMembers, TellsArraysInsideOfStructures) {
    DataSet dataSet;
    dataSet.members = {memberOf({0, 0, 0}, BasicType::int32),
                       memberOf({0, 0, 1}, BasicType::int32)};
    for (DataSetMember& member : dataSet.members) {
        member.arrays = 2;
    }
    Bytes const both = concat({dataInteger(1), dataInteger(2)});
    expectEnd(bindValues(dataSet, {dataStructure({ber(0xA1, both)})}).binding, 2, BindingEnd::none,
              {}, std::nullopt);
    expectEnd(bindValues(dataSet, {dataStructure({ber(0xA2, both)})}).binding, 0,
              BindingEnd::otherType, {0, 0}, DataKind::structure);
}

TEST(BindMembers, BindsAMemberOfUnknownTypeToAnyValue) {
    DataSet dataSet;
    dataSet.members = {memberOf({0}, BasicType::unknown), memberOf({1}, BasicType::boolean)};
    for (Bytes const& value :
         {dataBoolean(true), dataFloat(1), dataStructure({dataInteger(1), dataInteger(2)}),
          ber(0x99, {0x01})}) {
        auto const [frame, binding] = bindValues(dataSet, {value, dataBoolean(false)});
        expectEnd(binding, 2, BindingEnd::none, {}, std::nullopt);
        EXPECT_EQ(binding.memberAt(dataSet, Path{0, 0}), nullptr);
    }
}

TEST(BindMembers, EndsAtOctetsThatAreNoValue) {
    DataSet dataSet;
    dataSet.members = {memberOf({0}, BasicType::boolean), memberOf({1}, BasicType::unknown)};
    auto const [frame, binding] =
        bindValues(dataSet, {dataBoolean(true), {0x9F, 0x81, 0x01, 0x00}});
    expectEnd(binding, 1, BindingEnd::otherType, {1}, DataKind::unreadable);
}

TEST(BindMembers, SaysThatTheLastValueIsNotAllCaptured) {
    std::size_t const size = dataFloat(1).size();
    for (std::size_t cut = 1; cut < size; ++cut) {
        auto const [frame, binding] = bindValues(exampleSet(), describedValues(), cut);
        EXPECT_EQ(binding.bound, 5U);
        EXPECT_EQ(static_cast<int>(binding.end), static_cast<int>(BindingEnd::notCaptured));
        EXPECT_EQ(binding.endPath, Path{3});
    }
    // Between two values of the data set nothing tells that another one was cut off.
    expectEnd(bindValues(exampleSet(), describedValues(), size).binding, 5, BindingEnd::fewerValues,
              {3}, std::nullopt);
}

TEST(BindMembers, SaysThatAStructureIsNotAllCaptured) {
    DataSet deep;
    deep.members = {memberOf({0, 0, 0}, BasicType::int32), memberOf({0, 0, 1}, BasicType::int32),
                    memberOf({0, 1}, BasicType::int32)};
    Bytes const value =
        dataStructure({dataStructure({dataInteger(1), dataInteger(2)}), dataInteger(3)});
    ASSERT_EQ(value.size(), 13U);
    // By the octets that are cut off: how many values are all there.
    std::vector<std::size_t> const whole = {3, 2, 2, 2, 1, 1, 1, 0, 0, 0, 0, 0, 0};
    for (std::size_t cut = 1; cut < value.size(); ++cut) {
        auto const binding = bindValues(deep, {value}, cut).binding;
        EXPECT_EQ(binding.bound, whole[cut]) << cut;
        EXPECT_EQ(static_cast<int>(binding.end), static_cast<int>(BindingEnd::notCaptured)) << cut;
    }
}

TEST(BindMembers, TakesMembersInWhateverOrder) {
    for (auto const& paths : {std::vector<Path>{{1}, {0}},
                              {{0}, {0}},
                              {{}, {0}},
                              {{0}, {2}},
                              {{0, 0}, {0}},
                              {{0}, {0, 0}},
                              {{4'000'000'000}}}) {
        DataSet dataSet;
        for (Path const& path : paths) {
            dataSet.members.push_back(memberOf(path, BasicType::boolean));
        }
        auto const binding = bindValues(dataSet, {dataBoolean(true), dataBoolean(false)}).binding;
        EXPECT_LE(binding.bound, 1U);
        EXPECT_NE(static_cast<int>(binding.end), static_cast<int>(BindingEnd::none));
    }
}

TEST(BindMembers, EndsBelowTheDepthThatIsRead) {
    constexpr std::size_t kLevels = 1000;
    DataSet dataSet;
    dataSet.members = {memberOf(Path(kLevels + 1, 0), BasicType::boolean)};
    auto const binding = bindValues(dataSet, {nested(0xA2, kLevels, dataBoolean(true))}).binding;
    EXPECT_EQ(binding.bound, 0U);
    EXPECT_EQ(static_cast<int>(binding.end), static_cast<int>(BindingEnd::otherType));
    EXPECT_EQ(binding.endPath.size(), TalIec61850Analysis::kMaxDataDepth);
}

TEST(BindMembers, StopsAtTheFirstOfManyMembers) {
    constexpr std::uint32_t kMany = 100'000;
    DataSet dataSet;
    dataSet.members.reserve(kMany);
    for (std::uint32_t i = 0; i < kMany; ++i) {
        dataSet.members.push_back(memberOf({i}, BasicType::boolean));
    }
    for (int i = 0; i < 10'000; ++i) {
        auto const binding = bindValues(dataSet, {dataInteger(1)}).binding;
        ASSERT_EQ(binding.bound, 0U);
    }
}

}  // namespace
}  // namespace TalTest::BindMembersTest
