#include "tools/output/CsvWriter.hpp"

#include <fmt/ranges.h>

#include <string>
#include <vector>

#include "tools/output/TextEscape.hpp"
#include "tools/selection/RowFields.hpp"

namespace TalIec61850Tools {

namespace {

std::string quoteIfNeeded(std::string const& text) {
    if (!text.empty() && text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (char const c : text) {
        quoted.append(c == '"' ? 2 : 1, c);
    }
    return quoted + '"';
}

std::string toCell(nlohmann::ordered_json const& field) {
    if (field.is_null()) {
        return {};
    }
    return field.is_string() ? quoteIfNeeded(escapeText(field.get_ref<std::string const&>()))
                             : field.dump();
}

void writeLine(std::vector<std::string> const& cells, TextSink const& sink) {
    sink(fmt::format("{}\n", fmt::join(cells, ",")));
}

}  // namespace

void writeCsv(std::span<StreamRow const> rows, TextSink const& sink) {
    std::vector<std::string> cells;
    auto const anyRow = toFields(StreamRow());
    for (auto const& field : anyRow.items()) {
        cells.push_back(field.key());
    }
    writeLine(cells, sink);
    for (StreamRow const& row : rows) {
        cells.clear();
        for (auto const& field : toFields(row)) {
            cells.push_back(toCell(field));
        }
        writeLine(cells, sink);
    }
}

}  // namespace TalIec61850Tools
