#include <TalIec61850Parser/cli/MemoryInfo.hpp>
#include <array>
#include <charconv>
#include <cstddef>
#include <fstream>
#include <ios>
#include <istream>
#include <string_view>

namespace cross {

namespace {

constexpr std::string_view kResidentSizeLabel = "VmRSS:";
constexpr unsigned kKibibyteShift = 10;
constexpr std::uint64_t kUnitStep = 1024;
constexpr std::array<std::string_view, 5> kUnits = {"B", "KB", "MB", "GB", "TB"};

/// Two decimals and a point, whatever the process's locale says.
std::string toTwoDecimals(double value) {
    std::array<char, 32> text{};
    auto const end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 2)
            .ptr;
    return {text.data(), end};
}

/// std::getline, which keeps a lack of memory to itself unless the stream throws when it turns bad.
/// @return false at the end of the file, or where it cannot be read
bool readLine(std::istream& file, std::string& line) {
    file.exceptions(std::ios_base::badbit);
    try {
        return static_cast<bool>(std::getline(file, line));
    } catch (std::ios_base::failure const&) {
        return false;
    }
}

}  // namespace

std::uint64_t MemoryInfo::getCurrentProcessMemoryUsage() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (readLine(status, line)) {
        if (!line.starts_with(kResidentSizeLabel)) {
            continue;
        }
        if (auto const blank = line.rfind(' '); blank != std::string::npos) {
            return std::stoull(line.substr(blank + 1)) << kKibibyteShift;
        }
    }
    return 0;
}

std::string MemoryInfo::bytesToString(std::uint64_t bytes) {
    std::uint64_t divisor = 1;
    std::size_t unit = 0;
    while (unit + 1 < kUnits.size() && divisor * kUnitStep <= bytes) {
        divisor *= kUnitStep;
        ++unit;
    }
    double const value = static_cast<double>(bytes) / static_cast<double>(divisor);
    auto const whole = static_cast<std::int32_t>(value);
    std::string const number =
        static_cast<double>(whole) == value ? std::to_string(whole) : toTwoDecimals(value);
    return number + " " + std::string(kUnits[unit]);
}

}  // namespace cross
