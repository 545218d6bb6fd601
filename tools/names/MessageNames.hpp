#pragma once

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "tools/names/MemberNames.hpp"
#include "tools/names/StreamNames.hpp"
#include "tools/selection/FrameReader.hpp"

namespace TalIec61850Tools {

/// The names of the values of messages that an index has: they are read again for it, where their
/// stream is described.
class MessageNames {
public:
    /// @param index, names  must outlive this
    /// @param nameOf        of a capture by its number
    MessageNames(TalIec61850Analysis::TrafficIndex const& index, StreamNames& names,
                 std::function<std::string_view(std::uint32_t file)> nameOf);

    /// @param stream  the number of a GOOSE stream in the index
    /// @return see StreamNames::namesOf
    /// @throws std::system_error  a capture cannot be read again
    [[nodiscard]] MemberNames of(std::size_t stream, TalIec61850Analysis::PacketRef packet);

private:
    TalIec61850Analysis::TrafficIndex const& index_;
    StreamNames& names_;
    std::function<std::string_view(std::uint32_t)> nameOf_;
    /// Made when a message is asked for: captures may be added to the index until then.
    std::optional<FrameReader> frames_;
};

}  // namespace TalIec61850Tools
