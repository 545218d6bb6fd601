#pragma once

// Internal: where in the store the packets of a stream go.

#include <TalIec61850Parser/store/PackageFile.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <cstdint>

namespace TalIec61850Parser::detail {

/// A stream in the store, and its packets in one capture file. Valid until either is erased.
struct StreamPlace {
    /// The packets; null for no place.
    PackageFile const* file = nullptr;
    std::uint32_t* packetCount = nullptr;
    /// The stream, if it is one of SV.
    Sv const* sv = nullptr;
};

}  // namespace TalIec61850Parser::detail
