#pragma once

// Internal: numbers for what packets say of their streams.

#include <TalIec61850Analysis/traffic/StreamAttributes.hpp>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Of all members: what a capture holds must not lead to many that share one hash.
[[nodiscard]] std::size_t hashOf(StreamAttributes const& attributes);

/// Keeps attributes that are equal once, and numbers them from 0 in the order in which they came.
class AttributeTable {
public:
    [[nodiscard]] std::uint32_t numberOf(StreamAttributes const& attributes);
    /// All of them, by number; to be called last.
    [[nodiscard]] std::vector<StreamAttributes> take();

private:
    std::vector<StreamAttributes> all_;
    std::unordered_multimap<std::size_t, std::uint32_t> byHash_;
};

}  // namespace TalIec61850Analysis::detail
