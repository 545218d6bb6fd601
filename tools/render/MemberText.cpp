#include "tools/render/MemberText.hpp"

namespace TalIec61850Tools {

std::string memberText(std::vector<std::uint32_t> const& member) {
    std::string text;
    for (std::uint32_t const index : member) {
        text.append(text.empty() ? "" : ".").append(std::to_string(std::uint64_t{index} + 1));
    }
    return text;
}

}  // namespace TalIec61850Tools
