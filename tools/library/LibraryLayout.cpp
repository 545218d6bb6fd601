#include "tools/library/LibraryLayout.hpp"

#include <fmt/format.h>

#include "tools/library/LibraryFields.hpp"
#include "tools/render/Cells.hpp"

namespace TalIec61850Tools {

namespace {

Cell simulationCell(LibraryRow const& row) {
    if (!row.simulationPresent) {
        return {};
    }
    return *row.simulationPresent ? std::string_view("yes") : std::string_view("no");
}

Cell rateCell(LibraryRow const& row) {
    auto const rate = row.packetsPerSecond();
    return rate ? Cell(fmt::format("{:.3f}", *rate)) : Cell();
}

std::vector<Column<LibraryRow>> streamColumns(std::vector<Field<LibraryRow>> const& fields) {
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(fields, field, std::move(heading));
    };
    return {
        column("protocol", {"PROTO"}),
        column("source", {"SOURCE", Align::left, {.rank = 3}}),
        column("destination", {"DESTINATION", Align::left, {.rank = 6}}),
        column("vlanId", {"VLAN", Align::right, {.rank = 7}}),
        column("appId", {"APPID", Align::right, {.rank = 2}}),
        column("hsrLane", {"HSR", Align::left, {.rank = 14}}),
        column("reserved1Bit0", {"R1B0", Align::right, {.rank = 13}}),
        column("confRev", {"CONFREV", Align::right, {.rank = 8}}),
        {{"SIM-ELEM", Align::left, {.rank = 12}}, simulationCell, "simulationPresent"},
        column("packets", {"PACKETS", Align::right, {.rank = 4}}),
        column("files", {"FILES", Align::right, {.rank = 11}}),
        column("firstTime", {"FIRST", Align::left, fitTime(9)}),
        column("lastTime", {"LAST", Align::left, fitTime(10)}),
        {{"PACKETS/S", Align::right, {.rank = 5}}, rateCell, "packetsPerSecond"},
        {{"SVID/GOCBREF", Align::left, fitName(1, 20)},
         [](LibraryRow const& r) -> Cell { return r.name(); }},
        column("datSet", {"DATSET", Align::left, fitName(15, 16)}),
        column("goID", {"GOID", Align::left, fitName(16, 16)}),
    };
}

}  // namespace

RowLayout<LibraryRow> libraryLayout() {
    RowLayout<LibraryRow> layout;
    appendFields<LibraryRow, LibraryStream>(
        layout.fields, libraryFields(),
        [](LibraryRow const& r) -> LibraryStream const& { return r; });
    layout.fields.insert(
        layout.fields.end(),
        {{"packets", [](LibraryRow const& r) -> Cell { return r.packets; }},
         {"files", [](LibraryRow const& r) -> Cell { return r.files; }},
         {"firstTime", [](LibraryRow const& r) -> Cell { return timeCell(r.firstTime); }},
         {"firstTimeNs", [](LibraryRow const& r) -> Cell { return timeNsCell(r.firstTime); }},
         {"lastTime", [](LibraryRow const& r) -> Cell { return timeCell(r.lastTime); }},
         {"lastTimeNs", [](LibraryRow const& r) -> Cell { return timeNsCell(r.lastTime); }},
         {"packetsPerSecond", [](LibraryRow const& r) -> Cell { return r.packetsPerSecond(); }}});
    layout.columns = streamColumns(layout.fields);
    return layout;
}

}  // namespace TalIec61850Tools
