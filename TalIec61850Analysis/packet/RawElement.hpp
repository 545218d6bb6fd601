#pragma once

#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// An element that no field takes: unknown, repeated, or damaged.
struct RawElement {
    /// Index in the frame of its first octet.
    std::size_t offset = 0;
    /// The identifier octet; not set where the octets make no element at all.
    std::optional<std::uint8_t> tag;
    /// The value, as much of it as was captured. Where there is no tag, everything up to the end of
    /// what the element is in.
    OctetString octets;
    /// Not set for an element that is merely unknown.
    std::optional<FaultKind> fault;

    /// Member by member.
    friend bool operator==(RawElement const&, RawElement const&) = default;
};

/// A copy with octets of its own.
[[nodiscard]] inline RawElement toOwned(ElementView const& element) {
    return {.offset = element.offset,
            .tag = element.tag,
            .octets = toOwned(element.octets),
            .fault = element.fault};
}

}  // namespace TalIec61850Analysis
