#pragma once

// Internal: what was made of the octets of a field, and what is wrong with them.

#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/Integer.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <cstddef>
#include <optional>
#include <string_view>

namespace TalIec61850Analysis {

template <typename Value>
struct Reading {
    Value value;
    std::optional<FaultKind> fault = {};
};

// What fields are made of.

[[nodiscard]] Reading<std::string_view> readText(Octets octets) noexcept;
[[nodiscard]] Reading<ReadableView<bool>> readBoolean(Octets octets) noexcept;
[[nodiscard]] Reading<ReadableView<UtcTime>> readTime(Octets octets) noexcept;
/// An INTEGER of either sign.
[[nodiscard]] Reading<IntegerView> readSigned(Octets octets) noexcept;
/// An INTEGER that counts something, so that it is not negative. Senders leave out the zero octet
/// that the highest bit calls for: such octets are read without a sign, and are a fault.
[[nodiscard]] Reading<IntegerView> readCounter(Octets octets) noexcept;
/// An INTEGER that is not negative where its sender knows how to write one: it has the sign that it
/// was sent with.
[[nodiscard]] Reading<IntegerView> readPositive(Octets octets) noexcept;
/// A number without a sign that has a width of its own.
/// @param width  in octets; any other is a fault
[[nodiscard]] Reading<ReadableView<std::uint64_t>> readNumber(Octets octets,
                                                              std::size_t width) noexcept;
/// Octets that are no text and no number.
/// @param size  any other is a fault
[[nodiscard]] Reading<Octets> readOctets(Octets octets, std::size_t size) noexcept;

/// Sets a field to what was read.
/// @return what is wrong with it
template <typename Value>
std::optional<FaultKind> set(std::optional<Value>& field, Reading<Value> const& reading) {
    field = reading.value;
    return reading.fault;
}

/// Hands on what is wrong, if anything is.
inline void reportFault(std::size_t offset, std::optional<FaultKind> fault, FaultSink sink) {
    if (fault) {
        sink({offset, *fault});
    }
}

}  // namespace TalIec61850Analysis
