#include "tools/plot/PlotContent.hpp"

#include <algorithm>

namespace TalIec61850Tools {

std::vector<std::vector<std::size_t>> channelPanels(std::vector<PictureChannel> const& channels) {
    constexpr std::size_t kCounts = 4;
    std::vector<std::vector<std::size_t>> panels;
    std::vector<std::string> keys;
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        std::string const& unit = channels[channel].unit;
        std::string key = unit.empty() ? "#" + std::to_string(channel / kCounts) : "u" + unit;
        auto const known = std::find(keys.begin(), keys.end(), key);
        if (known == keys.end()) {
            keys.push_back(std::move(key));
            panels.push_back({channel});
        } else {
            panels[static_cast<std::size_t>(known - keys.begin())].push_back(channel);
        }
    }
    return panels;
}

}  // namespace TalIec61850Tools
