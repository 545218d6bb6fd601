#pragma once

#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/render/PictureNames.hpp"
#include "tools/report/PageStream.hpp"

namespace TalIec61850Tools {

/// What a page has of SV streams.
struct Waveforms {
    /// For the script: one for each stream that is drawn.
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    /// Their values: see NumberPacker.
    std::string octets;
    /// How many samples and channels there are, and what of them is in the page.
    std::string line;
    /// Of the first sample and the last one, in nanoseconds since 1970; kNoTime without any.
    std::int64_t first = TalIec61850Analysis::kNoTime;
    std::int64_t last = TalIec61850Analysis::kNoTime;
};

/// The SV streams that a page draws: their samples, as long as there is room, or columns of them.
class WaveformsSection {
public:
    using WishOf = std::function<PageStreamWish(TalIec61850Analysis::TrafficStream const& stream)>;

    /// @param index, names  must outlive the section
    /// @param wishOf        what is drawn of a stream
    /// @param room          octets in the page
    WaveformsSection(TalIec61850Analysis::TrafficIndex const& index, PictureNames const& names,
                     WishOf wishOf, std::size_t room)
        : index_(index), names_(names), wishOf_(std::move(wishOf)), room_(room) {}

    /// Draws a stream. Where there is no room, the streams that take most become coarser, and the
    /// last ones are left out where even that does not do.
    /// @param stream  its number in the index
    /// @throws std::system_error  a capture cannot be read
    void add(std::size_t stream);

    /// Channels of the stream that has most.
    [[nodiscard]] std::size_t mostChannels() const { return mostChannels_; }
    /// Whether nothing is drawn.
    [[nodiscard]] bool isEmpty() const { return drawn_.empty(); }
    /// What is not drawn, a sentence each.
    /// @param streams  how many there are
    [[nodiscard]] std::vector<std::string> absent(std::size_t streams) const;
    /// How far samples are from what is drawn at the time of its capture; empty where that is not
    /// much.
    [[nodiscard]] std::string delayNote() const;
    /// What was drawn. To be called once, last.
    /// @param maxSize  octets of the page, to be told where they were too few
    [[nodiscard]] Waveforms take(std::uint64_t maxSize);

private:
    /// A stream that is drawn, and its number in the index.
    struct Drawn {
        PageStream picture;
        std::size_t stream = 0;
        /// In the page.
        std::size_t size = 0;
    };

    void fit();

    TalIec61850Analysis::TrafficIndex const& index_;
    PictureNames const& names_;
    WishOf wishOf_;
    std::size_t room_;
    std::vector<Drawn> drawn_;
    std::size_t mostChannels_ = 0;
    /// Streams without a picture.
    std::size_t empty_ = 0;
};

}  // namespace TalIec61850Tools
