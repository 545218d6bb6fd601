#pragma once

#include <cstdint>
#include <optional>

namespace TalIec61850 {

/// The HSR tag of a stream (IEC 62439-3). The parsers fill `lanId` alone.
struct HsrInfo {
    /// Room for the caller. Counts in SvEqual, as the other two do.
    std::optional<std::uint8_t> hsrSpare1;
    /// The ring direction, 'A' or 'B'.
    std::optional<char> lanId;
    /// Room for the caller.
    std::optional<std::uint16_t> hsrSpare2;
    /// Room for the caller.
    std::optional<std::uint16_t> hsrSpare3;
};

}  // namespace TalIec61850

namespace TalIec61850Parser {
using TalIec61850::HsrInfo;
}  // namespace TalIec61850Parser
