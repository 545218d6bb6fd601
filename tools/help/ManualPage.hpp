#pragma once

#include <string>
#include <string_view>

#include "tools/help/ProgramDescription.hpp"

namespace TalIec61850Tools {

/// The manual page of the program, section 1, in the language of man(7).
[[nodiscard]] std::string manualPage(ProgramDescription const& program, std::string_view version);

}  // namespace TalIec61850Tools
