#include "tools/render/RedundancyLayout.hpp"

#include <fmt/format.h>

#include <string>
#include <utility>

#include "tools/render/Cells.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::Redundancy;
using TalIec61850Analysis::TimeDifferences;

namespace {

using Pairs = RedundancyRow const&;
using RowField = Field<RedundancyRow>;

Cell redundancyCell(Pairs row) {
    switch (row.counts.redundancy) {
        case Redundancy::hsr:
            return std::string_view("hsr");
        case Redundancy::prp:
            return std::string_view("prp");
        case Redundancy::none:
            break;
    }
    return {};
}

Cell nameOfProtocol(Pairs row, Protocol protocol) {
    return row.key->protocol == protocol ? Cell(row.key->name) : Cell();
}

Cell differencesCell(Pairs row) {
    auto const& all = row.counts.differences;
    return all ? Cell(JsonText{fmt::format(R"({{"min":{},"p50":{},"p99":{},"max":{}}})", all->min,
                                           all->p50, all->p99, all->max)})
               : Cell();
}

template <std::int64_t TimeDifferences::*Member>
Cell differenceCell(Pairs row) {
    auto const& all = row.counts.differences;
    return all ? Cell((*all).*Member) : Cell();
}

/// Empty where there is none, so that the column goes where no stream has any.
Cell countIfAny(std::uint64_t count) { return count == 0 ? Cell() : Cell(count); }

std::vector<RowField> redundancyFields(Format format) {
    std::vector<RowField> fields = {
        {"protocol", [](Pairs r) -> Cell { return toText(r.key->protocol); }},
        {"source", [](Pairs r) { return addressCell(r.key->source); }},
        {"destination", [](Pairs r) { return addressCell(r.key->destination); }},
        {"vlanId",
         [](Pairs r) { return r.key->vlans.empty() ? Cell() : Cell(r.key->vlans.back().id); }},
        {"appId", [](Pairs r) { return appIdCell(r.key->appId); }},
        {"svID", [](Pairs r) { return nameOfProtocol(r, Protocol::sv); }},
        {"gocbRef", [](Pairs r) { return nameOfProtocol(r, Protocol::goose); }},
        {"redundancy", redundancyCell},
        {"both", [](Pairs r) -> Cell { return r.counts.both; }},
        {"onlyA", [](Pairs r) -> Cell { return r.counts.onlyA; }},
        {"onlyB", [](Pairs r) -> Cell { return r.counts.onlyB; }},
        {"more", [](Pairs r) -> Cell { return r.counts.more; }},
        {"firstA", [](Pairs r) -> Cell { return r.counts.firstA; }},
        {"firstB", [](Pairs r) -> Cell { return r.counts.firstB; }}};
    if (format == Format::json) {
        fields.push_back({"differenceNs", differencesCell});
    } else {
        fields.push_back({"differenceMinNs", differenceCell<&TimeDifferences::min>});
        fields.push_back({"differenceP50Ns", differenceCell<&TimeDifferences::p50>});
        fields.push_back({"differenceP99Ns", differenceCell<&TimeDifferences::p99>});
        fields.push_back({"differenceMaxNs", differenceCell<&TimeDifferences::max>});
    }
    std::vector<RowField> const rest = {
        {"clockOffsetNs", [](Pairs r) -> Cell { return r.counts.clockOffset; }},
        {"missingRunsA", [](Pairs r) -> Cell { return r.counts.missingRunsA; }},
        {"missingRunsB", [](Pairs r) -> Cell { return r.counts.missingRunsB; }},
        {"differs", [](Pairs r) -> Cell { return r.counts.differs; }},
        {"wrongLan", [](Pairs r) -> Cell { return r.counts.wrongLan; }}};
    fields.insert(fields.end(), rest.begin(), rest.end());
    return fields;
}

}  // namespace

RowLayout<RedundancyRow> redundancyLayout(Format format) {
    RowLayout<RedundancyRow> layout{.fields = redundancyFields(format), .columns = {}};
    if (format == Format::json) {
        return layout;
    }
    auto const column = [&](std::string_view field, Heading heading) {
        layout.columns.push_back(columnOf(layout.fields, field, std::move(heading)));
    };
    auto const counts = [&](std::string_view field, std::string heading, std::size_t rank,
                            std::uint64_t TalIec61850Analysis::CopyCounts::*count) {
        layout.columns.push_back({{std::move(heading), Align::right, {.rank = rank}},
                                  [count](Pairs r) { return countIfAny(r.counts.*count); },
                                  field});
    };
    using TalIec61850Analysis::CopyCounts;
    column("protocol", {"PROTO"});
    layout.columns.push_back({{"SVID/GOCBREF", Align::left, fitName(1, 16)},
                              [](Pairs r) -> Cell { return r.key->name; }});
    column("appId", {"APPID", Align::right, {.rank = 14}});
    column("source", {"SOURCE", Align::left, {.rank = 19}});
    column("destination", {"DESTINATION", Align::left, {.rank = 20}});
    column("vlanId", {"VLAN", Align::right, {.rank = 21}});
    column("redundancy", {"KIND", Align::left, {.rank = 2}});
    column("both", {"BOTH", Align::right, {.rank = 3}});
    column("onlyA", {"ONLYA", Align::right, {.rank = 4}});
    column("onlyB", {"ONLYB", Align::right, {.rank = 5}});
    counts("more", "MORE", 11, &CopyCounts::more);
    column("firstA", {"FIRSTA", Align::right, {.rank = 15}});
    column("firstB", {"FIRSTB", Align::right, {.rank = 16}});
    column("differenceMinNs", {"B-A MIN/NS", Align::right, {.rank = 17}});
    column("differenceP50Ns", {"B-A P50/NS", Align::right, {.rank = 6}});
    column("differenceP99Ns", {"B-A P99/NS", Align::right, {.rank = 18}});
    column("differenceMaxNs", {"B-A MAX/NS", Align::right, {.rank = 8}});
    column("clockOffsetNs", {"CLOCK/NS", Align::right, {.rank = 7}});
    counts("missingRunsA", "RUNSA", 9, &CopyCounts::missingRunsA);
    counts("missingRunsB", "RUNSB", 10, &CopyCounts::missingRunsB);
    counts("differs", "DIFFERS", 12, &CopyCounts::differs);
    counts("wrongLan", "WRONGLAN", 13, &CopyCounts::wrongLan);
    return layout;
}

}  // namespace TalIec61850Tools
