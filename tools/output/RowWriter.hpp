#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/output/CsvLines.hpp"
#include "tools/output/JsonLines.hpp"
#include "tools/output/RowLayout.hpp"
#include "tools/output/TableLines.hpp"
#include "tools/output/TextSink.hpp"

namespace TalIec61850Tools {

/// The form in which a command writes its rows.
enum class Format {
    table,  ///< for people
    json,   ///< one object per line
    csv,    ///< a line of names, then one line per row
};

/// Writes rows of one kind, in one of the formats.
template <typename Row>
class RowWriter {
public:
    /// @param inColour  bold headings in a table
    RowWriter(Format format, RowLayout<Row> layout, TextSink sink, bool inColour = false)
        : format_(format), layout_(std::move(layout)), sink_(std::move(sink)) {
        if (format_ == Format::csv) {
            sink_(toCsvHeading(fieldNames(layout_)));
        } else if (format_ == Format::table) {
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
            Fields const fields = toFields(layout_, row);
            sink_(format_ == Format::csv ? toCsvLine(fields) : toJsonLine(fields));
        }
    }

    /// Writes the rows that are held back. To be called once, after the last row.
    void finish() {
        if (table_) {
            table_->finish();
        }
    }

private:
    Format format_;
    RowLayout<Row> layout_;
    TextSink sink_;
    std::optional<TableLines> table_;
};

}  // namespace TalIec61850Tools
