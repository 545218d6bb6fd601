#include "tools/render/StreamLayout.hpp"

#include <array>

#include "tools/output/OptionalField.hpp"
#include "tools/render/Cells.hpp"
#include "tools/render/StreamFields.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

namespace {

Fields textField(std::optional<CaptureTime> const& time) {
    return time ? Fields(toUtcText(*time)) : Fields(nullptr);
}

Fields integerField(std::optional<CaptureTime> const& time) {
    return time ? Fields(nanosecondsSince1970(*time)) : Fields(nullptr);
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

using Row = StreamRow;

constexpr std::array kColumns = {
    Column<Row>{{"PROTO"}, [](Row const& r) { return std::string(toText(r.protocol)); }},
    Column<Row>{{"SOURCE"}, [](Row const& r) { return nameCell(r.source); }},
    Column<Row>{{"DESTINATION"}, [](Row const& r) { return nameCell(r.destination); }},
    Column<Row>{{"VLAN", Align::right}, [](Row const& r) { return vlanCell(r); }},
    Column<Row>{{"APPID", Align::right}, [](Row const& r) { return appIdCell(r); }},
    Column<Row>{{"HSR"}, [](Row const& r) { return hsrCell(r); }},
    Column<Row>{{"R1B0", Align::right}, [](Row const& r) { return numberCell(r.reserved1Bit0); }},
    Column<Row>{{"CONFREV", Align::right}, [](Row const& r) { return numberCell(r.confRev); }},
    Column<Row>{{"SIM-ELEM"}, simulationCell},
    Column<Row>{{"PACKETS", Align::right}, [](Row const& r) { return fmt::to_string(r.packets); }},
    Column<Row>{{"FILES", Align::right}, [](Row const& r) { return fmt::to_string(r.files); }},
    Column<Row>{{"FIRST"}, [](Row const& r) { return timeCell(r.firstTime); }},
    Column<Row>{{"LAST"}, [](Row const& r) { return timeCell(r.lastTime); }},
    Column<Row>{{"PACKETS/S", Align::right}, rateCell},
    Column<Row>{{"SVID/GOCBREF"}, [](Row const& r) { return streamNameCell(r); }},
    Column<Row>{{"DATSET"}, [](Row const& r) { return nameCell(r.datSet); }},
    Column<Row>{{"GOID"}, [](Row const& r) { return nameCell(r.goID); }},
};

}  // namespace

RowLayout<StreamRow> streamLayout() {
    RowLayout<StreamRow> layout{.fields = {}, .columns = kColumns};
    appendFields<StreamRow, StreamIdentity>(
        layout.fields, streamFields(), [](Row const& r) -> StreamIdentity const& { return r; });
    layout.fields.insert(
        layout.fields.end(),
        {{"packets", [](Row const& r) { return r.packets; }},
         {"files", [](Row const& r) { return r.files; }},
         {"firstTime", [](Row const& r) { return textField(r.firstTime); }},
         {"firstTimeNs", [](Row const& r) { return integerField(r.firstTime); }},
         {"lastTime", [](Row const& r) { return textField(r.lastTime); }},
         {"lastTimeNs", [](Row const& r) { return integerField(r.lastTime); }},
         {"packetsPerSecond", [](Row const& r) { return optionalField(r.packetsPerSecond()); }}});
    return layout;
}

}  // namespace TalIec61850Tools
