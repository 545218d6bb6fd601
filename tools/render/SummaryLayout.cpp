#include "tools/render/SummaryLayout.hpp"

#include <fmt/format.h>

#include <chrono>
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
using TalIec61850Analysis::StreamJitter;

namespace {

using Row = SummaryRow const&;

std::optional<CaptureTime> instantOf(std::int64_t time) {
    return time == TalIec61850Analysis::kNoTime
               ? std::nullopt
               : std::optional(CaptureTime(std::chrono::nanoseconds(time)));
}

bool isGoose(Row row) { return row.key->protocol == Protocol::goose; }

template <std::int64_t StreamJitter::*figure>
Cell jitterCell(Row row) {
    auto const& jitter = row.summary.jitter;
    return jitter ? Cell((*jitter).*figure) : Cell();
}

template <std::int64_t StreamJitter::*figure>
Cell jitterTextCell(Row row) {
    auto const& jitter = row.summary.jitter;
    return jitter ? Cell(durationText((*jitter).*figure)) : Cell();
}

/// Empty for none, so that the column goes where no stream has any.
template <std::uint64_t TalIec61850Analysis::StreamSummary::*count>
Cell someCell(Row row) {
    return row.summary.*count == 0 ? Cell() : Cell(row.summary.*count);
}

Cell gapTextCell(Row row) {
    auto const& gap = row.summary.largestGap;
    return gap ? Cell(durationText(*gap)) : Cell();
}

Cell marginTextCell(Row row) {
    auto const& margin = row.summary.timeAllowedtoLiveMargin;
    return margin ? Cell(fmt::format("{:.2f}", *margin)) : Cell();
}

Cell rateTextCell(std::optional<double> const& rate) {
    return rate ? Cell(fmt::format("{:.3f}", *rate)) : Cell();
}

std::vector<Field<SummaryRow>> summaryFields() {
    std::vector<Field<SummaryRow>> fields = {
        {"protocol", [](Row r) -> Cell { return toText(r.key->protocol); }}};
    auto identity = identityFields<SummaryRow>([](Row r) { return r.key; });
    for (auto& field : identity) {
        fields.push_back(std::move(field));
    }
    std::vector<Field<SummaryRow>> const others = {
        {"packets", [](Row r) -> Cell { return r.summary.packets; }},
        {"firstTime", [](Row r) { return timeCell(instantOf(r.summary.first)); }},
        {"firstTimeNs", [](Row r) { return timeNsCell(instantOf(r.summary.first)); }},
        {"lastTime", [](Row r) { return timeCell(instantOf(r.summary.last)); }},
        {"lastTimeNs", [](Row r) { return timeNsCell(instantOf(r.summary.last)); }},
        {"nominalRate", [](Row r) -> Cell { return r.summary.nominalRate; }},
        {"measuredRate", [](Row r) -> Cell { return r.summary.measuredRate; }},
        {"lost", [](Row r) -> Cell { return r.summary.lost; }},
        {"late", [](Row r) -> Cell { return r.summary.late; }},
        {"repeated", [](Row r) -> Cell { return r.summary.repeated; }},
        {"restarts", [](Row r) -> Cell { return r.summary.restarts; }},
        {"largestGapNs", [](Row r) -> Cell { return r.summary.largestGap; }},
        {"largestGapLost",
         [](Row r) { return r.summary.largestGap ? Cell(r.summary.largestGapLost) : Cell(); }},
        {"jitterP50Ns", jitterCell<&StreamJitter::median>},
        {"jitterP99Ns", jitterCell<&StreamJitter::percentile99>},
        {"jitterMaxNs", jitterCell<&StreamJitter::largest>},
        {"smpSynch", [](Row r) -> Cell { return r.summary.lowestSynch; }},
        {"simulated", [](Row r) -> Cell { return r.summary.isSimulated; }},
        {"timeAllowedtoLiveMargin",
         [](Row r) -> Cell { return r.summary.timeAllowedtoLiveMargin; }},
        {"states", [](Row r) { return isGoose(r) ? Cell(r.summary.states) : Cell(); }},
        {"errors", [](Row r) -> Cell { return r.summary.errors; }},
        {"warnings", [](Row r) -> Cell { return r.summary.warnings; }},
        {"notes", [](Row r) -> Cell { return r.summary.notes; }}};
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
        {{"SVID/GOCBREF", Align::left, fitName(1, 16)}, [](Row r) -> Cell { return r.key->name; }},
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
        {right("P99", 8), jitterTextCell<&StreamJitter::percentile99>},
        {right("MAX", 13), jitterTextCell<&StreamJitter::largest>},
        column("smpSynch", right("SYNCH", 14)),
        {{"SIM", Align::left, {.rank = 7}},
         [](Row r) { return r.summary.isSimulated ? Cell(std::string_view("yes")) : Cell(); },
         "simulated"},
        {right("TAL/GAP", 16), marginTextCell},
        column("states", right("STATES", 17)),
        {right("NOMINAL/S", 18), [](Row r) -> Cell { return r.summary.nominalRate; },
         "nominalRate"},
        {right("MEASURED/S", 19), [](Row r) { return rateTextCell(r.summary.measuredRate); }},
        column("appId", right("APPID", 20)),
        column("source", {"SOURCE", Align::left, {.rank = 21}}),
        column("firstTime", {"FIRST", Align::left, fitTime(22)}),
        column("lastTime", {"LAST", Align::left, fitTime(23)}),
    };
    return layout;
}

}  // namespace TalIec61850Tools
