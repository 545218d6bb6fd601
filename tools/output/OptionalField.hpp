#pragma once

#include <optional>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// The value, or null.
template <typename T>
[[nodiscard]] Fields optionalField(std::optional<T> const& value) {
    return value ? Fields(*value) : Fields(nullptr);
}

}  // namespace TalIec61850Tools
