#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// Finds which of the names is meant; letter case does not count.
/// @throws UsageError  none of them is
[[nodiscard]] std::size_t findField(std::vector<std::string_view> const& names,
                                    std::string const& wanted);

/// The name of a field as a heading: in upper case.
[[nodiscard]] std::string headingOf(std::string_view field);

/// The layout with these fields alone, in this order, in tables too.
/// @param names  of fields; empty for the layout as it is
/// @throws UsageError  there is no such field
template <typename Row>
[[nodiscard]] RowLayout<Row> chooseColumns(RowLayout<Row> layout,
                                           std::vector<std::string> const& names) {
    if (names.empty()) {
        return layout;
    }
    constexpr std::size_t leastWidth = 8;
    RowLayout<Row> chosen;
    for (auto const& name : names) {
        Field<Row> const& field = layout.fields[findField(fieldNames(layout), name)];
        auto const known =
            std::find_if(layout.columns.begin(), layout.columns.end(),
                         [&](Column<Row> const& column) { return column.field == field.name; });
        Column<Row> column;
        if (known != layout.columns.end()) {
            column = *known;
        } else {
            column.heading.text = headingOf(field.name);
            column.heading.align = Align::byValue;
            column.heading.fit.least = leastWidth;
            column.cell = field.cell;
            column.field = field.name;
        }
        column.heading.fit.rank = chosen.columns.size();
        column.heading.fit.isShownEmpty = true;
        chosen.columns.push_back(std::move(column));
        chosen.fields.push_back(field);
    }
    return chosen;
}

}  // namespace TalIec61850Tools
