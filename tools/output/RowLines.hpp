#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/output/RowLayout.hpp"
#include "tools/output/TextLine.hpp"

namespace TalIec61850Tools {

/// The form in which a command writes its rows.
enum class Format {
    table,        ///< for people
    json,         ///< one object per line
    csv,          ///< a line of names, then one line per row
    spreadsheet,  ///< csv in which no text is a formula
};

/// Makes lines for other programs of rows of one kind.
template <typename Row>
class RowLines {
public:
    /// @param format  any but table
    RowLines(Format format, RowLayout<Row> const& layout)
        : isJson_(format == Format::json), append_(appenderOf(format)) {
        for (auto const& field : layout.fields) {
            if (runs_.empty() || runs_.back().sharedBy != field.sharedBy) {
                runs_.push_back({.sharedBy = field.sharedBy});
            }
            runs_.back().pieces.push_back({.name = nameIn(format, field.name), .cell = field.cell});
        }
    }

    RowLines(RowLines&&) noexcept = default;
    RowLines& operator=(RowLines&&) noexcept = default;
    RowLines(RowLines const&) = delete;  // texts are pointed to
    RowLines& operator=(RowLines const&) = delete;
    ~RowLines() = default;

    /// The line of names with its line end; empty in json.
    [[nodiscard]] static std::string heading(Format format, RowLayout<Row> const& layout) {
        std::string line;
        if (format == Format::csv || format == Format::spreadsheet) {
            for (auto const& field : layout.fields) {
                line.append(line.empty() ? "" : ",").append(field.name);
            }
            line += '\n';
        }
        return line;
    }

    /// A row with its line end.
    /// @return valid until the next one
    [[nodiscard]] std::string_view lineOf(Row const& row) {
        line_.clear();
        for (Run& run : runs_) {
            if (void const* const object = run.sharedBy != nullptr ? run.sharedBy(row) : nullptr) {
                line_.append(sharedText(run, object, row));
            } else {
                appendPieces(line_, run, row);
            }
        }
        if (!isJson_) {
            line_.append('\n');
            return line_.view().substr(1);  // without the first comma
        }
        line_.append("}\n");
        line_.replaceFirst('{');
        return line_.view();
    }

    /// Forgets the texts of what rows had in common; see Field::sharedBy.
    void forgetShared() {
        for (Run& run : runs_) {
            run.known.clear();
            run.lastObject = nullptr;
        }
    }

private:
    struct Piece {
        /// What json has before the value, after the comma; else empty.
        std::string name;
        std::function<Cell(Row const& row)> cell;
    };
    /// Fields one after the other that depend on the same object.
    struct Run {
        void const* (*sharedBy)(Row const& row) = nullptr;
        std::vector<Piece> pieces = {};
        /// Texts that were made, by that object.
        std::unordered_map<void const*, std::string> known = {};
        /// That of the row before, and its text.
        void const* lastObject = nullptr;
        std::string const* lastText = nullptr;
    };

    using Append = void (*)(TextLine& line, Cell const& cell);

    [[nodiscard]] static Append appenderOf(Format format) {
        switch (format) {
            case Format::json:
                return appendJson;
            case Format::spreadsheet:
                return appendSpreadsheetCell;
            default:
                return appendCsv;
        }
    }

    [[nodiscard]] static std::string nameIn(Format format, std::string_view name) {
        return format == Format::json ? "\"" + std::string(name) + "\":" : std::string();
    }

    void appendPieces(TextLine& text, Run const& run, Row const& row) const {
        for (Piece const& piece : run.pieces) {
            text.append(',');
            if (isJson_) {
                text.append(piece.name);
            }
            Cell const cell = piece.cell(row);
            if (isJson_ || !cell.isAbsent()) {  // csv has nothing then
                append_(text, cell);
            }
        }
    }

    [[nodiscard]] std::string const& sharedText(Run& run, void const* object,
                                                Row const& row) const {
        if (object != run.lastObject) {
            auto const [known, isNew] = run.known.try_emplace(object);
            if (isNew) {
                TextLine text;
                appendPieces(text, run, row);
                known->second = text.view();
            }
            run.lastObject = object;
            run.lastText = &known->second;
        }
        return *run.lastText;
    }

    bool isJson_;
    Append append_;
    std::vector<Run> runs_;
    TextLine line_;
};

}  // namespace TalIec61850Tools
