#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/codec/BytesConverter.hpp>
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace TalTest::BytesConverterTest {
namespace {

using TalIec61850Parser::BytesConverter;

static_assert(std::is_same_v<decltype(BytesConverter::_isSystemLittleEndian()), bool>);
static_assert(std::is_same_v<decltype(BytesConverter::_swapBytes16(0)), std::uint16_t>);
static_assert(std::is_same_v<decltype(BytesConverter::_swapBytes32(0)), std::uint32_t>);
static_assert(std::is_same_v<decltype(BytesConverter::_swapBytes64(0)), std::uint64_t>);
static_assert(std::is_same_v<decltype(BytesConverter::convertUint16(0, true)), std::uint16_t>);
static_assert(std::is_same_v<decltype(BytesConverter::convertInt16(0, true)), std::int16_t>);
static_assert(std::is_same_v<decltype(BytesConverter::convertUint32(0, true)), std::uint32_t>);
static_assert(std::is_same_v<decltype(BytesConverter::convertInt32(0, true)), std::int32_t>);
static_assert(std::is_same_v<decltype(BytesConverter::convertUint64(0, true)), std::uint64_t>);
static_assert(std::is_same_v<decltype(BytesConverter::convertInt64(0, true)), std::int64_t>);

constexpr bool kHostIsLittle = std::endian::native == std::endian::little;
constexpr bool kForeign = !kHostIsLittle;

template <typename Integer>
Integer reversed(Integer value) {
    auto octets = std::bit_cast<std::array<std::uint8_t, sizeof(Integer)>>(value);
    std::reverse(octets.begin(), octets.end());
    return std::bit_cast<Integer>(octets);
}

TEST(BytesConverterHostOrder, IsThatOfTheMemory) {
    auto const octets = std::bit_cast<std::array<std::uint8_t, 2>>(std::uint16_t{0x0102});
    EXPECT_EQ(BytesConverter::_isSystemLittleEndian(), octets[0] == 0x02);
}

TEST(BytesConverterSwap, ReversesTheOctets) {
    EXPECT_EQ(BytesConverter::_swapBytes16(0x1122), 0x2211U);
    EXPECT_EQ(BytesConverter::_swapBytes32(0x11223344U), 0x44332211U);
    EXPECT_EQ(BytesConverter::_swapBytes64(0x1122334455667788U), 0x8877665544332211U);
}

TEST(BytesConverterSwap, MovesEverySingleBitToTheMirroredOctet) {
    for (unsigned bit = 0; bit < 64; ++bit) {
        SCOPED_TRACE(bit);
        unsigned const inOctet = bit % 8;
        EXPECT_EQ(BytesConverter::_swapBytes64(std::uint64_t{1} << bit),
                  std::uint64_t{1} << (56 - (bit - inOctet) + inOctet));
        if (bit < 32) {
            EXPECT_EQ(BytesConverter::_swapBytes32(std::uint32_t{1} << bit),
                      std::uint32_t{1} << (24 - (bit - inOctet) + inOctet));
        }
        if (bit < 16) {
            EXPECT_EQ(BytesConverter::_swapBytes16(static_cast<std::uint16_t>(1U << bit)),
                      1U << (8 - (bit - inOctet) + inOctet));
        }
    }
}

TEST(BytesConverterConvert, ReturnsAValueInHostOrderUnchanged) {
    EXPECT_EQ(BytesConverter::convertUint16(0x0102, kHostIsLittle), 0x0102U);
    EXPECT_EQ(BytesConverter::convertInt16(-2, kHostIsLittle), -2);
    EXPECT_EQ(BytesConverter::convertUint32(0x11223344U, kHostIsLittle), 0x11223344U);
    EXPECT_EQ(BytesConverter::convertInt32(255, kHostIsLittle), 255);
    EXPECT_EQ(BytesConverter::convertUint64(0x0102030405060708U, kHostIsLittle),
              0x0102030405060708U);
    EXPECT_EQ(BytesConverter::convertInt64(-3, kHostIsLittle), -3);
}

TEST(BytesConverterConvert, ReversesAnUnsignedValueInTheOtherOrder) {
    EXPECT_EQ(BytesConverter::convertUint16(0x0102, kForeign), 0x0201U);
    EXPECT_EQ(BytesConverter::convertUint32(0x11223344U, kForeign), 0x44332211U);
    EXPECT_EQ(BytesConverter::convertUint64(0x0102030405060708U, kForeign), 0x0807060504030201U);
}

TEST(BytesConverterConvert, ReversesTheBitPatternOfASignedValue) {
    EXPECT_EQ(BytesConverter::convertInt16(-2, kForeign), -257);
    EXPECT_EQ(BytesConverter::convertInt16(0x0080, kForeign), -32768);
    EXPECT_EQ(BytesConverter::convertInt32(255, kForeign), -16777216);
    EXPECT_EQ(BytesConverter::convertInt32(-2, kForeign), -16777217);
    EXPECT_EQ(BytesConverter::convertInt32(0x80, kForeign),
              std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(BytesConverter::convertInt64(0x80, kForeign),
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(BytesConverter::convertInt64(-2, kForeign), -72057594037927937);
}

TEST(BytesConverterConvert, LeavesAValueOfEqualOctetsUnchanged) {
    for (bool const isLittleEndian : {false, true}) {
        for (std::uint64_t octet = 0; octet <= 0xFF; ++octet) {
            std::uint64_t const wide = octet * 0x0101010101010101U;
            auto const middle = static_cast<std::uint32_t>(wide);
            auto const narrow = static_cast<std::uint16_t>(wide);
            EXPECT_EQ(BytesConverter::convertUint64(wide, isLittleEndian), wide);
            EXPECT_EQ(BytesConverter::convertUint32(middle, isLittleEndian), middle);
            EXPECT_EQ(BytesConverter::convertUint16(narrow, isLittleEndian), narrow);
            EXPECT_EQ(
                BytesConverter::convertInt64(std::bit_cast<std::int64_t>(wide), isLittleEndian),
                std::bit_cast<std::int64_t>(wide));
            EXPECT_EQ(
                BytesConverter::convertInt32(std::bit_cast<std::int32_t>(middle), isLittleEndian),
                std::bit_cast<std::int32_t>(middle));
            EXPECT_EQ(
                BytesConverter::convertInt16(std::bit_cast<std::int16_t>(narrow), isLittleEndian),
                std::bit_cast<std::int16_t>(narrow));
        }
    }
}

TEST(BytesConverterConvert, ReversesEverySixteenBitValue) {
    for (std::uint32_t pattern = 0; pattern <= 0xFFFF; ++pattern) {
        auto const value = static_cast<std::uint16_t>(pattern);
        auto const signedValue = std::bit_cast<std::int16_t>(value);
        ASSERT_EQ(BytesConverter::convertUint16(value, kForeign), reversed(value));
        ASSERT_EQ(BytesConverter::convertInt16(signedValue, kForeign), reversed(signedValue));
    }
}

RC_GTEST_PROP(BytesConverterConvert, ReversesAnyValueInTheOtherOrder,
              (std::uint64_t wide, std::uint32_t middle, std::uint16_t narrow)) {
    RC_ASSERT(BytesConverter::convertUint64(wide, kForeign) == reversed(wide));
    RC_ASSERT(BytesConverter::convertUint32(middle, kForeign) == reversed(middle));
    RC_ASSERT(BytesConverter::convertUint16(narrow, kForeign) == reversed(narrow));
}

RC_GTEST_PROP(BytesConverterConvert, ReversesAnySignedValueInTheOtherOrder,
              (std::int64_t wide, std::int32_t middle, std::int16_t narrow)) {
    RC_ASSERT(BytesConverter::convertInt64(wide, kForeign) == reversed(wide));
    RC_ASSERT(BytesConverter::convertInt32(middle, kForeign) == reversed(middle));
    RC_ASSERT(BytesConverter::convertInt16(narrow, kForeign) == reversed(narrow));
}

RC_GTEST_PROP(BytesConverterConvert, IsUndoneByConvertingTwice,
              (std::int64_t wide, std::int32_t middle, std::int16_t narrow, bool isLittleEndian)) {
    auto const twice = [isLittleEndian](auto convert, auto value) {
        return convert(convert(value, isLittleEndian), isLittleEndian);
    };
    RC_ASSERT(twice(BytesConverter::convertInt64, wide) == wide);
    RC_ASSERT(twice(BytesConverter::convertInt32, middle) == middle);
    RC_ASSERT(twice(BytesConverter::convertInt16, narrow) == narrow);
    auto const unsignedWide = std::bit_cast<std::uint64_t>(wide);
    auto const unsignedMiddle = std::bit_cast<std::uint32_t>(middle);
    auto const unsignedNarrow = std::bit_cast<std::uint16_t>(narrow);
    RC_ASSERT(twice(BytesConverter::convertUint64, unsignedWide) == unsignedWide);
    RC_ASSERT(twice(BytesConverter::convertUint32, unsignedMiddle) == unsignedMiddle);
    RC_ASSERT(twice(BytesConverter::convertUint16, unsignedNarrow) == unsignedNarrow);
}

}  // namespace
}  // namespace TalTest::BytesConverterTest
