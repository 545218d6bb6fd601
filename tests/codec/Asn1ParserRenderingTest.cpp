#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <time.h>

#include <TalIec61850Parser/codec/Asn1Parser.hpp>
#include <algorithm>
#include <array>
#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "support/DecimalComma.hpp"

namespace TalTest::Asn1ParserRenderingTest {
namespace {

using TalIec61850Parser::Asn1Parser;
using TalTest::GlobalDecimalComma;
using TalTest::LocaleRestorer;
using Bytes = std::vector<std::uint8_t>;

Bytes textBytes(std::string const& text) { return {text.begin(), text.end()}; }

Bytes bigEndian(std::uint64_t value, unsigned size = 8) {
    Bytes bytes;
    for (unsigned i = size; i > 0; --i) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * (i - 1))));
    }
    return bytes;
}

std::string gooseTime(Bytes const& bytes) {
    return Asn1Parser::convertGooseTimestampToDateTime(bytes);
}

std::string gooseTimeOfDouble(double seconds) {
    return gooseTime(bigEndian(std::bit_cast<std::uint64_t>(seconds)));
}

std::string gooseTimeOfSeconds(std::uint32_t seconds) { return gooseTime(bigEndian(seconds, 4)); }

std::string referenceTime(std::uint64_t nanoseconds) {
    return Asn1Parser::convertRefrTmToDateTime(bigEndian(nanoseconds));
}

std::string hex(Bytes const& bytes, char const* separator) {
    std::string text;
    for (std::uint8_t const octet : bytes) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02X", unsigned{octet});
        text += (text.empty() ? "" : separator) + std::string(digits.data());
    }
    return text;
}

/// What the C library makes of a time; nothing when it has no date for it.
std::optional<std::string> calendar(std::time_t seconds) {
    std::tm date{};
    if (gmtime_r(&seconds, &date) == nullptr) {
        return {};
    }
    std::array<char, 100> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &date);
    return text.data();
}

TEST(Asn1ParserFormatBytes, IsEmptyForNoOctets) { EXPECT_EQ(Asn1Parser::formatBytes({}), ""); }

TEST(Asn1ParserFormatBytes, WritesUpperCasePairsInBrackets) {
    EXPECT_EQ(Asn1Parser::formatBytes({0x00}), "[00]");
    EXPECT_EQ(Asn1Parser::formatBytes({0x41, 0x0A, 0xFF}), "[41 0A FF]");
    EXPECT_EQ(Asn1Parser::formatBytes({0xAB, 0xCD, 0xEF}), "[AB CD EF]");
}

RC_GTEST_PROP(Asn1ParserFormatBytes, WritesEveryOctet, (Bytes const& bytes)) {
    RC_ASSERT(Asn1Parser::formatBytes(bytes) == (bytes.empty() ? "" : "[" + hex(bytes, " ") + "]"));
}

TEST(Asn1ParserBytesToString, KeepsPrintableText) {
    EXPECT_EQ(Asn1Parser::bytesToString(textBytes("IED1/LLN0$GO$Ctl")), "IED1/LLN0$GO$Ctl");
    EXPECT_EQ(Asn1Parser::bytesToString({0x20}), " ");
    EXPECT_EQ(Asn1Parser::bytesToString({0x20, 0x7E}), " ~");
}

TEST(Asn1ParserBytesToString, IsEmptyForNoOctets) { EXPECT_EQ(Asn1Parser::bytesToString({}), ""); }

TEST(Asn1ParserBytesToString, DumpsWhatIsNotPrintable) {
    EXPECT_EQ(Asn1Parser::bytesToString({0x47, 0x45, 0x00}), "[47 45 00]");
    EXPECT_EQ(Asn1Parser::bytesToString({0x09, 0x41}), "[09 41]");
    EXPECT_EQ(Asn1Parser::bytesToString({0x41, 0x0A}), "[41 0A]");
    EXPECT_EQ(Asn1Parser::bytesToString({0x41, 0xC3, 0xA9, 0x42}), "[41 C3 A9 42]");
}

TEST(Asn1ParserBytesToString, TakesExactlyTheOctetsFromBlankToTildeAsPrintable) {
    EXPECT_EQ(Asn1Parser::bytesToString({0x1F}), "[1F]");
    EXPECT_EQ(Asn1Parser::bytesToString({0x7F}), "[7F]");
    for (unsigned value = 0; value <= 0xFF; ++value) {
        Bytes const bytes{'a', static_cast<std::uint8_t>(value), 'b'};
        bool const printable = value >= 0x20 && value <= 0x7E;
        EXPECT_EQ(Asn1Parser::bytesToString(bytes), printable
                                                        ? std::string(bytes.begin(), bytes.end())
                                                        : "[" + hex(bytes, " ") + "]");
    }
}

TEST(Asn1ParserBytesToString, OneUnprintableOctetAnywhereDumpsTheWhole) {
    for (std::size_t place = 0; place < 40; ++place) {
        Bytes bytes(40, 'x');
        bytes[place] = 0x80;
        EXPECT_EQ(Asn1Parser::bytesToString(bytes), "[" + hex(bytes, " ") + "]");
    }
}

TEST(Asn1ParserGooseTime, NamesAnEmptyValue) { EXPECT_EQ(gooseTime({}), "Empty timestamp"); }

TEST(Asn1ParserGooseTime, ReadsEightOctetsAsADoubleOfSeconds) {
    EXPECT_EQ(gooseTime({0x41, 0xD9, 0x54, 0xFC, 0x40, 0x30, 0x00, 0x00}),
              "2023-11-14 22:13:20 UTC");
    EXPECT_EQ(gooseTime({0, 0, 0, 0, 0, 0, 0, 0}), "1970-01-01 00:00:00 UTC");
    EXPECT_EQ(gooseTimeOfDouble(1.0), "1970-01-01 00:00:01 UTC");
    EXPECT_EQ(gooseTimeOfDouble(951782400.0), "2000-02-29 00:00:00 UTC");
}

TEST(Asn1ParserGooseTime, CutsADoubleTowardZero) {
    EXPECT_EQ(gooseTimeOfDouble(1.999999), "1970-01-01 00:00:01 UTC");
    EXPECT_EQ(gooseTimeOfDouble(0.999999), "1970-01-01 00:00:00 UTC");
    EXPECT_EQ(gooseTimeOfDouble(-0.0), "1970-01-01 00:00:00 UTC");
    EXPECT_EQ(gooseTimeOfDouble(-0.999999), "1970-01-01 00:00:00 UTC");
    EXPECT_EQ(gooseTimeOfDouble(-1.999999), "1969-12-31 23:59:59 UTC");
    EXPECT_EQ(gooseTimeOfDouble(std::numeric_limits<double>::denorm_min()),
              "1970-01-01 00:00:00 UTC");
}

TEST(Asn1ParserGooseTime, ReadsANegativeDoubleAsATimeBefore1970) {
    EXPECT_EQ(gooseTimeOfDouble(-1.0), "1969-12-31 23:59:59 UTC");
    EXPECT_EQ(gooseTimeOfDouble(-86401.0), "1969-12-30 23:59:59 UTC");
    EXPECT_EQ(gooseTimeOfDouble(-2208988800.0), "1900-01-01 00:00:00 UTC");
    EXPECT_EQ(gooseTimeOfDouble(-30610224000.0), "1000-01-01 00:00:00 UTC");
}

TEST(Asn1ParserGooseTime, WritesAYearBeyond9999InFull) {
    EXPECT_EQ(gooseTimeOfDouble(253402300799.0), "9999-12-31 23:59:59 UTC");
    EXPECT_EQ(gooseTimeOfDouble(253402300800.0), "10000-01-01 00:00:00 UTC");
    EXPECT_EQ(gooseTimeOfDouble(4294967296.0 * 1000000), *calendar(4294967296000000) + " UTC");
}

TEST(Asn1ParserGooseTime, WritesEveryYearAsTheCLibraryDoes) {
    // Years 0, -1, 1, -9999, and the last that a tm holds.
    for (double const seconds : {-62167219200.0, -62167219201.0, -62135596800.0, -377705116800.0,
                                 67768036191676792.0, -67768040609740800.0}) {
        auto const expected = calendar(static_cast<std::time_t>(seconds));
        ASSERT_TRUE(expected.has_value());
        EXPECT_EQ(gooseTimeOfDouble(seconds), *expected + " UTC");
    }
}

TEST(Asn1ParserGooseTime, FallsBackToHexadecimalForADoubleWithoutADate) {
    using Limits = std::numeric_limits<double>;
    EXPECT_EQ(gooseTimeOfDouble(67768036191676800.0), "0x436E18556F8A9530");
    EXPECT_EQ(gooseTimeOfDouble(-67768040609740808.0), "0xC36E185590755F01");
    EXPECT_EQ(gooseTimeOfDouble(Limits::infinity()), "0x7FF0000000000000");
    EXPECT_EQ(gooseTimeOfDouble(-Limits::infinity()), "0xFFF0000000000000");
    EXPECT_EQ(gooseTime({0x7F, 0xF8, 0, 0, 0, 0, 0, 0}), "0x7FF8000000000000");
    EXPECT_EQ(gooseTime({0xFF, 0xF8, 0, 0, 0, 0, 0, 1}), "0xFFF8000000000001");
    EXPECT_EQ(gooseTime({0x7F, 0xF0, 0, 0, 0, 0, 0, 1}), "0x7FF0000000000001");
    EXPECT_EQ(gooseTime(Bytes(8, 0xFF)), "0xFFFFFFFFFFFFFFFF");
    EXPECT_EQ(gooseTimeOfDouble(0x1p63), "0x43E0000000000000");
    EXPECT_EQ(gooseTimeOfDouble(-0x1p63), "0xC3E0000000000000");
    EXPECT_EQ(gooseTimeOfDouble(std::nextafter(0x1p63, 0.0)), "0x43DFFFFFFFFFFFFF");
    EXPECT_EQ(gooseTimeOfDouble(std::nextafter(-0x1p63, -0x1p64)), "0xC3E0000000000001");
    EXPECT_EQ(gooseTimeOfDouble(Limits::max()), "0x7FEFFFFFFFFFFFFF");
    EXPECT_EQ(gooseTimeOfDouble(Limits::lowest()), "0xFFEFFFFFFFFFFFFF");
}

TEST(Asn1ParserGooseTime, DoesNotReadSecondsAndFractionFromEightOctets) {
    EXPECT_EQ(gooseTime({0x65, 0x53, 0xF1, 0x00, 0x80, 0x00, 0x00, 0x0A}), "0x6553F1008000000A");
}

TEST(Asn1ParserGooseTime, ReadsFourOctetsAsUnsignedSeconds) {
    EXPECT_EQ(gooseTime({0x65, 0x00, 0x00, 0x00}), "2023-09-12 06:06:56 UTC");
    EXPECT_EQ(gooseTimeOfSeconds(0), "1970-01-01 00:00:00 UTC");
    EXPECT_EQ(gooseTimeOfSeconds(0x7FFFFFFF), "2038-01-19 03:14:07 UTC");
    EXPECT_EQ(gooseTimeOfSeconds(0x80000000U), "2038-01-19 03:14:08 UTC");
    EXPECT_EQ(gooseTimeOfSeconds(0xFFFFFFFFU), "2106-02-07 06:28:15 UTC");
    EXPECT_EQ(gooseTimeOfSeconds(4107542400U), "2100-03-01 00:00:00 UTC");
}

TEST(Asn1ParserGooseTime, ReadsSixOctetsAsFieldsOfJanuary1984) {
    EXPECT_EQ(gooseTime({0x01, 0xF4, 0x1E, 0x0C, 0x08, 0x0F}), "1984-01-15 08:12:30.500 UTC");
    EXPECT_EQ(gooseTime({0x00, 0x07, 0x01, 0x02, 0x03, 0x04}), "1984-01-04 03:02:01.007 UTC");
}

TEST(Asn1ParserGooseTime, ChecksNoRangeInSixOctets) {
    EXPECT_EQ(gooseTime({0, 0, 0, 0, 0, 0}), "1984-01-00 00:00:00.000 UTC");
    EXPECT_EQ(gooseTime({0x05, 0xDC, 0x3C, 0x3C, 0x18, 0x2D}), "1984-01-45 24:60:60.1500 UTC");
    EXPECT_EQ(gooseTime(Bytes(6, 0xFF)), "1984-01-255 255:255:255.65535 UTC");
    EXPECT_EQ(gooseTime({0x03, 0xE7, 0x63, 0x63, 0x63, 0x63}), "1984-01-99 99:99:99.999 UTC");
}

TEST(Asn1ParserGooseTime, FallsBackToHexadecimalForAnyOtherSize) {
    EXPECT_EQ(gooseTime({0x01, 0x02, 0x03}), "0x010203");
    EXPECT_EQ(gooseTime({0xAA, 0xBB, 0xCC, 0xDD, 0xEE}), "0xAABBCCDDEE");
    for (std::size_t const size : {1U, 2U, 3U, 5U, 7U, 9U, 10U, 16U, 49U, 50U, 51U, 300U}) {
        Bytes bytes(size);
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<std::uint8_t>(0xA9 + i);
        }
        EXPECT_EQ(gooseTime(bytes), "0x" + hex(bytes, ""));
    }
}

RC_GTEST_PROP(Asn1ParserGooseTime, RendersAnyDoubleAsTheCLibraryWould, (std::uint64_t mantissa)) {
    // Exponents on both sides of one second and of the last date.
    int const exponent = *rc::gen::inRange(-2, 66);
    bool const negative = *rc::gen::arbitrary<bool>();
    double const fraction = 1.0 + static_cast<double>(mantissa >> 12U) * 0x1p-52;
    double const seconds = std::ldexp(negative ? -fraction : fraction, exponent);
    bool const inRange = seconds >= -0x1p63 && seconds < 0x1p63;
    auto const date = inRange ? calendar(static_cast<std::time_t>(seconds)) : std::nullopt;
    Bytes const bytes = bigEndian(std::bit_cast<std::uint64_t>(seconds));
    RC_ASSERT(gooseTime(bytes) == (date ? *date + " UTC" : "0x" + hex(bytes, "")));
}

RC_GTEST_PROP(Asn1ParserGooseTime, RendersAnySecondsAsTheCLibraryWould, (std::uint32_t scaled)) {
    std::uint32_t const seconds = scaled >> *rc::gen::inRange(0U, 32U);
    RC_ASSERT(gooseTimeOfSeconds(seconds) == *calendar(seconds) + " UTC");
    RC_ASSERT(gooseTimeOfSeconds(~seconds) == *calendar(~seconds) + " UTC");
}

std::string decimal(Bytes const& bytes) { return Asn1Parser::convertBytesToTimestamp(bytes); }

TEST(Asn1ParserDecimalTime, IsZeroForNoOctets) { EXPECT_EQ(decimal({}), "0"); }

TEST(Asn1ParserDecimalTime, ReadsEightOctetsAsOneNumber) {
    EXPECT_EQ(decimal({0, 0, 0, 0, 0, 0, 0, 0x2A}), "42");
    EXPECT_EQ(decimal({0, 0, 0, 0, 0, 0, 0, 0}), "0");
    EXPECT_EQ(decimal({0x80, 0, 0, 0, 0, 0, 0, 0}), "9223372036854775808");
    EXPECT_EQ(decimal(Bytes(8, 0xFF)), "18446744073709551615");
}

TEST(Asn1ParserDecimalTime, ReadsFourOctetsAsOneNumber) {
    EXPECT_EQ(decimal({0x00, 0x00, 0x00, 0x2A}), "42");
    EXPECT_EQ(decimal({0, 0, 0, 0}), "0");
    EXPECT_EQ(decimal({0x80, 0x00, 0x00, 0x00}), "2147483648");
    EXPECT_EQ(decimal(Bytes(4, 0xFF)), "4294967295");
}

TEST(Asn1ParserDecimalTime, RunsTheOctetsTogetherForAnyOtherSize) {
    EXPECT_EQ(decimal({0x01, 0x02, 0x03}), "123");
    EXPECT_EQ(decimal({0x0C, 0x22}), "1234");
    EXPECT_EQ(decimal({0x00, 0x00, 0x07}), "007");
    EXPECT_EQ(decimal({0xFF}), "255");
    EXPECT_EQ(decimal({0x00}), "0");
    EXPECT_EQ(decimal(Bytes(5, 0xFF)), "255255255255255");
    EXPECT_EQ(decimal(Bytes(6, 0x0A)), "101010101010");
    EXPECT_EQ(decimal(Bytes(7, 0x64)), "100100100100100100100");
    EXPECT_EQ(decimal(Bytes(9, 0x00)), "000000000");
    EXPECT_EQ(decimal(Bytes(300, 0x09)), std::string(300, '9'));
}

TEST(Asn1ParserReferenceTime, RefusesFewerThanEightOctets) {
    for (std::size_t size = 0; size < 8; ++size) {
        EXPECT_EQ(Asn1Parser::convertRefrTmToDateTime(Bytes(size, 0x01)), "Invalid refrTm data");
    }
}

TEST(Asn1ParserReferenceTime, ReadsNanosecondsSince1970) {
    EXPECT_EQ(referenceTime(0), "1970-01-01 00:00:00.000 UTC");
    EXPECT_EQ(Asn1Parser::convertRefrTmToDateTime({0x17, 0x97, 0x9C, 0xFE, 0x3D, 0x85, 0xCD, 0x15}),
              "2023-11-14 22:13:20.123 UTC");
}

TEST(Asn1ParserReferenceTime, CutsToMilliseconds) {
    EXPECT_EQ(referenceTime(999'999), "1970-01-01 00:00:00.000 UTC");
    EXPECT_EQ(referenceTime(1'000'000), "1970-01-01 00:00:00.001 UTC");
    EXPECT_EQ(referenceTime(999'999'999), "1970-01-01 00:00:00.999 UTC");
    EXPECT_EQ(referenceTime(1'000'000'000), "1970-01-01 00:00:01.000 UTC");
    EXPECT_EQ(referenceTime(86'399'999'999'999), "1970-01-01 23:59:59.999 UTC");
}

TEST(Asn1ParserReferenceTime, HasADateForTheLargestCount) {
    EXPECT_EQ(referenceTime(std::uint64_t{1} << 63U), "2262-04-11 23:47:16.854 UTC");
    EXPECT_EQ(Asn1Parser::convertRefrTmToDateTime(Bytes(8, 0xFF)), "2554-07-21 23:34:33.709 UTC");
}

TEST(Asn1ParserReferenceTime, IgnoresOctetsBehindTheEighth) {
    EXPECT_EQ(Asn1Parser::convertRefrTmToDateTime({0, 0, 0, 0, 0x3B, 0x9A, 0xCA, 0x00, 0xFF, 0xFF}),
              "1970-01-01 00:00:01.000 UTC");
}

RC_GTEST_PROP(Asn1ParserReferenceTime, RendersAnyCountAsTheCLibraryWould, (std::uint64_t scaled)) {
    std::uint64_t const count = scaled >> *rc::gen::inRange(0U, 64U);
    std::array<char, 8> milliseconds{};
    std::snprintf(milliseconds.data(), milliseconds.size(), ".%03u",
                  static_cast<unsigned>(count % 1'000'000'000 / 1'000'000));
    RC_ASSERT(referenceTime(count) == *calendar(static_cast<std::time_t>(count / 1'000'000'000)) +
                                          milliseconds.data() + " UTC");
}

void expectTheUsualTexts() {
    EXPECT_EQ(gooseTimeOfDouble(1700000000.75), "2023-11-14 22:13:20 UTC");
    EXPECT_EQ(gooseTimeOfSeconds(0x65000000), "2023-09-12 06:06:56 UTC");
    EXPECT_EQ(gooseTime({0x05, 0xDC, 0x1E, 0x0C, 0x08, 0x0F}), "1984-01-15 08:12:30.1500 UTC");
    EXPECT_EQ(decimal(bigEndian(1234567)), "1234567");
    EXPECT_EQ(decimal(bigEndian(1234567, 4)), "1234567");
    EXPECT_EQ(referenceTime(1'700'000'000'123'456'789), "2023-11-14 22:13:20.123 UTC");
    EXPECT_EQ(Asn1Parser::formatBytes({0x0A, 0xFF}), "[0A FF]");
    EXPECT_EQ(Asn1Parser::bytesToString({'A', 0xE9}), "[41 E9]");
}

/// Sets the time zone of the process, and puts back what was there.
class TimeZone {
public:
    explicit TimeZone(char const* zone) {
        if (char const* const previous = std::getenv("TZ")) {
            previous_ = previous;
        }
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    TimeZone(TimeZone const&) = delete;
    TimeZone& operator=(TimeZone const&) = delete;
    ~TimeZone() {
        if (previous_) {
            ::setenv("TZ", previous_->c_str(), 1);
        } else {
            ::unsetenv("TZ");
        }
        ::tzset();
    }

private:
    std::optional<std::string> previous_;
};

TEST(Asn1ParserRendering, DoesNotDependOnTheTimeZone) {
    for (char const* const zone : {"UTC0", "XYZ-14", "XYZ11:30", "EST5EDT,M3.2.0,M11.1.0", ""}) {
        TimeZone const guard(zone);
        SCOPED_TRACE(zone);
        expectTheUsualTexts();
    }
}

TEST(Asn1ParserRendering, DoesNotDependOnTheGlobalLocale) {
    GlobalDecimalComma const comma;
    expectTheUsualTexts();
}

TEST(Asn1ParserRendering, DoesNotDependOnTheCLocale) {
    LocaleRestorer const restorer;
    bool found = false;
    for (char const* const name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "fr_FR",
                                   "ru_RU.UTF-8", "pt_BR.UTF-8", "fa_IR.UTF-8"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) {
            found = true;
            SCOPED_TRACE(name);
            expectTheUsualTexts();
        }
    }
    if (!found) {
        GTEST_SKIP() << "no locale with other number or date texts is installed";
    }
}

TEST(Asn1ParserRendering, DoesNotMixUpTheTextsOfSeveralThreads) {
    std::array<bool, 4> right{};
    std::vector<std::thread> threads;
    for (std::uint32_t id = 0; id < right.size(); ++id) {
        threads.emplace_back([id, &right] {
            bool allRight = true;
            for (std::uint32_t i = 0; i < 2000; ++i) {
                std::uint32_t const seconds = id * 900'000'000 + i * 86'399;
                std::string const date = *calendar(seconds);
                allRight =
                    allRight && gooseTimeOfSeconds(seconds) == date + " UTC" &&
                    gooseTimeOfDouble(seconds) == date + " UTC" &&
                    referenceTime(seconds * std::uint64_t{1'000'000'000}) == date + ".000 UTC";
            }
            right[id] = allRight;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(std::all_of(right.begin(), right.end(), [](bool one) { return one; }));
}

}  // namespace
}  // namespace TalTest::Asn1ParserRenderingTest
