#include "tools/options/PacketLocator.hpp"

#include <charconv>
#include <filesystem>
#include <system_error>

namespace TalIec61850Tools {

std::optional<PacketLocator> parsePacketLocator(std::string const& text) {
    std::size_t const at = text.rfind('@');
    std::error_code ignored;
    if (at == std::string::npos || at == 0 || std::filesystem::exists(text, ignored)) {
        return std::nullopt;
    }
    PacketLocator locator{.file = text.substr(0, at), .position = 0};
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data() + at + 1, end, locator.position);
    return error == std::errc{} && stop == end ? std::optional(locator) : std::nullopt;
}

}  // namespace TalIec61850Tools
