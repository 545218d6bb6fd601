#include "tools/output/TableWriter.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "tools/output/TextEscape.hpp"
#include "tools/selection/RowFields.hpp"

namespace TalIec61850Tools {

namespace {

enum class Align { left, right };

struct Column {
    std::string_view heading;
    Align align;
    std::string (*cell)(StreamRow const& row);
};

constexpr std::string_view kAbsent = "-";
constexpr std::string_view kGap = "  ";

std::string nameCell(std::optional<std::string> const& name) {
    if (!name) {
        return std::string(kAbsent);
    }
    return name->empty() ? "\"\"" : escapeText(*name);
}

template <typename Number>
std::string numberCell(std::optional<Number> const& number) {
    return number ? fmt::to_string(*number) : std::string(kAbsent);
}

std::string vlanCell(StreamRow const& row) {
    return row.vlan ? numberCell(row.vlan->vlanId) : std::string(kAbsent);
}

std::string appIdCell(StreamRow const& row) {
    return row.appId ? fmt::format("0x{:04X}", *row.appId) : std::string(kAbsent);
}

std::string hsrCell(StreamRow const& row) {
    return row.hsr && row.hsr->lanId ? escapeText({&*row.hsr->lanId, 1}) : std::string(kAbsent);
}

std::string simulationCell(StreamRow const& row) {
    if (!row.simulationPresent) {
        return std::string(kAbsent);
    }
    return *row.simulationPresent ? "yes" : "no";
}

std::string timeCell(std::optional<CaptureTime> const& time) {
    return time ? toUtcText(*time) : std::string(kAbsent);
}

std::string rateCell(StreamRow const& row) {
    auto const rate = row.packetsPerSecond();
    return rate ? fmt::format("{:.3f}", *rate) : std::string(kAbsent);
}

constexpr std::array kColumns = {
    Column{"PROTO", Align::left,
           [](StreamRow const& r) { return std::string(toText(r.protocol)); }},
    Column{"SOURCE", Align::left, [](StreamRow const& r) { return nameCell(r.source); }},
    Column{"DESTINATION", Align::left, [](StreamRow const& r) { return nameCell(r.destination); }},
    Column{"VLAN", Align::right, vlanCell},
    Column{"APPID", Align::right, appIdCell},
    Column{"HSR", Align::left, hsrCell},
    Column{"R1B0", Align::right, [](StreamRow const& r) { return numberCell(r.reserved1Bit0); }},
    Column{"CONFREV", Align::right, [](StreamRow const& r) { return numberCell(r.confRev); }},
    Column{"SIM-ELEM", Align::left, simulationCell},
    Column{"PACKETS", Align::right, [](StreamRow const& r) { return fmt::to_string(r.packets); }},
    Column{"FILES", Align::right, [](StreamRow const& r) { return fmt::to_string(r.files); }},
    Column{"FIRST", Align::left, [](StreamRow const& r) { return timeCell(r.firstTime); }},
    Column{"LAST", Align::left, [](StreamRow const& r) { return timeCell(r.lastTime); }},
    Column{"PACKETS/S", Align::right, rateCell},
    Column{"SVID/GOCBREF", Align::left,
           [](StreamRow const& r) { return nameCell(r.svID ? r.svID : r.gocbRef); }},
    Column{"DATSET", Align::left, [](StreamRow const& r) { return nameCell(r.datSet); }},
    Column{"GOID", Align::left, [](StreamRow const& r) { return nameCell(r.goID); }},
};

using Widths = std::array<std::size_t, kColumns.size()>;

Widths findWidths(std::span<StreamRow const> rows) {
    Widths widths{};
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        widths[i] = kColumns[i].heading.size();
        for (StreamRow const& row : rows) {
            widths[i] = std::max(widths[i], countColumns(kColumns[i].cell(row)));
        }
    }
    return widths;
}

/// @param cell  gives the text of a column
template <typename Cell>
std::string makeLine(Widths const& widths, Cell&& cell) {
    std::string line;
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        std::string const text(cell(kColumns[i]));
        std::string const blanks(widths[i] - countColumns(text), ' ');
        bool const isRight = kColumns[i].align == Align::right;
        bool const isLast = i + 1 == kColumns.size();
        line.append(isRight ? blanks + text : text + (isLast ? "" : blanks));
        line.append(isLast ? "\n" : kGap);
    }
    return line;
}

}  // namespace

void writeTable(std::span<StreamRow const> rows, TextSink const& sink) {
    Widths const widths = findWidths(rows);
    sink(makeLine(widths, [](Column const& column) { return column.heading; }));
    for (StreamRow const& row : rows) {
        sink(makeLine(widths, [&](Column const& column) { return column.cell(row); }));
    }
}

}  // namespace TalIec61850Tools
