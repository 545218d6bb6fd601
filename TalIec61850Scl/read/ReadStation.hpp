#pragma once

#include <TalIec61850Scl/Export.hpp>
#include <TalIec61850Scl/model/StationDescription.hpp>
#include <span>
#include <string>
#include <string_view>

namespace TalIec61850Scl {

/// Reads descriptions as one: of a whole station, or of its devices one by one.
///
/// Elements are known by their local names, so that any namespace and prefix will do. Types are
/// those of the file that uses them. A control block that several files have in the same way is
/// told once. What is wrong is a diagnostic; all else is read.
///
/// Time and memory grow with the files and with nothing that these merely claim. So names are cut
/// after 255 octets, texts for people after 1,023; types nested deeper than 24 levels, data sets of
/// more than 32,768 values, and data sets that together take more than 32 MiB and sixteen times the
/// file are cut with a diagnostic; so are control blocks, addresses and subscribers that together
/// would take as much. Of an element the first 64 attributes count, and a value or text that comes
/// after 64 other elements does not. Of each code and file, the first 1,000 diagnostics are told.
/// @param paths  of the files
/// @return what they say; nothing but a diagnostic of a file that is no description, or that cannot
///     be read
/// @throws std::bad_alloc  where memory ends
[[nodiscard]] TALIEC61850SCL_EXPORT StationDescription
readStation(std::span<std::string const> paths);

/// Reads a description that is in memory.
/// @param text  the octets of one file, in any encoding that XML may have
/// @param path  what to call it
/// @return as above
/// @throws std::bad_alloc  where memory ends
[[nodiscard]] TALIEC61850SCL_EXPORT StationDescription readStation(std::string_view text,
                                                                   std::string path);

}  // namespace TalIec61850Scl
