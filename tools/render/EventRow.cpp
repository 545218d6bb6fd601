#include "tools/render/EventRow.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

#include "tools/output/DumpJson.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/render/Cells.hpp"
#include "tools/render/DataText.hpp"
#include "tools/render/DescribingFields.hpp"
#include "tools/render/PacketJson.hpp"
#include "tools/render/QualityText.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::MemberChange;
using TalIec61850Analysis::readQuality;
using TalIec61850Analysis::toView;

using Json = nlohmann::ordered_json;

namespace {

using Event = EventRow const&;

std::optional<CaptureTime> arrivalOf(Event row) {
    std::int64_t const time = row.event->arrival;
    return time == kNoTime ? std::nullopt : std::optional(captureTimeOf(time));
}

Cell delayCell(Event row) { return row.event->delay(); }

Cell millisecondsCell(std::optional<std::int64_t> nanoseconds) {
    constexpr double kNsOfMillisecond = 1e6;
    return nanoseconds
               ? Cell(fmt::format("{:.3f}", static_cast<double>(*nanoseconds) / kNsOfMillisecond))
               : Cell();
}

Json changesJson(Event row) {
    Json json = Json::array();
    for (MemberChange const* const change : row.changes) {
        std::string_view const name = row.names.nameAt(change->member);
        json.push_back({{"member", memberText(change->member)},
                        {"name", name.empty() ? Json() : Json(name)},
                        {"from", change->from ? toJson(*change->from) : Json()},
                        {"to", toJson(change->to)}});
    }
    return json;
}

/// For the column of a table: a quality in words alone, and other values without what else there is
/// to say of them.
std::string shortValueText(DataValue const& value) {
    auto const* const bits = std::get_if<BitString>(&value.value);
    auto const quality = value.kind == DataKind::bitString && bits != nullptr
                             ? readQuality(toView(*bits))
                             : std::nullopt;
    return quality ? toText(*quality) : toText(value);
}

/// The name of a changed value for people; empty where it has none.
std::string nameText(Event row, MemberChange const& change) {
    return escapeText(row.withIeds ? row.names.fullNameAt(change.member)
                                   : std::string(row.names.nameAt(change.member)));
}

/// For the column of a table: the name in place of the member.
std::string shortMemberText(Event row, MemberChange const& change) {
    std::string name = nameText(row, change);
    return name.empty() ? memberText(change.member) : name;
}

/// "1", or "1 LD0/PTRC1.Op.general".
std::string longMemberText(Event row, MemberChange const& change) {
    std::string const name = nameText(row, change);
    return memberText(change.member) + (name.empty() ? "" : " ") + name;
}

std::string changesText(Event row, std::string (*textOf)(DataValue const&),
                        std::string (*memberOf)(Event, MemberChange const&)) {
    std::string text;
    for (MemberChange const* const change : row.changes) {
        text += fmt::format("{}{}: {} -> {}", text.empty() ? "" : "; ", memberOf(row, *change),
                            change->from ? textOf(*change->from) : "none", textOf(change->to));
    }
    return text;
}

Cell changesCell(Event row, Format format) {
    if (!row.areChangesKnown()) {
        return {};
    }
    // Texts of values are escaped already.
    return JsonText{format == Format::json ? dumpJson(changesJson(row))
                                           : changesText(row, valueText, longMemberText)};
}

Cell changesColumn(Event row) {
    if (!row.areChangesKnown()) {
        return {};
    }
    if (row.changes.empty()) {
        return std::string_view("none");
    }
    return JsonText{changesText(row, shortValueText, shortMemberText)};
}

Cell retransmissionsCell(Event row, Format format) {
    auto const& times = row.event->retransmissions;
    return format == Format::json ? JsonText{fmt::format("[{}]", fmt::join(times, ","))}
                                  : JsonText{fmt::format("{}", fmt::join(times, " "))};
}

Cell nextStreamCell(Event row) {
    return row.next != nullptr ? Cell(std::string_view(row.next->key.name)) : Cell();
}

std::optional<std::int64_t> nextAfter(Event row) {
    return row.event->next ? std::optional(row.event->next->after) : std::nullopt;
}

Cell tTextCell(Event row) {
    return row.event->t ? Cell(ShortText(toIsoText(*row.event->t))) : Cell();
}

Cell tNsCell(Event row) {
    return row.event->t ? Cell(row.event->t->nanosecondsSince1970()) : Cell();
}

Cell tQualityCell(Event row) {
    return row.event->t ? Cell(timeQualityText(*row.event->t)) : Cell();
}

void const* eventStream(Event row) { return row.stream; }
void const* eventFile(Event row) { return row.file; }

std::vector<Field<EventRow>> fieldsOfEvents(Format format) {
    return {
        {"time", [](Event r) { return timeCell(arrivalOf(r)); }},
        {"timeNs", [](Event r) { return timeNsCell(arrivalOf(r)); }},
        {"gocbRef", [](Event r) -> Cell { return std::string_view(r.stream->key.name); },
         eventStream},
        {"source", [](Event r) { return addressCell(r.stream->key.source); }, eventStream},
        {"appId", [](Event r) { return appIdCell(r.stream->key.appId); }, eventStream},
        {"t", tTextCell},
        {"tNs", tNsCell},
        {"tQuality", tQualityCell},
        {"delayNs", delayCell},
        {"stNum", [](Event r) -> Cell { return r.event->stNum; }},
        {"previousStNum", [](Event r) -> Cell { return r.event->previousStNum; }},
        {"sqNum", [](Event r) -> Cell { return r.event->sqNum; }},
        {"changes", [format](Event r) { return changesCell(r, format); }},
        {"retransmissionsNs", [format](Event r) { return retransmissionsCell(r, format); }},
        {"retransmissions", [](Event r) -> Cell { return r.event->retransmissionCount; }},
        {"timeAllowedtoLive", [](Event r) -> Cell { return r.event->timeAllowedtoLive; }},
        {"longestIntervalNs", [](Event r) -> Cell { return r.event->longestInterval; }},
        {"nextStream", nextStreamCell},
        {"nextNs", [](Event r) -> Cell { return nextAfter(r); }},
        {"file", [](Event r) -> Cell { return *r.file; }, eventFile},
        {"position", [](Event r) -> Cell { return r.event->place.fileOffset; }},
    };
}

Cell eventLocatorCell(Event row) {
    return fmt::format("{}@{}", *row.file, row.event->place.fileOffset);
}

}  // namespace

RowLayout<EventRow> eventRowLayout(Format format, bool areDescribed) {
    constexpr std::size_t kLeastChanges = 16;
    RowLayout<EventRow> layout{.fields = fieldsOfEvents(format), .columns = {}};
    if (areDescribed) {
        auto const describing =
            describingFields<EventRow>([](Event r) { return r.controlBlock; }, eventStream);
        layout.fields.insert(layout.fields.end(), describing.begin(), describing.end());
    }
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(layout.fields, field, std::move(heading));
    };
    layout.columns = {
        column("time", {"TIME", Align::left, fitTime(0)}),
        column("gocbRef", {"GOCBREF", Align::left, fitName(1, 14)}),
        column("stNum", {"STNUM", Align::right, {.rank = 2}}),
        column("sqNum", {"SQNUM", Align::right, {.rank = 11}}),
        {{"DELAY/MS", Align::right, {.rank = 4}},
         [](Event r) { return millisecondsCell(r.event->delay()); },
         "delayNs"},
        {{"CHANGES", Align::left, {.rank = 3, .least = kLeastChanges, .wraps = true}},
         changesColumn,
         "changes"},
        column("retransmissions", {"AGAIN", Align::right, {.rank = 6}}),
        column("timeAllowedtoLive", {"TAL", Align::right, {.rank = 7}}),
        {{"LONGEST/MS", Align::right, {.rank = 8}},
         [](Event r) { return millisecondsCell(r.event->longestInterval); },
         "longestIntervalNs"},
        {{"NEXT/MS", Align::right, {.rank = 9}},
         [](Event r) { return millisecondsCell(nextAfter(r)); },
         "nextNs"},
        column("nextStream", {"NEXT", Align::left, fitName(10, 14)}),
        {{"FILE@POSITION", Align::left, fitFile(5)}, eventLocatorCell},
    };
    return layout;
}

}  // namespace TalIec61850Tools
