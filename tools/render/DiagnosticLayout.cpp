#include "tools/render/DiagnosticLayout.hpp"

#include <cstddef>
#include <string_view>
#include <utility>

#include "tools/render/Cells.hpp"
#include "tools/render/DescriptionCells.hpp"

namespace TalIec61850Tools {

namespace {

using Diagnosed = DiagnosticRow const&;

}  // namespace

RowLayout<DiagnosticRow> diagnosticLayout() {
    RowLayout<DiagnosticRow> layout{
        .fields = {{"code", [](Diagnosed r) -> Cell { return nameOf(r.diagnostic->code); }},
                   {"file",
                    [](Diagnosed r) { return sclFileCell(*r.station, r.diagnostic->place); }},
                   {"line", [](Diagnosed r) { return sclLineCell(r.diagnostic->place); }},
                   {"subject", [](Diagnosed r) { return textIfAny(r.diagnostic->subject); }}},
        .columns = {}};
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(layout.fields, field, std::move(heading));
    };
    constexpr std::size_t kLeastText = 20;
    layout.columns = {
        column("code", {"CODE", Align::left, {.rank = 0}}),
        column("file", {"FILE", Align::left, fitFile(3)}),
        column("line", {"LINE", Align::right, {.rank = 1}}),
        column("subject", {"SUBJECT", Align::left, fitName(2, kLeastText)}),
    };
    return layout;
}

}  // namespace TalIec61850Tools
