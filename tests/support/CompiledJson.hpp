#pragma once

#include <nlohmann/json.hpp>

// JSON for tests, of which each function is compiled once, in CompiledJson.cpp: compiling them
// again in each source takes longer than the source itself.

extern template class nlohmann::basic_json<>;
