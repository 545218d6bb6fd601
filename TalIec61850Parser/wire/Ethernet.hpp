#pragma once

// Internal: the one place that reads what is around the application header of a frame: addresses,
// EtherTypes, VLAN, HSR and PRP.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Parser::wire {

inline constexpr std::uint16_t kEtherTypeVlan = 0x8100;     ///< IEEE 802.1Q, customer tag
inline constexpr std::uint16_t kEtherTypeQinQ = 0x88A8;     ///< IEEE 802.1Q, service tag
inline constexpr std::uint16_t kEtherTypeOldQinQ = 0x9100;  ///< service tag before it had its own
inline constexpr std::uint16_t kEtherTypeHsr = 0x892F;      ///< IEC 62439-3
inline constexpr std::uint16_t kEtherTypeGoose = 0x88B8;    ///< IEC 61850-8-1
inline constexpr std::uint16_t kEtherTypeSv = 0x88BA;       ///< IEC 61850-9-2
inline constexpr std::uint16_t kPrpSuffix = 0x88FB;         ///< the end of a PRP trailer

inline constexpr std::size_t kMacSize = 6;
inline constexpr std::size_t kDestinationOffset = 0;
inline constexpr std::size_t kSourceOffset = kMacSize;
inline constexpr std::size_t kEtherTypeOffset = 2 * kMacSize;
inline constexpr std::size_t kEtherTypeSize = 2;
/// Addresses and EtherType of a frame without tags.
inline constexpr std::size_t kUntaggedSize = kEtherTypeOffset + kEtherTypeSize;
/// TCI. Tag sizes are those of what follows the EtherType that announces the tag, without the next
/// EtherType.
inline constexpr std::size_t kVlanTagSize = 2;
/// Path and size, then the sequence number.
inline constexpr std::size_t kHsrTagSize = 4;
/// Sequence number, LAN and size, suffix.
inline constexpr std::size_t kPrpTrailerSize = 6;

using MacAddress = std::array<std::uint8_t, kMacSize>;

/// The tag control information of IEEE 802.1Q.
struct VlanTag {
    std::uint8_t priority = 0;  ///< 3 bits
    bool dei = false;
    std::uint16_t id = 0;  ///< 12 bits

    friend bool operator==(VlanTag const&, VlanTag const&) = default;
};

/// What HSR tag and PRP trailer have in common (IEC 62439-3).
struct RedundancyTag {
    /// 4 bits, of which the lowest names the lane or LAN: the path of HSR, the LanId of PRP (10,
    /// 11).
    std::uint8_t path = 0;
    /// 12 bits: octets of the payload, tag or trailer included.
    std::uint16_t lsduSize = 0;
    std::uint16_t sequence = 0;

    /// 'A' or 'B'.
    [[nodiscard]] constexpr char letter() const { return (path & 1U) != 0 ? 'B' : 'A'; }

    friend bool operator==(RedundancyTag const&, RedundancyTag const&) = default;
};

[[nodiscard]] constexpr VlanTag toVlanTag(std::uint16_t tci) {
    return {.priority = static_cast<std::uint8_t>(tci >> 13U),
            .dei = (tci & 0x1000U) != 0,
            .id = static_cast<std::uint16_t>(tci & 0x0FFFU)};
}

/// @param pathAndSize  the word with the path in its upper four bits
[[nodiscard]] constexpr RedundancyTag toRedundancyTag(std::uint16_t pathAndSize,
                                                      std::uint16_t sequence) {
    return {.path = static_cast<std::uint8_t>(pathAndSize >> 12U),
            .lsduSize = static_cast<std::uint16_t>(pathAndSize & 0x0FFFU),
            .sequence = sequence};
}

/// The HSR tag at the start of `octets`, which is after its EtherType.
/// @pre `octets` holds at least kHsrTagSize octets
[[nodiscard]] constexpr RedundancyTag readHsrTag(Octets octets) {
    return toRedundancyTag(readUint16(octets, 0), readUint16(octets, 2));
}

/// The PRP trailer that the last octets make; nullopt without its suffix. The suffix may be part of
/// something else: a caller that knows where the PDU ends must see that the trailer is after it.
[[nodiscard]] constexpr std::optional<RedundancyTag> readPrpTrailer(Octets octets) {
    if (octets.size() < kPrpTrailerSize) {
        return std::nullopt;
    }
    Octets const trailer = octets.last(kPrpTrailerSize);
    if (readUint16(trailer, 4) != kPrpSuffix) {
        return std::nullopt;
    }
    return toRedundancyTag(readUint16(trailer, 2), readUint16(trailer, 0));
}

/// Whether an EtherType announces a VLAN tag.
[[nodiscard]] constexpr bool isVlanTpid(std::uint16_t etherType) {
    return etherType == kEtherTypeVlan || etherType == kEtherTypeQinQ ||
           etherType == kEtherTypeOldQinQ;
}

// --- Linux cooked captures ----------------------------------------------------------------------

/// Where the parts of a cooked header are; it is in place of addresses and EtherType.
struct CookedLayout {
    std::size_t size = 0;
    std::size_t addressSizeOffset = 0;
    /// Octets of the number that says how long the address is.
    std::size_t addressSizeWidth = 0;
    std::size_t addressOffset = 0;
    std::size_t protocolOffset = 0;
};

/// Link type 113.
inline constexpr CookedLayout kCooked = {.size = 16,
                                         .addressSizeOffset = 4,
                                         .addressSizeWidth = 2,
                                         .addressOffset = 6,
                                         .protocolOffset = 14};
/// Link type 276.
inline constexpr CookedLayout kCooked2 = {.size = 20,
                                          .addressSizeOffset = 11,
                                          .addressSizeWidth = 1,
                                          .addressOffset = 12,
                                          .protocolOffset = 0};

// --- The link layer as the index of TalIec61850Parser reads it ----------------------------------

/// Whether a buffer holds enough octets for tags or a trailer to be looked for.
constexpr bool isLongBuffer(Octets buffer) { return buffer.size() > 17; }

/// A frame's link layer by the rules of `decodeLinkLayer`. Points into the buffer.
struct LinkLayer {
    MacAddress destination{};
    MacAddress source{};
    /// That after the tags.
    std::uint16_t etherType = 0;
    std::optional<std::uint16_t> vlanId;
    /// 'A' or 'B'.
    std::optional<char> hsrLan;
    std::optional<char> prpLan;
    /// Index in the buffer of what follows the last EtherType.
    std::size_t payloadIndex = 0;
    /// Octets before the payload that no member above depends on: size and sequence number in an
    /// HSR tag.
    Octets unread;
};

/// Reads addresses, EtherType, one 802.1Q tag, an HSR tag and a PRP trailer.
///
/// Tags and trailer are looked for only when `buffer` as a whole holds more than 17 octets. The
/// trailer is told by the last octets of the buffer and stays part of the payload.
/// @param buffer  the frame is everything from `index` to its end
/// @return nullopt when the buffer ends inside the header
[[nodiscard]] std::optional<LinkLayer> decodeLinkLayer(Octets buffer, std::size_t index);

/// The LAN of the PRP trailer that `decodeLinkLayer` finds in such a buffer; nullopt without one.
/// This is all that the end of a buffer says about the link layer.
[[nodiscard]] constexpr std::optional<char> readPrpLan(Octets buffer) {
    auto const trailer = isLongBuffer(buffer) ? readPrpTrailer(buffer) : std::nullopt;
    return trailer ? std::optional(trailer->letter()) : std::nullopt;
}

}  // namespace TalIec61850Parser::wire
