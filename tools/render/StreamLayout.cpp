#include "tools/render/StreamLayout.hpp"

#include <array>

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

std::string simulationCell(StreamRow const& row) {
    if (!row.simulationPresent) {
        return std::string(kAbsentCell);
    }
    return *row.simulationPresent ? "yes" : "no";
}

std::string rateCell(StreamRow const& row) {
    auto const rate = row.packetsPerSecond();
    return rate ? fmt::format("{:.3f}", *rate) : std::string(kAbsentCell);
}

constexpr std::array kStreamColumns = {
    Column<StreamRow>{{"PROTO"},
                      [](StreamRow const& r) { return std::string(toText(r.protocol)); }},
    Column<StreamRow>{{"SOURCE"}, [](StreamRow const& r) { return nameCell(r.source); }},
    Column<StreamRow>{{"DESTINATION"}, [](StreamRow const& r) { return nameCell(r.destination); }},
    Column<StreamRow>{{"VLAN", Align::right}, [](StreamRow const& r) { return vlanCell(r); }},
    Column<StreamRow>{{"APPID", Align::right}, [](StreamRow const& r) { return appIdCell(r); }},
    Column<StreamRow>{{"HSR"}, [](StreamRow const& r) { return hsrCell(r); }},
    Column<StreamRow>{{"R1B0", Align::right},
                      [](StreamRow const& r) { return numberCell(r.reserved1Bit0); }},
    Column<StreamRow>{{"CONFREV", Align::right},
                      [](StreamRow const& r) { return numberCell(r.confRev); }},
    Column<StreamRow>{{"SIM-ELEM"}, simulationCell},
    Column<StreamRow>{{"PACKETS", Align::right},
                      [](StreamRow const& r) { return fmt::to_string(r.packets); }},
    Column<StreamRow>{{"FILES", Align::right},
                      [](StreamRow const& r) { return fmt::to_string(r.files); }},
    Column<StreamRow>{{"FIRST"}, [](StreamRow const& r) { return timeCell(r.firstTime); }},
    Column<StreamRow>{{"LAST"}, [](StreamRow const& r) { return timeCell(r.lastTime); }},
    Column<StreamRow>{{"PACKETS/S", Align::right}, rateCell},
    Column<StreamRow>{{"SVID/GOCBREF"}, [](StreamRow const& r) { return streamNameCell(r); }},
    Column<StreamRow>{{"DATSET"}, [](StreamRow const& r) { return nameCell(r.datSet); }},
    Column<StreamRow>{{"GOID"}, [](StreamRow const& r) { return nameCell(r.goID); }},
};

}  // namespace

RowLayout<StreamRow> streamLayout() {
    RowLayout<StreamRow> layout{.fields = {}, .columns = kStreamColumns};
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
