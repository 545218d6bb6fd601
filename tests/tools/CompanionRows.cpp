#include "tools/CompanionRows.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <sstream>

#include "tools/StreamsTraffic.hpp"

namespace TalTest {

namespace {

/// Reads one cell from the front of a text.
CsvCell takeCell(std::string_view& text) {
    if (!text.starts_with('"')) {
        auto const cell = text.substr(0, text.find_first_of(",\n"));
        text.remove_prefix(cell.size());
        EXPECT_EQ(cell.find('"'), std::string_view::npos) << cell;
        return cell.empty() ? CsvCell() : CsvCell(cell);
    }
    std::string cell;
    for (text.remove_prefix(1); !text.empty(); text.remove_prefix(1)) {
        if (text.front() == '"') {
            text.remove_prefix(1);
            if (!text.starts_with('"')) {
                return cell;
            }
        }
        cell += text.front();
    }
    ADD_FAILURE() << "quotes do not end";
    return cell;
}

}  // namespace

Arguments joined(Arguments first, Arguments const& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Arguments commandWords(std::string const& command) {
    std::istringstream stream(command);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::vector<Json> rowsOf(Arguments const& command, Surroundings const& surroundings) {
    auto const result = runCompanion(joined(command, {"--format", "json", "-q"}), surroundings);
    EXPECT_EQ(result.err, "") << testing::PrintToString(command);
    EXPECT_EQ(result.status, 0) << testing::PrintToString(command);
    return jsonOf(result.out);
}

std::vector<Json> fieldOf(std::vector<Json> const& rows, char const* name) {
    std::vector<Json> values;
    std::transform(rows.begin(), rows.end(), std::back_inserter(values),
                   [&](Json const& row) { return row.at(name); });
    return values;
}

std::vector<std::vector<CsvCell>> csvLines(std::string_view text) {
    std::vector<std::vector<CsvCell>> lines;
    while (!text.empty()) {
        auto& cells = lines.emplace_back();
        cells.push_back(takeCell(text));
        while (text.starts_with(',')) {
            text.remove_prefix(1);
            cells.push_back(takeCell(text));
        }
        EXPECT_TRUE(text.starts_with('\n')) << text;
        text.remove_prefix(std::min<std::size_t>(1, text.size()));
    }
    return lines;
}

std::vector<std::map<std::string, CsvCell>> csvRows(std::string_view text) {
    auto const lines = csvLines(text);
    std::vector<std::map<std::string, CsvCell>> rows;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i].size(), lines[0].size());
        auto& row = rows.emplace_back();
        for (std::size_t column = 0; column < lines[0].size(); ++column) {
            row[lines[0][column].value_or("")] = lines[i].at(column);
        }
    }
    return rows;
}

std::vector<std::vector<std::string>> tableRows(std::string_view text) {
    std::vector<std::vector<std::string>> rows;
    auto const lines = linesOf(text);
    for (std::size_t i = 1; i < lines.size() && !lines[i].empty(); ++i) {
        auto& cells = rows.emplace_back();
        std::string const& line = lines[i];
        for (std::size_t at = 0; at != std::string::npos;) {
            std::size_t const end = line.find("  ", at);
            cells.push_back(line.substr(at, end - at));
            at = line.find_first_not_of(' ', end);
        }
        if (cells.front().empty()) {
            cells.erase(cells.begin());  // what was aligned to the right
        }
    }
    return rows;
}

std::string summaryOf(std::string_view text) {
    auto const lines = linesOf(text);
    return lines.size() < 2 || !lines[lines.size() - 2].empty() ? "" : lines.back();
}

void expectUsageError(Arguments const& arguments, Surroundings const& surroundings) {
    auto const result = runCompanion(arguments, surroundings);
    SCOPED_TRACE(testing::PrintToString(arguments));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(result.err.starts_with("tal-iec61850: ")) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_TRUE(result.err.ends_with('\n'));
}

}  // namespace TalTest
