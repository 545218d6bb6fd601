#pragma once

// Internal: what the walks over goosePdu and savPdu read into, and what they match with.

#include <TalIec61850Parser/codec/WalkTrace.hpp>
#include <TalIec61850Parser/store/Package.hpp>
#include <TalIec61850Parser/store/Timest.hpp>
#include <cstdint>
#include <vector>

namespace TalIec61850Parser::detail {

/// The surroundings of one walk over a PDU. Refers to what its maker owns.
template <typename Record, typename Identifier>
struct PduWalk {
    /// What identifies the stream is written here.
    Record& record;
    /// What it must pass.
    std::vector<Identifier> const& filters;
    /// Written where the element is met from which the packet can be decoded.
    Package& package;
    /// Of the capture record; goes into `package` as it is.
    Timest time = {};
    /// Offset in the capture file of the first octet of the PDU.
    std::uint64_t fileOffset = 0;
    /// Told what is passed over, unless null.
    WalkTrace* trace = nullptr;
};

}  // namespace TalIec61850Parser::detail
