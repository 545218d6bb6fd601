#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/inspect/DataValue.hpp"
#include "tools/inspect/Fault.hpp"
#include "tools/inspect/FrameHeader.hpp"
#include "tools/inspect/Integer.hpp"
#include "tools/inspect/OctetString.hpp"
#include "tools/inspect/RawElement.hpp"
#include "tools/inspect/UtcTime.hpp"

namespace TalIec61850Tools {

/// One GOOSE message in full (IEC 61850-8-1). A field that does not occur whole is not set; one
/// that does not make a value of its type holds its octets.
struct GoosePacket {
    FrameHeader header;

    // Names are kept octet for octet. Numbers are BER INTEGERs: one that its sender wrote without
    // the leading zero octet is negative, as it stands there, and has a fault.
    std::optional<std::string> gocbRef;
    std::optional<Integer> timeAllowedtoLive;  ///< milliseconds
    std::optional<std::string> datSet;
    std::optional<std::string> goID;
    std::optional<Readable<UtcTime>> t;
    std::optional<Integer> stNum;
    std::optional<Integer> sqNum;
    /// Named test in the first edition.
    std::optional<Readable<bool>> simulation;
    std::optional<Integer> confRev;
    std::optional<Readable<bool>> ndsCom;
    std::optional<Integer> numDatSetEntries;
    std::optional<std::vector<DataValue>> allData;

    /// Elements of the goosePdu that are none of these fields, in their order: unknown ones, such
    /// as security (8C), and those that are repeated or damaged.
    std::vector<RawElement> others;
    /// What stands between the header and the goosePdu; normally nothing.
    OctetString leading;
    /// What stands behind the goosePdu, before a PRP trailer: padding, a signature.
    OctetString trailing;
    /// All that is wrong, that of single values included, front to back.
    Faults faults;

    friend bool operator==(GoosePacket const&, GoosePacket const&) = default;
};

/// Reads one frame, at most kMaxFrameSize octets of it. Whatever they are, nothing is thrown but
/// std::bad_alloc, and time and memory grow with the octets that are there.
/// @param frame      from the destination address to the end of what was captured
/// @param pduOffset  index in `frame` of the goosePdu (61), as the index of a capture places it:
///                   the `position` of a Package less that of its frame
[[nodiscard]] GoosePacket inspectGoose(std::span<std::uint8_t const> frame, std::size_t pduOffset);

/// The same for a packet that the index holds without a position, such as one that was cut when it
/// was captured: the goosePdu is looked for where it should begin, behind the header.
[[nodiscard]] GoosePacket inspectGoose(std::span<std::uint8_t const> frame);

}  // namespace TalIec61850Tools
