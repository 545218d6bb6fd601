#include "support/CompiledJson.hpp"

template class nlohmann::basic_json<>;
