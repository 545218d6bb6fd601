#pragma once

// What tshark dissects of a capture's GOOSE and SV frames.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace TalTest {

/// A frame's fields by their names in tshark; one that does not occur is empty.
using TsharkFields = std::map<std::string, std::string>;

/// The path of tshark; none when it is not on PATH.
std::optional<std::string> tsharkProgram();

/// Which of a field's occurrences in one frame is told.
enum class Occurrence {
    last,
    all,  ///< with | between them, see separated()
};

/// The GOOSE and SV frames of a capture. "frame.number" tells the record.
/// @param preferences  settings of tshark such as "sv.decode_data_as_phsmeas:TRUE"
std::vector<TsharkFields> dissect(std::string const& program, std::string const& path,
                                  std::vector<std::string> const& fieldNames,
                                  Occurrence occurrence = Occurrence::last,
                                  std::vector<std::string> const& preferences = {});

/// The occurrences of a field told with Occurrence::all.
std::vector<std::string> separated(std::string const& field);

/// A number as tshark writes it, decimal or with 0x before it; nothing for an empty field.
std::optional<std::uint64_t> number(std::string const& field);

}  // namespace TalTest
