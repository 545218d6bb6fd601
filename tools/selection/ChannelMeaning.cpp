#include "tools/selection/ChannelMeaning.hpp"

#include <TalIec61850Analysis/samples/LayoutInference.hpp>
#include <algorithm>
#include <cmath>

namespace TalIec61850Tools {

using TalIec61850Analysis::SampleLayout;
using TalIec61850Analysis::SampleType;

ChannelScale ChannelScale::of(double unitsPerCount) {
    constexpr double kClose = 1e-12;
    double const counts = std::round(1 / unitsPerCount);
    bool const isFraction =
        std::abs(unitsPerCount) < 1 && std::abs(counts * unitsPerCount - 1) < kClose;
    return isFraction ? ChannelScale{.factor = counts, .divides = true}
                      : ChannelScale{.factor = unitsPerCount, .divides = false};
}

bool is92Le(SampleLayout const& layout) {
    auto const members = layout.members();
    bool isIt = layout.size() == TalIec61850Analysis::kSizeOf92Le && members.size() == 16;
    for (std::size_t i = 0; isIt && i < members.size(); ++i) {
        isIt = members[i] == (i % 2 == 0 ? SampleType::int32 : SampleType::quality);
    }
    return isIt;
}

std::vector<ChannelMeaning> const& meaningsOf(SampleLayout const& layout) {
    static std::vector<ChannelMeaning> const none;
    static std::vector<ChannelMeaning> const of92Le = [] {
        std::vector<ChannelMeaning> all;
        for (char const* const quantity : {"I", "U"}) {
            bool const isCurrent = *quantity == 'I';
            for (char const* const phase : {"a", "b", "c", "n"}) {
                std::string letter(phase);
                letter[0] = static_cast<char>(letter[0] - 'a' + 'A');
                all.push_back({.name = std::string(quantity) + phase,
                               .unit = isCurrent ? "A" : "V",
                               .phase = letter,
                               .scale = ChannelScale::of(isCurrent ? 0.001 : 0.01)});
            }
        }
        return all;
    }();
    return is92Le(layout) ? of92Le : none;
}

}  // namespace TalIec61850Tools
