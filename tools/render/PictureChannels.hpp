#pragma once

#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/names/StreamNames.hpp"
#include "tools/selection/ChannelMeaning.hpp"

namespace TalIec61850Tools {

/// A channel of samples as pictures show it.
struct PictureChannel {
    /// What it is described as, or else its number: "channel 3"; safe to show.
    std::string name;
    /// Of its quantity; empty for counts, and where a factor was given without one. Safe to show.
    std::string unit;
    /// A, B, C or N; empty where it is none.
    std::string phase;
    /// From what was sent to what is shown.
    ChannelScale scale;
};

/// What pictures show of channels.
/// @param numbers    of the channels, from 0
/// @param layout     of the samples; not set where it is not known
/// @param described  what they are by a description; null without one
/// @param scales     factors that were asked for: one for all channels, or one for each of the
///                   stream; empty for those that the layout or the description tells
/// @return one for each number, in their order
[[nodiscard]] std::vector<PictureChannel> pictureChannels(
    std::vector<std::size_t> const& numbers,
    std::optional<TalIec61850Analysis::SampleLayout> const& layout,
    DescribedSamples const* described, std::vector<double> const& scales);

/// Channels that share a panel: those of a unit, and of those without one four at a time.
/// @return places in `channels`
[[nodiscard]] std::vector<std::vector<std::size_t>> channelPanels(
    std::vector<PictureChannel> const& channels);

/// What a panel is called: "currents, kA".
/// @param unit       of its channels
/// @param shownUnit  the same, with a prefix where values are shown with one
[[nodiscard]] std::string panelName(std::string_view unit, std::string_view shownUnit);

/// The colour of a channel: that of its phase, or else one by its place.
/// @param place  among the channels of its stream
/// @return a name: of the variable in the style sheet of the page, without the dashes
[[nodiscard]] std::string_view channelColour(PictureChannel const& channel, std::size_t place);

}  // namespace TalIec61850Tools
