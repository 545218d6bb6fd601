#include "tools/render/AddressText.hpp"

#include <fmt/format.h>

namespace TalIec61850Tools {

std::string toText(MacAddress const& address) {
    return fmt::format("{:02x}:{:02x}:{:02x}:{:02x}:{:02x}:{:02x}", address[0], address[1],
                       address[2], address[3], address[4], address[5]);
}

std::string appIdText(std::uint64_t appId) { return fmt::format("0x{:04X}", appId); }

}  // namespace TalIec61850Tools
