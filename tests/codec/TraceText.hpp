#pragma once

#include <TalIec61850Parser/codec/WalkTrace.hpp>
#include <cstdint>
#include <string>

namespace TalTest {

/// X for each octet that was looked at, a dot for the others.
inline std::string lookedAt(TalIec61850Parser::detail::WalkTrace const& trace) {
    std::string text;
    for (std::uint8_t const octet : trace.mask())
        text += octet == 0xFF ? 'X' : octet == 0 ? '.' : '?';
    return text;
}

/// Index and size, as 3+2.
inline std::string text(TalIec61850Parser::detail::WalkTrace::Part const& part) {
    return std::to_string(part.index) + "+" + std::to_string(part.size);
}

}  // namespace TalTest
