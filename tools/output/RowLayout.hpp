#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/output/Cell.hpp"

namespace TalIec61850Tools {

/// A field of a row for other programs.
template <typename Row>
struct Field {
    std::string_view name;
    /// Absent for what the row lacks.
    std::function<Cell(Row const& row)> cell;
    /// An object of which alone the value depends, and which many rows have in common: its text is
    /// made once. It stays as it is while rows are written. Null for a field of the row alone.
    void const* (*sharedBy)(Row const& row) = nullptr;
};

enum class Align { left, right };

/// The head of a column of a table for people.
struct Heading {
    std::string_view text;
    Align align = Align::left;
};

/// A column of a table for people.
template <typename Row>
struct Column {
    Heading heading;
    /// Its text in a row, safe for a terminal.
    std::string (*cell)(Row const& row);
};

/// The output of the rows of one type.
template <typename Row>
struct RowLayout {
    std::vector<Field<Row>> fields;
    /// Of static lifetime.
    std::span<Column<Row> const> columns;
};

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
