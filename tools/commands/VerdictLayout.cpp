#include "tools/commands/VerdictLayout.hpp"

#include <optional>

#include "tools/render/Cells.hpp"
#include "tools/render/StreamFields.hpp"
#include "tools/render/UtcText.hpp"
#include "tools/selection/CaptureTime.hpp"

namespace TalIec61850Tools {

namespace {

std::string_view protocolText(std::optional<Protocol> protocol) {
    return protocol ? toText(*protocol) : "other";
}

std::vector<Column<VerdictCount>> verdictColumns() {
    using Row = VerdictCount const&;
    return {
        {{"PROTO"}, [](Row r) -> Cell { return protocolText(r.verdict.protocol); }, "protocol"},
        {{"VERDICT"}, [](Row r) -> Cell { return toText(r.verdict.verdict); }, "verdict"},
        {{"ANSWER"}, [](Row r) -> Cell { return r.verdict.answer; }, "answer"},
        {{"FRAMES", Align::right}, [](Row r) -> Cell { return r.frames; }, "frames"},
        {{"OCTETS", Align::right}, [](Row r) -> Cell { return r.octets; }, "octets"},
    };
}

std::vector<Column<JudgedFrame>> frameColumns() {
    using Row = JudgedFrame const&;
    return {
        {{"TIME", Align::left, fitTime(0)},
         [](Row r) -> Cell { return toUtcCell(r.record.time.value()); },
         "time"},
        {{"PROTO"}, [](Row r) -> Cell { return protocolText(r.verdict.protocol); }, "protocol"},
        {{"VERDICT"}, [](Row r) -> Cell { return toText(r.verdict.verdict); }, "verdict"},
        {{"ANSWER"}, [](Row r) -> Cell { return r.verdict.answer; }, "answer"},
        {{"RECORD", Align::right},
         [](Row r) -> Cell { return r.record.fileOffset; },
         "recordPosition"},
        {{"FILE", Align::left, fitFile(0)}, [](Row r) -> Cell { return r.file; }, "file"},
    };
}

}  // namespace

RowLayout<VerdictCount> verdictCountLayout() {
    using Row = VerdictCount const&;
    return {.fields = {{"protocol", [](Row r) -> Cell { return protocolText(r.verdict.protocol); }},
                       {"verdict", [](Row r) -> Cell { return toText(r.verdict.verdict); }},
                       {"answer", [](Row r) -> Cell { return r.verdict.answer; }},
                       {"frames", [](Row r) -> Cell { return r.frames; }},
                       {"octets", [](Row r) -> Cell { return r.octets; }}},
            .columns = verdictColumns()};
}

RowLayout<JudgedFrame> judgedFrameLayout() {
    using Row = JudgedFrame const&;
    return {.fields = {{"time", [](Row r) -> Cell { return toUtcCell(r.record.time.value()); }},
                       {"timeNs",
                        [](Row r) -> Cell { return nanosecondsSince1970(r.record.time.value()); }},
                       {"file", [](Row r) -> Cell { return r.file; }},
                       {"recordPosition", [](Row r) -> Cell { return r.record.fileOffset; }},
                       {"protocol", [](Row r) -> Cell { return protocolText(r.verdict.protocol); }},
                       {"verdict", [](Row r) -> Cell { return toText(r.verdict.verdict); }},
                       {"answer", [](Row r) -> Cell { return r.verdict.answer; }}},
            .columns = frameColumns()};
}

}  // namespace TalIec61850Tools
