#pragma once

#include <TalIec61850Parser/capture/Filter.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/selection/StreamIdentity.hpp"

namespace TalIec61850Tools {

/// Which streams a command is about. Of each criterion one of the values must be met; a criterion
/// without values admits anything. What a stream lacks meets no value.
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
    /// Names, in which * stands for any text and ? for any character.
    std::vector<std::string> svIDs;
    std::vector<std::string> gocbRefs;
    std::vector<std::string> datSets;
    std::vector<std::string> goIDs;
    std::vector<std::uint64_t> confRevs;
    std::optional<bool> simulationPresent;

    /// Whether a stream of the store meets every criterion.
    [[nodiscard]] bool admit(StreamIdentity const& stream) const;
};

/// The library's filter for these criteria, as near as it comes: it lets through whatever a stream
/// that meets them consists of, and of the streams over both lanes or networks only what came over
/// the wanted one. Streams are to be asked with `admit` still.
[[nodiscard]] TalIec61850Parser::Filter toIndexFilter(StreamCriteria const& criteria);

/// The library's filter for these criteria, name for name: an entry for every value.
[[nodiscard]] TalIec61850Parser::Filter toFrameFilter(StreamCriteria const& criteria);

}  // namespace TalIec61850Tools
