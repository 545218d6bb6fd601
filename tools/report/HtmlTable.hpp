#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/output/Cell.hpp"
#include "tools/output/RowLayout.hpp"
#include "tools/report/HtmlText.hpp"

namespace TalIec61850Tools {

/// How the rows of a table of a page differ from the columns of the same rows on a terminal.
template <typename Row>
struct HtmlTableWish {
    /// Of the table, and the start of those of its rows.
    std::string_view id;
    /// Rows at most, and octets of their texts.
    std::size_t mostRows = SIZE_MAX;
    std::size_t mostOctets = SIZE_MAX;
    /// A fragment of the page that the first cell of a row leads to; empty for none.
    std::function<std::string(Row const& row)> link = {};
    /// The class of a row; empty for none.
    std::function<std::string_view(Row const& row)> kind = {};
    /// Headings of columns whose cells are broken into lines.
    std::vector<std::string_view> wide = {};
    /// A last column that is markup already; its heading, and what makes it.
    std::string_view drawnHeading = {};
    std::function<std::string(Row const& row)> draw = {};
};

/// Rows as a table of a page that is read without a script. Columns without a value in any row are
/// left out.
template <typename Row>
class HtmlTable {
public:
    HtmlTable(RowLayout<Row> layout, HtmlTableWish<Row> wish)
        : layout_(std::move(layout)),
          wish_(std::move(wish)),
          hasValue_(layout_.columns.size(), false) {}

    /// Adds a row, unless there is no room for it, or was none for one before.
    /// @return whether it is in the table
    bool add(Row const& row) {
        ++asked_;
        if (isFull_ || rows_.size() >= wish_.mostRows) {
            isFull_ = true;
            return false;
        }
        std::vector<Cell> cells = cellsOf(row);
        HtmlRow made;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            hasValue_[i] = hasValue_[i] || !cells[i].isAbsent();
            made.cells.push_back(tableText(cells[i]));
        }
        made.link = wish_.link ? wish_.link(row) : "";
        made.kind = wish_.kind ? wish_.kind(row) : "";
        made.drawn = wish_.draw ? wish_.draw(row) : "";
        octets_ += sizeOf(made);
        isFull_ = octets_ > wish_.mostOctets;
        if (!isFull_) {
            rows_.push_back(std::move(made));
        }
        return !isFull_;
    }

    /// What a row would take, about.
    [[nodiscard]] std::size_t sizeOf(Row const& row) const {
        HtmlRow made;
        for (Cell const& cell : cellsOf(row)) {
            made.cells.push_back(tableText(cell));
        }
        made.drawn = wish_.draw ? wish_.draw(row) : "";
        return sizeOf(made);
    }

    /// Counts rows that are left out without being asked for.
    void leaveOut(std::size_t rows) { asked_ += rows; }

    /// Rows of the table.
    [[nodiscard]] std::size_t rows() const { return rows_.size(); }

    /// Rows that were to be added.
    [[nodiscard]] std::size_t asked() const { return asked_; }
    /// Of these, those that there was no room for.
    [[nodiscard]] std::size_t leftOut() const { return asked_ - rows_.size(); }

    /// @return without headings where there is no row
    [[nodiscard]] std::string finish() const {
        if (rows_.empty()) {
            return "<table id=\"" + std::string(wish_.id) + "\" hidden></table>\n";
        }
        std::string page = R"(<div class="scroll" tabindex="0"><table id=")" +
                           std::string(wish_.id) + "\">\n<thead><tr>";
        for (std::size_t i = 0; i < layout_.columns.size(); ++i) {
            if (hasValue_[i]) {
                page += "<th scope=\"col\"" + classOf(i) + ">";
                appendHtml(page, layout_.columns[i].heading.text);
                page += "</th>";
            }
        }
        if (wish_.draw) {
            page += "<th scope=\"col\">" + toHtml(wish_.drawnHeading) + "</th>";
        }
        page += "</tr></thead>\n<tbody>\n";
        for (std::size_t row = 0; row < rows_.size(); ++row) {
            appendRow(page, row);
        }
        page += "</tbody></table></div>\n";
        return page;
    }

private:
    /// What a row and a cell take besides their texts, about.
    static constexpr std::size_t kOctetsOfRow = 120;
    static constexpr std::size_t kOctetsOfCell = 24;

    struct HtmlRow {
        std::vector<std::string> cells;
        std::string link;
        std::string kind;
        std::string drawn;
    };

    [[nodiscard]] std::vector<Cell> cellsOf(Row const& row) const {
        std::vector<Cell> cells;
        for (auto const& column : layout_.columns) {
            cells.push_back(column.cell(row));
        }
        return cells;
    }

    [[nodiscard]] static std::size_t sizeOf(HtmlRow const& row) {
        std::size_t size = kOctetsOfRow + row.drawn.size();
        for (std::string const& cell : row.cells) {
            size += toHtml(cell).size() + kOctetsOfCell;
        }
        return size;
    }

    [[nodiscard]] std::string classOf(std::size_t column) const {
        Heading const& heading = layout_.columns[column].heading;
        if (heading.align == Align::right) {
            return " class=\"number\"";
        }
        for (std::string_view const wide : wish_.wide) {
            if (heading.text == wide) {
                return " class=\"wide\"";
            }
        }
        return "";
    }

    void appendRow(std::string& page, std::size_t number) const {
        HtmlRow const& row = rows_[number];
        page += "<tr id=\"" + std::string(wish_.id) + std::to_string(number + 1) + "\"";
        page += row.kind.empty() ? ">" : " class=\"" + row.kind + "Row\">";
        bool isFirst = true;
        for (std::size_t i = 0; i < row.cells.size(); ++i) {
            if (!hasValue_[i]) {
                continue;
            }
            bool const isKind = !row.kind.empty() && row.cells[i] == row.kind;
            page += "<td" + (isKind ? " class=\"" + row.kind + "\"" : classOf(i)) + ">";
            bool const isLink = isFirst && !row.link.empty();
            page += isLink ? "<a href=\"" + toHtml(row.link) + "\">" : "";
            appendHtml(page, row.cells[i]);
            page += isLink ? "</a></td>" : "</td>";
            isFirst = false;
        }
        page += wish_.draw ? "<td>" + row.drawn + "</td>" : "";
        page += "</tr>\n";
    }

    RowLayout<Row> layout_;
    HtmlTableWish<Row> wish_;
    std::vector<bool> hasValue_;
    std::vector<HtmlRow> rows_;
    std::size_t octets_ = 0;
    std::size_t asked_ = 0;
    bool isFull_ = false;
};

}  // namespace TalIec61850Tools
