#include "tools/render/SubscriberLayout.hpp"

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/render/Cells.hpp"
#include "tools/render/DescribedMemberLayout.hpp"
#include "tools/render/DescriptionCells.hpp"
#include "tools/selection/StationNames.hpp"

namespace TalIec61850Tools {

using TalIec61850Scl::DataSetMember;

namespace {

using Subscription = SubscriberRow const&;

Cell takenMemberCell(Subscription row) {
    return row.member() != nullptr
               ? Cell(describedMemberText(*row.block, *row.dataSet(), *row.subscriber->member))
               : Cell();
}

Cell takenNameCell(Subscription row) {
    auto const* const member = row.member();
    return member != nullptr ? Cell(member->name) : Cell();
}

std::vector<Field<SubscriberRow>> subscriberFields() {
    return {
        {"publisher", [](Subscription r) -> Cell { return r.block->ied; }},
        {"controlBlock", [](Subscription r) -> Cell { return r.block->reference; }},
        {"subscriber", [](Subscription r) -> Cell { return r.subscriber->ied; }},
        {"node", [](Subscription r) { return textIfAny(r.subscriber->node); }},
        {"intAddr", [](Subscription r) { return textIfAny(r.subscriber->intAddr); }},
        {"member", takenMemberCell},
        {"name", takenNameCell},
        {"source", [](Subscription r) -> Cell { return toText(r.subscriber->source); }},
        {"file", [](Subscription r) { return sclFileCell(*r.station, r.subscriber->place); }},
        {"line", [](Subscription r) { return sclLineCell(r.subscriber->place); }},
    };
}

}  // namespace

DataSetMember const* SubscriberRow::member() const {
    auto const* const known = dataSet();
    bool const isThere =
        known != nullptr && subscriber->member && *subscriber->member < known->members.size();
    return isThere ? &known->members[*subscriber->member] : nullptr;
}

RowLayout<SubscriberRow> subscriberLayout() {
    RowLayout<SubscriberRow> layout{.fields = subscriberFields(), .columns = {}};
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(layout.fields, field, std::move(heading));
    };
    constexpr std::size_t kLeastName = 16;
    constexpr std::size_t kLeastText = 12;
    layout.columns = {
        column("controlBlock", {"CONTROLBLOCK", Align::left, fitName(0, kLeastName)}),
        column("subscriber", {"SUBSCRIBER", Align::left, fitName(1, kLeastText)}),
        column("node", {"NODE", Align::left, fitName(3, kLeastText)}),
        column("intAddr", {"INTADDR", Align::left, fitName(5, kLeastText)}),
        column("member", {"MEMBER", Align::right, {.rank = 4}}),
        column("name", {"NAME", Align::left, fitName(2, kLeastName)}),
        column("source", {"SOURCE", Align::left, {.rank = 6}}),
        {{"FILE:LINE", Align::left, fitFile(7)},
         [](Subscription r) { return sclPlaceCell(*r.station, r.subscriber->place); }},
    };
    return layout;
}

}  // namespace TalIec61850Tools
