#pragma once

#include <TalIec61850Parser/capture/Filter.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/selection/StreamIdentity.hpp"

namespace TalIec61850Tools {

/// The streams that a command reads. Of each criterion one of the values must be met; a criterion
/// without values admits every stream. A value that a stream lacks meets none.
struct StreamCriteria {
    std::optional<Protocol> protocol;
    /// Lower-case hexadecimal pairs joined by colons.
    std::vector<std::string> sources;
    std::vector<std::string> destinations;
    std::vector<std::uint16_t> vlanIds;
    std::vector<std::uint64_t> appIds;
    /// A or B.
    std::vector<char> hsrLanes;
    std::vector<char> prpLanes;
    std::vector<std::uint8_t> reserved1Bit0;
    /// Names, in which * matches any text and ? any character.
    std::vector<std::string> svIDs;
    std::vector<std::string> gocbRefs;
    std::vector<std::string> datSets;
    std::vector<std::string> goIDs;
    std::vector<std::uint64_t> confRevs;
    std::optional<bool> simulationPresent;

    /// Whether a stream of the store meets every criterion.
    [[nodiscard]] bool admit(StreamIdentity const& stream) const;

    friend bool operator==(StreamCriteria const&, StreamCriteria const&) = default;
};

/// A library filter that is a superset of these criteria: it may let other streams through, which
/// `admit` then refuses, and of redundant streams it keeps only the packets of the wanted lane or
/// network.
[[nodiscard]] TalIec61850Parser::Filter toIndexFilter(StreamCriteria const& criteria);

/// The library's filter for exactly these criteria, without patterns: an entry for every value.
[[nodiscard]] TalIec61850Parser::Filter toFrameFilter(StreamCriteria const& criteria);

}  // namespace TalIec61850Tools
