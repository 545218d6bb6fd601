#pragma once

// Internal: where a PDU is in its frame, and what is around it.

#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// The octets of a frame that are read, at most kMaxFrameSize.
[[nodiscard]] Octets readablePart(Octets frame) noexcept;

/// The element of this tag at `offset`; nothing where none starts there.
[[nodiscard]] std::optional<ElementView> elementAt(Octets frame, std::size_t offset,
                                                   std::uint8_t tag) noexcept;

/// Octets of the frame; none where `end` is not after `start`.
[[nodiscard]] Octets octetsBetween(Octets frame, std::size_t start, std::size_t end) noexcept;

/// The octets after a PDU that ends at `pduEnd`, up to the PRP trailer. The header's trailer is set
/// to that, or reset where there is none.
[[nodiscard]] Octets takeTail(Octets frame, std::size_t pduEnd, FrameOrigin const& origin,
                              FrameHeader& header) noexcept;

/// Hands on a header that is not all there or not that of a GOOSE or SV frame, and an HSR tag with
/// a size that does not fit.
void reportHeader(FrameHeader const& header, Octets frame, FrameOrigin const& origin,
                  FaultSink sink);

/// Hands on that a frame has more octets than are read.
void reportUnread(Octets frame, FaultSink sink);

}  // namespace TalIec61850Analysis
