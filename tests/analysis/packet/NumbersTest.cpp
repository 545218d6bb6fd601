// INTEGERs and numbers without a sign, of every width.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/packet/Integer.hpp>
#include <cstdint>
#include <limits>

#include "support/Ber.hpp"
#include "support/Bytes.hpp"

namespace TalIec61850Analysis::NumbersTest {
namespace {

using TalTest::Bytes;

Integer readInteger(Bytes const& octets) {
    return toOwned(TalIec61850Analysis::readInteger(octets));
}

Readable<std::uint64_t> readUnsigned(Bytes const& octets) {
    return toOwned(TalIec61850Analysis::readUnsigned(octets));
}

Integer signedNumber(std::int64_t number) { return number; }
Integer unsignedNumber(std::uint64_t number) { return number; }
Integer octetsAlone(OctetString const& octets) { return octets; }

TEST(Integers, AreTwosComplement) {
    EXPECT_EQ(readInteger({0x00}), signedNumber(0));
    EXPECT_EQ(readInteger({0x7F}), signedNumber(127));
    EXPECT_EQ(readInteger({0x80}), signedNumber(-128));
    EXPECT_EQ(readInteger({0x00, 0x80}), signedNumber(128));
    EXPECT_EQ(readInteger({0xFF, 0xFF, 0xFF, 0xFF}), signedNumber(-1));
    EXPECT_EQ(readInteger({0xFF, 0x7F}), signedNumber(-129));
}

TEST(Integers, KeepTheirValueBehindOctetsThatSayNothing) {
    EXPECT_EQ(readInteger({0x00, 0xFF, 0xFF, 0xFF, 0xFF}), signedNumber(0xFFFFFFFF));
    EXPECT_EQ(readInteger(Bytes(20, 0xFF)), signedNumber(-1));
    EXPECT_EQ(readInteger(Bytes(20, 0x00)), signedNumber(0));
    EXPECT_EQ(readInteger({0, 0, 0, 0, 0, 0, 0, 0, 0, 0x80}), signedNumber(128));
    EXPECT_EQ(readInteger({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}),
              signedNumber(-129));
}

TEST(Integers, ReachTheEndsOf64Bits) {
    EXPECT_EQ(readInteger({0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}),
              signedNumber(std::numeric_limits<std::int64_t>::max()));
    EXPECT_EQ(readInteger({0x80, 0, 0, 0, 0, 0, 0, 0}),
              signedNumber(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(readInteger({0x00, 0x80, 0, 0, 0, 0, 0, 0, 0}),
              unsignedNumber(std::uint64_t{1} << 63U));
    EXPECT_EQ(readInteger({0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}),
              unsignedNumber(std::numeric_limits<std::uint64_t>::max()));
}

TEST(Integers, StayOctetsBeyond64Bits) {
    for (OctetString const& octets :
         {OctetString{0x01, 0, 0, 0, 0, 0, 0, 0, 0}, OctetString{0xFF, 0x7F, 0, 0, 0, 0, 0, 0, 0},
          OctetString{0x00, 0x01, 0, 0, 0, 0, 0, 0, 0, 0}, OctetString{}}) {
        EXPECT_EQ(readInteger(octets), octetsAlone(octets));
    }
}

RC_GTEST_PROP(Integers, ComeBackFromTheirFewestOctets, (std::int64_t number)) {
    RC_ASSERT(readInteger(TalTest::minimalInteger(number)) == signedNumber(number));
}

TEST(Integers, TellWhetherTheyAreNegative) {
    OctetString const octets = {0xFF};
    EXPECT_TRUE(isNegative(std::int64_t{-1}));
    EXPECT_FALSE(isNegative(std::int64_t{0}));
    EXPECT_FALSE(isNegative(~std::uint64_t{0}));
    EXPECT_FALSE(isNegative(Octets(octets)));
}

TEST(NumbersWithoutASign, AreAllTheirOctets) {
    using Number = Readable<std::uint64_t>;
    EXPECT_EQ(readUnsigned({0xFF}), Number(std::uint64_t{0xFF}));
    EXPECT_EQ(readUnsigned({0x0F, 0x9F}), Number(std::uint64_t{3999}));
    EXPECT_EQ(readUnsigned(Bytes(8, 0xFF)), Number(~std::uint64_t{0}));
    EXPECT_EQ(readUnsigned({0, 0, 0, 0, 0, 0, 0, 0, 0x80}), Number(std::uint64_t{0x80}));
    EXPECT_EQ(readUnsigned(Bytes(9, 0x01)), Number(OctetString(9, 0x01)));
    EXPECT_EQ(readUnsigned({}), Number(OctetString{}));
    EXPECT_EQ(readUnsigned(Bytes(12, 0x00)), Number(std::uint64_t{0}));
}

}  // namespace
}  // namespace TalIec61850Analysis::NumbersTest
