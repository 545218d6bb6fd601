#pragma once

#include <string>

#include "tools/names/StreamNames.hpp"

namespace TalIec61850Tools {

/// Says where a stream is not as it is described: a line, safe for a terminal, with FILE@POSITION.
[[nodiscard]] std::string namesEndText(NamesEnd const& end);

}  // namespace TalIec61850Tools
