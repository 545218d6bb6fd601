#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "support/Bytes.hpp"

namespace TalTest {

inline constexpr std::uint16_t etherTypeGoose = 0x88B8;
inline constexpr std::uint16_t etherTypeSampledValues = 0x88BA;
inline constexpr std::uint16_t etherTypeVlan = 0x8100;
inline constexpr std::uint16_t etherTypeHsr = 0x892F;
inline constexpr std::uint16_t prpSuffix = 0x88FB;

/// The link layer of one frame: addresses, IEEE 802.1Q tag, and the tag (HSR) or trailer (PRP) of
/// IEC 62439-3. By default an untagged GOOSE multicast.
///
///     Ethernet().to("01:0c:cd:01:00:07").withVlan(5).withHsr('B', 100)
struct Ethernet {
    std::string destination = "01:0c:cd:01:00:01";
    std::string source = "02:00:00:00:00:01";
    std::optional<std::uint16_t> vlanId = {};
    std::uint8_t vlanPriority = 4;
    bool vlanDei = false;
    /// 'A' or 'B', the direction in the ring.
    std::optional<char> hsrLan = {};
    std::uint16_t hsrSequence = 0;
    /// 'A' or 'B', the network of the two.
    std::optional<char> prpLan = {};
    std::uint16_t prpSequence = 0;
    /// Fills the frame with zeros up to 60 octets, before a PRP trailer, as a sender does.
    bool padded = false;

    // Copies with one thing changed.
    [[nodiscard]] Ethernet to(std::string_view address) const;
    [[nodiscard]] Ethernet from(std::string_view address) const;
    [[nodiscard]] Ethernet withVlan(std::uint16_t id, std::uint8_t priority = 4,
                                    bool dei = false) const;
    [[nodiscard]] Ethernet withHsr(char lan, std::uint16_t sequence = 0) const;
    [[nodiscard]] Ethernet withPrp(char lan, std::uint16_t sequence = 0) const;
    [[nodiscard]] Ethernet withPadding() const;
};

/// The six octets of an address written like 01:0c:cd:01:00:01.
/// @throws std::invalid_argument for any other text
[[nodiscard]] Bytes macAddress(std::string_view address);

/// Where the payload begins in a frame of this link layer: 14, 18, 20 or 24.
[[nodiscard]] std::size_t payloadOffset(Ethernet const& ethernet);

/// A whole frame, without its check sequence: addresses, tags, EtherType, payload, trailer.
/// The LSDU sizes count what is after the first EtherType that is not a VLAN tag's.
[[nodiscard]] Bytes ethernetFrame(Ethernet const& ethernet, std::uint16_t etherType,
                                  Bytes const& payload);

}  // namespace TalTest
