#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace TalIec61850Tools {

inline constexpr std::uint16_t kEtherTypeGoose = 0x88B8;
inline constexpr std::uint16_t kEtherTypeSv = 0x88BA;

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

    /// 'A' or 'B', by the same bit as the index.
    [[nodiscard]] char lane() const { return (path & 1U) != 0 ? 'B' : 'A'; }

    friend bool operator==(HsrTag const&, HsrTag const&) = default;
};

inline constexpr std::size_t kPrpTrailerSize = 6;

/// IEC 62439-3, the last six octets of a frame, suffix 88FB.
struct PrpTrailer {
    std::uint16_t sequence = 0;
    /// Four bits, 10 or 11.
    std::uint8_t lanId = 0;
    std::uint16_t lsduSize = 0;

    /// 'A' or 'B', by the same bit as the index.
    [[nodiscard]] char lan() const { return (lanId & 1U) != 0 ? 'B' : 'A'; }

    friend bool operator==(PrpTrailer const&, PrpTrailer const&) = default;
};

/// Octets of a frame that are read. The Length field of GOOSE and SV has 16 bits, so that no
/// message takes as many; what a capture holds beyond them counts as not captured.
inline constexpr std::size_t kMaxFrameSize = 65'600;

/// What stands in a frame around its PDU. A part that the frame does not have, or that is not all
/// captured, is not set, and neither is any behind it.
struct FrameHeader {
    std::optional<MacAddress> destination;
    std::optional<MacAddress> source;
    std::optional<VlanTag> vlan;
    std::optional<HsrTag> hsr;
    /// That behind the tags: 88B8 GOOSE, 88BA Sampled Values.
    std::optional<std::uint16_t> etherType;
    std::optional<std::uint16_t> appId;
    std::optional<std::uint16_t> length;
    std::optional<std::uint16_t> reserved1;
    std::optional<std::uint16_t> reserved2;
    /// Where the suffix stands at the end, and behind the PDU.
    std::optional<PrpTrailer> prp;
    /// Octets from the first to behind Reserved 2, or as many as were captured.
    std::size_t size = 0;

    /// The highest bit of Reserved 1: simulated or test traffic.
    [[nodiscard]] bool simulated() const { return (reserved1.value_or(0) & 0x8000U) != 0; }

    friend bool operator==(FrameHeader const&, FrameHeader const&) = default;
};

/// Reads tags as the library's EthernetParser does: one 802.1Q tag, then an HSR tag.
[[nodiscard]] FrameHeader readFrameHeader(std::span<std::uint8_t const> frame);

}  // namespace TalIec61850Tools
