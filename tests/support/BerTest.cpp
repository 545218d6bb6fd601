#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "support/Ber.hpp"

namespace TalTest::BerTest {
namespace {

TEST(BerBuilder, WritesLengthUpTo127InOneOctet) {
    EXPECT_EQ(ber(0x83, {}), (Bytes{0x83, 0x00}));
    EXPECT_EQ(ber(0x83, {0x01}), (Bytes{0x83, 0x01, 0x01}));
    EXPECT_EQ(prefix(ber(0x87, repeat(0, 127)), 3), (Bytes{0x87, 0x7F, 0x00}));
}

TEST(BerBuilder, WritesLengthOf128InOneExtraOctet) {
    EXPECT_EQ(prefix(ber(0x87, repeat(0, 128)), 4), (Bytes{0x87, 0x81, 0x80, 0x00}));
    EXPECT_EQ(ber(0x87, repeat(0, 128)).size(), 131U);
}

TEST(BerBuilder, TakesAnotherLengthOctetWhereTheLengthOutgrowsThem) {
    EXPECT_EQ(berLength(0xFF), (Bytes{0x81, 0xFF}));
    EXPECT_EQ(berLength(0x100), (Bytes{0x82, 0x01, 0x00}));
    EXPECT_EQ(berLength(0xFFFF), (Bytes{0x82, 0xFF, 0xFF}));
    EXPECT_EQ(berLength(0x10000), (Bytes{0x83, 0x01, 0x00, 0x00}));
    EXPECT_EQ(berLength(0x1000000), (Bytes{0x84, 0x01, 0x00, 0x00, 0x00}));
}

TEST(BerBuilder, WritesTheLengthFormAskedFor) {
    Bytes const value = {0xAA, 0xBB};
    EXPECT_EQ(ber(0x80, value, LengthForm::oneOctet), (Bytes{0x80, 0x81, 0x02, 0xAA, 0xBB}));
    EXPECT_EQ(ber(0x80, value, LengthForm::twoOctets), (Bytes{0x80, 0x82, 0x00, 0x02, 0xAA, 0xBB}));
    EXPECT_EQ(ber(0x80, value, LengthForm::threeOctets),
              (Bytes{0x80, 0x83, 0x00, 0x00, 0x02, 0xAA, 0xBB}));
    EXPECT_EQ(ber(0x80, value, LengthForm::fourOctets),
              (Bytes{0x80, 0x84, 0x00, 0x00, 0x00, 0x02, 0xAA, 0xBB}));
    EXPECT_EQ(ber(0x80, value, LengthForm::indefinite), (Bytes{0x80, 0x80, 0xAA, 0xBB}));
}

TEST(BerBuilder, RefusesALengthFormTooShortForTheValue) {
    EXPECT_THROW((void)ber(0x80, repeat(0, 256), LengthForm::oneOctet), std::length_error);
}

TEST(BerBuilder, WritesATextWithoutItsTerminatingZero) {
    EXPECT_EQ(ber(0x82, "GO1"), (Bytes{0x82, 0x03, 'G', 'O', '1'}));
}

TEST(BerBuilder, WritesWhateverLengthIsClaimed) {
    EXPECT_EQ(berClaiming(0x80, {0x7F}, {0x01}), (Bytes{0x80, 0x7F, 0x01}));
    EXPECT_EQ(berClaiming(0x80, {}, {}), (Bytes{0x80}));
}

TEST(BerBuilder, NestsFromTheInnermostOut) {
    EXPECT_EQ(nested(0xA2, 0, {0x01}), (Bytes{0x01}));
    EXPECT_EQ(nested(0xA2, 3), (Bytes{0xA2, 0x04, 0xA2, 0x02, 0xA2, 0x00}));
    EXPECT_EQ(nested(0xA2, 2, {0x83, 0x01, 0xFF}),
              (Bytes{0xA2, 0x05, 0xA2, 0x03, 0x83, 0x01, 0xFF}));
}

TEST(BerBuilder, NestsWithTheLengthFormsThatTheLevelsNeed) {
    Bytes byHand = {0x01, 0x02};
    for (int level = 0; level < 300; ++level) {
        byHand = ber(0x30, byHand);
    }
    EXPECT_EQ(nested(0x30, 300, {0x01, 0x02}), byHand);
}

TEST(BerBuilder, NestsAMillionLevels) {
    Bytes const whole = nested(0xA2, 1'000'000);
    EXPECT_EQ(prefix(whole, 2), (Bytes{0xA2, 0x83}));
    EXPECT_EQ(ber(0xA2, Bytes(whole.begin() + 5, whole.end())), whole);
}

TEST(BerBuilder, SetsAZeroBeforeTheLeadingBitOfAnUnsigned) {
    EXPECT_EQ(minimalUnsigned(0), (Bytes{0x00}));
    EXPECT_EQ(minimalUnsigned(127), (Bytes{0x7F}));
    EXPECT_EQ(minimalUnsigned(128), (Bytes{0x00, 0x80}));
    EXPECT_EQ(minimalUnsigned(0xFFFFFFFF), (Bytes{0x00, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(minimalUnsigned(std::numeric_limits<std::uint64_t>::max()),
              concat({{0x00}, repeat(0xFF, 8)}));
}

TEST(BerBuilder, WritesIntegersInTwosComplement) {
    EXPECT_EQ(minimalInteger(-1), (Bytes{0xFF}));
    EXPECT_EQ(minimalInteger(-128), (Bytes{0x80}));
    EXPECT_EQ(minimalInteger(-129), (Bytes{0xFF, 0x7F}));
    EXPECT_EQ(minimalInteger(255), (Bytes{0x00, 0xFF}));
    EXPECT_EQ(minimalInteger(std::numeric_limits<std::int64_t>::min()),
              concat({{0x80}, repeat(0, 7)}));
}

TEST(BerBuilder, WritesAnUnsignedInTheWidthAskedFor) {
    EXPECT_EQ(berUnsigned<0>(0x85, MinimalUnsigned(5)), (Bytes{0x85, 0x01, 0x05}));
    EXPECT_EQ(berUnsigned<0>(0x85, MinimalUnsigned(5, 4)), (Bytes{0x85, 0x04, 0, 0, 0, 5}));
    EXPECT_EQ(berUnsigned<2>(0x82, Unsigned<2>(5)), (Bytes{0x82, 0x02, 0, 5}));
    EXPECT_EQ(berUnsigned<2>(0x82, std::nullopt), Bytes{});
}

}  // namespace
}  // namespace TalTest::BerTest
