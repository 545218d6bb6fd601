#include <TalIec61850Scl/read/ReadNumber.hpp>
#include <TalIec61850Scl/read/UnitNames.hpp>
#include <algorithm>
#include <array>

namespace TalIec61850Scl::detail {

namespace {

/// By ordinal; empty where there is none, or no dimension.
constexpr std::array<std::string_view, 86> kSiUnits{
    "",       "",    "m",   "kg",   "s",     "A",        "K",    "mol",    "cd",    "deg",
    "rad",    "sr",  "",    "",     "",      "",         "",     "",       "",      "",
    "",       "Gy",  "Bq",  "°C",   "Sv",    "F",        "C",    "S",      "H",     "V",
    "ohm",    "J",   "N",   "Hz",   "lx",    "Lm",       "Wb",   "T",      "W",     "Pa",
    "",       "m²",  "m³",  "m/s",  "m/s²",  "m³/s",     "m/m³", "M",      "kg/m³", "m²/s",
    "W/m K",  "J/K", "ppm", "1/s",  "rad/s", "W/m²",     "J/m²", "S/m",    "K/s",   "Pa/s",
    "J/kg K", "VA",  "W",   "VAr",  "phi",   "cos(phi)", "Vs",   "V²",     "As",    "A²",
    "A²t",    "VAh", "Wh",  "VArh", "V/Hz",  "Hz/s",     "char", "char/s", "kgm²",  "dB",
    "J/Wh",   "W/s", "l/s", "dBm",  "h",     "min"};

/// Octets of a unit that are told: each value of a data object has it.
constexpr std::size_t kMostUnitOctets = 32;

struct Multiplier {
    int ordinal;
    std::string_view text;
};

constexpr std::array kMultipliers{
    Multiplier{-24, "y"}, Multiplier{-21, "z"}, Multiplier{-18, "a"}, Multiplier{-15, "f"},
    Multiplier{-12, "p"}, Multiplier{-9, "n"},  Multiplier{-6, "µ"},  Multiplier{-3, "m"},
    Multiplier{-2, "c"},  Multiplier{-1, "d"},  Multiplier{1, "da"},  Multiplier{2, "h"},
    Multiplier{3, "k"},   Multiplier{6, "M"},   Multiplier{9, "G"},   Multiplier{12, "T"},
    Multiplier{15, "P"},  Multiplier{18, "E"},  Multiplier{21, "Z"},  Multiplier{24, "Y"}};

std::string_view multiplierText(std::string_view multiplier) {
    auto const ordinal = readNumber<int>(multiplier);
    auto const found =
        std::find_if(kMultipliers.begin(), kMultipliers.end(), [&](Multiplier const& each) {
            return ordinal ? each.ordinal == *ordinal : each.text == multiplier;
        });
    if (found != kMultipliers.end()) {
        return found->text;
    }
    return multiplier == "u" ? "µ" : "";
}

}  // namespace

std::string unitText(std::string_view siUnit, std::string_view multiplier) {
    std::string_view unit = siUnit;
    if (auto const ordinal = readNumber<std::size_t>(siUnit)) {
        unit = *ordinal < kSiUnits.size() ? kSiUnits[*ordinal] : "";
    } else if (unit == "none" || unit == "dimensionless") {
        unit = "";
    } else if (unit == "Watts") {
        unit = "W";  // what ordinal 62 was called at first
    }
    if (unit.empty()) {
        return {};
    }
    std::string text(multiplierText(multiplier));
    text.append(unit);
    text.resize(startOf(std::string_view(text), kMostUnitOctets).size());
    return text;
}

}  // namespace TalIec61850Scl::detail
