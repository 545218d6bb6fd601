#pragma once

// Internal: values of findings, made of what packets hold.

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <variant>

namespace TalIec61850Analysis::detail {

[[nodiscard]] inline FindingValue numberOf(std::int64_t value) { return value; }

/// @param time  in nanoseconds since 1970
[[nodiscard]] inline FindingValue instantOf(std::int64_t time) {
    return CaptureTime(std::chrono::nanoseconds(time));
}

[[nodiscard]] inline FindingValue valueOf(std::optional<Readable<std::uint64_t>> const& value) {
    if (!value) {
        return {};
    }
    if (auto const* const number = std::get_if<std::uint64_t>(&*value)) {
        if (*number <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            return static_cast<std::int64_t>(*number);
        }
        return static_cast<double>(*number);
    }
    return std::get<OctetString>(*value);
}

[[nodiscard]] inline FindingValue valueOf(std::optional<std::string> const& value) {
    if (!value) {
        return {};
    }
    return OctetString(value->begin(), value->end());
}

}  // namespace TalIec61850Analysis::detail
