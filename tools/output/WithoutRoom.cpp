#include "tools/output/WithoutRoom.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tools/output/WrapText.hpp"

namespace TalIec61850Tools {

std::string withoutRoomText(std::vector<std::string> const& headings, std::size_t columns) {
    auto const text =
        fmt::format("no room for {} (see --wide, --columns)", fmt::join(headings, ", "));
    return wrapText(text, columns) + "\n";
}

}  // namespace TalIec61850Tools
