#include "tools/output/Complain.hpp"

#include <cstdio>

namespace TalIec61850Tools {

void complain(std::string_view text) noexcept {
    std::fprintf(stderr, "tal-iec61850: %.*s\n", static_cast<int>(text.size()), text.data());
}

}  // namespace TalIec61850Tools
