#pragma once

// Internal: what a frame starts with, by its link type.

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Analysis {

/// The layout of a cooked header; null for another link type.
[[nodiscard]] constexpr TalIec61850Parser::wire::CookedLayout const* cookedLayoutOf(
    std::uint16_t linkType) noexcept {
    switch (linkType) {
        case kLinkTypeCooked:
            return &TalIec61850Parser::wire::kCooked;
        case kLinkTypeCooked2:
            return &TalIec61850Parser::wire::kCooked2;
        default:
            return nullptr;
    }
}

/// What comes before the VLAN tags.
struct LinkStart {
    /// Where the first EtherType is.
    std::size_t etherTypeOffset = 0;
    /// Octets that it has.
    std::size_t size = 0;
};

/// @param linkType  that of Ethernet, unless it is of a cooked capture
[[nodiscard]] constexpr LinkStart linkStartOf(std::uint16_t linkType) noexcept {
    if (auto const* const layout = cookedLayoutOf(linkType)) {
        return {.etherTypeOffset = layout->protocolOffset, .size = layout->size};
    }
    return {.etherTypeOffset = TalIec61850Parser::wire::kEtherTypeOffset,
            .size = TalIec61850Parser::wire::kUntaggedSize};
}

}  // namespace TalIec61850Analysis
