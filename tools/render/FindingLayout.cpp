#include "tools/render/FindingLayout.hpp"

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "tools/output/Style.hpp"
#include "tools/render/Cells.hpp"
#include "tools/render/DescribingFields.hpp"
#include "tools/render/IdentityFields.hpp"
#include "tools/selection/FindingNames.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureTime;
using TalIec61850Analysis::captureTimeOf;
using TalIec61850Analysis::Finding;
using TalIec61850Analysis::FindingPlace;
using TalIec61850Analysis::LossCause;
using TalIec61850Analysis::LossWitness;

namespace {

using Row = FindingRow const&;
using Place = std::optional<FindingPlace> Finding::*;

std::optional<CaptureTime> instantOf(std::int64_t time) {
    return time == TalIec61850Analysis::kNoTime ? std::nullopt : std::optional(captureTimeOf(time));
}

Cell countCell(std::uint64_t count) { return count == 0 ? Cell() : Cell(count); }

template <Place place>
Cell fileCell(Row row) {
    auto const& at = row.finding->*place;
    return at ? Cell((*row.files)[at->file]) : Cell();
}

template <Place place>
Cell positionCell(Row row) {
    auto const& at = row.finding->*place;
    return at ? Cell(at->fileOffset) : Cell();
}

template <std::int64_t Finding::*time>
Cell timeTextCell(Row row) {
    return timeCell(instantOf(row.finding->*time));
}

template <std::int64_t Finding::*time>
Cell timeNumberCell(Row row) {
    return timeNsCell(instantOf(row.finding->*time));
}

Cell protocolCell(Row row) {
    auto const& protocol = row.finding->protocol;
    return protocol ? Cell(toText(*protocol)) : Cell();
}

Cell causeCell(Row row) {
    LossCause const cause = row.finding->cause;
    return cause == LossCause::none ? Cell() : Cell(toText(cause));
}

Cell witnessCell(Row row) {
    LossWitness const witness = row.finding->witness;
    return witness == LossWitness::none ? Cell() : Cell(toText(witness));
}

Cell nameCell(Row row) {
    auto const* const key = row.key();
    return key != nullptr ? Cell(key->name) : Cell();
}

Cell memberNameCell(Row row) {
    std::string name = row.words->nameOf(*row.finding);
    return name.empty() ? Cell() : Cell(std::move(name));
}

std::vector<Field<FindingRow>> findingFields() {
    std::vector<Field<FindingRow>> fields = {
        {"finding", [](Row r) -> Cell { return toText(r.finding->kind); }},
        {"severity", [](Row r) -> Cell { return toText(r.finding->severity()); }},
        {"protocol", protocolCell}};
    auto identity = identityFields<FindingRow>([](Row r) { return r.key(); });
    for (auto& field : identity) {
        fields.push_back(std::move(field));
    }
    std::vector<Field<FindingRow>> const others = {
        {"time", timeTextCell<&Finding::from>},
        {"timeNs", timeNumberCell<&Finding::from>},
        {"untilTime", timeTextCell<&Finding::until>},
        {"untilTimeNs", timeNumberCell<&Finding::until>},
        {"count", [](Row r) -> Cell { return r.finding->count; }},
        {"lost", [](Row r) { return countCell(r.finding->lost); }},
        {"expected", [](Row r) { return valueCell(*r.finding, r.finding->expected); }},
        {"found", [](Row r) { return valueCell(*r.finding, r.finding->found); }},
        {"cause", causeCell},
        {"witness", witnessCell},
        {"witnessFrames", [](Row r) { return countCell(r.finding->witnessFrames); }},
        {"file", fileCell<&Finding::place>},
        {"position", positionCell<&Finding::place>},
        {"previousFile", fileCell<&Finding::before>},
        {"previousPosition", positionCell<&Finding::before>},
        {"text", [](Row r) -> Cell { return r.words->sentence(*r.finding); }}};
    fields.insert(fields.end(), others.begin(), others.end());
    return fields;
}

}  // namespace

RowLayout<FindingRow> findingLayout(bool areDescribed) {
    RowLayout<FindingRow> layout{.fields = findingFields(), .columns = {}};
    if (areDescribed) {
        auto const describing = describingFields<FindingRow>([](Row r) {
            return r.key() == nullptr || r.names == nullptr ? nullptr
                                                            : r.names->controlBlockOf(*r.key());
        });
        layout.fields.insert(layout.fields.end(), describing.begin(), describing.end());
        layout.fields.push_back({"name", memberNameCell});
    }
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(layout.fields, field, std::move(heading));
    };
    constexpr std::size_t kLeastKind = 9;
    constexpr std::size_t kLeastName = 10;
    constexpr std::size_t kLeastText = 30;
    layout.columns = {
        column("time", {"TIME", Align::left, fitTime(0)}),
        column("severity", {"LEVEL", Align::left, {.rank = 1}, paintSeverity}),
        column("finding", {"FINDING", Align::left, {.rank = 4, .least = kLeastKind}}),
        {{"SVID/GOCBREF", Align::left, fitName(2, kLeastName)}, nameCell},
        column("text", {"TEXT", Align::left, {.rank = 3, .least = kLeastText, .wraps = true}}),
    };
    return layout;
}

}  // namespace TalIec61850Tools
