#include "tools/render/PacketLayout.hpp"

#include <array>

#include "tools/output/TextEscape.hpp"
#include "tools/render/Cells.hpp"
#include "tools/render/StreamFields.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

namespace {

// The place is the last one, so that it can be left out.
constexpr std::array kPacketColumns = {
    Column<PacketRow>{{"TIME"}, [](PacketRow const& r) { return toUtcText(r.time); }},
    Column<PacketRow>{{"PROTO"},
                      [](PacketRow const& r) { return std::string(toText(r.stream->protocol)); }},
    Column<PacketRow>{{"SOURCE"}, [](PacketRow const& r) { return nameCell(r.stream->source); }},
    Column<PacketRow>{{"APPID", Align::right},
                      [](PacketRow const& r) { return appIdCell(*r.stream); }},
    Column<PacketRow>{{"SVID/GOCBREF"},
                      [](PacketRow const& r) { return streamNameCell(*r.stream); }},
    Column<PacketRow>{
        {"FILE@POSITION"},
        [](PacketRow const& r) { return fmt::format("{}@{}", escapeText(r.file), r.position); }},
    Column<PacketRow>{{"PLACE"}, [](PacketRow const& r) { return std::string(toText(r.place)); }},
};

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
    std::span<Column<PacketRow> const> const columns(kPacketColumns);
    RowLayout<PacketRow> layout{.fields = packetFields(),
                                .columns = withPlace ? columns : columns.first(columns.size() - 1)};
    appendFields<PacketRow, StreamIdentity>(
        layout.fields, streamFields(),
        [](PacketRow const& r) -> StreamIdentity const& { return *r.stream; },
        [](PacketRow const& r) -> void const* { return r.stream; });
    return layout;
}

}  // namespace TalIec61850Tools
