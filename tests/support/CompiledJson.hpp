#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>

// JSON for tests, of which each function is compiled once, in CompiledJson.cpp: compiling them
// again in each source takes longer than the source itself.

extern template class nlohmann::basic_json<>;
extern template class nlohmann::basic_json<nlohmann::ordered_map>;

NLOHMANN_JSON_NAMESPACE_BEGIN
/// How GoogleTest prints a value: as text, not as a container of containers.
void PrintTo(json const& value, std::ostream* out);
void PrintTo(ordered_json const& value, std::ostream* out);
NLOHMANN_JSON_NAMESPACE_END
