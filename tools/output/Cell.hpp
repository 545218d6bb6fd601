#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "tools/output/ShortText.hpp"
#include "tools/output/TextLine.hpp"

namespace TalIec61850Tools {

/// JSON on one line, for a value with parts.
struct JsonText {
    std::string text;
};

/// A text that is already what its format has, added as it is: of one cell or of several.
struct ReadyText {
    std::string_view text;
};

/// What a row does not have.
struct Absent {};

/// The value of a field in a row. Texts that are views are those of the row, or of static lifetime.
class Cell {
public:
    using Value = std::variant<Absent, bool, std::int64_t, std::uint64_t, double, std::string_view,
                               ShortText, std::string, JsonText, ReadyText>;

    // Values become cells where rows are listed, without a word.
    // NOLINTBEGIN(google-explicit-constructor,hicpp-explicit-conversions)
    Cell() = default;
    Cell(std::nullopt_t /*absent*/) {}
    Cell(std::same_as<bool> auto value) : value_(value) {}
    template <std::unsigned_integral Number>
    requires(!std::same_as<Number, bool>) Cell(Number number)
        : value_(static_cast<std::uint64_t>(number)) {}
    Cell(std::signed_integral auto number) : value_(static_cast<std::int64_t>(number)) {}
    Cell(double number) : value_(number) {}
    Cell(std::string_view text) : value_(text) {}
    Cell(std::string const& text) : value_(std::string_view(text)) {}
    Cell(std::string&& text) : value_(std::move(text)) {}
    Cell(ShortText const& text) : value_(text) {}
    Cell(JsonText json) : value_(std::move(json)) {}
    Cell(ReadyText text) : value_(text) {}
    template <typename T>
    Cell(std::optional<T> const& value) : Cell(value ? Cell(*value) : Cell()) {}
    template <typename T>
    Cell(std::optional<T>&& value) : Cell(value ? Cell(*std::move(value)) : Cell()) {}
    // NOLINTEND(google-explicit-constructor,hicpp-explicit-conversions)

    [[nodiscard]] Value const& value() const { return value_; }
    [[nodiscard]] bool isAbsent() const { return std::holds_alternative<Absent>(value_); }
    [[nodiscard]] bool isNumber() const;

private:
    Value value_;
};

/// Appends a cell of comma-separated values, quoted as RFC 4180 requires. Texts pass `escapeText`,
/// so that every row is one line; what is absent is an empty cell, an empty text is "".
void appendCsv(TextLine& line, Cell const& cell);

/// The same for a spreadsheet: a text that it would take for a formula (after =, +, -, @) has an
/// apostrophe in front.
void appendSpreadsheetCell(TextLine& line, Cell const& cell);

/// Appends a value of JSON, in ASCII; what is absent is null. Texts are not altered, except that
/// octets that are no UTF-8 become U+FFFD.
void appendJson(TextLine& line, Cell const& cell);

/// Appends a cell of a table, safe for a terminal; what is absent is kAbsentCell.
void appendTable(TextLine& line, Cell const& cell);

/// The same as a text of its own.
[[nodiscard]] std::string tableText(Cell const& cell);

/// The text of a table's cell for what a row does not have.
inline constexpr std::string_view kAbsentCell = "-";

}  // namespace TalIec61850Tools
