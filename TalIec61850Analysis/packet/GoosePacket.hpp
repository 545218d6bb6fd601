#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/DataValue.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <TalIec61850Analysis/packet/Integer.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/packet/RawElement.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Analysis {

/// One GOOSE message in full, with octets of its own; see GooseView, of which it is made. Its
/// members are those of the view.
struct GoosePacket {
    /// What is around the PDU.
    FrameHeader header;
    /// The control block that sends the message.
    std::optional<std::string> gocbRef;
    std::optional<Integer> timeAllowedtoLive;  ///< milliseconds
    /// The data set.
    std::optional<std::string> datSet;
    /// The message, as its publisher names it.
    std::optional<std::string> goID;
    /// When stNum was last raised.
    std::optional<Readable<UtcTime>> t;
    /// The number of the state, raised when a value of the data set changes.
    std::optional<Integer> stNum;
    /// The number of the message within its state.
    std::optional<Integer> sqNum;
    /// Whether the values are simulated. Named test in the first edition.
    std::optional<Readable<bool>> simulation;
    /// The revision of the data set.
    std::optional<Integer> confRev;
    /// Whether the control block needs commissioning.
    std::optional<Readable<bool>> ndsCom;
    /// How many values the message says that it has.
    std::optional<Integer> numDatSetEntries;
    /// The values of the data set.
    std::optional<std::vector<DataValue>> allData;

    /// See GooseView::visitOthers.
    std::vector<RawElement> others;
    /// What is between the header and the PDU; normally nothing.
    OctetString leading;
    /// What is after the PDU, before a PRP trailer.
    OctetString trailing;
    /// See GooseView::visitFaults.
    Faults faults;

    /// Member by member.
    friend bool operator==(GoosePacket const&, GoosePacket const&) = default;
};

/// Copies all that a view shows.
/// @throws std::bad_alloc  memory grows with the octets that are there, whatever they claim
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT GoosePacket toOwned(GooseView const& view);

/// Reads one frame; see viewGoose.
/// @throws std::bad_alloc
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT GoosePacket decodeGoose(Octets frame,
                                                                 std::size_t pduOffset,
                                                                 FrameOrigin const& origin = {});

/// The same with the goosePdu looked for where it should start, after the header.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT GoosePacket decodeGoose(Octets frame,
                                                                 FrameOrigin const& origin = {});

}  // namespace TalIec61850Analysis
