// Texts that are made of short pieces, and the digits in them.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <limits>
#include <string>

#include "tools/output/NineDigits.hpp"
#include "tools/output/TextLine.hpp"

namespace TalIec61850Tools::TextLineTest {
namespace {

template <typename Number>
std::string digitsOf(Number number) {
    TextLine line;
    line.appendNumber(number);
    return std::string(line.view());
}

TEST(TextLine, IsEmptyAtFirstAndWhenCleared) {
    TextLine line;
    EXPECT_EQ(line.view(), "");
    line.append("stNum");
    line.clear();
    EXPECT_EQ(line.view(), "");
}

TEST(TextLine, IsItsPiecesOneAfterTheOther) {
    TextLine line;
    line.append(',');
    line.append(std::string_view());
    line.append("MU01");
    line.append(ShortText("0x4000"));
    line.appendNumber(std::int64_t{-7});
    line.append(ShortText());
    line.replaceFirst('{');
    EXPECT_EQ(line.view(), "{MU010x4000-7");
}

TEST(TextLine, TakesNoMoreOfAShortTextThanItHas) {
    TextLine line;
    line.append(ShortText("0123456789"));
    line.append(ShortText("ab"));
    line.append('.');
    EXPECT_EQ(line.view(), "0123456789ab.");
}

TEST(TextLine, GrowsWithWhatIsAppended) {
    TextLine line;
    std::string expected;
    for (int i = 0; i < 3000; ++i) {
        line.append(ShortText("short"));
        line.appendNumber(std::uint64_t{4'000'000'000});
        line.append('|');
        expected += "short4000000000|";
    }
    std::string const large(100'000, 'x');
    line.append(large);
    EXPECT_EQ(line.view(), expected + large);
}

TEST(TextLine, HasAllDigitsOfTheLargestNumbers) {
    EXPECT_EQ(digitsOf(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(digitsOf(std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
    EXPECT_EQ(digitsOf(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(digitsOf(std::uint64_t{0}), "0");
}

TEST(TextLine, KeepsZerosWithinALargeNumber) {
    EXPECT_EQ(digitsOf(std::uint64_t{4'294'967'295}), "4294967295");
    EXPECT_EQ(digitsOf(std::uint64_t{4'294'967'296}), "4294967296");
    EXPECT_EQ(digitsOf(std::uint64_t{5'000'000'000}), "5000000000");
    EXPECT_EQ(digitsOf(std::uint64_t{1'710'928'800'000'000'042}), "1710928800000000042");
    EXPECT_EQ(digitsOf(std::uint64_t{10'000'000'000'000'000'000U}), "10000000000000000000");
}

RC_GTEST_PROP(TextLine, HasTheDigitsOfAnyNumber, ()) {
    auto const number = *rc::gen::arbitrary<std::uint64_t>();
    auto const shift = *rc::gen::inRange(0, 64);
    RC_ASSERT(digitsOf(number >> shift) == std::to_string(number >> shift));
    auto const signedNumber = static_cast<std::int64_t>(number) >> shift;
    RC_ASSERT(digitsOf(signedNumber) == std::to_string(signedNumber));
}

TEST(NineDigits, HaveLeadingZerosAndLeaveWhatIsBefore) {
    std::array<char, 11> text = {'.', '?', '?', '?', '?', '?', '?', '?', '?', '?', 'Z'};
    for (auto const& [number, digits] : {std::pair(0U, "000000000"), std::pair(42U, "000000042"),
                                         std::pair(kBillion - 1, "999999999")}) {
        EXPECT_EQ(writeNineDigits(text.data() + 1, number), text.data() + 10);
        EXPECT_EQ(std::string_view(text.data(), text.size()), "." + std::string(digits) + "Z");
    }
}

TEST(ShortText, KeepsWhatThereIsRoomFor) {
    std::string const large(ShortText::kCapacity + 5, 'x');
    EXPECT_EQ(ShortText(large).view(), large.substr(0, ShortText::kCapacity));
    EXPECT_EQ(ShortText("0x4000").view(), "0x4000");
    EXPECT_EQ(ShortText().view(), "");
    ShortText::Octets octets{'a', 'b', 'c'};
    EXPECT_EQ(ShortText(octets, 2).view(), "ab");
}

}  // namespace
}  // namespace TalIec61850Tools::TextLineTest
