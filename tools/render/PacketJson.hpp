#pragma once

#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/Quality.hpp>
#include <TalIec61850Analysis/packet/SampleQuality.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "tools/names/MemberNames.hpp"
#include "tools/render/SampleText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::AsduContent;
using TalIec61850Analysis::DataValue;
using TalIec61850Analysis::Faults;
using TalIec61850Analysis::FrameHeader;
using TalIec61850Analysis::GoosePacket;
using TalIec61850Analysis::Integer;
using TalIec61850Analysis::Quality;
using TalIec61850Analysis::RawElement;
using TalIec61850Analysis::SampleQuality;
using TalIec61850Analysis::SvPacket;
using TalIec61850Analysis::UtcTime;

// Packets for other programs. Names and order of the fields are stable and listed in
// docs/inspect.md; a field of the protocol that a packet lacks is null. Texts from the frame are
// given octet for octet, so that the writer has to replace those that are no UTF-8.

/// @param names  of its values, each of which has a field `name` then; null without
[[nodiscard]] nlohmann::ordered_json toJson(GoosePacket const& packet,
                                            MemberNames const* names = nullptr);
/// @param layouts   see AsduLayouts
/// @param meanings  see AsduMeanings; channels have `name`, `unit` and `scaled` by them
[[nodiscard]] nlohmann::ordered_json toJson(SvPacket const& packet, AsduLayouts const& layouts = {},
                                            AsduMeanings const& meanings = {});

// Their parts.

[[nodiscard]] nlohmann::ordered_json toJson(FrameHeader const& header);
/// @param layout    of seqData; null for what its length says
/// @param meanings  of its channels; null where they are not described
[[nodiscard]] nlohmann::ordered_json toJson(AsduContent const& asdu,
                                            FoundLayout const* layout = nullptr,
                                            std::vector<ChannelMeaning> const* meanings = nullptr);
[[nodiscard]] nlohmann::ordered_json toJson(DataValue const& value);
[[nodiscard]] nlohmann::ordered_json toJson(std::vector<DataValue> const& values);
/// Those of a message, with names.
[[nodiscard]] nlohmann::ordered_json toJson(std::vector<DataValue> const& values,
                                            MemberNames const& names);
[[nodiscard]] nlohmann::ordered_json toJson(Integer const& integer);
[[nodiscard]] nlohmann::ordered_json toJson(UtcTime const& time);
[[nodiscard]] nlohmann::ordered_json toJson(Quality const& quality);
[[nodiscard]] nlohmann::ordered_json toJson(SampleQuality const& quality);
[[nodiscard]] nlohmann::ordered_json toJson(RawElement const& element);
[[nodiscard]] nlohmann::ordered_json toJson(Faults const& faults);

}  // namespace TalIec61850Tools
