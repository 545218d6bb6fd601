#include "tools/output/CsvLines.hpp"

#include <fmt/ranges.h>

#include <cstdint>
#include <vector>

#include "tools/output/JsonLines.hpp"
#include "tools/output/TextEscape.hpp"

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

std::string toCell(Fields const& field) {
    if (field.is_null()) {
        return {};
    }
    if (field.is_string()) {
        return quoteIfNeeded(escapeText(field.get_ref<std::string const&>()));
    }
    // Most cells; much faster than by JSON.
    if (field.is_number_unsigned()) {
        return fmt::to_string(field.get<std::uint64_t>());
    }
    std::string json = toJsonLine(field);
    json.pop_back();
    return quoteIfNeeded(json);
}

}  // namespace

std::string toCsvHeading(std::vector<std::string_view> const& names) {
    return fmt::format("{}\n", fmt::join(names, ","));
}

std::string toCsvLine(Fields const& fields) {
    std::vector<std::string> cells;
    for (auto const& field : fields) {
        cells.push_back(toCell(field));
    }
    return fmt::format("{}\n", fmt::join(cells, ","));
}

}  // namespace TalIec61850Tools
