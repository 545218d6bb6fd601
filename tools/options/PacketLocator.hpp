#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace TalIec61850Tools {

/// A packet on the command line: FILE@POSITION.
struct PacketLocator {
    std::string file;
    /// Offset in the file of the goosePdu or of the sequence of ASDU, in octets.
    std::uint64_t position = 0;
};

/// @return none for any other text, and for one that is the name of an existing file
[[nodiscard]] std::optional<PacketLocator> parsePacketLocator(std::string const& text);

}  // namespace TalIec61850Tools
