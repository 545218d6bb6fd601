#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/CompanionProcess.hpp"

// What commands write, read back.

namespace TalTest {

using Json = nlohmann::json;
using Arguments = std::vector<std::string>;

/// The arguments one after the other.
[[nodiscard]] Arguments joined(Arguments first, Arguments const& second);

/// The words of a command: "library judge" are two.
[[nodiscard]] Arguments commandWords(std::string const& command);

/// What a command writes as JSON, one value for each row. It must succeed without a complaint.
[[nodiscard]] std::vector<Json> rowsOf(Arguments const& command,
                                       Surroundings const& surroundings = {});

/// One field of each row.
[[nodiscard]] std::vector<Json> fieldOf(std::vector<Json> const& rows, char const* name);

/// One cell of comma-separated values; an empty one that is not in quotes is nullopt.
using CsvCell = std::optional<std::string>;

/// The lines of comma-separated values, each a list of cells; no line may end inside quotes.
[[nodiscard]] std::vector<std::vector<CsvCell>> csvLines(std::string_view text);

/// The lines below the first one, whose cells name those of the others.
[[nodiscard]] std::vector<std::map<std::string, CsvCell>> csvRows(std::string_view text);

/// The lines of a table below its headings and above the blank line, cells parted by two blanks or
/// more; no cell may hold two blanks itself.
[[nodiscard]] std::vector<std::vector<std::string>> tableRows(std::string_view text);

/// The last line of what a table's command writes.
[[nodiscard]] std::string summaryOf(std::string_view text);

/// Expects wrong usage: one line on standard error, nothing on standard output.
void expectUsageError(Arguments const& arguments, Surroundings const& surroundings = {});

}  // namespace TalTest
