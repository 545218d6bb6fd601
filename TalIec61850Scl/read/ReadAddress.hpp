#pragma once

// Internal: addresses of control blocks.

#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <TalIec61850Scl/read/DiagnosticList.hpp>
#include <TalIec61850Scl/read/Document.hpp>
#include <cstdint>
#include <optional>
#include <string_view>

namespace TalIec61850Scl::detail {

/// Reads a GSE or SMV.
[[nodiscard]] ControlBlockAddress readAddress(Element element, Document const& document,
                                              DiagnosticList& diagnostics);

/// Six octets in hexadecimal digits, with hyphens or colons between them, or with nothing.
[[nodiscard]] std::optional<TalIec61850Analysis::MacAddress> readMac(std::string_view text);

/// A time in nanoseconds: in milliseconds, unless the element has another multiplier.
[[nodiscard]] std::optional<std::int64_t> readTime(Element element);

}  // namespace TalIec61850Scl::detail
