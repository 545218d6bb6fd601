#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// The six octets of an address.
using MacAddress = std::array<std::uint8_t, 6>;

/// IEEE 802.1Q, TPID 8100.
struct VlanTag {
    /// Three bits.
    std::uint8_t priority = 0;
    /// Whether the frame may be dropped first.
    bool dei = false;
    /// The VLAN identifier, 12 bits.
    std::uint16_t id = 0;

    /// Member by member.
    friend bool operator==(VlanTag const&, VlanTag const&) = default;
};

/// IEC 62439-3, EtherType 892F.
struct HsrTag {
    /// Four bits, the lowest of which tells the lane.
    std::uint8_t path = 0;
    /// Octets of the payload, as the sender counts them; 12 bits.
    std::uint16_t lsduSize = 0;
    /// The number that both copies of a frame share.
    std::uint16_t sequence = 0;

    /// 'A' or 'B'.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT char lane() const noexcept;

    /// Member by member.
    friend bool operator==(HsrTag const&, HsrTag const&) = default;
};

/// IEC 62439-3, the last six octets of a frame, suffix 88FB.
struct PrpTrailer {
    /// The number that both copies of a frame share.
    std::uint16_t sequence = 0;
    /// Four bits, 10 or 11.
    std::uint8_t lanId = 0;
    /// Octets of the payload, as the sender counts them; 12 bits.
    std::uint16_t lsduSize = 0;

    /// 'A' or 'B'.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT char lan() const noexcept;

    /// Member by member.
    friend bool operator==(PrpTrailer const&, PrpTrailer const&) = default;
};

/// Octets of a frame that are read. The Length field of GOOSE and SV has 16 bits, so that no
/// message takes as many; what a capture holds beyond them counts as not captured.
inline constexpr std::size_t kMaxFrameSize = 65'600;

/// What a frame has around its PDU. A part that the frame does not have, or that is not all
/// captured, is not set, and neither is any after it.
struct FrameHeader {
    /// Where the frame goes.
    std::optional<MacAddress> destination;
    /// Where the frame comes from.
    std::optional<MacAddress> source;
    /// The 802.1Q tag.
    std::optional<VlanTag> vlan;
    /// The HSR tag.
    std::optional<HsrTag> hsr;
    /// That after the tags: 88B8 GOOSE, 88BA Sampled Values.
    std::optional<std::uint16_t> etherType;
    /// APPID, which a publisher and its subscribers share.
    std::optional<std::uint16_t> appId;
    /// Octets from APPID to the end of the PDU, as the frame claims.
    std::optional<std::uint16_t> length;
    /// Reserved 1, with the bit of simulated traffic.
    std::optional<std::uint16_t> reserved1;
    /// Reserved 2.
    std::optional<std::uint16_t> reserved2;
    /// Where its suffix is at the end of the frame, and after the PDU.
    std::optional<PrpTrailer> prp;
    /// Octets from the first to the last of Reserved 2, or as many as were captured.
    std::size_t size = 0;

    /// Whether the EtherType is that of GOOSE.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT bool isGoose() const noexcept;
    /// Whether the EtherType is that of Sampled Values.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT bool isSv() const noexcept;
    /// The highest bit of Reserved 1: simulated or test traffic.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT bool simulated() const noexcept;

    /// Member by member.
    friend bool operator==(FrameHeader const&, FrameHeader const&) = default;
};

/// Reads one 802.1Q tag, then an HSR tag, then the application header of GOOSE and SV
/// (IEC 61850-8-1, 9-2). Nothing is allocated.
/// @param frame  from the destination address to the end of what was captured
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT FrameHeader readFrameHeader(Octets frame) noexcept;

}  // namespace TalIec61850Analysis
