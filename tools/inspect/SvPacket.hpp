#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "tools/inspect/AsduContent.hpp"
#include "tools/inspect/Fault.hpp"
#include "tools/inspect/FrameHeader.hpp"
#include "tools/inspect/Integer.hpp"
#include "tools/inspect/OctetString.hpp"
#include "tools/inspect/RawElement.hpp"

namespace TalIec61850Tools {

/// One Sampled Values message in full (IEC 61850-9-2).
struct SvPacket {
    FrameHeader header;
    std::optional<Integer> noASDU;
    std::optional<OctetString> security;
    /// As many as there are.
    std::vector<AsduContent> asdus;

    /// Elements of the savPdu and of its sequence of ASDU that are none of these.
    std::vector<RawElement> others;
    /// What stands between the header and the savPdu, or before the sequence of ASDU where no
    /// savPdu leads to it; normally nothing.
    OctetString leading;
    /// What stands behind the savPdu, before a PRP trailer: padding, a signature.
    OctetString trailing;
    /// All that is wrong, that of single fields included, front to back.
    Faults faults;

    friend bool operator==(SvPacket const&, SvPacket const&) = default;
};

/// Reads one frame, at most kMaxFrameSize octets of it. Whatever they are, nothing is thrown but
/// std::bad_alloc, and time and memory grow with the octets that are there.
/// @param frame        from the destination address to the end of what was captured
/// @param asdusOffset  index in `frame` of the sequence of ASDU (A2), as the index of a capture
///                     places it: the `position` of a Package less that of its frame
[[nodiscard]] SvPacket inspectSv(std::span<std::uint8_t const> frame, std::size_t asdusOffset);

/// The same for a packet that the index holds without a position, such as one that was cut when it
/// was captured: the sequence of ASDU is looked for in the savPdu behind the header.
[[nodiscard]] SvPacket inspectSv(std::span<std::uint8_t const> frame);

}  // namespace TalIec61850Tools
