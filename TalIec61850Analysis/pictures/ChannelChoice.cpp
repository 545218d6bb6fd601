#include <TalIec61850Analysis/pictures/ChannelChoice.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Analysis {

ChannelChoice::ChannelChoice(std::vector<std::size_t> wanted)
    : areAsked_(!wanted.empty()), numbers_(std::move(wanted)) {}

void ChannelChoice::addChannelsOf(SampleBlock const& block) {
    channelsOfStream_ = std::max(channelsOfStream_, block.channels.size());
    if (areAsked_) {
        return;
    }
    std::size_t const shown = std::min(channelsOfStream_, kMostPictureChannels);
    while (numbers_.size() < shown) {
        numbers_.push_back(numbers_.size());
    }
}

}  // namespace TalIec61850Analysis
