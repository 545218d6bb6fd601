// Lengths as the decoders of single packets read them.

#include <gtest/gtest.h>

#include <TalIec61850Parser/wire/ShortLength.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "support/Bytes.hpp"

namespace TalTest::ShortLengthTest {
namespace {

using TalIec61850Parser::wire::furtherLengthOctets;
using TalIec61850Parser::wire::readShortLength;

/// Length and size, as 300 in 3; "none" for none.
std::string lengthAt(Bytes const& data, std::size_t position = 0) {
    auto const read = readShortLength(data, position);
    return read ? std::to_string(read->length) + " in " + std::to_string(read->size) : "none";
}

TEST(ShortLength, IsReadFromOneToThreeOctets) {
    EXPECT_EQ(lengthAt({0x00}), "0 in 1");
    EXPECT_EQ(lengthAt({0x7F, 0xFF}), "127 in 1");
    EXPECT_EQ(lengthAt({0x81, 0x00}), "0 in 2");
    EXPECT_EQ(lengthAt({0x81, 0xFF, 0x01}), "255 in 2");
    EXPECT_EQ(lengthAt({0x82, 0x00, 0x05}), "5 in 3");
    EXPECT_EQ(lengthAt({0x82, 0x12, 0x34, 0x56}), "4660 in 3");
    EXPECT_EQ(lengthAt({0xFF, 0xFF, 0x82, 0xFF, 0xFE}, 2), "65534 in 3");
}

TEST(ShortLength, HasNoOtherForm) {
    for (unsigned first = 0; first < 256; ++first) {
        auto const octet = static_cast<std::uint8_t>(first);
        std::optional<std::size_t> const expected = first < 0x80 ? std::optional<std::size_t>(0)
                                                    : first == 0x81 || first == 0x82
                                                        ? std::optional<std::size_t>(first - 0x80)
                                                        : std::nullopt;
        EXPECT_EQ(furtherLengthOctets(octet), expected) << first;
        EXPECT_EQ(lengthAt({octet, 0, 0, 0, 0, 0}) == "none", !expected) << first;
    }
}

TEST(ShortLength, IsNoneWhereItsOctetsAreMissing) {
    EXPECT_EQ(lengthAt({}), "none");
    EXPECT_EQ(lengthAt({0x01, 0x02}, 2), "none");
    EXPECT_EQ(lengthAt({0x01, 0x02}, 3), "none");
    EXPECT_EQ(lengthAt({0x81}), "none");
    EXPECT_EQ(lengthAt({0x82}), "none");
    EXPECT_EQ(lengthAt({0x82, 0x01}), "none");
    EXPECT_EQ(lengthAt({0x00, 0x00, 0x82, 0x01}, 2), "none");
}

}  // namespace
}  // namespace TalTest::ShortLengthTest
