#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/Integer.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <cstddef>
#include <optional>
#include <string_view>

namespace TalIec61850Analysis {

/// One GOOSE message (IEC 61850-8-1), seen in its frame: it points into the frame, allocates
/// nothing, and holds as long as the octets of the frame do. A field that does not occur whole is
/// not set; one that does not make a value of its type holds its octets.
struct GooseView {
    /// As it was given.
    Octets frame;
    /// As it was given.
    FrameOrigin origin;
    /// What is around the PDU.
    FrameHeader header;

    // Names are octets of the frame, whatever they hold. Numbers are BER INTEGERs: one that its
    // sender wrote without the leading zero octet is read without a sign, and has a fault.
    /// The control block that sends the message.
    std::optional<std::string_view> gocbRef;
    std::optional<IntegerView> timeAllowedtoLive;  ///< milliseconds
    /// The data set.
    std::optional<std::string_view> datSet;
    /// The message, as its publisher names it.
    std::optional<std::string_view> goID;
    /// When stNum was last raised.
    std::optional<ReadableView<UtcTime>> t;
    /// The number of the state, raised when a value of the data set changes.
    std::optional<IntegerView> stNum;
    /// The number of the message within its state.
    std::optional<IntegerView> sqNum;
    /// Named test in the first edition.
    std::optional<ReadableView<bool>> simulation;
    /// The revision of the data set.
    std::optional<IntegerView> confRev;
    /// Whether the control block needs commissioning.
    std::optional<ReadableView<bool>> ndsCom;
    /// How many values the message says that it has.
    std::optional<IntegerView> numDatSetEntries;
    /// As many values as were captured.
    std::optional<DataViews> allData;

    /// Index in the frame where the goosePdu was looked for.
    std::size_t pduOffset = 0;
    /// The goosePdu; not set where none starts there.
    std::optional<ElementView> pdu;
    /// What is between the header and the goosePdu; normally nothing.
    Octets leading;
    /// What is after the goosePdu, before the PRP trailer: padding, a signature.
    Octets trailing;

    /// Hands on the elements of the goosePdu that no field takes, in their order: unknown ones,
    /// such as security (8C), and those that are repeated or damaged.
    TALIEC61850ANALYSIS_EXPORT void visitOthers(ElementSink sink) const;

    /// Hands on all that is wrong, that of single values included, front to back.
    TALIEC61850ANALYSIS_EXPORT void visitFaults(FaultSink sink) const;
};

/// Reads one frame, at most kMaxFrameSize octets of it, in time that grows with them at most.
/// Whatever they are, nothing is thrown and nothing allocated.
/// @param frame      from the destination address to the end of what was captured; must outlive the
///                   view
/// @param pduOffset  index in `frame` of the goosePdu (61), as the index of a capture places it:
///                   the `position` of a Package less that of its frame
/// @param origin     what the capture says of the frame
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT GooseView
viewGoose(Octets frame, std::size_t pduOffset, FrameOrigin const& origin = {}) noexcept;

/// The same where nothing is known of the place: the goosePdu is looked for where it should start,
/// after the header.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT GooseView
viewGoose(Octets frame, FrameOrigin const& origin = {}) noexcept;

}  // namespace TalIec61850Analysis
