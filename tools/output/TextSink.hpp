#pragma once

#include <functional>
#include <string_view>

namespace TalIec61850Tools {

/// Takes an output piece by piece.
using TextSink = std::function<void(std::string_view)>;

}  // namespace TalIec61850Tools
