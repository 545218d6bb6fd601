#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "tools/inspect/GoosePacket.hpp"
#include "tools/inspect/Quality.hpp"
#include "tools/inspect/SampleQuality.hpp"
#include "tools/inspect/SvPacket.hpp"

namespace TalIec61850Tools {

// Packets for other programs. Names and order of the fields are stable and listed in
// docs/inspect.md; a field of the protocol that a packet lacks is null. Texts from the frame stand
// there octet for octet, so that the writer has to replace those that are no UTF-8.

[[nodiscard]] nlohmann::ordered_json toJson(GoosePacket const& packet);
[[nodiscard]] nlohmann::ordered_json toJson(SvPacket const& packet);

// Their parts.

[[nodiscard]] nlohmann::ordered_json toJson(FrameHeader const& header);
[[nodiscard]] nlohmann::ordered_json toJson(AsduContent const& asdu);
[[nodiscard]] nlohmann::ordered_json toJson(DataValue const& value);
[[nodiscard]] nlohmann::ordered_json toJson(std::vector<DataValue> const& values);
[[nodiscard]] nlohmann::ordered_json toJson(Integer const& integer);
[[nodiscard]] nlohmann::ordered_json toJson(UtcTime const& time);
[[nodiscard]] nlohmann::ordered_json toJson(Quality const& quality);
[[nodiscard]] nlohmann::ordered_json toJson(SampleQuality const& quality);
[[nodiscard]] nlohmann::ordered_json toJson(RawElement const& element);
[[nodiscard]] nlohmann::ordered_json toJson(Faults const& faults);

}  // namespace TalIec61850Tools
