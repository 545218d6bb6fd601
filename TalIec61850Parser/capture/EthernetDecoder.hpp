#pragma once

// Internal: the one place that reads a frame's link-layer header.

#include <TalIec61850Parser/capture/EthernetHeader.hpp>
#include <TalIec61850Parser/codec/BerReader.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace TalIec61850Parser::detail {

namespace wire {
inline constexpr std::uint16_t kEtherTypeGoose = 0x88B8;
inline constexpr std::uint16_t kEtherTypeSv = 0x88BA;
}  // namespace wire

/// A frame's link-layer header, and the index in its buffer of what follows.
struct LinkLayer {
    EthernetHeader header;
    std::size_t payloadPosition = 0;
};

/// Reads addresses, EtherType, one 802.1Q tag, an HSR tag and a PRP trailer.
///
/// Tags and trailer are looked for only when `buffer` as a whole holds more than 17 octets. The
/// trailer is told by the last octets of the buffer and stays part of the payload.
/// @param buffer  the frame is everything from `offset` to its end
/// @return nullopt when the buffer ends inside the header
[[nodiscard]] std::optional<LinkLayer> decodeLinkLayer(Octets buffer, std::size_t offset);

/// EthernetParser::_macToString.
/// @param mac  points to six octets
[[nodiscard]] std::string macToText(std::uint8_t const* mac);

}  // namespace TalIec61850Parser::detail
