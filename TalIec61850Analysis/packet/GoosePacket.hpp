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
    FrameHeader header;
    std::optional<std::string> gocbRef;
    std::optional<Integer> timeAllowedtoLive;  ///< milliseconds
    std::optional<std::string> datSet;
    std::optional<std::string> goID;
    std::optional<Readable<UtcTime>> t;
    std::optional<Integer> stNum;
    std::optional<Integer> sqNum;
    std::optional<Readable<bool>> simulation;
    std::optional<Integer> confRev;
    std::optional<Readable<bool>> ndsCom;
    std::optional<Integer> numDatSetEntries;
    std::optional<std::vector<DataValue>> allData;

    /// See GooseView::visitOthers.
    std::vector<RawElement> others;
    OctetString leading;
    OctetString trailing;
    /// See GooseView::visitFaults.
    Faults faults;

    friend bool operator==(GoosePacket const&, GoosePacket const&) = default;
};

/// Copies all that a view shows.
/// @throws std::bad_alloc  memory grows with the octets that are there, whatever they claim
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT GoosePacket toOwned(GooseView const& view);

/// Reads one frame; see viewGoose.
/// @throws std::bad_alloc
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT GoosePacket decodeGoose(Octets frame,
                                                                 std::size_t pduOffset);

/// The same with the goosePdu looked for where it should start, after the header.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT GoosePacket decodeGoose(Octets frame);

}  // namespace TalIec61850Analysis
