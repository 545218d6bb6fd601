#pragma once

#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// Names that captures do not have, from a description of the station. Where a function is not set,
/// or gives an empty name, a picture names things by what captures have.
struct PictureNames {
    /// Of a stream, in place of its svID or gocbRef.
    std::function<std::string(TalIec61850Analysis::TrafficStream const& stream)> streamName = {};
    /// Of a member of a GOOSE data set: by index from 0, that of the outermost member first.
    std::function<std::string(TalIec61850Analysis::TrafficStream const& stream,
                              std::vector<std::uint32_t> const& member)>
        memberName = {};

    /// That of a stream, or what captures call it; safe to show.
    [[nodiscard]] std::string of(TalIec61850Analysis::TrafficStream const& stream) const;
    /// That of a channel, or its number where it has none; safe to show.
    [[nodiscard]] static std::string ofChannel(std::size_t channel, std::string const& name);
    /// That of a member, or its place: "9.2"; safe to show.
    [[nodiscard]] std::string of(TalIec61850Analysis::TrafficStream const& stream,
                                 std::vector<std::uint32_t> const& member) const;
};

}  // namespace TalIec61850Tools
