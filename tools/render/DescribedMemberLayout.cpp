#include "tools/render/DescribedMemberLayout.hpp"

#include <string_view>
#include <utility>
#include <vector>

#include "tools/render/Cells.hpp"
#include "tools/render/DescriptionCells.hpp"
#include "tools/render/EventRow.hpp"

namespace TalIec61850Tools {

using TalIec61850Scl::ControlBlock;
using TalIec61850Scl::DataSet;

namespace {

using Described = DescribedMemberRow const&;

std::vector<Field<DescribedMemberRow>> describedMemberFields() {
    return {
        {"ied", [](Described r) -> Cell { return r.block->ied; }},
        {"controlBlock", [](Described r) -> Cell { return r.block->reference; }},
        {"member",
         [](Described r) -> Cell { return describedMemberText(*r.block, *r.dataSet, r.number); }},
        {"name", [](Described r) -> Cell { return r.member().name; }},
        {"bType", [](Described r) { return textIfAny(r.member().bType); }},
        {"fc", [](Described r) { return textIfAny(r.member().fc); }},
        {"desc", [](Described r) { return textIfAny(r.member().desc); }},
        {"unit", [](Described r) { return textIfAny(r.member().unit); }},
        {"scale",
         [](Described r) -> Cell {
             return r.member().scale ? Cell(r.member().scale->factor) : Cell();
         }},
        {"offset",
         [](Described r) -> Cell {
             return r.member().scale ? Cell(r.member().scale->offset) : Cell();
         }},
    };
}

}  // namespace

std::string describedMemberText(ControlBlock const& block, DataSet const& dataSet,
                                std::size_t number) {
    return block.protocol == Protocol::goose ? memberText(dataSet.members[number].path)
                                             : std::to_string(number + 1);
}

RowLayout<DescribedMemberRow> describedMemberLayout() {
    RowLayout<DescribedMemberRow> layout{.fields = describedMemberFields(), .columns = {}};
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(layout.fields, field, std::move(heading));
    };
    constexpr std::size_t kLeastName = 16;
    constexpr std::size_t kLeastText = 12;
    layout.columns = {
        column("controlBlock", {"CONTROLBLOCK", Align::left, fitName(3, kLeastName)}),
        column("member", {"MEMBER", Align::right, {.rank = 1}}),
        column("name", {"NAME", Align::left, fitName(0, 2 * kLeastName)}),
        column("bType", {"BTYPE", Align::left, {.rank = 2}}),
        column("fc", {"FC", Align::left, {.rank = 4}}),
        column("unit", {"UNIT", Align::left, {.rank = 6}}),
        column("scale", {"SCALE", Align::right, {.rank = 7}}),
        column("offset", {"OFFSET", Align::right, {.rank = 8}}),
        column("desc", {"DESC", Align::left, {.rank = 5, .least = kLeastText}}),
    };
    return layout;
}

}  // namespace TalIec61850Tools
