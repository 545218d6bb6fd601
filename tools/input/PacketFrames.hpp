#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/input/CaptureRecords.hpp"

namespace TalIec61850Tools {

/// The frames of a capture in which given positions lie.
class PacketFrames {
public:
    /// Walks the record headers of the capture once.
    /// @param path       a file that checkCapture found no fault with
    /// @param positions  offsets in the file, in octets, in any order
    /// @throws std::system_error  the file cannot be opened or read
    PacketFrames(std::string const& path, std::vector<std::uint64_t> positions);

    /// The record in whose captured octets a position lies.
    /// @param position  one of those given
    /// @return none where the file has no such record
    [[nodiscard]] std::optional<CaptureRecord> recordAt(std::uint64_t position) const;

    /// The captured octets of a record that `recordAt` gave. The file is opened for that alone, so
    /// that there may be more captures than files can be open.
    /// @throws std::system_error  the file cannot be opened or read
    [[nodiscard]] std::vector<std::uint8_t> frameOf(CaptureRecord const& record) const;

private:
    std::string path_;
    /// Those that hold one of the positions, in the order of the file.
    std::vector<CaptureRecord> found_;
};

}  // namespace TalIec61850Tools
