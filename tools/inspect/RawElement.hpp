#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "tools/inspect/Fault.hpp"
#include "tools/inspect/OctetString.hpp"

namespace TalIec61850Tools {

/// An element that is kept as it stands: unknown, repeated, or damaged.
struct RawElement {
    /// Index in the frame of its first octet.
    std::size_t offset = 0;
    /// The identifier octet; not set where the octets make no element at all.
    std::optional<std::uint8_t> tag;
    /// The value, as much of it as was captured. Where there is no tag, everything up to the end of
    /// what the element stands in.
    OctetString octets;
    /// Not set for an element that is merely unknown.
    std::optional<FaultKind> fault;

    friend bool operator==(RawElement const&, RawElement const&) = default;
};

}  // namespace TalIec61850Tools
