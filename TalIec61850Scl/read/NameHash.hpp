#pragma once

// Internal: maps of names that a description cannot make slow.

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace TalIec61850Scl::detail {

/// The hash of a name. What it begins with is drawn once in each run of the program, so that no
/// description can be written whose names share one hash: finding them would take time that grows
/// with the square of their number.
struct NameHash {
    /// Not noexcept: so maps keep the hashes of their keys.
    [[nodiscard]] std::size_t operator()(std::string_view name) const;
};

/// By a name, which is a std::string or a std::string_view.
template <typename Name, typename Value>
using NameMap = std::unordered_map<Name, Value, NameHash>;

/// Names, each once.
using NameSet = std::unordered_set<std::string, NameHash>;

}  // namespace TalIec61850Scl::detail
