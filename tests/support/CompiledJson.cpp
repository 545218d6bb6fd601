#include "support/CompiledJson.hpp"

#include <ostream>

template class nlohmann::basic_json<>;
template class nlohmann::basic_json<nlohmann::ordered_map>;

NLOHMANN_JSON_NAMESPACE_BEGIN

void PrintTo(json const& value, std::ostream* out) { *out << value; }
void PrintTo(ordered_json const& value, std::ostream* out) { *out << value; }

NLOHMANN_JSON_NAMESPACE_END
