#include "tools/render/PictureNames.hpp"

#include <fmt/format.h>

#include "tools/output/TextEscape.hpp"
#include "tools/render/EventRow.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::TrafficStream;

std::string PictureNames::of(TrafficStream const& stream) const {
    std::string const name = streamName ? streamName(stream) : "";
    if (!name.empty()) {
        return escapeText(name);
    }
    return stream.key.name.empty() ? "(no name)" : escapeText(stream.key.name);
}

std::string PictureNames::ofChannel(std::size_t channel, std::string const& name) {
    return name.empty() ? fmt::format("channel {}", channel + 1) : escapeText(name);
}

std::string PictureNames::of(TrafficStream const& stream,
                             std::vector<std::uint32_t> const& member) const {
    std::string const name = memberName ? memberName(stream, member) : "";
    return name.empty() ? memberText(member) : escapeText(name);
}

}  // namespace TalIec61850Tools
