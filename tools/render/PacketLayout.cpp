#include "tools/render/PacketLayout.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <array>
#include <variant>

#include "tools/render/Cells.hpp"
#include "tools/render/DescribingFields.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

using Packet = PacketRow const&;

bool isOf(Packet row, Protocol protocol) { return !row.isUnread() && row.protocol() == protocol; }

Cell positionCell(Packet row) {
    return row.isUnread()
               ? Cell()
               : Cell(row.packet().frameOffset() + row.columns().pduOffsets()[row.packet().packet]);
}

Cell sourceCell(Packet row) {
    return addressCell(row.isUnread() ? row.header().source : row.key()->source);
}

Cell destinationCell(Packet row) {
    return addressCell(row.isUnread() ? row.header().destination : row.key()->destination);
}

Cell vlanCell(Packet row) {
    if (row.isUnread()) {
        auto const tag = row.header().vlanTags.innermost();
        return tag ? Cell(tag->id) : Cell();
    }
    return row.key()->vlans.empty() ? Cell() : Cell(row.key()->vlans.back().id);
}

Cell appIdOf(Packet row) {
    return appIdCell(row.isUnread() ? row.header().appId : std::optional(row.key()->appId));
}

Cell nameOf(Packet row, Protocol protocol) {
    return isOf(row, protocol) ? Cell(std::string_view(row.key()->name)) : Cell();
}

/// stNum or smpCnt.
Cell firstCounterCell(Packet row, Protocol protocol) {
    auto const number =
        isOf(row, protocol) ? row.columns().firstCounter(row.packet().packet) : std::nullopt;
    return number ? numberCell(*number) : Cell();
}

/// sqNum or smpSynch.
Cell secondCounterCell(Packet row, Protocol protocol) {
    auto const number =
        isOf(row, protocol) ? row.columns().secondCounter(row.packet().packet) : std::nullopt;
    return number ? numberCell(*number) : Cell();
}

Cell asduCell(Packet row) {
    return isOf(row, Protocol::sv) ? Cell(row.columns().asdus()[row.packet().packet] + 1U) : Cell();
}

Cell timeAllowedCell(Packet row) {
    if (!isOf(row, Protocol::goose)) {
        return {};
    }
    RecordView const& view = row.record();
    auto const time = viewGoose(view.frame, row.columns().pduOffsets()[row.packet().packet],
                                originOf(view.record))
                          .timeAllowedtoLive;
    if (!time) {
        return {};
    }
    if (auto const* const number = std::get_if<std::int64_t>(&*time)) {
        return *number;
    }
    auto const* const octets = std::get_if<Octets>(&*time);
    return octets != nullptr ? numberCell(ReadableView<std::uint64_t>(*octets))
                             : Cell(std::get<std::uint64_t>(*time));
}

PacketFlags flagsOf(Packet row) {
    return row.isUnread() ? PacketFlags() : row.columns().flags()[row.packet().packet];
}

Cell simulatedCell(Packet row) {
    return row.isUnread() ? Cell() : Cell(isSimulated(flagsOf(row), *row.packet().attributes));
}

std::string_view laneText(char lane) { return lane == 'A' ? "A" : "B"; }

Cell laneCell(Packet row, std::optional<Redundancy> redundancy) {
    PacketFlags const flags = flagsOf(row);
    bool const isAsked =
        flags.redundancy() != Redundancy::none && (!redundancy || flags.redundancy() == redundancy);
    return isAsked ? Cell(laneText(flags.lane())) : Cell();
}

Cell sequenceCell(Packet row) {
    return flagsOf(row).redundancy() == Redundancy::none
               ? Cell()
               : Cell(row.columns().redundancySequences()[row.packet().packet]);
}

Cell reasonCell(Packet row) {
    return row.isUnread() ? Cell(toText(row.packet().unread->reason)) : Cell();
}

/// An object of which the fields of a stream alone depend.
void const* streamOf(Packet row) { return row.packet().stream; }

/// The same for the name of the file.
void const* fileOf(Packet row) { return row.file().data(); }

/// The same for fields that all packets of a protocol lack.
template <Protocol protocol>
void const* lackedBy(Packet row) {
    static constexpr Protocol lacking = protocol;
    return isOf(row, protocol) ? &lacking : nullptr;
}

/// The same for what packets of HSR and PRP alone have.
void const* withoutRedundancy(Packet row) {
    static constexpr Redundancy none = Redundancy::none;
    return flagsOf(row).redundancy() == none ? &none : nullptr;
}

/// The same for the place of a packet that was read.
void const* placeOf(Packet row) {
    static constexpr std::array places = {Place::inside, Place::before, Place::after};
    return row.isUnread() ? nullptr : &places.at(static_cast<std::size_t>(row.packet().place));
}

std::vector<Field<PacketRow>> fieldsOfPackets() {
    return {
        {"time", [](Packet r) { return timeCell(r.packet().time()); }},
        {"timeNs", [](Packet r) { return timeNsCell(r.packet().time()); }},
        {"file", [](Packet r) -> Cell { return r.file(); }, fileOf},
        {"position", positionCell},
        {"framePosition", [](Packet r) -> Cell { return r.packet().frameOffset(); }},
        {"recordPosition", [](Packet r) -> Cell { return r.record().record.fileOffset; }},
        {"protocol", [](Packet r) -> Cell { return toText(r.protocol()); }, streamOf},
        {"source", sourceCell, streamOf},
        {"destination", destinationCell, streamOf},
        {"vlanId", vlanCell, streamOf},
        {"appId", appIdOf, streamOf},
        {"svID", [](Packet r) { return nameOf(r, Protocol::sv); }, streamOf},
        {"gocbRef", [](Packet r) { return nameOf(r, Protocol::goose); }, streamOf},
        {"asdu", asduCell, lackedBy<Protocol::goose>},
        {"stNum", [](Packet r) { return firstCounterCell(r, Protocol::goose); },
         lackedBy<Protocol::sv>},
        {"sqNum", [](Packet r) { return secondCounterCell(r, Protocol::goose); },
         lackedBy<Protocol::sv>},
        {"timeAllowedToLive", timeAllowedCell, lackedBy<Protocol::sv>},
        {"simulated", simulatedCell},
        {"smpCnt", [](Packet r) { return firstCounterCell(r, Protocol::sv); },
         lackedBy<Protocol::goose>},
        {"smpSynch", [](Packet r) { return secondCounterCell(r, Protocol::sv); },
         lackedBy<Protocol::goose>},
        {"hsrLane", [](Packet r) { return laneCell(r, Redundancy::hsr); }, withoutRedundancy},
        {"prpLane", [](Packet r) { return laneCell(r, Redundancy::prp); }, withoutRedundancy},
        {"redundancySequence", sequenceCell, withoutRedundancy},
        {"capturedOctets", [](Packet r) -> Cell { return r.record().record.capturedSize; }},
        {"wireOctets", [](Packet r) -> Cell { return r.record().record.originalSize; }},
        {"place", [](Packet r) -> Cell { return toText(r.packet().place); }, placeOf},
        {"unreadable", reasonCell, placeOf},
    };
}

Cell locatorCell(Packet row) {
    std::uint64_t const offset = row.packet().frameOffset();
    std::uint64_t const pdu = row.isUnread() ? 0 : row.columns().pduOffsets()[row.packet().packet];
    return fmt::format("{}@{}", row.file(), offset + pdu);
}

Cell anyNameCell(Packet row) {
    return row.isUnread() ? Cell() : Cell(std::string_view(row.key()->name));
}

Cell simulatedMark(Packet row) {
    return !row.isUnread() && isSimulated(flagsOf(row), *row.packet().attributes)
               ? Cell(std::string_view("yes"))
               : Cell();
}

}  // namespace

RecordView const& PacketRow::record() const {
    if (record_ == nullptr) {
        record_ = &frames_.read(packet_.file, packet_.frameOffset());
    }
    return *record_;
}

FrameHeader const& PacketRow::header() const {
    if (!header_) {
        header_ = readFrameHeader(record().frame, originOf(record().record));
    }
    return *header_;
}

std::string_view toText(Place place) {
    switch (place) {
        case Place::before:
            return "before";
        case Place::after:
            return "after";
        default:
            return "inside";
    }
}

std::string_view toText(UnreadReason reason) {
    switch (reason) {
        case UnreadReason::headerCut:
            return "headerCut";
        case UnreadReason::cut:
            return "cut";
        case UnreadReason::noPdu:
            return "noPdu";
        case UnreadReason::pduPastFrame:
            return "pduPastFrame";
        case UnreadReason::noName:
            return "noName";
        default:
            return "noAsdu";
    }
}

RowLayout<PacketRow> packetLayout(bool withPlace, StreamNames* names) {
    RowLayout<PacketRow> layout{.fields = fieldsOfPackets(), .columns = {}};
    if (names != nullptr) {
        auto const describing = describingFields<PacketRow>(
            [names](Packet r) { return r.isUnread() ? nullptr : names->controlBlockOf(*r.key()); },
            streamOf);
        layout.fields.insert(layout.fields.end(), describing.begin(), describing.end());
    }
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(layout.fields, field, std::move(heading));
    };
    layout.columns = {
        column("time", {"TIME", Align::left, fitTime(0)}),
        column("protocol", {"PROTO", Align::left, {.rank = 1}}),
        {{"SVID/GOCBREF", Align::left, fitName(2, 14)}, anyNameCell},
        column("asdu", {"ASDU", Align::right, {.rank = 11}}),
        column("stNum", {"STNUM", Align::right, {.rank = 3}}),
        column("sqNum", {"SQNUM", Align::right, {.rank = 4}}),
        column("timeAllowedToLive", {"TAL", Align::right, {.rank = 13}}),
        column("smpCnt", {"SMPCNT", Align::right, {.rank = 5}}),
        column("smpSynch", {"SYNCH", Align::right, {.rank = 9}}),
        {{"SIM", Align::left, {.rank = 8}}, simulatedMark, "simulated"},
        {{"LAN", Align::left, {.rank = 7}}, [](Packet r) { return laneCell(r, std::nullopt); }},
        column("redundancySequence", {"SEQ", Align::right, {.rank = 12}}),
        column("appId", {"APPID", Align::right, {.rank = 10}}),
        column("source", {"SOURCE", Align::left, {.rank = 14}}),
        column("capturedOctets", {"OCTETS", Align::right, {.rank = 15}}),
        column("unreadable", {"UNREADABLE", Align::left, {.rank = 6}}),
        {{"FILE@POSITION", Align::left, fitFile(6)}, locatorCell},
    };
    if (names != nullptr) {
        layout.columns.push_back(column("ied", {"IED", Align::left, fitName(6, 8)}));
        layout.columns.push_back(
            column("controlBlock", {"CONTROL BLOCK", Align::left, fitName(16, 16)}));
    }
    if (withPlace) {
        layout.columns.push_back(column("place", {"PLACE", Align::left, {.rank = 2}}));
    }
    return layout;
}

}  // namespace TalIec61850Tools
