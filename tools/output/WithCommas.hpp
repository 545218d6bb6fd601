#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace TalIec61850Tools {

/// A count with commas: 1,200,000.
[[nodiscard]] inline std::string withCommas(std::uint64_t count) {
    std::string text = std::to_string(count);
    constexpr std::size_t kGroup = 3;
    for (std::size_t end = text.size(); end > kGroup; end -= kGroup) {
        text.insert(end - kGroup, 1, ',');
    }
    return text;
}

}  // namespace TalIec61850Tools
