#include "bench/Table.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "bench/Targets.hpp"

namespace TalBench {

namespace {

std::string asText(double number) {
    constexpr double least = 1e-4;
    if (std::abs(number) < least / 2) {
        return "0";
    }
    int const decimals = number < 1 ? 4 : number < 100 ? 3 : 1;
    return fmt::format("{:.{}f}", number, decimals);
}

// What the table shows is what counts.
std::string verdict(std::string_view measured, double number) {
    auto const limit = targetOf(measured);
    if (!limit) {
        return "";
    }
    return fmt::format("<= {:g} {}", *limit, std::stod(asText(number)) <= *limit ? "ok" : "over");
}

void printRow(std::string_view measured, std::string_view number, std::string_view range,
              std::string_view nanoseconds, std::string_view target) {
    fmt::print("| {:<54} | {:>8} | {:>20} | {:>10} | {:<12} |\n", measured, number, range,
               nanoseconds, target);
    std::fflush(stdout);
}

}  // namespace

void printTableHead() {
    printRow("Measured", "Ratio", "Range", "ns", "Target");
    fmt::print("|{:-<56}|{:->9}:|{:->21}:|{:->11}:|{:-<14}|\n", "", "", "", "", "");
}

void printRatio(std::string_view measured, Rounds const& numerator, Rounds const& denominator) {
    Rounds const all = ratios(numerator, denominator);
    auto const [least, greatest] = std::ranges::minmax(all);
    double const middle = median(all);
    printRow(measured, asText(middle), fmt::format("{} .. {}", asText(least), asText(greatest)),
             fmt::format("{:.1f}", median(numerator)), verdict(measured, middle));
}

void printNumber(std::string_view measured, double number) {
    printRow(measured, asText(number), "", "", verdict(measured, number));
}

}  // namespace TalBench
