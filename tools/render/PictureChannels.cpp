#include "tools/render/PictureChannels.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "tools/output/TextEscape.hpp"
#include "tools/render/PictureNames.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::SampleLayout;

std::vector<PictureChannel> pictureChannels(std::vector<std::size_t> const& numbers,
                                            std::optional<SampleLayout> const& layout,
                                            DescribedSamples const* described,
                                            std::vector<double> const& scales) {
    std::vector<ChannelMeaning> meanings;
    if (layout && described != nullptr && *layout == described->layout) {
        meanings = described->channels;
    } else if (layout) {
        meanings = meaningsOf(*layout);
    }
    std::vector<PictureChannel> channels;
    for (std::size_t const number : numbers) {
        ChannelMeaning meaning = number < meanings.size() ? meanings[number] : ChannelMeaning{};
        if (!scales.empty()) {
            std::size_t const place = scales.size() == 1 ? 0 : number;
            meaning.unit = "";
            meaning.scale =
                place < scales.size() ? ChannelScale::of(scales[place]) : ChannelScale();
        }
        channels.push_back({.name = PictureNames::ofChannel(number, meaning.name),
                            .unit = escapeText(meaning.unit),
                            .phase = std::move(meaning.phase),
                            .scale = meaning.scale.value_or(ChannelScale())});
    }
    return channels;
}

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

std::string panelName(std::string_view unit, std::string_view shownUnit) {
    if (unit.empty()) {
        return "counts";
    }
    return (unit == "A" ? "currents, " : (unit == "V" ? "voltages, " : "")) +
           std::string(shownUnit);
}

std::string_view channelColour(PictureChannel const& channel, std::size_t place) {
    constexpr std::array<std::string_view, 4> kPhases = {"a", "b", "c", "n"};
    constexpr std::array<std::string_view, 6> kOthers = {"a", "c", "b", "e", "d", "n"};
    std::size_t const phase =
        channel.phase.size() == 1 ? std::string_view("ABCN").find(channel.phase) : kPhases.size();
    return phase < kPhases.size() ? kPhases[phase] : kOthers[place % kOthers.size()];
}

}  // namespace TalIec61850Tools
