#pragma once

#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tools/output/RowLayout.hpp"
#include "tools/output/RowLines.hpp"
#include "tools/selection/ChannelMeaning.hpp"

namespace TalIec61850Tools {

/// A sample of a stream, or one of its channels.
struct SampleRow {
    TalIec61850Analysis::TrafficStream const* stream = nullptr;
    TalIec61850Analysis::SampleBlock const* block = nullptr;
    /// The name of the capture.
    std::string const* file = nullptr;
    /// In the columns of the block.
    std::size_t row = 0;
    /// In rows of one channel: its number, from 0; else unused.
    std::size_t channel = 0;
    /// For each channel of the block, not set for one whose values are written as they are; empty
    /// for raw counts.
    std::vector<std::optional<ChannelScale>> const* scales = nullptr;
    /// For each channel; empty where nothing is known.
    std::vector<ChannelMeaning> const* meanings = nullptr;

    [[nodiscard]] bool isMissing() const {
        return block->states[row] == TalIec61850Analysis::SampleState::missing;
    }
    /// Whether there are octets alone.
    [[nodiscard]] bool isOctets() const { return !block->layout.layout; }
};

/// Which channels are written, and under which names.
struct SampleForm {
    Format format = Format::table;
    /// A row for each channel.
    bool isLong = false;
    /// Numbers from 0 in their order, as many as the streams have at most.
    std::vector<std::size_t> channels = {};
    /// Whether these were asked for: json, and rows of one channel, have all channels of each
    /// sample otherwise.
    bool areChosen = false;
    /// By the number of the channel; empty where they are not known, or not the same for all
    /// streams.
    std::vector<std::string> names = {};
    /// Each channel has fields of its own, too, to choose columns from.
    bool hasFieldPerChannel = false;
};

/// Calls a function with each channel of a row that json, or rows of one channel, have.
template <typename Visit>
void visitChannels(SampleForm const& form, SampleRow const& row, Visit const& visit) {
    std::size_t const count = row.block->channels.size();
    if (!form.areChosen) {
        for (std::size_t channel = 0; channel < count; ++channel) {
            visit(channel);
        }
        return;
    }
    for (std::size_t const channel : form.channels) {
        if (channel < count) {
            visit(channel);
        }
    }
}

/// The fields of a sample. In csv there are columns for each channel, or in rows of a channel
/// those of one; in json there are arrays. Fields of a channel are named as its columns are.
///
///     time               text       when the frame was captured, UTC
///     timeNs             integer    the same in nanoseconds since 1970
///     sampleTime         text       when the sample was taken, UTC
///     sampleTimeNs       integer    the same in nanoseconds since 1970
///     sampleTimeSource   text       refrTm, smpCnt, fit
///     file               text       the capture as it was given
///     position           integer    offset in the file of the ASDU
///     source             text       source address
///     svID               text
///     appId              text       0x4000
///     asdu               integer    its number in the frame, from 1
///     smpCnt             integer
///     smpSynch           integer
///     missing            boolean    the sample never came
///
/// @param form  must outlive the layout
[[nodiscard]] RowLayout<SampleRow> sampleRowLayout(SampleForm const& form);

}  // namespace TalIec61850Tools
