#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace TalIec61850Tools {

/// JSON on one line, in ASCII; octets that are no UTF-8 become U+FFFD.
/// @param json  nlohmann::json or nlohmann::ordered_json
template <typename Json>
[[nodiscard]] std::string dumpJson(Json const& json) {
    constexpr int onOneLine = -1;
    constexpr bool asAscii = true;
    return json.dump(onOneLine, ' ', asAscii, Json::error_handler_t::replace);
}

}  // namespace TalIec61850Tools
