#pragma once

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <cstdint>
#include <optional>
#include <string>

namespace TalIec61850Analysis {

/// What the packets of a stream say besides counters and values. It mostly stays the same; an index
/// keeps from which packet on it is another.
struct StreamAttributes {
    /// Whether packets were cut by a snap length: what is not set may have been cut off.
    bool isCut = false;
    /// The simulated bit of the application header.
    bool simulatedBit = false;
    /// The data set.
    std::optional<std::string> datSet;
    /// Its revision; the octets of a number that 64 bits do not hold.
    std::optional<Readable<std::uint64_t>> confRev;

    // GOOSE.
    /// The message, as its publisher names it.
    std::optional<std::string> goID;
    /// The element simulation; octets that make no boolean stay octets.
    std::optional<Readable<bool>> simulation;
    /// Whether the control block needs commissioning.
    std::optional<Readable<bool>> ndsCom;

    // SV.
    /// The rate of the samples, in the unit that smpMod says.
    std::optional<Readable<std::uint64_t>> smpRate;
    /// The unit of smpRate.
    std::optional<Readable<std::uint64_t>> smpMod;
    /// ASDUs in each frame, of this stream and of others; 0 for GOOSE.
    std::uint32_t asdus = 0;

    /// Member by member.
    friend bool operator==(StreamAttributes const&, StreamAttributes const&) = default;
};

}  // namespace TalIec61850Analysis
