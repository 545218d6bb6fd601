#include "tools/report/Section.hpp"

#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <algorithm>

#include "tools/report/HtmlText.hpp"

namespace TalIec61850Tools {

std::string absentMarkup(std::string_view text) {
    return "<p class=\"none\">" + toHtml(text) + "</p>\n";
}

std::string moreMarkup(std::string_view text) {
    return "<p class=\"more\">" + toHtml(text) + "</p>\n";
}

std::string linkToMoment(std::int64_t time, std::int64_t length) {
    constexpr std::int64_t kLeast = 50'000'000;
    constexpr std::int64_t kMost = 1'000'000'000'000'000;
    return time == TalIec61850Analysis::kNoTime
               ? ""
               : fmt::format("#t={}&span={}", time, 2 * std::clamp(length, kLeast, kMost));
}

}  // namespace TalIec61850Tools
