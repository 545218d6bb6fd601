#include "tools/render/StreamLayout.hpp"

#include <fmt/format.h>

#include "tools/render/Cells.hpp"
#include "tools/render/StreamFields.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

namespace {

Cell textField(std::optional<CaptureTime> const& time) {
    return time ? Cell(toUtcCell(*time)) : Cell();
}

Cell integerField(std::optional<CaptureTime> const& time) {
    return time ? Cell(nanosecondsSince1970(*time)) : Cell();
}

Cell simulationCell(StreamRow const& row) {
    if (!row.simulationPresent) {
        return {};
    }
    return *row.simulationPresent ? std::string_view("yes") : std::string_view("no");
}

Cell rateCell(StreamRow const& row) {
    auto const rate = row.packetsPerSecond();
    return rate ? Cell(fmt::format("{:.3f}", *rate)) : Cell();
}

std::vector<Column<StreamRow>> streamColumns() {
    using Row = StreamRow const&;
    return {
        {{"PROTO"}, [](Row r) -> Cell { return toText(r.protocol); }, "protocol"},
        {{"SOURCE", Align::left, {.rank = 3}}, [](Row r) -> Cell { return r.source; }, "source"},
        {{"DESTINATION", Align::left, {.rank = 6}},
         [](Row r) -> Cell { return r.destination; },
         "destination"},
        {{"VLAN", Align::right, {.rank = 7}}, [](Row r) { return vlanCell(r); }, "vlanId"},
        {{"APPID", Align::right, {.rank = 2}}, [](Row r) { return appIdCell(r); }, "appId"},
        {{"HSR", Align::left, {.rank = 14}}, [](Row r) { return hsrCell(r); }, "hsrLane"},
        {{"R1B0", Align::right, {.rank = 13}},
         [](Row r) -> Cell { return r.reserved1Bit0; },
         "reserved1Bit0"},
        {{"CONFREV", Align::right, {.rank = 8}},
         [](Row r) -> Cell { return r.confRev; },
         "confRev"},
        {{"SIM-ELEM", Align::left, {.rank = 12}}, simulationCell, "simulationPresent"},
        {{"PACKETS", Align::right, {.rank = 4}},
         [](Row r) -> Cell { return r.packets; },
         "packets"},
        {{"FILES", Align::right, {.rank = 11}}, [](Row r) -> Cell { return r.files; }, "files"},
        {{"FIRST", Align::left, fitTime(9)},
         [](Row r) { return timeCell(r.firstTime); },
         "firstTime"},
        {{"LAST", Align::left, fitTime(10)},
         [](Row r) { return timeCell(r.lastTime); },
         "lastTime"},
        {{"PACKETS/S", Align::right, {.rank = 5}}, rateCell, "packetsPerSecond"},
        {{"SVID/GOCBREF", Align::left, fitName(1, 20)}, [](Row r) { return streamNameCell(r); }},
        {{"DATSET", Align::left, fitName(15, 16)},
         [](Row r) -> Cell { return r.datSet; },
         "datSet"},
        {{"GOID", Align::left, fitName(16, 16)}, [](Row r) -> Cell { return r.goID; }, "goID"},
    };
}

}  // namespace

RowLayout<StreamRow> streamLayout() {
    RowLayout<StreamRow> layout{.fields = {}, .columns = streamColumns()};
    appendFields<StreamRow, StreamIdentity>(
        layout.fields, streamFields(),
        [](StreamRow const& r) -> StreamIdentity const& { return r; });
    layout.fields.insert(
        layout.fields.end(),
        {{"packets", [](StreamRow const& r) -> Cell { return r.packets; }},
         {"files", [](StreamRow const& r) -> Cell { return r.files; }},
         {"firstTime", [](StreamRow const& r) -> Cell { return textField(r.firstTime); }},
         {"firstTimeNs", [](StreamRow const& r) -> Cell { return integerField(r.firstTime); }},
         {"lastTime", [](StreamRow const& r) -> Cell { return textField(r.lastTime); }},
         {"lastTimeNs", [](StreamRow const& r) -> Cell { return integerField(r.lastTime); }},
         {"packetsPerSecond", [](StreamRow const& r) -> Cell { return r.packetsPerSecond(); }}});
    return layout;
}

}  // namespace TalIec61850Tools
