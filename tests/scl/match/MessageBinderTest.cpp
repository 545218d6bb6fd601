// Messages of one stream, bound only where their values are of another make.

#include <gtest/gtest.h>

#include "scl/match/DescribedTraffic.hpp"
#include "support/Data.hpp"

namespace TalTest::MessageBinderTest {
namespace {

using namespace TalIec61850Scl;
using TalIec61850Analysis::DataViews;
using TalIec61850Analysis::Elements;

Bytes joinedValues(std::vector<Bytes> const& values) {
    Bytes joined;
    for (Bytes const& value : values) {
        append(joined, value);
    }
    return joined;
}

/// Binds values, all of them captured unless the level ends elsewhere.
bool bindTo(MessageBinder& binder, Bytes const& octets, std::size_t claimedEnd = Elements::kNoEnd) {
    return binder.bind(DataViews(Elements(octets, 0, claimedEnd)));
}

TEST(MessageBinder, BindsAMessageOfAnotherMakeAlone) {
    DataSet const dataSet = describedGoose().dataSets[0];
    MessageBinder binder(dataSet);
    EXPECT_EQ(binder.binding(), nullptr);
    auto values = describedValues();
    EXPECT_TRUE(bindTo(binder, joinedValues(values)));
    auto const first = binder.binding();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->bound, 6U);
    EXPECT_FALSE(bindTo(binder, joinedValues(values)));
    values[0] = dataBoolean(true);
    EXPECT_FALSE(bindTo(binder, joinedValues(values)));
    EXPECT_EQ(binder.binding(), first);
    values[0] = dataInteger(1);
    EXPECT_TRUE(bindTo(binder, joinedValues(values)));
    EXPECT_EQ(binder.binding()->bound, 0U);
    EXPECT_EQ(first->bound, 6U);
    EXPECT_TRUE(bindTo(binder, joinedValues(describedValues())));
    EXPECT_EQ(binder.binding()->bound, 6U);
}

TEST(MessageBinder, TakesNumbersOfAnotherRangeForAnotherMake) {
    DataSet dataSet;
    dataSet.members = {memberOf({0}, BasicType::int8)};
    MessageBinder binder(dataSet);
    EXPECT_TRUE(bindTo(binder, ber(0x85, {0x00, 0x05})));
    EXPECT_EQ(binder.binding()->bound, 1U);
    EXPECT_TRUE(bindTo(binder, ber(0x85, {0x01, 0x2C})));
    EXPECT_EQ(binder.binding()->bound, 0U);
}

TEST(MessageBinder, TellsWhatWasCutOffFromWhatIsDamaged) {
    DataSet const dataSet = describedGoose().dataSets[0];
    MessageBinder binder(dataSet);
    Bytes octets = joinedValues(describedValues());
    std::size_t const whole = octets.size();
    octets.pop_back();
    EXPECT_TRUE(bindTo(binder, octets, whole));
    EXPECT_EQ(static_cast<int>(binder.binding()->end), static_cast<int>(BindingEnd::notCaptured));
    // The same octets, of a level that ends there.
    EXPECT_TRUE(bindTo(binder, octets, octets.size()));
    EXPECT_EQ(static_cast<int>(binder.binding()->end), static_cast<int>(BindingEnd::otherType));
    EXPECT_TRUE(bindTo(binder, octets, whole));
    EXPECT_EQ(static_cast<int>(binder.binding()->end), static_cast<int>(BindingEnd::notCaptured));
}

}  // namespace
}  // namespace TalTest::MessageBinderTest
