#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/output/Cell.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

/// A field of a row for other programs.
template <typename Row>
struct Field {
    std::string_view name;
    /// Absent for what the row lacks.
    std::function<Cell(Row const& row)> cell;
    /// An object of which alone the value depends, and which many rows have in common: its text is
    /// made once. It stays as it is while rows are written. A constant serves where rows have in
    /// common that they lack the field. Null for a field of the row alone; so may be what it gives
    /// for a row.
    void const* (*sharedBy)(Row const& row) = nullptr;
};

enum class Align {
    left,
    right,
    byValue,  ///< numbers to the right
};

/// How a column gives way in a table that has to fit a terminal.
struct Fit {
    /// Columns of lower rank come first, and are left out last.
    std::size_t rank = 0;
    /// The characters that a cell keeps at least, where it has more; 0 if none may go.
    std::size_t least = 0;
    Cut cut = Cut::end;
    /// Whether it is shown without a value in any row.
    bool isShownEmpty = false;
    /// Whether a cell that is too wide goes on in the lines below, and is not cut.
    bool wraps = false;
};

/// The head of a column of a table for people.
struct Heading {
    std::string text;
    Align align = Align::left;
    Fit fit = {};
    /// Gives a cell colours, where there are any; null for none. What it adds takes no column.
    std::string (*paint)(std::string_view cell) = nullptr;
};

/// A column of a table for people.
template <typename Row>
struct Column {
    Heading heading;
    /// Its value in a row.
    std::function<Cell(Row const& row)> cell;
    /// The field that it shows; empty if it is made of several.
    std::string_view field = {};
};

/// The output of the rows of one type.
template <typename Row>
struct RowLayout {
    std::vector<Field<Row>> fields;
    std::vector<Column<Row>> columns;
};

/// A column that shows a field as it is.
/// @param name  of one of the fields
template <typename Row>
[[nodiscard]] Column<Row> columnOf(std::vector<Field<Row>> const& fields, std::string_view name,
                                   Heading heading) {
    auto const field = std::find_if(fields.begin(), fields.end(),
                                    [&](Field<Row> const& known) { return known.name == name; });
    return {.heading = std::move(heading), .cell = field->cell, .field = field->name};
}

/// The names of the fields, which every row has in this order.
template <typename Row>
[[nodiscard]] std::vector<std::string_view> fieldNames(RowLayout<Row> const& layout) {
    std::vector<std::string_view> names;
    for (auto const& field : layout.fields) {
        names.push_back(field.name);
    }
    return names;
}

/// Adds the fields of a part of the row.
/// @param partOf    finds the part in a row
/// @param sharedBy  see Field; for a part that many rows have in common
template <typename Row, typename Part>
void appendFields(std::vector<Field<Row>>& fields, std::vector<Field<Part>> const& partFields,
                  Part const& (*partOf)(Row const& row),
                  void const* (*sharedBy)(Row const& row) = nullptr) {
    for (auto const& field : partFields) {
        fields.push_back(
            {.name = field.name,
             .cell = [cell = field.cell, partOf](Row const& row) { return cell(partOf(row)); },
             .sharedBy = sharedBy});
    }
}

}  // namespace TalIec61850Tools
