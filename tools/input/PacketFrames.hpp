#pragma once

#include <cstdint>
#include <optional>
#include <span>
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

    /// The captured octets of a record that `recordAt` gave; valid until the next call.
    /// @throws std::system_error  the file cannot be read
    [[nodiscard]] std::span<std::uint8_t const> frameOf(CaptureRecord const& record);

private:
    CaptureRecords records_;
    /// Those that hold one of the positions, in the order of the file.
    std::vector<CaptureRecord> found_;
};

}  // namespace TalIec61850Tools
