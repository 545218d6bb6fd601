#pragma once

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Tools {

class StreamPublishers;

using Protocol = TalIec61850Analysis::StreamProtocol;
using TalIec61850Analysis::MacAddress;

/// The streams that a command reads. Of each criterion one of the values must be met; a criterion
/// without values admits every stream. A value that a stream lacks meets none.
struct StreamCriteria {
    std::optional<Protocol> protocol;
    std::vector<MacAddress> sources;
    std::vector<MacAddress> destinations;
    /// Of the innermost tag.
    std::vector<std::uint16_t> vlanIds;
    std::vector<std::uint16_t> appIds;
    /// Names, in which * matches any text and ? any character.
    std::vector<std::string> svIDs;
    std::vector<std::string> gocbRefs;
    std::vector<std::string> datSets;
    std::vector<std::string> goIDs;
    std::vector<std::uint64_t> confRevs;
    /// A or B.
    std::vector<char> hsrLanes;
    std::vector<char> prpLanes;
    /// Names of IEDs, likewise.
    std::vector<std::string> ieds;
    /// What tells which IED publishes a stream; null where nothing asks for it. It must outlive the
    /// criteria.
    StreamPublishers* publishers = nullptr;

    /// Whether a stream is published by an IED that is wanted.
    [[nodiscard]] bool admitIed(TalIec61850Analysis::StreamKey const& key) const;

    friend bool operator==(StreamCriteria const&, StreamCriteria const&) = default;
};

/// Whether a value is wanted.
template <typename Value>
[[nodiscard]] bool meets(std::vector<Value> const& wanted, std::optional<Value> const& value) {
    for (Value const& each : wanted) {
        if (value == each) {
            return true;
        }
    }
    return wanted.empty();
}

/// Whether a name is wanted.
/// @param wanted  names, in which * matches any text and ? any character
[[nodiscard]] bool meetsPattern(std::vector<std::string> const& wanted,
                                std::optional<std::string> const& name);

}  // namespace TalIec61850Tools
