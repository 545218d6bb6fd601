#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/AsduContent.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/Integer.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/packet/RawElement.hpp>
#include <TalIec61850Analysis/packet/SvView.hpp>
#include <cstddef>
#include <optional>
#include <vector>

namespace TalIec61850Analysis {

/// One Sampled Values message in full, with octets of its own; see SvView, of which it is made. Its
/// members are those of the view.
struct SvPacket {
    /// What is around the PDU.
    FrameHeader header;
    /// How many ASDUs the message says that it has.
    std::optional<Integer> noASDU;
    /// The security element, as it was sent.
    std::optional<OctetString> security;
    /// All that there are.
    std::vector<AsduContent> asdus;

    /// See SvView::visitOthers.
    std::vector<RawElement> others;
    /// What is between the header and the PDU; normally nothing.
    OctetString leading;
    /// What is after the PDU, before a PRP trailer.
    OctetString trailing;
    /// See SvView::visitFaults.
    Faults faults;

    /// Member by member.
    friend bool operator==(SvPacket const&, SvPacket const&) = default;
};

/// Copies all that a view shows.
/// @throws std::bad_alloc  memory grows with the octets that are there, whatever they claim
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT SvPacket toOwned(SvView const& view);

/// Reads one frame; see viewSv.
/// @throws std::bad_alloc
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT SvPacket decodeSv(Octets frame, std::size_t asdusOffset,
                                                           FrameOrigin const& origin = {});

/// The same with the sequence of ASDU looked for in the savPdu after the header.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT SvPacket decodeSv(Octets frame,
                                                           FrameOrigin const& origin = {});

}  // namespace TalIec61850Analysis
