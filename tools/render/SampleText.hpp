#pragma once

#include <TalIec61850Analysis/packet/ChannelSample.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/samples/DecodeSample.hpp>
#include <TalIec61850Analysis/samples/LayoutInference.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tools/selection/ChannelMeaning.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::FoundLayout;

/// What seqData of the ASDUs of a packet are taken for, in their order. Of those that are not
/// listed, the length tells: eight octets for each channel are INT32 and quality.
using AsduLayouts = std::vector<FoundLayout>;

/// That of an ASDU; null where it is not listed.
[[nodiscard]] inline FoundLayout const* layoutAt(AsduLayouts const& layouts, std::size_t asdu) {
    return asdu < layouts.size() ? &layouts[asdu] : nullptr;
}

/// What the channels of the ASDUs of a packet mean, in their order; null, or not listed, where that
/// is not described.
using AsduMeanings = std::vector<std::vector<ChannelMeaning> const*>;

/// What a channel of an ASDU means; null where it is not described.
[[nodiscard]] inline ChannelMeaning const* meaningAt(std::vector<ChannelMeaning> const* meanings,
                                                     std::size_t channel) {
    return meanings != nullptr && channel < meanings->size() ? &(*meanings)[channel] : nullptr;
}

/// A value in its unit: see ChannelMeaning. Not set where that is not known.
[[nodiscard]] std::optional<double> scaledValue(TalIec61850Analysis::SampleValue const& sample,
                                                ChannelMeaning const* meaning);

/// The octets of seqData.
[[nodiscard]] TalIec61850Analysis::OctetString octetsOf(
    TalIec61850Analysis::SequenceOfData const& data);

/// The channels of seqData.
/// @param layout  null for what the length tells
/// @return empty where there are octets alone
[[nodiscard]] std::vector<TalIec61850Analysis::SampleValue> decodeAs(
    TalIec61850Analysis::SequenceOfData const& data, FoundLayout const* layout);

/// What a layout is, in a few words: "8 x (INT32, quality)".
[[nodiscard]] std::string layoutText(FoundLayout const& layout, std::size_t dataSize);

/// What is to be said of a layout with the samples: empty for the usual one, where it is certain.
[[nodiscard]] std::string layoutRemark(FoundLayout const& layout, std::size_t dataSize);

}  // namespace TalIec61850Tools
