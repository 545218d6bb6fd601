#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// The six octets of an address.
using MacAddress = std::array<std::uint8_t, 6>;

/// IEEE 802.1Q.
struct VlanTag {
    /// The EtherType that announces it: 8100, 88A8 or 9100.
    std::uint16_t tpid = 0x8100;
    /// Three bits.
    std::uint8_t priority = 0;
    /// Whether the frame may be dropped first.
    bool dei = false;
    /// The VLAN identifier, 12 bits.
    std::uint16_t id = 0;

    /// Member by member.
    friend bool operator==(VlanTag const&, VlanTag const&) = default;
};

/// VLAN tags a frame can have; more are not read.
inline constexpr std::size_t kMaxVlanTags = 8;

/// The VLAN tags of a frame, outermost first. Nothing is allocated.
class VlanTags {
public:
    /// The outermost, or the end.
    [[nodiscard]] VlanTag const* begin() const noexcept { return tags_.data(); }
    /// What follows the innermost.
    [[nodiscard]] VlanTag const* end() const noexcept { return tags_.data() + size_; }
    /// How many there are, at most kMaxVlanTags.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    /// Whether there is none.
    [[nodiscard]] bool empty() const noexcept { return size_ == 0; }
    /// @param index  from the outermost, below `size`
    [[nodiscard]] VlanTag const& operator[](std::size_t index) const noexcept {
        return begin()[index];
    }
    /// The one next to the payload; not set where there is none.
    [[nodiscard]] std::optional<VlanTag> innermost() const noexcept {
        return empty() ? std::nullopt : std::optional(end()[-1]);
    }
    /// Adds one within the others.
    /// @return false where there are kMaxVlanTags already
    bool add(VlanTag const& tag) noexcept {
        if (size_ == kMaxVlanTags) {
            return false;
        }
        tags_[size_++] = tag;  // NOLINT(cppcoreguidelines-pro-bounds-constant-array-index)
        return true;
    }

    /// Tag by tag.
    friend bool operator==(VlanTags const& a, VlanTags const& b) noexcept {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    std::array<VlanTag, kMaxVlanTags> tags_{};
    std::uint8_t size_ = 0;
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

/// IEC 62439-3, six octets at the end of a frame, suffix 88FB.
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

/// Link types that are read, by their numbers in captures.
inline constexpr std::uint16_t kLinkTypeEthernet = 1;
inline constexpr std::uint16_t kLinkTypeCooked = 113;   ///< Linux cooked, of the first version
inline constexpr std::uint16_t kLinkTypeCooked2 = 276;  ///< Linux cooked, of the second version

/// Whether frames of a link type can be read.
[[nodiscard]] constexpr bool isReadable(std::uint16_t linkType) noexcept {
    return linkType == kLinkTypeEthernet || linkType == kLinkTypeCooked ||
           linkType == kLinkTypeCooked2;
}

/// What a capture says of a frame besides its octets.
struct FrameOrigin {
    /// One of kLinkTypeEthernet, kLinkTypeCooked, kLinkTypeCooked2.
    std::uint16_t linkType = kLinkTypeEthernet;
    /// Octets that the frame had on the wire. Where that is more than were captured, the end of the
    /// frame is not there; 0 means as many as were captured.
    std::size_t originalSize = 0;
};

/// What a frame has around its PDU. A part that the frame does not have, or that is not all
/// captured, is not set, and neither is any after it.
struct FrameHeader {
    /// Where the frame goes. A cooked capture does not have it.
    std::optional<MacAddress> destination;
    /// Where the frame comes from.
    std::optional<MacAddress> source;
    /// The tags before the HSR tag or the payload.
    VlanTags vlanTags;
    /// The HSR tag.
    std::optional<HsrTag> hsr;
    /// That after the tags: 88B8 GOOSE, 88BA Sampled Values; 8100, 88A8 or 9100 where there are
    /// more tags than are read.
    std::optional<std::uint16_t> etherType;
    /// APPID, which a publisher and its subscribers share.
    std::optional<std::uint16_t> appId;
    /// Octets from APPID to the end of the PDU, as the frame claims.
    std::optional<std::uint16_t> length;
    /// Reserved 1, with the bit of simulated traffic.
    std::optional<std::uint16_t> reserved1;
    /// Reserved 2.
    std::optional<std::uint16_t> reserved2;
    /// Where the suffix, a LAN and a size that fits are after the PDU. Padding may follow it. A
    /// frame whose end was not captured has none.
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

/// Reads VLAN tags, then an HSR tag, then the application header of GOOSE and SV (IEC 61850-8-1,
/// 9-2), and the PRP trailer after the PDU. Nothing is allocated; the time grows with the octets.
/// @param frame   from the first octet to the end of what was captured
/// @param origin  of a link type that is not read, nothing is set
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT FrameHeader
readFrameHeader(Octets frame, FrameOrigin const& origin = {}) noexcept;

}  // namespace TalIec61850Analysis
