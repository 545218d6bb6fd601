#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

using MacAddress = std::array<std::uint8_t, 6>;

/// IEEE 802.1Q, TPID 8100.
struct VlanTag {
    std::uint8_t priority = 0;
    bool dei = false;
    std::uint16_t id = 0;

    friend bool operator==(VlanTag const&, VlanTag const&) = default;
};

/// IEC 62439-3, EtherType 892F.
struct HsrTag {
    /// Four bits, the lowest of which tells the lane.
    std::uint8_t path = 0;
    std::uint16_t lsduSize = 0;
    std::uint16_t sequence = 0;

    /// 'A' or 'B'.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT char lane() const noexcept;

    friend bool operator==(HsrTag const&, HsrTag const&) = default;
};

/// IEC 62439-3, the last six octets of a frame, suffix 88FB.
struct PrpTrailer {
    std::uint16_t sequence = 0;
    /// Four bits, 10 or 11.
    std::uint8_t lanId = 0;
    std::uint16_t lsduSize = 0;

    /// 'A' or 'B'.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT char lan() const noexcept;

    friend bool operator==(PrpTrailer const&, PrpTrailer const&) = default;
};

/// Octets of a frame that are read. The Length field of GOOSE and SV has 16 bits, so that no
/// message takes as many; what a capture holds beyond them counts as not captured.
inline constexpr std::size_t kMaxFrameSize = 65'600;

/// What a frame has around its PDU. A part that the frame does not have, or that is not all
/// captured, is not set, and neither is any after it.
struct FrameHeader {
    std::optional<MacAddress> destination;
    std::optional<MacAddress> source;
    std::optional<VlanTag> vlan;
    std::optional<HsrTag> hsr;
    /// That after the tags: 88B8 GOOSE, 88BA Sampled Values.
    std::optional<std::uint16_t> etherType;
    std::optional<std::uint16_t> appId;
    std::optional<std::uint16_t> length;
    std::optional<std::uint16_t> reserved1;
    std::optional<std::uint16_t> reserved2;
    /// Where its suffix is at the end of the frame, and after the PDU.
    std::optional<PrpTrailer> prp;
    /// Octets from the first to the last of Reserved 2, or as many as were captured.
    std::size_t size = 0;

    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT bool isGoose() const noexcept;
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT bool isSv() const noexcept;
    /// The highest bit of Reserved 1: simulated or test traffic.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT bool simulated() const noexcept;

    friend bool operator==(FrameHeader const&, FrameHeader const&) = default;
};

/// Reads one 802.1Q tag, then an HSR tag, then the application header of GOOSE and SV
/// (IEC 61850-8-1, 9-2). Nothing is allocated.
/// @param frame  from the destination address to the end of what was captured
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT FrameHeader readFrameHeader(Octets frame) noexcept;

}  // namespace TalIec61850Analysis
