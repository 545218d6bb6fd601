#pragma once

// Internal: the compiler's own vectors. Its code for plain loops from rows to columns takes longer.

#include <cstdint>
#include <cstring>

namespace TalIec61850Analysis::detail {

using TwoTimes [[gnu::vector_size(16)]] = std::uint64_t;
using FourWords [[gnu::vector_size(16)]] = std::uint32_t;
using EightShorts [[gnu::vector_size(16)]] = std::uint16_t;

/// @param from  any address with as many octets as a vector
template <typename Vector>
[[nodiscard]] Vector load(void const* from) {
    Vector vector{};
    std::memcpy(&vector, from, sizeof vector);
    return vector;
}

/// Writes one vector, or several that follow one another.
template <typename Vectors>
void store(void* to, Vectors const& vectors) {
    std::memcpy(to, &vectors, sizeof vectors);
}

}  // namespace TalIec61850Analysis::detail
