#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// Appends a text to a page, so that it is shown as it is: between elements and in quoted
/// attributes.
/// @param text  UTF-8; names from captures pass `escapeText` first
void appendHtml(std::string& page, std::string_view text);

/// The same as a text of its own.
[[nodiscard]] std::string toHtml(std::string_view text);

/// JSON that can be the content of a script element: nothing in it ends the element.
/// @param json  in ASCII
[[nodiscard]] std::string toScriptData(std::string_view json);

/// Octets of a value as the content of a script element.
[[nodiscard]] std::size_t scriptSize(nlohmann::ordered_json const& json);

}  // namespace TalIec61850Tools
