#pragma once

#include <functional>
#include <string_view>

namespace TalIec61850Tools {

/// Receives an output in pieces.
using TextSink = std::function<void(std::string_view)>;

}  // namespace TalIec61850Tools
