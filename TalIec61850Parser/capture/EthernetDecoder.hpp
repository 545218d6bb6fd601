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
inline constexpr std::uint16_t kPrpSuffix = 0x88FB;

/// Whether a buffer holds enough octets for tags or a trailer to be looked for.
constexpr bool isLong(Octets buffer) { return buffer.size() > 17; }

/// HSR and PRP both tell their two networks apart by this bit.
constexpr char lanLetter(std::uint8_t octet) { return (octet & 0x10U) != 0 ? 'B' : 'A'; }

constexpr std::uint16_t readUint16(Octets octets, std::size_t position) {
    return static_cast<std::uint16_t>(octets[position] << 8U | octets[position + 1]);
}
}  // namespace wire

/// A frame's link-layer header, and the index in its buffer of what follows. Points into the
/// buffer.
struct LinkLayer {
    EthernetHeader header;
    std::size_t payloadPosition = 0;
    /// Octets in front of the payload that nothing in `header` depends on: size and sequence number
    /// in an HSR tag.
    Octets unread;
};

/// Reads addresses, EtherType, one 802.1Q tag, an HSR tag and a PRP trailer.
///
/// Tags and trailer are looked for only when `buffer` as a whole holds more than 17 octets. The
/// trailer is told by the last octets of the buffer and stays part of the payload.
/// @param buffer  the frame is everything from `offset` to its end
/// @return nullopt when the buffer ends inside the header
[[nodiscard]] std::optional<LinkLayer> decodeLinkLayer(Octets buffer, std::size_t offset);

/// The LAN of the PRP trailer that `decodeLinkLayer` finds in such a buffer; nullopt without one.
/// This is all that the end of a buffer says about the link layer.
[[nodiscard]] constexpr std::optional<char> readPrpLan(Octets buffer) {
    // From the end: suffix (2 octets), then LAN and size (2), then the sequence number.
    if (!wire::isLong(buffer) || wire::readUint16(buffer, buffer.size() - 2) != wire::kPrpSuffix) {
        return std::nullopt;
    }
    return wire::lanLetter(buffer[buffer.size() - 4]);
}

/// EthernetParser::_macToString.
/// @param mac  points to six octets
[[nodiscard]] std::string macToText(std::uint8_t const* mac);

}  // namespace TalIec61850Parser::detail
