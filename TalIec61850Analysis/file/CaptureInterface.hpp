#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace TalIec61850Analysis {

/// An interface that packets of a capture file come from. A classic capture has one.
struct CaptureInterface {
    /// Offset in the file of the block that describes it, in octets; 0 in a classic capture.
    std::uint64_t fileOffset = 0;
    /// What its frames start with, by the registry of link types: 1 for Ethernet.
    std::uint16_t linkType = 1;
    /// The most octets of a frame that are captured, as the file says; 0 for no limit.
    std::uint32_t snapLength = 0;
    /// Whether times are counted in units of a power of two.
    bool isBinaryUnit = false;
    /// The unit of times is 10 to the power of minus this number, or 2, in seconds.
    std::uint8_t unitExponent = 6;
    /// What is added to its times, in seconds.
    std::int64_t timeOffset = 0;
    /// Its name as the file has it, in no known encoding, at most 255 octets; empty for none.
    std::string name;
    /// Packets received since capturing began, by the last statistics so far.
    std::optional<std::uint64_t> received;
    /// Packets dropped by the interface since capturing began, by the last statistics so far.
    std::optional<std::uint64_t> dropped;
    /// Packets dropped by the operating system since capturing began, likewise.
    std::optional<std::uint64_t> droppedBySystem;
    /// How many of its records have been read so far.
    std::uint64_t records = 0;

    /// Member by member.
    friend bool operator==(CaptureInterface const&, CaptureInterface const&) = default;
};

}  // namespace TalIec61850Analysis
