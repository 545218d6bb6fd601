#pragma once

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <array>
#include <cstddef>
#include <vector>

namespace TalIec61850Tools {

/// Something for each severity, by its number.
template <typename Value>
using PerSeverity = std::array<Value, 3>;

/// The place of a severity among them.
[[nodiscard]] constexpr std::size_t placeOf(TalIec61850Analysis::Severity severity) {
    return static_cast<std::size_t>(severity);
}

/// What there is room for.
struct SeverityRoom {
    std::size_t most = 0;
    std::size_t mostOctets = 0;
};

/// Shares out room among findings, so that many notes leave no error without: half is kept for
/// errors, a quarter for warnings, a quarter for notes. What one does not need is for the others,
/// the worst first.
/// @param sizes  of each severity, the octets of its findings, in the order of time
/// @return of each severity, how many have room: the first ones
[[nodiscard]] PerSeverity<std::size_t> shareOut(PerSeverity<std::vector<std::size_t>> const& sizes,
                                                SeverityRoom const& room);

}  // namespace TalIec61850Tools
