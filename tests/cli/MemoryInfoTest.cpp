#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/cli/MemoryInfo.hpp>
#include <array>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>

#include "ServedStatusFile.hpp"
#include "support/DecimalComma.hpp"

namespace TalTest::MemoryInfoTest {
namespace {

using cross::MemoryInfo;
using tal::test::ServedStatusFile;
using tal::test::ServedStatusPath;
using TalTest::GlobalDecimalComma;
using TalTest::LocaleRestorer;

static_assert(std::is_same_v<decltype(MemoryInfo::getCurrentProcessMemoryUsage()), std::uint64_t>);
static_assert(std::is_same_v<decltype(MemoryInfo::bytesToString(0)), std::string>);

/// The answer to a status file of the given octets.
std::uint64_t usage(std::string_view status) {
    ServedStatusFile const served(status);
    return MemoryInfo::getCurrentProcessMemoryUsage();
}

/// The text of the exception that a status file of the given octets leads to.
template <typename Exception>
std::string failure(std::string_view status) {
    try {
        return "gave " + std::to_string(usage(status));
    } catch (Exception const& exception) {
        return typeid(exception) == typeid(Exception) ? exception.what() : "another exception";
    }
}

std::string notANumber(std::string_view status) { return failure<std::invalid_argument>(status); }
std::string outOfRange(std::string_view status) { return failure<std::out_of_range>(status); }

constexpr std::string_view kStatus =
    "Name:\tTalIec61850Parser\n"
    "Umask:\t0022\n"
    "VmPeak:\t   14512 kB\n"
    "VmHWM:\t    9999 kB\n";

TEST(MemoryInfoUsage, ReadsTheFigureBehindASingleBlank) {
    EXPECT_EQ(usage("VmRSS: 2048\n"), 2097152U);
    EXPECT_EQ(usage(std::string(kStatus) + "VmRSS: 2048\nRssAnon:\t 7 kB\n"), 2097152U);
}

TEST(MemoryInfoUsage, ReadsALastLineWithoutAnEnd) { EXPECT_EQ(usage("VmRSS: 2048"), 2097152U); }

TEST(MemoryInfoUsage, ThrowsOnALineThatEndsInKilobytes) {
    EXPECT_EQ(notANumber("VmRSS:\t    2048 kB\n"), "stoull");
    EXPECT_EQ(notANumber(std::string(kStatus) + "VmRSS:\t    9244 kB\nThreads:\t1\n"), "stoull");
    EXPECT_EQ(notANumber("VmRSS: 2048 kB"), "stoull");
}

TEST(MemoryInfoUsage, ReadsWhatStandsBehindTheLastBlank) {
    EXPECT_EQ(usage("VmRSS: 1 2 3\n"), 3U * 1024);
    EXPECT_EQ(usage("VmRSS:kB 5\n"), 5U * 1024);
    EXPECT_EQ(usage("VmRSS:      7\n"), 7U * 1024);
    EXPECT_EQ(usage("VmRSS:\tkB\t 8\n"), 8U * 1024);
}

TEST(MemoryInfoUsage, ThrowsWhenNothingStandsBehindTheLastBlank) {
    EXPECT_EQ(notANumber("VmRSS: \n"), "stoull");
    EXPECT_EQ(notANumber("VmRSS: 2048 \n"), "stoull");
    EXPECT_EQ(notANumber("VmRSS: \t\n"), "stoull");
}

TEST(MemoryInfoUsage, DoesNotTakeATabForABlank) {
    EXPECT_EQ(usage("VmRSS:\t2048\n"), 0U);
    EXPECT_EQ(usage("VmRSS:\t2048\tkB\n"), 0U);
}

TEST(MemoryInfoUsage, GoesOnAfterALineWithoutABlank) {
    EXPECT_EQ(usage("VmRSS:\t1\nVmRSS: 2\n"), 2U * 1024);
    EXPECT_EQ(usage("VmRSS:\nVmRSS:3\nVmSize: 9\nVmRSS: 4\n"), 4U * 1024);
}

TEST(MemoryInfoUsage, TakesTheFirstLineWithABlank) {
    EXPECT_EQ(usage("VmRSS: 1\nVmRSS: 2\n"), 1024U);
    EXPECT_EQ(notANumber("VmRSS: kB\nVmRSS: 2\n"), "stoull");
}

TEST(MemoryInfoUsage, IsZeroWithoutSuchALine) {
    EXPECT_EQ(usage(""), 0U);
    EXPECT_EQ(usage("\n"), 0U);
    EXPECT_EQ(usage(kStatus), 0U);
}

TEST(MemoryInfoUsage, PassesOverLinesThatOnlyResembleIt) {
    EXPECT_EQ(usage("VmRSS 2048\n VmRSS: 2048\nvmrss: 2048\nVMRSS: 2048\nVmRSS : 2048\n"), 0U);
    EXPECT_EQ(usage("RssAnon: 1\nxVmRSS: 2048\nVmRSs: 2048\n"), 0U);
    EXPECT_EQ(usage("VmRSS; 1\nVmRSS: 2\n"), 2048U);
}

TEST(MemoryInfoUsage, PassesOverLinesShorterThanTheName) {
    EXPECT_EQ(usage("\nV\nVm\nVmR\nVmRS\nVmRSS\nVmRSS:\nVmRSS: 6\n"), 6U * 1024);
}

TEST(MemoryInfoUsage, IgnoresWhatFollowsTheDigits) {
    EXPECT_EQ(usage("VmRSS: 2048kB\n"), 2097152U);
    EXPECT_EQ(usage("VmRSS: 2048\tkB\n"), 2097152U);
    EXPECT_EQ(usage("VmRSS: 2048\r\n"), 2097152U);
    EXPECT_EQ(usage("VmRSS: 20.48\n"), 20U * 1024);
}

TEST(MemoryInfoUsage, SkipsWhiteSpaceBeforeTheDigits) {
    EXPECT_EQ(usage("VmRSS: \t2048\n"), 2097152U);
    EXPECT_EQ(usage("VmRSS:  \t\v\f\r\t2048\n"), 2097152U);
}

TEST(MemoryInfoUsage, ReadsDecimalDigits) {
    EXPECT_EQ(usage("VmRSS: 0010\n"), 10U * 1024);
    EXPECT_EQ(usage("VmRSS: 0x10\n"), 0U);
    EXPECT_EQ(usage("VmRSS: 0\n"), 0U);
    EXPECT_EQ(usage("VmRSS: +3\n"), 3U * 1024);
    EXPECT_EQ(notANumber("VmRSS: xA\n"), "stoull");
    EXPECT_EQ(notANumber("VmRSS: -\n"), "stoull");
}

TEST(MemoryInfoUsage, LosesTheBitsThatTheFactorShiftsOut) {
    EXPECT_EQ(usage("VmRSS: 18014398509481983\n"), 0xFFFFFFFFFFFFFC00U);
    EXPECT_EQ(usage("VmRSS: 18014398509481984\n"), 0U);
    EXPECT_EQ(usage("VmRSS: 18446744073709551615\n"), 0xFFFFFFFFFFFFFC00U);
    EXPECT_EQ(usage("VmRSS: -1\n"), 0xFFFFFFFFFFFFFC00U);
}

TEST(MemoryInfoUsage, ThrowsOnAFigureThatDoesNotFit) {
    EXPECT_EQ(outOfRange("VmRSS: 18446744073709551616\n"), "stoull");
    EXPECT_EQ(outOfRange("VmRSS: " + std::string(400, '9') + "\n"), "stoull");
}

TEST(MemoryInfoUsage, ReadsLinesOfAnyLength) {
    std::string const longLine(200'000, ' ');
    EXPECT_EQ(usage(longLine + "\nVmRSS:" + longLine + "12\n"), 12U * 1024);
}

TEST(MemoryInfoUsage, IsZeroWhenTheFileCannotBeOpened) {
    ServedStatusPath const served("/nonexistent/status");
    EXPECT_EQ(MemoryInfo::getCurrentProcessMemoryUsage(), 0U);
}

TEST(MemoryInfoUsage, IsZeroWhenTheFileCannotBeRead) {
    ServedStatusPath const served("/");
    EXPECT_EQ(MemoryInfo::getCurrentProcessMemoryUsage(), 0U);
}

/// What is after the last blank of this process's own line; nothing without such a line.
std::optional<std::string> ownFigure() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:") && line.find(' ') != std::string::npos) {
            return line.substr(line.rfind(' ') + 1);
        }
    }
    return {};
}

TEST(MemoryInfoUsage, TreatsTheFileOfTheRunningKernelAlike) {
    auto const figure = ownFigure();
    if (!figure) {
        EXPECT_EQ(MemoryInfo::getCurrentProcessMemoryUsage(), 0U);
    } else if (figure->find_first_of("0123456789") == 0) {
        std::uint64_t const octets = MemoryInfo::getCurrentProcessMemoryUsage();
        EXPECT_GT(octets, 0U);
        EXPECT_EQ(octets % 1024, 0U);
    } else {
        EXPECT_THROW(static_cast<void>(MemoryInfo::getCurrentProcessMemoryUsage()),
                     std::invalid_argument)
            << *figure;
    }
}

RC_GTEST_PROP(MemoryInfoUsage, IsTheFigureTimes1024, (std::uint32_t figure)) {
    RC_ASSERT(usage("VmRSS: " + std::to_string(figure) + "\n") == std::uint64_t{figure} * 1024);
}

constexpr std::uint64_t kKilo = 1024;
constexpr std::uint64_t kMega = kKilo * kKilo;
constexpr std::uint64_t kGiga = kMega * kKilo;
constexpr std::uint64_t kTera = kGiga * kKilo;

TEST(MemoryInfoBytesToString, WritesOctetsBelowOneKilobyte) {
    EXPECT_EQ(MemoryInfo::bytesToString(0), "0 B");
    EXPECT_EQ(MemoryInfo::bytesToString(1), "1 B");
    EXPECT_EQ(MemoryInfo::bytesToString(512), "512 B");
    EXPECT_EQ(MemoryInfo::bytesToString(1023), "1023 B");
}

TEST(MemoryInfoBytesToString, WritesAWholeQuotientWithoutDecimals) {
    EXPECT_EQ(MemoryInfo::bytesToString(1024), "1 KB");
    EXPECT_EQ(MemoryInfo::bytesToString(1048576), "1 MB");
    EXPECT_EQ(MemoryInfo::bytesToString(1023 * kKilo), "1023 KB");
    EXPECT_EQ(MemoryInfo::bytesToString(1023 * kMega), "1023 MB");
    EXPECT_EQ(MemoryInfo::bytesToString(kGiga), "1 GB");
    EXPECT_EQ(MemoryInfo::bytesToString(1023 * kGiga), "1023 GB");
    EXPECT_EQ(MemoryInfo::bytesToString(kTera), "1 TB");
}

TEST(MemoryInfoBytesToString, WritesAnyOtherQuotientWithTwoDecimals) {
    EXPECT_EQ(MemoryInfo::bytesToString(1536), "1.50 KB");
    EXPECT_EQ(MemoryInfo::bytesToString(5300000), "5.05 MB");
    EXPECT_EQ(MemoryInfo::bytesToString(kGiga + kGiga / 4), "1.25 GB");
    EXPECT_EQ(MemoryInfo::bytesToString(kTera * 7 / 2), "3.50 TB");
}

TEST(MemoryInfoBytesToString, RoundsToTwoDecimals) {
    EXPECT_EQ(MemoryInfo::bytesToString(1025), "1.00 KB");
    EXPECT_EQ(MemoryInfo::bytesToString(1152), "1.12 KB");  // 1.125, a tie
    EXPECT_EQ(MemoryInfo::bytesToString(1408), "1.38 KB");  // 1.375, a tie
    EXPECT_EQ(MemoryInfo::bytesToString(kMega - 1), "1024.00 KB");
    EXPECT_EQ(MemoryInfo::bytesToString(kGiga - 1), "1024.00 MB");
    EXPECT_EQ(MemoryInfo::bytesToString(kTera - 1), "1024.00 GB");
    EXPECT_EQ(MemoryInfo::bytesToString(kMega + 1), "1.00 MB");
    EXPECT_EQ(MemoryInfo::bytesToString(kTera + 1), "1.00 TB");
}

TEST(MemoryInfoBytesToString, KnowsNoUnitAboveTerabytes) {
    EXPECT_EQ(MemoryInfo::bytesToString(1024 * kTera), "1024 TB");
    EXPECT_EQ(MemoryInfo::bytesToString(1024 * kTera + kTera / 2), "1024.50 TB");
    EXPECT_EQ(MemoryInfo::bytesToString(std::uint64_t{1} << 63U), "8388608 TB");
}

TEST(MemoryInfoBytesToString, DividesInDoublePrecision) {
    EXPECT_EQ(MemoryInfo::bytesToString(std::numeric_limits<std::uint64_t>::max()), "16777216 TB");
    EXPECT_EQ(MemoryInfo::bytesToString((std::uint64_t{1} << 60U) + 1), "1048576 TB");
    EXPECT_EQ(MemoryInfo::bytesToString((std::uint64_t{1} << 53U) - 1), "8192.00 TB");
}

RC_GTEST_PROP(MemoryInfoBytesToString, FollowsTheDefinition, (std::uint64_t scaled)) {
    std::uint64_t const bytes = scaled >> *rc::gen::inRange(0U, 64U);
    unsigned const unit = bytes < kKilo   ? 0
                          : bytes < kMega ? 1
                          : bytes < kGiga ? 2
                          : bytes < kTera ? 3
                                          : 4;
    std::array<char const*, 5> const names{"B", "KB", "MB", "GB", "TB"};
    double const quotient = static_cast<double>(bytes) / static_cast<double>(1ULL << (10 * unit));
    bool const whole = static_cast<double>(static_cast<std::uint64_t>(quotient)) == quotient;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), whole ? "%.0f %s" : "%.2f %s", quotient, names[unit]);
    RC_ASSERT(MemoryInfo::bytesToString(bytes) == text.data());
}

void expectTheUsualTexts() {
    EXPECT_EQ(MemoryInfo::bytesToString(1536), "1.50 KB");
    EXPECT_EQ(MemoryInfo::bytesToString(5300000), "5.05 MB");
    EXPECT_EQ(MemoryInfo::bytesToString(1024 * kTera), "1024 TB");
    EXPECT_EQ(usage("VmRSS: 204800\n"), 209715200U);
}

TEST(MemoryInfoBytesToString, DoesNotDependOnTheGlobalLocale) {
    GlobalDecimalComma const comma;
    expectTheUsualTexts();
}

TEST(MemoryInfoBytesToString, DoesNotDependOnTheCLocale) {
    LocaleRestorer const restorer;
    for (char const* const name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "fr_FR",
                                   "ru_RU.UTF-8", "pt_BR.UTF-8"}) {
        if (std::setlocale(LC_ALL, name) != nullptr &&
            std::string_view(std::localeconv()->decimal_point) == ",") {
            expectTheUsualTexts();
            return;
        }
    }
    GTEST_SKIP() << "no locale with a decimal comma is installed";
}

}  // namespace
}  // namespace TalTest::MemoryInfoTest
