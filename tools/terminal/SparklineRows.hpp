#pragma once

#include <TalIec61850Analysis/pictures/StreamPicture.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/render/PictureChannels.hpp"
#include "tools/terminal/TextForm.hpp"

namespace TalIec61850Tools {

/// Samples of a stream for a picture of text.
struct SparklinePicture {
    /// At least two columns of its finest level are wanted for each dot: kColumnsForDots.
    TalIec61850Analysis::StreamPicture picture;
    /// One for each channel of the picture.
    std::vector<PictureChannel> channels;
    /// The window that is drawn: the first instant, and the first one after it.
    std::int64_t from = 0;
    std::int64_t end = 0;
};

/// How many columns of a level to ask for, for each column of a terminal: a window without ends may
/// have half of them, and a character has two dots.
inline constexpr std::size_t kColumnsForDots = 8;

/// Draws channels one below the other, two lines each: name and unit, the least and the largest
/// value, and the curve between them with a line at zero. Gaps of missing samples are shaded. Lines
/// of marks say in which columns samples are missing, or of bad quality; and below is the axis.
/// @return lines, each with its end
[[nodiscard]] std::string sparklineRows(SparklinePicture const& stream, TextForm const& form);

}  // namespace TalIec61850Tools
