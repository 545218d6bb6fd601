// What the first octets of a file say, and the header of a record.

#include <gtest/gtest.h>

#include <TalIec61850Parser/wire/CaptureFormat.hpp>
#include <algorithm>
#include <cstddef>
#include <string>

#include "support/Bytes.hpp"

namespace TalTest::CaptureFormatTest {
namespace {

namespace wire = TalIec61850Parser::wire;

std::string kindOf(Bytes const& start) {
    auto const kind = wire::recogniseCapture([&](std::size_t fileOffset) {
        wire::Magic magic{};
        Bytes const rest(
            start.begin() + static_cast<std::ptrdiff_t>(std::min(fileOffset, start.size())),
            start.end());
        std::copy_n(rest.begin(), std::min(rest.size(), magic.size()), magic.begin());
        return magic;
    });
    std::string text = kind.isNextGeneration ? "next generation" : "";
    if (kind.variant) {
        text += kind.variant->isNanosecond ? "nano" : "micro";
        text += kind.variant->isLittleEndian ? " little" : " big";
    }
    return text;
}

TEST(CaptureFormat, IsToldByFourMagics) {
    EXPECT_EQ(kindOf({0xD4, 0xC3, 0xB2, 0xA1}), "micro little");
    EXPECT_EQ(kindOf({0xA1, 0xB2, 0xC3, 0xD4}), "micro big");
    EXPECT_EQ(kindOf({0x4D, 0x3C, 0xB2, 0xA1}), "nano little");
    EXPECT_EQ(kindOf({0xA1, 0xB2, 0x3C, 0x4D}), "nano big");
    EXPECT_EQ(kindOf({0xA1, 0xB2, 0x3C, 0x4E}), "");
    EXPECT_EQ(kindOf({}), "");
}

TEST(CaptureFormat, LooksForAClassicMagicAfterThatOfTheNextGeneration) {
    Bytes const start = {0x0A, 0x0D, 0x0D, 0x0A, 0, 0, 0, 28};
    EXPECT_EQ(kindOf(concat({start, {0x4D, 0x3C, 0x2B, 0x1A}})), "next generation");
    EXPECT_EQ(kindOf(start), "next generation");
    EXPECT_EQ(kindOf(concat({start, {0x4D, 0x3C, 0xB2, 0xA1}})), "nano little");
}

TEST(RecordHeader, IsReadInEitherByteOrder) {
    Bytes octets;
    for (std::uint8_t i = 1; i <= 16; ++i) {
        octets.push_back(i);
    }
    auto const big = wire::RecordHeader::read(octets, false);
    EXPECT_EQ(big.tsSec, 0x01020304U);
    EXPECT_EQ(big.tsUsec, 0x05060708U);
    EXPECT_EQ(big.inclLen, 0x090A0B0CU);
    EXPECT_EQ(big.origLen, 0x0D0E0F10U);
    auto const little = wire::RecordHeader::read(octets, true);
    EXPECT_EQ(little.tsSec, 0x04030201U);
    EXPECT_EQ(little.origLen, 0x100F0E0DU);
}

TEST(RecordHeader, ScalesMicrosecondsInThirtyTwoBits) {
    EXPECT_EQ(wire::toNanoseconds(999'999, false), 999'999'000U);
    EXPECT_EQ(wire::toNanoseconds(999'999, true), 999'999U);
    EXPECT_EQ(wire::toNanoseconds(5'000'000, false), 705'032'704U);
}

}  // namespace
}  // namespace TalTest::CaptureFormatTest
