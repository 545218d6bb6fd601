#include <gtest/gtest.h>

#include "support/Bytes.hpp"

namespace TalTest::BytesTest {
namespace {

TEST(BytesBuilder, WritesTheMostSignificantOctetFirst) {
    EXPECT_EQ(bigEndian(0x010203, 3), (Bytes{0x01, 0x02, 0x03}));
    EXPECT_EQ(bigEndian(0x010203, 2), (Bytes{0x02, 0x03}));
    EXPECT_EQ(bigEndian(1, 0), Bytes{});
    EXPECT_EQ(bigEndian(1, 10), concat({repeat(0, 9), {0x01}}));
}

TEST(BytesBuilder, JoinsParts) {
    EXPECT_EQ(concat({}), Bytes{});
    EXPECT_EQ(concat({text("AB"), {}, {0x00}, repeat(7, 2)}), (Bytes{'A', 'B', 0, 7, 7}));
}

TEST(BytesBuilder, FindsAPart) {
    EXPECT_EQ(find({1, 2, 3}, {2, 3}), 1U);
    EXPECT_EQ(find({1, 2, 3}, {3, 4}), std::nullopt);
    EXPECT_EQ(find({}, {}), 0U);
}

TEST(BytesBuilder, CutsAPrefix) {
    EXPECT_EQ(prefix({1, 2, 3}, 2), (Bytes{1, 2}));
    EXPECT_EQ(prefix({1, 2, 3}, 4), (Bytes{1, 2, 3}));
}

}  // namespace
}  // namespace TalTest::BytesTest
