#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <cstddef>
#include <vector>

namespace TalIec61850Analysis {

/// As many channels are shown unless others are asked for: what is kept of a channel takes memory,
/// however few samples there are.
inline constexpr std::size_t kMostPictureChannels = 64;

/// Which channels of a stream are in pictures.
class ChannelChoice {
public:
    /// @param wanted  numbers of channels from 0, in the order in which they are to be; empty for
    ///                the first kMostPictureChannels that the stream has
    TALIEC61850ANALYSIS_EXPORT explicit ChannelChoice(std::vector<std::size_t> wanted = {});

    /// Takes channels in that a block has for the first time, where none were asked for.
    TALIEC61850ANALYSIS_EXPORT void addChannelsOf(SampleBlock const& block);

    /// The channels that were asked for, or those that were seen.
    [[nodiscard]] std::vector<std::size_t> const& numbers() const noexcept { return numbers_; }
    /// The most channels that a block had.
    [[nodiscard]] std::size_t channelsOfStream() const noexcept { return channelsOfStream_; }

    /// One of them in a block.
    /// @param block   any
    /// @param chosen  below numbers().size()
    /// @return null where the block does not have it
    [[nodiscard]] ChannelColumn const* in(SampleBlock const& block,
                                          std::size_t chosen) const noexcept {
        std::size_t const number = numbers_[chosen];
        return number < block.channels.size() ? &block.channels[number] : nullptr;
    }

private:
    bool areAsked_;
    std::vector<std::size_t> numbers_;
    std::size_t channelsOfStream_ = 0;
};

}  // namespace TalIec61850Analysis
