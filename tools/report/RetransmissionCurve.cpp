#include "tools/report/RetransmissionCurve.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "tools/render/DurationText.hpp"
#include "tools/report/HtmlText.hpp"

namespace TalIec61850Tools {

std::string retransmissionCurve(TalIec61850Analysis::GooseEvent const& event) {
    constexpr std::size_t kMost = 15;
    constexpr double kStep = 8;
    constexpr double kHeight = 26;
    constexpr double kMargin = 2;
    constexpr double kLeast = 1e5;  // nanoseconds, at the bottom
    constexpr double kDecades = 6;  // from there to the top: 100 s
    constexpr double kDecade = (kHeight - 2 * kMargin) / kDecades;
    std::vector<std::int64_t> intervals;
    std::int64_t before = 0;
    for (std::int64_t const time : event.retransmissions) {
        if (intervals.size() < kMost) {
            intervals.push_back(time - before);
        }
        before = time;
    }
    if (intervals.empty()) {
        return {};
    }
    std::string points;
    std::string marks;
    std::string texts;
    for (std::size_t i = 0; i < intervals.size(); ++i) {
        double const decades =
            std::log10(std::max(kLeast, static_cast<double>(intervals[i])) / kLeast);
        double const x = 4 + kStep * static_cast<double>(i);
        double const y = std::max(kMargin, kHeight - kMargin - kDecade * decades);
        points += fmt::format("{}{:.0f},{:.1f}", i == 0 ? "" : " ", x, y);
        marks += fmt::format(R"(<circle cx="{:.0f}" cy="{:.1f}" r="1.6"/>)", x, y);
        texts += (i == 0 ? "" : ", ") + durationText(intervals[i]);
    }
    return fmt::format(
        R"(<svg class="curve" width="{0}" height="{1}" viewBox="0 0 {0} {1}" role="img">)"
        R"(<title>{2}</title><polyline points="{3}" fill="none" stroke="currentColor"/>)"
        R"(<g fill="currentColor">{4}</g></svg>)",
        static_cast<int>(kStep * static_cast<double>(intervals.size())) + 2,
        static_cast<int>(kHeight), toHtml(texts), points, marks);
}

}  // namespace TalIec61850Tools
