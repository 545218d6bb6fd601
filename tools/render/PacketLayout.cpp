#include "tools/render/PacketLayout.hpp"

#include <fmt/format.h>

#include "tools/render/Cells.hpp"
#include "tools/render/StreamFields.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

namespace {

// The place is the last one, so that it can be left out.
std::vector<Column<PacketRow>> packetColumns(std::vector<Field<PacketRow>> const& fields) {
    using Row = PacketRow const&;
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(fields, field, std::move(heading));
    };
    return {
        column("time", {"TIME", Align::left, fitTime(0)}),
        column("protocol", {"PROTO", Align::left, {.rank = 1}}),
        column("source", {"SOURCE", Align::left, {.rank = 6}}),
        column("appId", {"APPID", Align::right, {.rank = 4}}),
        {{"SVID/GOCBREF", Align::left, fitName(3, 14)},
         [](Row r) { return streamNameCell(*r.stream); }},
        {{"FILE@POSITION", Align::left, fitFile(5)},
         [](Row r) -> Cell { return fmt::format("{}@{}", r.file, r.position); }},
        column("place", {"PLACE", Align::left, {.rank = 2}}),
    };
}

}  // namespace

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

std::vector<Field<PacketRow>> packetFields() {
    return {{"time", [](PacketRow const& r) -> Cell { return toUtcCell(r.time); }},
            {"timeNs", [](PacketRow const& r) -> Cell { return nanosecondsSince1970(r.time); }},
            {"file", [](PacketRow const& r) -> Cell { return r.file; }},
            {"position", [](PacketRow const& r) -> Cell { return r.position; }},
            {"place", [](PacketRow const& r) -> Cell { return toText(r.place); }}};
}

RowLayout<PacketRow> packetLayout(bool withPlace) {
    RowLayout<PacketRow> layout{.fields = packetFields(), .columns = {}};
    appendFields<PacketRow, StreamIdentity>(
        layout.fields, streamFields(),
        [](PacketRow const& r) -> StreamIdentity const& { return *r.stream; },
        [](PacketRow const& r) -> void const* { return r.stream; });
    layout.columns = packetColumns(layout.fields);
    if (!withPlace) {
        layout.columns.pop_back();
    }
    return layout;
}

}  // namespace TalIec61850Tools
