#include "tools/render/ControlBlockLayout.hpp"

#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "tools/render/Cells.hpp"
#include "tools/render/DescriptionCells.hpp"
#include "tools/selection/StationNames.hpp"

namespace TalIec61850Tools {

using TalIec61850Scl::SampleRateUnit;
using TalIec61850Scl::Subscriber;

namespace {

using Block = ControlBlockRow const&;

bool isSv(Block row) { return row.block->protocol == Protocol::sv; }

Cell membersCell(Block row) {
    auto const* const dataSet = row.dataSet();
    return dataSet != nullptr ? Cell(dataSet->members.size()) : Cell();
}

Cell subscribersCell(Block row) {
    std::set<std::string_view> ieds;
    for (Subscriber const& subscriber : row.block->subscribers) {
        ieds.insert(subscriber.ied);
    }
    return ieds.size();
}

/// 4000/s, 80/period, 5 s each
Cell rateCell(Block row) {
    if (!isSv(row) || !row.block->smpRate) {
        return {};
    }
    std::uint32_t const rate = *row.block->smpRate;
    switch (row.block->smpRateUnit) {
        case SampleRateUnit::samplesPerSecond:
            return fmt::format("{}/s", rate);
        case SampleRateUnit::secondsPerSample:
            return fmt::format("{} s each", rate);
        case SampleRateUnit::samplesPerPeriod:
            break;
    }
    return fmt::format("{}/period", rate);
}

std::vector<Field<ControlBlockRow>> controlBlockFields() {
    return {
        {"protocol", [](Block r) -> Cell { return toText(r.block->protocol); }},
        {"ied", [](Block r) -> Cell { return r.block->ied; }},
        {"controlBlock", [](Block r) -> Cell { return r.block->reference; }},
        {"id", [](Block r) -> Cell { return r.block->id; }},
        {"datSet", [](Block r) -> Cell { return r.block->dataSetReference; }},
        {"confRev", [](Block r) -> Cell { return r.block->confRev; }},
        {"mac", [](Block r) { return addressCell(r.block->address.mac); }},
        {"appId", [](Block r) { return appIdCell(r.block->address.appId); }},
        {"vlanId", [](Block r) -> Cell { return r.block->address.vlanId; }},
        {"vlanPriority", [](Block r) -> Cell { return r.block->address.vlanPriority; }},
        {"minTime", [](Block r) { return describedTimeCell(r.block->address.minTime); }},
        {"maxTime", [](Block r) { return describedTimeCell(r.block->address.maxTime); }},
        {"smpRate", [](Block r) -> Cell { return r.block->smpRate; }},
        {"smpMod",
         [](Block r) -> Cell { return isSv(r) ? Cell(toText(r.block->smpRateUnit)) : Cell(); }},
        {"nofASDU", [](Block r) -> Cell { return r.block->nofASDU; }},
        {"redundancy", [](Block r) -> Cell { return toText(r.block->redundancy); }},
        {"members", membersCell},
        {"subscribers", subscribersCell},
        {"desc", [](Block r) { return textIfAny(r.block->desc); }},
        {"file", [](Block r) { return sclFileCell(*r.station, r.block->place); }},
        {"line", [](Block r) { return sclLineCell(r.block->place); }},
    };
}

}  // namespace

RowLayout<ControlBlockRow> controlBlockLayout() {
    RowLayout<ControlBlockRow> layout{.fields = controlBlockFields(), .columns = {}};
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(layout.fields, field, std::move(heading));
    };
    constexpr std::size_t kLeastName = 16;
    constexpr std::size_t kLeastText = 12;
    layout.columns = {
        column("protocol", {"PROTO", Align::left, {.rank = 1}}),
        column("controlBlock", {"CONTROLBLOCK", Align::left, fitName(0, kLeastName)}),
        column("id", {"GOID/SVID", Align::left, fitName(7, kLeastText)}),
        column("mac", {"MAC", Align::left, {.rank = 2}}),
        column("appId", {"APPID", Align::right, {.rank = 3}}),
        column("vlanId", {"VLAN", Align::right, {.rank = 4}}),
        column("vlanPriority", {"PRIO", Align::right, {.rank = 8}}),
        column("confRev", {"CONFREV", Align::right, {.rank = 9}}),
        column("minTime", {"MIN/MS", Align::right, {.rank = 14}}),
        column("maxTime", {"MAX/MS", Align::right, {.rank = 11}}),
        {{"RATE", Align::right, {.rank = 10}}, rateCell},
        column("nofASDU", {"ASDUS", Align::right, {.rank = 12}}),
        column("redundancy", {"REDUNDANCY", Align::left, {.rank = 15}}),
        column("members", {"MEMBERS", Align::right, {.rank = 5}}),
        column("subscribers", {"SUBSCRIBERS", Align::right, {.rank = 6}}),
        column("datSet", {"DATSET", Align::left, fitName(13, kLeastName)}),
        column("desc", {"DESC", Align::left, {.rank = 16, .least = kLeastText}}),
        {{"FILE:LINE", Align::left, fitFile(17)},
         [](Block r) { return sclPlaceCell(*r.station, r.block->place); }},
    };
    return layout;
}

}  // namespace TalIec61850Tools
