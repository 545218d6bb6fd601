#pragma once

#include <cstddef>
#include <cstdint>

// What the process that asks takes of the machine at this moment.

namespace TalBench {

/// Memory that is resident, in octets.
[[nodiscard]] std::uint64_t residentOctets();

/// The most that was ever resident, in octets.
/// @throws std::runtime_error where the system does not tell
[[nodiscard]] std::uint64_t peakResidentOctets();

/// What is allocated from the heap and not freed, in octets.
[[nodiscard]] std::uint64_t liveHeapOctets();

/// Descriptors that are open.
[[nodiscard]] std::size_t openDescriptors();

}  // namespace TalBench
