#include "tools/library/VerdictLayout.hpp"

#include <optional>

#include "tools/render/Cells.hpp"

namespace TalIec61850Tools {

namespace {

std::string_view protocolText(std::optional<Protocol> protocol) {
    return protocol ? toText(*protocol) : "other";
}

std::vector<Column<VerdictCount>> verdictColumns(std::vector<Field<VerdictCount>> const& fields) {
    return {
        columnOf(fields, "protocol", {"PROTO"}),
        columnOf(fields, "verdict", {"VERDICT"}),
        columnOf(fields, "answer", {"ANSWER"}),
        columnOf(fields, "frames", {"FRAMES", Align::right}),
        columnOf(fields, "octets", {"OCTETS", Align::right}),
    };
}

std::vector<Column<JudgedFrame>> frameColumns(std::vector<Field<JudgedFrame>> const& fields) {
    return {
        columnOf(fields, "time", {"TIME", Align::left, fitTime(0)}),
        columnOf(fields, "protocol", {"PROTO"}),
        columnOf(fields, "verdict", {"VERDICT"}),
        columnOf(fields, "answer", {"ANSWER"}),
        columnOf(fields, "recordPosition", {"RECORD", Align::right}),
        columnOf(fields, "file", {"FILE", Align::left, fitFile(0)}),
    };
}

}  // namespace

RowLayout<VerdictCount> verdictCountLayout() {
    using Row = VerdictCount const&;
    RowLayout<VerdictCount> layout;
    layout.fields = {{"protocol", [](Row r) -> Cell { return protocolText(r.verdict.protocol); }},
                     {"verdict", [](Row r) -> Cell { return toText(r.verdict.verdict); }},
                     {"answer", [](Row r) -> Cell { return r.verdict.answer; }},
                     {"frames", [](Row r) -> Cell { return r.frames; }},
                     {"octets", [](Row r) -> Cell { return r.octets; }}};
    layout.columns = verdictColumns(layout.fields);
    return layout;
}

RowLayout<JudgedFrame> judgedFrameLayout() {
    using Row = JudgedFrame const&;
    RowLayout<JudgedFrame> layout;
    layout.fields = {{"time", [](Row r) { return timeCell(r.record.time); }},
                     {"timeNs", [](Row r) { return timeNsCell(r.record.time); }},
                     {"file", [](Row r) -> Cell { return r.file; }},
                     {"recordPosition", [](Row r) -> Cell { return r.record.fileOffset; }},
                     {"protocol", [](Row r) -> Cell { return protocolText(r.verdict.protocol); }},
                     {"verdict", [](Row r) -> Cell { return toText(r.verdict.verdict); }},
                     {"answer", [](Row r) -> Cell { return r.verdict.answer; }}};
    layout.columns = frameColumns(layout.fields);
    return layout;
}

}  // namespace TalIec61850Tools
