#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/Bytes.hpp"

namespace TalBench {

/// Where fields of a frame begin that are written anew for each packet.
using Positions = std::vector<std::size_t>;

/// Where two frames of one size differ, in fields of `width` octets that differ in their first.
[[nodiscard]] Positions differences(TalTest::Bytes const& one, TalTest::Bytes const& other,
                                    std::size_t width);

/// Writes the octets over those that stand at `position`.
void overwrite(TalTest::Bytes& frame, std::size_t position, TalTest::Bytes const& octets);

/// Writes the low `width` octets of a number there, most significant first.
void overwriteNumber(TalTest::Bytes& frame, std::size_t position, std::uint64_t value,
                     std::size_t width);

}  // namespace TalBench
