#include "tools/commands/VerdictLayout.hpp"

#include <fmt/format.h>

#include <array>
#include <optional>

#include "tools/output/TextEscape.hpp"
#include "tools/selection/CaptureTime.hpp"
#include "tools/selection/StreamFields.hpp"

namespace TalIec61850Tools {

namespace {

std::string protocolText(std::optional<Protocol> protocol) {
    return protocol ? std::string(toText(*protocol)) : std::string("other");
}

std::string answerText(FrameVerdict const& verdict) { return verdict.answer ? "true" : "false"; }

Fields countFields(VerdictCount const& row) {
    return {{"protocol", protocolText(row.verdict.protocol)},
            {"verdict", toText(row.verdict.verdict)},
            {"answer", row.verdict.answer},
            {"frames", row.frames},
            {"octets", row.octets}};
}

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

Fields frameFields(JudgedFrame const& row) {
    return {{"time", toUtcText(row.record.time)},
            {"timeNs", nanosecondsSince1970(row.record.time)},
            {"file", row.file},
            {"recordPosition", row.record.fileOffset},
            {"protocol", protocolText(row.verdict.protocol)},
            {"verdict", toText(row.verdict.verdict)},
            {"answer", row.verdict.answer}};
}

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
    return {.toFields = countFields, .columns = kCountColumns};
}

RowLayout<JudgedFrame> judgedFrameLayout() {
    return {.toFields = frameFields, .columns = kFrameColumns};
}

}  // namespace TalIec61850Tools
