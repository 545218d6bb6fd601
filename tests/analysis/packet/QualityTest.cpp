#include <gtest/gtest.h>

#include <TalIec61850Analysis/packet/BitString.hpp>
#include <TalIec61850Analysis/packet/Quality.hpp>
#include <TalIec61850Analysis/packet/SampleQuality.hpp>
#include <array>
#include <string>

#include "tools/render/QualityText.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Analysis::QualityTest {
namespace {

using namespace TalIec61850Tools;
std::optional<BitString> readBitString(OctetString const& octets) {
    auto const bits = TalIec61850Analysis::readBitString(octets);
    return bits ? std::optional(toOwned(*bits)) : std::nullopt;
}

/// A bit-string of zeros and ones.
BitString bits(std::string const& text) {
    BitString string{.octets = OctetString((text.size() + 7) / 8), .unusedBits = 0};
    string.unusedBits = static_cast<std::uint8_t>(8 * string.octets.size() - text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '1') {
            string.octets[i / 8] = static_cast<std::uint8_t>(string.octets[i / 8] | 0x80U >> i % 8);
        }
    }
    return string;
}

std::string qualityText(std::string const& text) {
    return toText(readQuality(toView(bits(text))).value());
}

TEST(BitStrings, LeaveOutWhatIsUnused) {
    EXPECT_EQ(toText(readBitString({0x03, 0x00, 0xFF}).value()), "0000000011111");
    EXPECT_EQ(toText(readBitString({0x06, 0x40}).value()), "01");
    EXPECT_EQ(toText(readBitString({0x00, 0x81}).value()), "10000001");
    EXPECT_EQ(toText(readBitString({0x00}).value()), "");
    EXPECT_EQ(readBitString({0x07, 0x80}).value().size(), 1U);
}

TEST(BitStrings, CountNoMoreUnusedBitsThanThereAre) {
    EXPECT_EQ(readBitString({}), std::nullopt);
    EXPECT_EQ(readBitString({0x01}), std::nullopt);
    EXPECT_EQ(readBitString({0x08, 0x00}), std::nullopt);
    EXPECT_EQ(readBitString({0xFF, 0x00, 0x00}), std::nullopt);
}

TEST(BitStrings, OfTwoBitsReadAsPositions) {
    EXPECT_EQ(dbposReading(bits("00")), "intermediate-state");
    EXPECT_EQ(dbposReading(bits("01")), "off");
    EXPECT_EQ(dbposReading(bits("10")), "on");
    EXPECT_EQ(dbposReading(bits("11")), "bad-state");
    EXPECT_EQ(dbposReading(bits("")), "");
    EXPECT_EQ(dbposReading(bits("1")), "");
    EXPECT_EQ(dbposReading(bits("100")), "");
}

TEST(Qualities, HaveThirteenBits) {
    for (std::size_t count = 0; count < 40; ++count) {
        EXPECT_EQ(readQuality(toView(bits(std::string(count, '1')))).has_value(), count == 13)
            << count;
    }
}

TEST(Qualities, NameTheirValidityByTheFirstTwoBits) {
    EXPECT_EQ(qualityText("0000000000000"), "good");
    EXPECT_EQ(qualityText("0100000000000"), "invalid");
    EXPECT_EQ(qualityText("1000000000000"), "reserved");
    EXPECT_EQ(qualityText("1100000000000"), "questionable");
}

constexpr std::array<char const*, 11> kNamesFromThirdBit = {
    "overflow",     "outOfRange", "badReference", "oscillatory", "failure",        "oldData",
    "inconsistent", "inaccurate", "substituted",  "test",        "operatorBlocked"};

TEST(Qualities, NameEveryOtherBit) {
    for (std::size_t i = 0; i < kNamesFromThirdBit.size(); ++i) {
        std::string text(13, '0');
        text[i + 2] = '1';
        EXPECT_EQ(qualityText(text), std::string("good, ") + kNamesFromThirdBit[i]);
    }
}

TEST(Qualities, KeepTheFlagsInTheirOrder) {
    EXPECT_EQ(qualityText("1100000100010"), "questionable, oldData, test");
    EXPECT_EQ(setFlags(readQuality(toView(bits("0011111111111"))).value()),
              std::vector<std::string_view>(kNamesFromThirdBit.begin(), kNamesFromThirdBit.end()));
}

TEST(SampleQualities, CountBitsFromTheLowest) {
    EXPECT_EQ(toText(SampleQuality{0}), "good");
    EXPECT_EQ(toText(SampleQuality{1}), "invalid");
    EXPECT_EQ(toText(SampleQuality{2}), "reserved");
    EXPECT_EQ(toText(SampleQuality{3}), "questionable");
    for (std::size_t i = 0; i < kNamesFromThirdBit.size(); ++i) {
        EXPECT_EQ(toText(SampleQuality{std::uint32_t{4} << i}),
                  std::string("good, ") + kNamesFromThirdBit[i]);
    }
    EXPECT_EQ(toText(SampleQuality{0x2000}), "good, derived");
    EXPECT_EQ(toText(SampleQuality{0xFFFFC000}), "good");
}

}  // namespace
}  // namespace TalIec61850Analysis::QualityTest
