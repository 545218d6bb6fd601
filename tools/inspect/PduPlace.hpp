#pragma once

// Internal: where a PDU stands in its frame, and what stands around it.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "tools/inspect/ElementReader.hpp"
#include "tools/inspect/FieldReader.hpp"
#include "tools/inspect/FrameHeader.hpp"
#include "tools/inspect/OctetString.hpp"

namespace TalIec61850Tools {

/// The octets of a frame that are read, at most kMaxFrameSize.
[[nodiscard]] std::span<std::uint8_t const> readablePart(std::span<std::uint8_t const> frame);

/// Notes what stands behind them.
void reportUnread(std::span<std::uint8_t const> frame, FieldReader& fields);

/// The element of this tag at `offset`; nothing where none begins there.
[[nodiscard]] std::optional<Element> elementAt(std::span<std::uint8_t const> frame,
                                               std::size_t offset, std::uint8_t tag);

/// Index in the frame of what follows what was captured of the element.
[[nodiscard]] std::size_t endOf(Element const& element);

/// Octets of the frame; none where `end` is not behind `begin`.
[[nodiscard]] OctetString octetsBetween(std::span<std::uint8_t const> frame, std::size_t begin,
                                        std::size_t end);

/// The octets behind a PDU that ends at `end`, without the PRP trailer. A trailer that would begin
/// within the PDU is none, and is taken out of the header.
[[nodiscard]] OctetString takeTail(std::span<std::uint8_t const> frame, std::size_t end,
                                   FrameHeader& header);

/// Notes a header that is not all there or not that of a GOOSE or SV frame.
void reportHeader(FrameHeader const& header, std::span<std::uint8_t const> frame,
                  FieldReader& fields);

}  // namespace TalIec61850Tools
