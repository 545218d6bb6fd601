#include "tools/render/DurationText.hpp"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <string_view>

namespace TalIec61850Tools {

namespace {

struct DurationUnit {
    std::string_view name;
    double nanoseconds;
};

std::string lengthText(double nanoseconds) {
    constexpr std::array<DurationUnit, 4> kUnits = {
        {{"s", 1e9}, {"ms", 1e6}, {"us", 1e3}, {"ns", 1}}};
    constexpr double kManySeconds = 1e6;
    for (DurationUnit const& unit : kUnits) {
        double const number = nanoseconds / unit.nanoseconds;
        if (std::abs(number) >= kManySeconds) {
            return fmt::format("{:.0f} {}", number, unit.name);
        }
        if (std::abs(number) >= 1) {
            return fmt::format("{:.6g} {}", number, unit.name);
        }
    }
    return "0 s";
}

}  // namespace

std::string durationText(std::int64_t nanoseconds) {
    return lengthText(static_cast<double>(nanoseconds));
}

std::string durationText(std::int64_t from, std::int64_t until) {
    // Without a sign, the difference of any two is exact.
    std::uint64_t const length =
        from < until ? static_cast<std::uint64_t>(until) - static_cast<std::uint64_t>(from)
                     : static_cast<std::uint64_t>(from) - static_cast<std::uint64_t>(until);
    return lengthText(static_cast<double>(length));
}

}  // namespace TalIec61850Tools
