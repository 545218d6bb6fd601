#pragma once

#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Analysis/samples/SampleRate.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "tools/options/CommonOptions.hpp"
#include "tools/options/WindowOptions.hpp"
#include "tools/selection/PacketCriteria.hpp"

namespace TalIec61850Tools {

/// Which samples a command reads, and as what.
struct SampleChoice {
    CommonOptions common;
    /// Of SV streams.
    PacketCriteria criteria;
    WindowOptions window;
    /// What seqData of that size is.
    std::optional<TalIec61850Analysis::SampleLayout> layout;
    /// Not known where the streams are to tell it.
    TalIec61850Analysis::SampleRate rate;
    /// Numbers of channels from 1, in their order; empty for all.
    std::vector<std::size_t> channels;
    /// Factors from counts to units: one for all channels, or one for each; empty for none.
    std::vector<double> scales;

    /// @throws UsageError  it can select no samples: see WindowOptions::check, or it is GOOSE
    void check() const;
    /// To be called when samples were read.
    /// @param most  channels of the stream that has most of those selected; 0 where none was read
    /// @throws UsageError  none of the channels that were asked for is there
    void checkChannels(std::size_t most) const;
};

/// Adds the options, without those of addCommonOptions.
/// @param choice       written while the command line is parsed
/// @param moreArounds  see addWindowOptions
void addSampleChoice(CommandDefinition& command, SampleChoice& choice,
                     std::vector<TimeBound>* moreArounds = nullptr);

/// Adds --channels.
void addChannelsOption(CommandDefinition& command, std::vector<std::size_t>& channels);

/// Adds --scale.
void addScaleOption(CommandDefinition& command, std::vector<double>& scales);

/// What a help says about --layout: a paragraph, not broken into lines.
[[nodiscard]] std::string layoutNotes();

}  // namespace TalIec61850Tools
