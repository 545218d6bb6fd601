#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/output/RowLayout.hpp"
#include "tools/output/RowLines.hpp"
#include "tools/output/TableLines.hpp"
#include "tools/output/TextLine.hpp"
#include "tools/output/TextSink.hpp"
#include "tools/output/WithoutRoom.hpp"

namespace TalIec61850Tools {

/// What a table for people looks like.
struct TableStyle {
    /// Bold headings, and colours of cells.
    bool inColour = false;
    /// Not set for a table that is as wide as its cells.
    std::optional<TableRoom> room;
    /// Whether a line below the table names the columns that there was no room for.
    bool namesOthers = true;
};

/// Writes rows of one kind, in one of the formats.
template <typename Row>
class RowWriter {
public:
    RowWriter(Format format, RowLayout<Row> layout, TextSink sink, TableStyle style = {})
        : layout_(std::move(layout)), sink_(std::move(sink)), style_(style) {
        if (format != Format::table) {
            lines_.emplace(format, layout_);
            if (std::string const names = RowLines<Row>::heading(format, layout_); !names.empty()) {
                sink_(names);
            }
        } else {
            std::vector<Heading> headings;
            for (auto const& column : layout_.columns) {
                headings.push_back(column.heading);
            }
            table_.emplace(std::move(headings), sink_, style_.inColour, style_.room);
            cells_.resize(layout_.columns.size());
        }
    }

    void write(Row const& row) {
        if (lines_) {
            sink_(lines_->lineOf(row));
            return;
        }
        for (std::size_t i = 0; i < cells_.size(); ++i) {
            Cell const cell = layout_.columns[i].cell(row);
            text_.clear();
            appendTable(text_, cell);
            cells_[i] = text_.view();
            if (layout_.columns[i].heading.align == Align::byValue && cell.isNumber()) {
                table_->alignRight(i);
            }
        }
        table_->add(cells_);
    }

    /// Writes the rows that are held back, where there are any; columns keep the widths that they
    /// have then. What many rows had in common may be gone after it.
    void flush() {
        if (lines_) {
            lines_->forgetShared();
        }
        if (table_) {
            table_->flush();
        }
    }

    /// Writes the rows that are held back. To be called once, after the last row.
    void finish() {
        if (!table_) {
            return;
        }
        table_->finish();
        if (style_.namesOthers && !table_->withoutRoom().empty()) {
            sink_("\n" + withoutRoomText(table_->withoutRoom(), style_.room->columns));
        }
    }

private:
    RowLayout<Row> layout_;
    TextSink sink_;
    TableStyle style_;
    /// The one of the format is set.
    std::optional<RowLines<Row>> lines_;
    std::optional<TableLines> table_;
    /// The text of a cell, while it is made.
    TextLine text_;
    /// Texts of a row in a table.
    std::vector<std::string> cells_;
};

}  // namespace TalIec61850Tools
