#pragma once

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <cstdint>
#include <string>

namespace TalIec61850Tools {

using TalIec61850Analysis::MacAddress;

/// 01:0c:cd:01:00:01
[[nodiscard]] std::string toText(MacAddress const& address);

/// Four hexadecimal digits, such as 0x4000.
[[nodiscard]] std::string appIdText(std::uint16_t appId);

}  // namespace TalIec61850Tools
