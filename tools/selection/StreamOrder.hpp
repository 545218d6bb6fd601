#pragma once

#include <string>
#include <vector>

#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

/// In which order streams are listed.
struct StreamOrder {
    /// One of streamOrderKeys().
    std::string key = "identity";
    bool isReversed = false;
};

/// What streams can be ordered by; the first is the order that they come in.
[[nodiscard]] std::vector<std::string> streamOrderKeys();

/// Orders the rows; those that are alike in the key stay as they are, also when reversed.
void sortRows(std::vector<StreamRow>& rows, StreamOrder const& order);

}  // namespace TalIec61850Tools
