#pragma once

#include <TalIec61850Parser/capture/Filter.hpp>
#include <cstdint>
#include <optional>
#include <vector>

#include "tools/library/LibraryStream.hpp"
#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

/// What is asked of the library: streams by all that it tells them apart by.
struct LibraryCriteria : StreamCriteria {
    std::vector<std::uint8_t> reserved1Bit0;
    std::optional<bool> simulationPresent;

    /// Whether a stream of the store meets every criterion.
    [[nodiscard]] bool admit(LibraryStream const& stream) const;

    friend bool operator==(LibraryCriteria const&, LibraryCriteria const&) = default;
};

/// A library filter that is a superset of these criteria: it may let other streams through, which
/// `admit` then refuses, and of redundant streams it keeps only the packets of the wanted lane or
/// network.
[[nodiscard]] TalIec61850Parser::Filter toIndexFilter(LibraryCriteria const& criteria);

/// The library's filter for exactly these criteria, without patterns: an entry for every value.
[[nodiscard]] TalIec61850Parser::Filter toFrameFilter(LibraryCriteria const& criteria);

}  // namespace TalIec61850Tools
