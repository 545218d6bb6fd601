#include "tools/output/Cell.hpp"

#include <array>
#include <nlohmann/json.hpp>

#include "tools/output/DumpJson.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

namespace {

/// What a character means to the formats, as bits.
using CharacterBits = unsigned;
constexpr CharacterBits kNeedsEscape = 1;  // for a terminal
constexpr CharacterBits kNeedsQuotes = 2;  // in comma-separated values
constexpr CharacterBits kNotAsItIs = 4;    // in JSON

constexpr std::array<CharacterBits, 256> kCharacters = [] {
    std::array<CharacterBits, 256> characters{};
    for (std::size_t c = 0; c < characters.size(); ++c) {
        bool const isPrintable = c >= 0x20 && c < 0x7F;
        characters[c] = isPrintable ? 0 : kNeedsEscape | kNotAsItIs;
    }
    characters['\\'] = kNeedsEscape | kNotAsItIs;
    characters['"'] = kNeedsQuotes | kNotAsItIs;
    characters[','] = kNeedsQuotes;
    characters['\r'] |= kNeedsQuotes;
    characters['\n'] |= kNeedsQuotes;
    return characters;
}();

/// The bits of all characters of a text.
CharacterBits bitsOf(std::string_view text) {
    CharacterBits bits = 0;
    for (char const c : text) {
        bits |= kCharacters[static_cast<std::uint8_t>(c)];
    }
    return bits;
}

void appendQuoted(TextLine& line, std::string_view text) {
    line.append('"');
    for (char const c : text) {
        if (c == '"') {
            line.append(c);
        }
        line.append(c);
    }
    line.append('"');
}

/// A text that is safe in a line.
void appendCsvText(TextLine& line, std::string_view text) {
    if (text.empty() || (bitsOf(text) & kNeedsQuotes) != 0) {
        appendQuoted(line, text);
    } else {
        line.append(text);
    }
}

/// What the formats have alike: numbers, truth, and what is ready.
struct PlainAppender {
    TextLine& line;

    void operator()(bool value) const {
        line.append(value ? std::string_view("true") : std::string_view("false"));
    }
    void operator()(std::int64_t number) const { line.appendNumber(number); }
    void operator()(std::uint64_t number) const { line.appendNumber(number); }
    void operator()(double number) const { line.append(dumpJson(nlohmann::json(number))); }
    void operator()(ReadyText ready) const { line.append(ready.text); }
};

struct CsvAppender : PlainAppender {
    using PlainAppender::operator();

    void operator()(Absent /*absent*/) const {}
    void operator()(JsonText const& json) const { appendCsvText(line, json.text); }
    void operator()(std::string_view text) const {
        CharacterBits const bits = bitsOf(text);
        if (bits == 0 && !text.empty()) {
            line.append(text);
        } else {
            appendCsvText(line, (bits & kNeedsEscape) != 0 ? escapeText(text) : std::string(text));
        }
    }
    void operator()(ShortText const& text) const { line.append(text); }
};

struct SpreadsheetAppender : CsvAppender {
    using CsvAppender::operator();

    void operator()(std::string_view text) const {
        bool const isFormula =
            !text.empty() && std::string_view("=+-@\t\r").find(text[0]) != std::string_view::npos;
        if (isFormula) {
            std::string const guarded = "'" + std::string(text);
            CsvAppender::operator()(std::string_view(guarded));
        } else {
            CsvAppender::operator()(text);
        }
    }
};

struct JsonAppender : PlainAppender {
    using PlainAppender::operator();

    void operator()(Absent /*absent*/) const { line.append("null"); }
    void operator()(JsonText const& json) const { line.append(json.text); }
    void operator()(std::string_view text) const {
        if ((bitsOf(text) & kNotAsItIs) == 0) {
            line.append('"');
            line.append(text);
            line.append('"');
        } else {
            line.append(dumpJson(nlohmann::json(text)));
        }
    }
    void operator()(ShortText const& text) const {
        line.append('"');
        line.append(text);
        line.append('"');
    }
};

struct TableAppender : PlainAppender {
    using PlainAppender::operator();

    void operator()(Absent /*absent*/) const { line.append(kAbsentCell); }
    void operator()(JsonText const& json) const { line.append(json.text); }
    void operator()(std::string_view text) const {
        if (text.empty()) {
            line.append("\"\"");
        } else if ((bitsOf(text) & kNeedsEscape) == 0) {
            line.append(text);
        } else {
            line.append(escapeText(text));
        }
    }
    void operator()(ShortText const& text) const { line.append(text); }
};

}  // namespace

bool Cell::isNumber() const {
    return std::holds_alternative<std::int64_t>(value_) ||
           std::holds_alternative<std::uint64_t>(value_) || std::holds_alternative<double>(value_);
}

void appendCsv(TextLine& line, Cell const& cell) { std::visit(CsvAppender{{line}}, cell.value()); }

void appendSpreadsheetCell(TextLine& line, Cell const& cell) {
    std::visit(SpreadsheetAppender{{{line}}}, cell.value());
}

void appendJson(TextLine& line, Cell const& cell) {
    std::visit(JsonAppender{{line}}, cell.value());
}

void appendTable(TextLine& line, Cell const& cell) {
    std::visit(TableAppender{{line}}, cell.value());
}

std::string tableText(Cell const& cell) {
    TextLine line;
    appendTable(line, cell);
    return std::string(line.view());
}

}  // namespace TalIec61850Tools
