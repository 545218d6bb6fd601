#pragma once

#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// The fields of a row for other programs, in their order.
using Fields = nlohmann::ordered_json;

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
    /// What stands there, safe for a terminal.
    std::string (*cell)(Row const& row);
};

/// How the rows of one kind are written.
template <typename Row>
struct RowLayout {
    /// Every row has the same fields in the same order; what a row lacks is null.
    Fields (*toFields)(Row const& row);
    std::span<Column<Row> const> columns;
};

}  // namespace TalIec61850Tools
