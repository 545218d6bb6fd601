#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <cstdint>
#include <variant>

namespace TalIec61850Analysis {

/// A BER INTEGER, two's complement, of any width: what 64 bits with a sign hold, else what 64 bits
/// without one hold, else the octets. Never cut.
using Integer = std::variant<std::int64_t, std::uint64_t, OctetString>;

/// The same without a copy of the octets.
using IntegerView = std::variant<std::int64_t, std::uint64_t, Octets>;

/// Reads the value octets of an INTEGER; octets that say nothing are allowed in front. No octets at
/// all give no octets.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT IntegerView readInteger(Octets octets) noexcept;

/// Whether a number is below zero; one that is too wide counts as none.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT bool isNegative(IntegerView const& integer) noexcept;

/// Reads octets as a number without a sign, as Sampled Values have them: the octets themselves
/// where there are none, or the number takes more than 64 bits.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT ReadableView<std::uint64_t> readUnsigned(
    Octets octets) noexcept;

/// A copy with octets of its own.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT Integer toOwned(IntegerView const& integer);

}  // namespace TalIec61850Analysis
