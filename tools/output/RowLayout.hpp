#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Tools {

/// The fields of a row for other programs, in their order; or the value of one.
using Fields = nlohmann::ordered_json;

/// A field of a row for other programs.
template <typename Row>
struct Field {
    std::string_view name;
    /// Null for what the row lacks.
    std::function<Fields(Row const& row)> value;
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

/// The fields of one row.
template <typename Row>
[[nodiscard]] Fields toFields(RowLayout<Row> const& layout, Row const& row) {
    Fields fields = Fields::object();
    auto& members = fields.template get_ref<Fields::object_t&>();
    members.reserve(layout.fields.size());
    for (auto const& field : layout.fields) {
        // Without a search for the name, which occurs once in a layout.
        members.emplace_back(std::string(field.name), field.value(row));
    }
    return fields;
}

/// Adds the fields of a part of the row.
/// @param partOf  finds the part in a row
template <typename Row, typename Part>
void appendFields(std::vector<Field<Row>>& fields, std::vector<Field<Part>> const& partFields,
                  Part const& (*partOf)(Row const& row)) {
    for (auto const& field : partFields) {
        fields.push_back(
            {.name = field.name, .value = [value = field.value, partOf](Row const& row) {
                 return value(partOf(row));
             }});
    }
}

}  // namespace TalIec61850Tools
