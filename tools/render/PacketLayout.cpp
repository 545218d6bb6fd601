#include "tools/render/PacketLayout.hpp"

#include <array>

#include "tools/output/TextEscape.hpp"
#include "tools/render/Cells.hpp"
#include "tools/render/StreamFields.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

namespace {

using Row = PacketRow;

// The place is the last one, so that it can be left out.
constexpr std::array kColumns = {
    Column<Row>{{"TIME"}, [](Row const& r) { return toUtcText(r.time); }},
    Column<Row>{{"PROTO"}, [](Row const& r) { return std::string(toText(r.stream.protocol)); }},
    Column<Row>{{"SOURCE"}, [](Row const& r) { return nameCell(r.stream.source); }},
    Column<Row>{{"APPID", Align::right}, [](Row const& r) { return appIdCell(r.stream); }},
    Column<Row>{{"SVID/GOCBREF"}, [](Row const& r) { return streamNameCell(r.stream); }},
    Column<Row>{{"FILE@POSITION"},
                [](Row const& r) { return fmt::format("{}@{}", escapeText(r.file), r.position); }},
    Column<Row>{{"PLACE"}, [](Row const& r) { return std::string(toText(r.place)); }},
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
    return {{"time", [](Row const& r) { return toUtcText(r.time); }},
            {"timeNs", [](Row const& r) { return nanosecondsSince1970(r.time); }},
            {"file", [](Row const& r) { return r.file; }},
            {"position", [](Row const& r) { return r.position; }},
            {"place", [](Row const& r) { return toText(r.place); }}};
}

RowLayout<PacketRow> packetLayout(bool withPlace) {
    std::span<Column<PacketRow> const> const columns(kColumns);
    RowLayout<PacketRow> layout{.fields = packetFields(),
                                .columns = withPlace ? columns : columns.first(columns.size() - 1)};
    appendFields<PacketRow, StreamIdentity>(
        layout.fields, streamFields(),
        [](Row const& r) -> StreamIdentity const& { return r.stream; });
    return layout;
}

}  // namespace TalIec61850Tools
