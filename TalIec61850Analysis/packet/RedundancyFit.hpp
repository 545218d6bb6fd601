#pragma once

// Internal: where a frame's PRP trailer is, and whether the size in its HSR tag fits.

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// A PRP trailer, and where it starts.
struct PlacedTrailer {
    PrpTrailer trailer;
    /// Index in the frame.
    std::size_t offset = 0;
};

/// The header without a PRP trailer.
[[nodiscard]] FrameHeader readFrameStart(Octets frame, std::uint16_t linkType) noexcept;

/// Index in the frame of what follows the EtherType after the VLAN tags: what the sizes of HSR and
/// PRP are counted from.
[[nodiscard]] std::size_t lsduOffsetOf(FrameHeader const& header, std::uint16_t linkType) noexcept;

/// Index in the frame of the end that the PDU has by its own length; of the end of the header where
/// no PDU is. It may be after the end of the frame.
[[nodiscard]] std::size_t pduEndOf(Octets frame, FrameHeader const& header) noexcept;

/// The trailer whose last octet is before `end`; nothing where LAN or size are not those of one.
/// @param end         index in the frame, or its size
/// @param lsduOffset  see lsduOffsetOf
/// @param hasHsr      whether there is an HSR tag too
[[nodiscard]] inline std::optional<PlacedTrailer> prpTrailerBefore(Octets frame, std::size_t end,
                                                                   std::size_t lsduOffset,
                                                                   bool hasHsr) noexcept {
    namespace wire = TalIec61850Parser::wire;
    constexpr std::uint8_t kLans = 0xA;
    constexpr std::uint16_t kMaxLsduSize = 0xFFF;
    // With the EtherType that announces it.
    constexpr std::size_t kWholeHsrTagSize = wire::kEtherTypeSize + wire::kHsrTagSize;
    auto const tag = wire::readPrpTrailer(frame.first(end));
    if (!tag || tag->path >> 1U != kLans >> 1U) {
        return std::nullopt;
    }
    std::size_t const size = end - lsduOffset;
    bool const fits = tag->lsduSize == (size & kMaxLsduSize) ||
                      (hasHsr && tag->lsduSize == ((size - kWholeHsrTagSize) & kMaxLsduSize));
    if (!fits) {
        return std::nullopt;
    }
    return PlacedTrailer{{.sequence = tag->sequence, .lanId = tag->path, .lsduSize = tag->lsduSize},
                         end - wire::kPrpTrailerSize};
}

/// The last trailer that padding follows.
/// @pre at least kPrpTrailerSize octets are after `pduEnd`
[[nodiscard]] std::optional<PlacedTrailer> searchPrpTrailer(Octets frame, std::size_t pduEnd,
                                                            std::size_t lsduOffset,
                                                            bool hasHsr) noexcept;

/// Looks for a trailer in the octets after the PDU, the last one first: a suffix alone may be a
/// part of a signature.
/// @param pduEnd      index in the frame; nothing before it is looked at
/// @param lsduOffset  see lsduOffsetOf
/// @param hasHsr      whether there is an HSR tag too
[[nodiscard]] inline std::optional<PlacedTrailer> findPrpTrailer(Octets frame, std::size_t pduEnd,
                                                                 std::size_t lsduOffset,
                                                                 bool hasHsr) noexcept {
    if (pduEnd + TalIec61850Parser::wire::kPrpTrailerSize > frame.size()) {
        return std::nullopt;
    }
    auto const last = prpTrailerBefore(frame, frame.size(), lsduOffset, hasHsr);
    return last ? last : searchPrpTrailer(frame, pduEnd, lsduOffset, hasHsr);
}

/// The same for a frame whose header was read; none where the frame's end was not captured.
[[nodiscard]] std::optional<PlacedTrailer> findPrpTrailer(Octets frame, std::size_t pduEnd,
                                                          FrameHeader const& header,
                                                          FrameOrigin const& origin) noexcept;

/// What ends a frame as a PRP trailer does, be its size right or not: suffix and LAN, and nothing
/// after them but zeros up to the size of a short frame.
/// @param pduEnd  index in the frame; nothing before it is looked at
[[nodiscard]] std::optional<PrpTrailer> misfitTrailer(Octets frame, std::size_t pduEnd) noexcept;

/// Whether the size in an HSR tag reaches from the tag to a place after the PDU and within the
/// frame.
/// @param pduEnd  index in the frame
/// @param size    of the frame on the wire
[[nodiscard]] constexpr bool hsrSizeFits(std::size_t lsduOffset, std::uint16_t lsduSize,
                                         std::size_t pduEnd, std::size_t size) noexcept {
    // Twelve bits are all that there is for longer ones.
    constexpr std::size_t kMaxLsduSize = 0xFFF;
    std::size_t const end = lsduOffset + lsduSize;
    return (end >= pduEnd || pduEnd - lsduOffset > kMaxLsduSize) && end <= size;
}

}  // namespace TalIec61850Analysis
