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

/// What is meant as an aim can be missed; this cannot.
std::string boundVerdict(bool isWithin, std::optional<double> limit) {
    return limit ? fmt::format("<= {:g} {}", *limit, isWithin ? "within" : "EXCEEDED") : "no limit";
}

bool isWithin(double number, std::optional<double> limit) {
    return !limit || std::stod(asText(number)) <= *limit;
}

std::string rangeOf(Rounds const& all) {
    auto const [least, greatest] = std::ranges::minmax(all);
    return fmt::format("{} .. {}", asText(least), asText(greatest));
}

void printRow(std::string_view measured, std::string_view number, std::string_view range,
              std::string_view nanoseconds, std::string_view target) {
    fmt::print("| {:<54} | {:>8} | {:>20} | {:>10} | {:<16} |\n", measured, number, range,
               nanoseconds, target);
    std::fflush(stdout);
}

}  // namespace

void printTableHead() {
    printRow("Measured", "Ratio", "Range", "ns", "Target");
    fmt::print("|{:-<56}|{:->9}:|{:->21}:|{:->11}:|{:-<18}|\n", "", "", "", "", "");
}

void printRatio(std::string_view measured, Rounds const& numerator, Rounds const& denominator) {
    Rounds const all = ratios(numerator, denominator);
    double const middle = median(all);
    printRow(measured, asText(middle), rangeOf(all), fmt::format("{:.1f}", median(numerator)),
             verdict(measured, middle));
}

void printNumber(std::string_view measured, double number) {
    printRow(measured, asText(number), "", "", verdict(measured, number));
}

bool printBound(std::string_view measured, Rounds const& numerator, Rounds const& denominator,
                std::optional<double> limit) {
    Rounds const all = ratios(numerator, denominator);
    double const middle = median(all);
    printRow(measured, asText(middle), rangeOf(all), fmt::format("{:.2f}", median(numerator)),
             boundVerdict(isWithin(middle, limit), limit));
    return isWithin(middle, limit);
}

bool printBound(std::string_view measured, double number, std::string_view text,
                std::optional<double> limit) {
    printRow(measured, asText(number), text, "", boundVerdict(isWithin(number, limit), limit));
    return isWithin(number, limit);
}

}  // namespace TalBench
