#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/output/RowLayout.hpp"
#include "tools/output/RowLines.hpp"
#include "tools/output/TableLines.hpp"
#include "tools/output/TextSink.hpp"

namespace TalIec61850Tools {

/// Writes rows of one kind, in one of the formats.
template <typename Row>
class RowWriter {
public:
    /// @param inColour  bold headings in a table
    RowWriter(Format format, RowLayout<Row> layout, TextSink sink, bool inColour = false)
        : layout_(std::move(layout)), sink_(std::move(sink)) {
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
            table_.emplace(std::move(headings), sink_, inColour);
        }
    }

    void write(Row const& row) {
        if (table_) {
            std::vector<std::string> cells;
            for (auto const& column : layout_.columns) {
                cells.push_back(column.cell(row));
            }
            table_->add(std::move(cells));
        } else {
            sink_(lines_->lineOf(row));
        }
    }

    /// Writes the rows that are held back. To be called once, after the last row.
    void finish() {
        if (table_) {
            table_->finish();
        }
    }

private:
    RowLayout<Row> layout_;
    TextSink sink_;
    /// The one of the format is set.
    std::optional<RowLines<Row>> lines_;
    std::optional<TableLines> table_;
};

}  // namespace TalIec61850Tools
