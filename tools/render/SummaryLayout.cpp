#include "tools/render/SummaryLayout.hpp"

#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/render/Cells.hpp"
#include "tools/render/DurationText.hpp"
#include "tools/render/IdentityFields.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureTime;
using TalIec61850Analysis::captureTimeOf;
using TalIec61850Analysis::StreamJitter;

namespace {

using Figures = SummaryRow const&;

std::optional<CaptureTime> capturedAt(std::int64_t time) {
    return time == TalIec61850Analysis::kNoTime ? std::nullopt : std::optional(captureTimeOf(time));
}

bool isGooseStream(Figures row) { return row.key->protocol == Protocol::goose; }

template <std::int64_t StreamJitter::*figure>
Cell jitterCell(Figures row) {
    auto const& jitter = row.summary.jitter;
    return jitter ? Cell((*jitter).*figure) : Cell();
}

template <std::int64_t StreamJitter::*figure>
Cell jitterTextCell(Figures row) {
    auto const& jitter = row.summary.jitter;
    return jitter ? Cell(durationText((*jitter).*figure)) : Cell();
}

/// Empty for none, so that the column goes where no stream has any.
template <std::uint64_t TalIec61850Analysis::StreamSummary::*count>
Cell someCell(Figures row) {
    return row.summary.*count == 0 ? Cell() : Cell(row.summary.*count);
}

Cell gapTextCell(Figures row) {
    auto const& gap = row.summary.largestGap;
    return gap ? Cell(durationText(*gap)) : Cell();
}

Cell marginTextCell(Figures row) {
    auto const& margin = row.summary.timeAllowedtoLiveMargin;
    return margin ? Cell(fmt::format("{:.2f}", *margin)) : Cell();
}

Cell rateTextCell(std::optional<double> const& rate) {
    return rate ? Cell(fmt::format("{:.3f}", *rate)) : Cell();
}

std::vector<Field<SummaryRow>> summaryFields() {
    std::vector<Field<SummaryRow>> fields = {
        {"protocol", [](Figures r) -> Cell { return toText(r.key->protocol); }}};
    auto identity = identityFields<SummaryRow>([](Figures r) { return r.key; });
    for (auto& field : identity) {
        fields.push_back(std::move(field));
    }
    std::vector<Field<SummaryRow>> const others = {
        {"packets", [](Figures r) -> Cell { return r.summary.packets; }},
        {"firstTime", [](Figures r) { return timeCell(capturedAt(r.summary.first)); }},
        {"firstTimeNs", [](Figures r) { return timeNsCell(capturedAt(r.summary.first)); }},
        {"lastTime", [](Figures r) { return timeCell(capturedAt(r.summary.last)); }},
        {"lastTimeNs", [](Figures r) { return timeNsCell(capturedAt(r.summary.last)); }},
        {"nominalRate", [](Figures r) -> Cell { return r.summary.nominalRate; }},
        {"measuredRate", [](Figures r) -> Cell { return r.summary.measuredRate; }},
        {"lost", [](Figures r) -> Cell { return r.summary.lost; }},
        {"late", [](Figures r) -> Cell { return r.summary.late; }},
        {"repeated", [](Figures r) -> Cell { return r.summary.repeated; }},
        {"restarts", [](Figures r) -> Cell { return r.summary.restarts; }},
        {"largestGapNs", [](Figures r) -> Cell { return r.summary.largestGap; }},
        {"largestGapLost",
         [](Figures r) { return r.summary.largestGap ? Cell(r.summary.largestGapLost) : Cell(); }},
        {"jitterP50Ns", jitterCell<&StreamJitter::median>},
        {"jitterP99Ns", jitterCell<&StreamJitter::percentile99>},
        {"jitterMaxNs", jitterCell<&StreamJitter::largest>},
        {"smpSynch", [](Figures r) -> Cell { return r.summary.lowestSynch; }},
        {"simulated", [](Figures r) -> Cell { return r.summary.isSimulated; }},
        {"timeAllowedtoLiveMargin",
         [](Figures r) -> Cell { return r.summary.timeAllowedtoLiveMargin; }},
        {"states", [](Figures r) { return isGooseStream(r) ? Cell(r.summary.states) : Cell(); }},
        {"errors", [](Figures r) -> Cell { return r.summary.errors; }},
        {"warnings", [](Figures r) -> Cell { return r.summary.warnings; }},
        {"notes", [](Figures r) -> Cell { return r.summary.notes; }}};
    fields.insert(fields.end(), others.begin(), others.end());
    return fields;
}

}  // namespace

RowLayout<SummaryRow> summaryLayout() {
    using Summary = TalIec61850Analysis::StreamSummary;
    RowLayout<SummaryRow> layout{.fields = summaryFields(), .columns = {}};
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(layout.fields, field, std::move(heading));
    };
    auto const right = [](std::string_view text, std::size_t rank) {
        return Heading{std::string(text), Align::right, {.rank = rank}};
    };
    layout.columns = {
        column("protocol", {"PROTO"}),
        {{"SVID/GOCBREF", Align::left, fitName(1, 16)},
         [](Figures r) -> Cell { return r.key->name; }},
        column("errors", right("ERRORS", 2)),
        column("warnings", right("WARNINGS", 3)),
        column("notes", right("NOTES", 9)),
        column("packets", right("PACKETS", 5)),
        column("lost", right("LOST", 4)),
        {right("LATE", 10), someCell<&Summary::late>, "late"},
        {right("REPEATED", 11), someCell<&Summary::repeated>, "repeated"},
        {right("RESTARTS", 12), someCell<&Summary::restarts>, "restarts"},
        {right("LARGEST GAP", 6), gapTextCell},
        {right("JITTER P50", 15), jitterTextCell<&StreamJitter::median>},
        {right("JITTER P99", 8), jitterTextCell<&StreamJitter::percentile99>},
        {right("JITTER MAX", 13), jitterTextCell<&StreamJitter::largest>},
        column("smpSynch", right("SYNCH", 14)),
        {{"SIM", Align::left, {.rank = 7}},
         [](Figures r) { return r.summary.isSimulated ? Cell(std::string_view("yes")) : Cell(); },
         "simulated"},
        {right("TAL/GAP", 16), marginTextCell},
        column("states", right("STATES", 17)),
        {right("NOMINAL/S", 18), [](Figures r) -> Cell { return r.summary.nominalRate; },
         "nominalRate"},
        {right("MEASURED/S", 19), [](Figures r) { return rateTextCell(r.summary.measuredRate); }},
        column("appId", right("APPID", 20)),
        column("source", {"SOURCE", Align::left, {.rank = 21}}),
        column("firstTime", {"FIRST", Align::left, fitTime(22)}),
        column("lastTime", {"LAST", Align::left, fitTime(23)}),
    };
    return layout;
}

}  // namespace TalIec61850Tools
