#include "tools/render/StreamLayout.hpp"

#include <fmt/format.h>

#include <variant>

#include "tools/render/AddressText.hpp"
#include "tools/render/Cells.hpp"
#include "tools/render/DescribingFields.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

namespace {

using Row = StreamRow const&;

Cell nameCell(Row row) { return row.name(); }

Cell rateCell(Row row) {
    auto const rate = row.packetsPerSecond();
    return rate ? Cell(fmt::format("{:.3f}", *rate)) : Cell();
}

/// Empty for a stream that has none, so that the column goes where no stream has.
Cell yesCell(Row row) { return row.isSimulated ? Cell(std::string_view("yes")) : Cell(); }

/// Packets over A and over B, be they the first ones or copies.
Cell lanesCell(Row row) {
    std::uint64_t const a = row.overHsr[0] + row.overPrp[0];
    std::uint64_t const b = row.overHsr[1] + row.overPrp[1];
    return a + b == 0 ? Cell() : Cell(fmt::format("{}/{}", a, b));
}

Cell countCell(std::uint64_t count) { return count == 0 ? Cell() : Cell(count); }

std::vector<Field<StreamRow>> streamRowFields() {
    return {{"protocol", [](Row r) -> Cell { return toText(r.protocol); }},
            {"source", [](Row r) { return addressCell(r.source); }},
            {"destination", [](Row r) { return addressCell(r.destination); }},
            {"vlanId", [](Row r) { return r.vlans.empty() ? Cell() : Cell(r.vlans.back().id); }},
            {"vlanStack",
             [](Row r) { return r.vlans.size() < 2 ? Cell() : Cell(vlanStackText(r.vlans)); }},
            {"appId", [](Row r) { return appIdCell(r.appId); }},
            {"svID", [](Row r) -> Cell { return r.svID; }},
            {"gocbRef", [](Row r) -> Cell { return r.gocbRef; }},
            {"datSet", [](Row r) -> Cell { return r.datSet; }},
            {"goID", [](Row r) -> Cell { return r.goID; }},
            {"confRev", [](Row r) { return r.confRev ? numberCell(*r.confRev) : Cell(); }},
            {"simulated", [](Row r) -> Cell { return r.isSimulated; }},
            {"asdusPerFrame", [](Row r) -> Cell { return r.asdusPerFrame; }},
            {"nominalRate", [](Row r) -> Cell { return r.nominalRate; }},
            {"packets", [](Row r) -> Cell { return r.packets; }},
            {"copies", [](Row r) -> Cell { return r.copies; }},
            {"files", [](Row r) -> Cell { return r.files; }},
            {"firstTime", [](Row r) { return timeCell(r.firstTime); }},
            {"firstTimeNs", [](Row r) { return timeNsCell(r.firstTime); }},
            {"lastTime", [](Row r) { return timeCell(r.lastTime); }},
            {"lastTimeNs", [](Row r) { return timeNsCell(r.lastTime); }},
            {"packetsPerSecond", [](Row r) -> Cell { return r.packetsPerSecond(); }}};
}

}  // namespace

std::string vlanStackText(std::vector<TalIec61850Analysis::VlanKey> const& vlans) {
    std::string text;
    for (auto const& vlan : vlans) {
        text += fmt::format("{}{:04x}:{}", text.empty() ? "" : "/", vlan.tpid, vlan.id);
    }
    return text;
}

RowLayout<StreamRow> streamLayout(bool areDescribed) {
    RowLayout<StreamRow> layout{.fields = streamRowFields(), .columns = {}};
    if (areDescribed) {
        auto const describing = describingFields<StreamRow>([](Row r) { return r.controlBlock; });
        layout.fields.insert(layout.fields.end(), describing.begin(), describing.end());
    }
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(layout.fields, field, std::move(heading));
    };
    layout.columns = {
        column("protocol", {"PROTO"}),
        {{"SVID/GOCBREF", Align::left, fitName(1, 16)}, nameCell},
        column("appId", {"APPID", Align::right, {.rank = 2}}),
        column("source", {"SOURCE", Align::left, {.rank = 3}}),
        column("destination", {"DESTINATION", Align::left, {.rank = 6}}),
        column("vlanId", {"VLAN", Align::right, {.rank = 7}}),
        column("vlanStack", {"VLANS", Align::left, {.rank = 14}}),
        column("confRev", {"CONFREV", Align::right, {.rank = 12}}),
        {{"SIM", Align::left, {.rank = 9}}, yesCell, "simulated"},
        column("asdusPerFrame", {"ASDUS", Align::right, {.rank = 13}}),
        column("nominalRate", {"NOMINAL/S", Align::right, {.rank = 8}}),
        {{"PACKETS/S", Align::right, {.rank = 5}}, rateCell, "packetsPerSecond"},
        column("packets", {"PACKETS", Align::right, {.rank = 4}}),
        {{"COPIES", Align::right, {.rank = 10}},
         [](Row r) { return countCell(r.copies); },
         "copies"},
        {{"A/B", Align::right, {.rank = 11}}, lanesCell},
        column("files", {"FILES", Align::right, {.rank = 17}}),
        column("firstTime", {"FIRST", Align::left, fitTime(15)}),
        column("lastTime", {"LAST", Align::left, fitTime(16)}),
        column("datSet", {"DATSET", Align::left, fitName(18, 16)}),
        column("goID", {"GOID", Align::left, fitName(19, 16)}),
    };
    if (areDescribed) {
        layout.columns.push_back(column("ied", {"IED", Align::left, fitName(2, 8)}));
        layout.columns.push_back(
            column("controlBlock", {"CONTROL BLOCK", Align::left, fitName(20, 16)}));
    }
    return layout;
}

}  // namespace TalIec61850Tools
