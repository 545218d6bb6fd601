#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/AsduView.hpp>
#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/Integer.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <cstddef>
#include <optional>

namespace TalIec61850Analysis {

/// One Sampled Values message (IEC 61850-9-2), seen in its frame: it points into the frame,
/// allocates nothing, and holds as long as the octets of the frame do.
struct SvView {
    /// As it was given.
    Octets frame;
    /// As it was given.
    FrameOrigin origin;
    /// What is around the PDU.
    FrameHeader header;
    /// How many ASDUs the message says that it has.
    std::optional<IntegerView> noASDU;
    /// The security element, as it was sent.
    std::optional<Octets> security;
    /// As many as were captured.
    AsduViews asdus;

    /// Index in the frame where the sequence of ASDU was looked for.
    std::size_t asdusOffset = 0;
    /// The savPdu; not set where none leads to the sequence of ASDU.
    std::optional<ElementView> pdu;
    /// The sequence of ASDU (A2).
    std::optional<ElementView> sequence;
    /// What is between the header and the savPdu, or before the sequence of ASDU where no savPdu
    /// leads to it; normally nothing.
    Octets leading;
    /// What is after the savPdu, before the PRP trailer: padding, a signature.
    Octets trailing;

    /// Hands on the elements of the savPdu and of its sequence of ASDU that are none of these, in
    /// their order.
    TALIEC61850ANALYSIS_EXPORT void visitOthers(ElementSink sink) const;

    /// Hands on all that is wrong, that of the ASDUs included, front to back.
    TALIEC61850ANALYSIS_EXPORT void visitFaults(FaultSink sink) const;
};

/// Reads one frame, at most kMaxFrameSize octets of it, in time that grows with them at most.
/// Whatever they are, nothing is thrown and nothing allocated.
/// @param frame        from the destination address to the end of what was captured; must outlive
///                     the view
/// @param asdusOffset  index in `frame` of the sequence of ASDU (A2), as the index of a capture
///                     places it: the `position` of a Package less that of its frame
/// @param origin       what the capture says of the frame
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT SvView viewSv(Octets frame, std::size_t asdusOffset,
                                                       FrameOrigin const& origin = {}) noexcept;

/// The same where nothing is known of the place: the sequence of ASDU is looked for in the savPdu
/// after the header.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT SvView viewSv(Octets frame,
                                                       FrameOrigin const& origin = {}) noexcept;

}  // namespace TalIec61850Analysis
