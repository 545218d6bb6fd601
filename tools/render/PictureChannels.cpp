#include "tools/render/PictureChannels.hpp"

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

}  // namespace TalIec61850Tools
