#include "tools/output/JsonLines.hpp"

namespace TalIec61850Tools {

std::string toJsonLine(Fields const& fields) {
    constexpr int onOneLine = -1;
    constexpr bool asAscii = true;
    return fields.dump(onOneLine, ' ', asAscii, Fields::error_handler_t::replace) + "\n";
}

}  // namespace TalIec61850Tools
