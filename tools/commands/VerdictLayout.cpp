#include "tools/commands/VerdictLayout.hpp"

#include <fmt/format.h>

#include <array>
#include <optional>

#include "tools/output/TextEscape.hpp"
#include "tools/render/StreamFields.hpp"
#include "tools/render/UtcText.hpp"
#include "tools/selection/CaptureTime.hpp"

namespace TalIec61850Tools {

namespace {

std::string protocolText(std::optional<Protocol> protocol) {
    return protocol ? std::string(toText(*protocol)) : std::string("other");
}

std::string answerText(FrameVerdict const& verdict) { return verdict.answer ? "true" : "false"; }

constexpr std::array kCountColumns = {
    Column<VerdictCount>{{"PROTO"}, [](auto const& r) { return protocolText(r.verdict.protocol); }},
    Column<VerdictCount>{{"VERDICT"},
                         [](auto const& r) { return std::string(toText(r.verdict.verdict)); }},
    Column<VerdictCount>{{"ANSWER"}, [](auto const& r) { return answerText(r.verdict); }},
    Column<VerdictCount>{{"FRAMES", Align::right},
                         [](auto const& r) { return fmt::to_string(r.frames); }},
    Column<VerdictCount>{{"OCTETS", Align::right},
                         [](auto const& r) { return fmt::to_string(r.octets); }},
};

constexpr std::array kFrameColumns = {
    Column<JudgedFrame>{{"TIME"}, [](auto const& r) { return toUtcText(r.record.time); }},
    Column<JudgedFrame>{{"PROTO"}, [](auto const& r) { return protocolText(r.verdict.protocol); }},
    Column<JudgedFrame>{{"VERDICT"},
                        [](auto const& r) { return std::string(toText(r.verdict.verdict)); }},
    Column<JudgedFrame>{{"ANSWER"}, [](auto const& r) { return answerText(r.verdict); }},
    Column<JudgedFrame>{{"RECORD", Align::right},
                        [](auto const& r) { return fmt::to_string(r.record.fileOffset); }},
    Column<JudgedFrame>{{"FILE"}, [](auto const& r) { return escapeText(r.file); }},
};

}  // namespace

RowLayout<VerdictCount> verdictCountLayout() {
    using Row = VerdictCount const&;
    return {.fields = {{"protocol", [](Row r) -> Cell { return protocolText(r.verdict.protocol); }},
                       {"verdict", [](Row r) -> Cell { return toText(r.verdict.verdict); }},
                       {"answer", [](Row r) -> Cell { return r.verdict.answer; }},
                       {"frames", [](Row r) -> Cell { return r.frames; }},
                       {"octets", [](Row r) -> Cell { return r.octets; }}},
            .columns = kCountColumns};
}

RowLayout<JudgedFrame> judgedFrameLayout() {
    using Row = JudgedFrame const&;
    return {
        .fields = {{"time", [](Row r) -> Cell { return toUtcCell(r.record.time); }},
                   {"timeNs", [](Row r) -> Cell { return nanosecondsSince1970(r.record.time); }},
                   {"file", [](Row r) -> Cell { return r.file; }},
                   {"recordPosition", [](Row r) -> Cell { return r.record.fileOffset; }},
                   {"protocol", [](Row r) -> Cell { return protocolText(r.verdict.protocol); }},
                   {"verdict", [](Row r) -> Cell { return toText(r.verdict.verdict); }},
                   {"answer", [](Row r) -> Cell { return r.verdict.answer; }}},
        .columns = kFrameColumns};
}

}  // namespace TalIec61850Tools
